// The page: what is chosen, filtered and sorted, and who is told when it changes.

const panelOf = (name) => document.querySelector(`[data-panel="${name}"]`);
const filterField = document.querySelector("input[type=search]");
const rowCount = document.getElementById("row-count");
const notice = document.querySelector(".notice");

const rowsByNeed = orderByNeed(sampleRows);
let sortedRows = rowsByNeed;   // all of them, in the table's order
let rowsInSight = rowsByNeed;  // those of them that the filter leaves
let inSight = new Set(rowsByNeed);
let sorting = null;            // {column, isDescending}; null for the order by need
let chosen = null;
let map = null;

const changeAddress = createAddress(() => ({ row: chosen, base: traceView.base() }));
const openHelp = () => document.querySelector(".help").showModal();
const traceView = createTraceView(panelOf("trace"), { onBase: changeAddress, onHelp: openHelp });
const updateHead = createHead(panelOf("head"), (terms) => toggleFilter(terms, chipColumns));
const table = createTable(document.querySelector(".rows"), { onChoose: choose, onSort: sortBy });

/// Says something above the panels, until another row is chosen; nothing without a text.
function tell(text = "") {
  notice.textContent = text;
  notice.hidden = text === "";
}

/// Chooses a row in the table, on the map and for the trace, at `base` or where it opens by itself.
/// A filter that hides the row goes. The promise holds when the trace is drawn.
function choose(row, base = null) {
  if (!inSight.has(row)) {
    filterField.value = "";
    filterRows();
  }
  if (row !== chosen) tell();
  chosen = row;
  table.choose(row);
  map?.choose(row);
  const drawn = traceView.show(row, base);
  const at = rowsInSight.indexOf(row);
  traceView.prefetch([rowsInSight[at + 1], rowsInSight[at - 1]].filter((near) => near));
  changeAddress();
  return drawn;
}

/// Shows the rows that the filter leaves.
function filterRows() {
  const { matches, hint } = parseFilter(filterField.value);
  rowsInSight = sortedRows.filter(matches);
  inSight = new Set(rowsInSight);
  const some = inSight.size < sampleRows.length ? `${formatNumber(inSight.size)} of ` : "";
  rowCount.textContent = hint ?? some + counted(sampleRows.length, "row");
  rowCount.classList.toggle("hint", hint !== undefined);
  updateHead(filterField.value);
  table.show(rowsInSight);
  map?.filter((row) => inSight.has(row));
}

/// Filters by what stands in the field. When that hides the chosen row, the first one is chosen.
function applyFilter() {
  filterRows();
  if (inSight.has(chosen)) table.choose(chosen);
  else if (rowsInSight.length > 0) choose(rowsInSight[0]);
}

/// Puts terms into the filter in the place of others on the same columns, or takes them out.
function toggleFilter(terms, columns) {
  filterField.value = toggledFilter(filterField.value, terms, columns).text;
  applyFilter();
}

/// Sorts by a column: ascending, then descending, then by need again.
function sortBy(column) {
  if (sorting?.column !== column) sorting = { column, isDescending: false };
  else sorting = sorting.isDescending ? null : { column, isDescending: true };
  sortedRows = sorting ? orderByColumn(rowsByNeed, column, sorting.isDescending) : rowsByNeed;
  rowsInSight = sortedRows.filter((row) => inSight.has(row));
  table.markSort(sorting?.column, sorting?.isDescending);
  table.show(rowsInSight);
}

/// Goes up or down the table.
function step(by) {
  const row = rowsInSight[rowsInSight.indexOf(chosen) + by];
  if (row) choose(row);
}

/// Puts the rows in sight on the clipboard as TSV and says so on the button.
function copyRows({ currentTarget: button }) {
  const text = [pageData.columns.join("\t"), ...rowsInSight.map(tsvLine), ""].join("\n");
  // The older way needs no permission and works wherever the page was opened from.
  document.addEventListener("copy", (event) => {
    event.clipboardData.setData("text/plain", text);
    event.preventDefault();
  }, { once: true });
  const isCopied = document.execCommand("copy");
  button.textContent = isCopied ? `Copied ${counted(rowsInSight.length, "row")}` : "Not copied";
  setTimeout(() => {
    button.textContent = "Copy as TSV";
  }, 1500);
}

/// Opens what the address names, else the first row.
function openAddress() {
  if (sampleRows.length === 0) return;
  const { row, base, problem } = placeOfAddress(location);
  choose(row ?? rowsInSight[0] ?? rowsByNeed[0], base);
  tell(problem);
}

/// Draws everything again in other colours.
function repaint() {
  forgetColours();
  table.repaint();
  traceView.repaint();
}

/// The row of a name in links. Throws when there is none.
function rowNamed(name) {
  const row = rowByLinkName.get(name);
  if (!row) throw new RangeError(`no sample ${name}`);
  return row;
}

document.getElementById("static").remove();
document.getElementById("app").hidden = false;
panelOf("trace").hidden = sampleRows.length === 0;
filterRows();
performance.mark("table");

map = createMap(panelOf("map"), {
  onChoose: choose,
  onPlate: (name) => toggleFilter(`plate:"${name.replaceAll('"', '""')}"`, ["plate"]),
});
openAddress();

filterField.addEventListener("input", applyFilter);
document.querySelector(".copy").addEventListener("click", copyRows);
listenForKeys({
  step,
  filter: () => filterField.select(),
  help: openHelp,
  other: (event) => traceView.key(event),
});
window.addEventListener("hashchange", openAddress);
window.matchMedia("(prefers-color-scheme: dark)").addEventListener("change", repaint);
document.addEventListener("colours", repaint);
window.addEventListener("resize", () => table.repaint());  // pixels of the screen can have changed
preparePrinting(table, traceView, () => {
  return { rows: rowsInSight, filter: filterField.value, row: chosen };
});

window.quillet = Object.freeze({
  show: async (name, base = null) => choose(rowNamed(name), base),
  order: () => rowsInSight.map((row) => row.sample),
  pixelOf: (base, channel) => traceView.pixelOf(base, channel),
  wellOf: (name) => map?.placeOf(rowNamed(name)) ?? null,
});
