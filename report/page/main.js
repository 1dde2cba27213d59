// The page: what is chosen, filtered and sorted, and who is told when it changes.

const panelOf = (name) => document.querySelector(`[data-panel="${name}"]`);
const filterField = document.querySelector("input[type=search]");

const rowsByNeed = orderByNeed(sampleRows);
let sortedRows = rowsByNeed;  // all of them, in the table's order
let rowsInSight = [];         // those of them that the filter leaves
let inSight = new Set();
let sorting = null;           // {column, isDescending}; null for the order by need
let chosen = null;
let map;

const traceView = createTraceView(panelOf("trace"), changeAddress);
const updateHead = createHead(panelOf("head"), (terms) => toggleFilter(terms, chipColumns));
const table = createTable(document.querySelector(".rows"), { onChoose: choose, onSort: sortBy });

/// Says something above the panels, until another row is chosen; nothing without a text.
function tell(text = "") {
  document.querySelector(".notice").textContent = text;
}

/// Chooses a row everywhere, at `base` or where the trace opens by itself. A filter that hides the
/// row goes. The promise holds when the trace is drawn.
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
  traceView.prefetch([rowsInSight[at + 1], rowsInSight[at - 1]].filter(Boolean));
  changeAddress();
  return drawn;
}

function filterRows() {
  rowsInSight = sortedRows.filter(parseFilter(filterField.value));
  inSight = new Set(rowsInSight);
  const some = inSight.size < sampleRows.length ? `${formatNumber(inSight.size)} of ` : "";
  document.getElementById("row-count").textContent = some + counted(sampleRows.length, "row");
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

/// Puts terms into the filter in the place of others on these columns, or takes them out.
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
  document.execCommand("copy");
  button.textContent = `Copied ${counted(rowsInSight.length, "row")}`;
  setTimeout(() => (button.textContent = "Copy as TSV"), 1500);
}

/// Opens what the address names, else the first row.
function openAddress() {
  if (sampleRows.length === 0) return;
  const { row, base, problem } = placeOfAddress(location);
  choose(row ?? rowsInSight[0] ?? rowsByNeed[0], base);
  tell(problem);
}

function openHelp() {
  document.querySelector(".help").showModal();
}

function switchPalette({ currentTarget: button }) {
  const isOther = button.ariaPressed === "false";
  button.ariaPressed = isOther;
  document.documentElement.dataset.palette = isOther ? "2" : "1";
  repaint();
}

/// Draws everything again, in other colours or other pixels.
function repaint() {
  colours.clear();
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
document.querySelector(".palette").addEventListener("click", switchPalette);
document.querySelector(".keys").addEventListener("click", openHelp);
document.addEventListener("keydown", onKey);
window.addEventListener("hashchange", openAddress);
window.matchMedia("(prefers-color-scheme: dark)").addEventListener("change", repaint);
window.addEventListener("resize", repaint);  // pixels of the screen can have changed
window.addEventListener("beforeprint", turnToPaper);
window.addEventListener("afterprint", turnToScreen);

window.quillet = Object.freeze({
  show: async (name, base = null) => choose(rowNamed(name), base),
  order: () => rowsInSight.map((row) => row.sample),
  pixelOf: traceView.pixelOf,
  wellOf: (name) => map?.placeOf(rowNamed(name)) ?? null,
});
