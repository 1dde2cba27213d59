// The page: what is chosen, filtered and sorted, and who is told when it changes.

const app = document.getElementById("app");
const panelOf = (name) => document.querySelector(`[data-panel="${name}"]`);
const filterField = app.querySelector("input[type=search]");
const rowCount = app.querySelector("#row-count");
const notice = document.querySelector(".notice");

const orderByNeedOfAll = orderByNeed(sampleRows);
let sortedRows = orderByNeedOfAll;  // all rows, in the table's order
let rowsInSight = sortedRows;       // those that the filter leaves
let sorting = null;                 // {column, descending}, or null for the order by need
const isInSight = new Uint8Array(sampleRows.length).fill(1);  // by index
const view = { chosen: null, isInSight: (row) => isInSight[row.index] === 1 };
let map = null;

const changeAddress = createAddress(() => ({ row: view.chosen, base: traceView.base() }));
const openHelp = createHelp();
const traceView = createTraceView(panelOf("trace"), { onBase: changeAddress, onHelp: openHelp });
const head = createHead(panelOf("head"), (terms) => {
  setFilter(toggledFilter(filterField.value, terms, chipColumns));
});
const table = createTable(app.querySelector(".rows"), { onChoose: choose, onSort: sortBy });

/// Says something above the parts of the page, until the next choice; nothing for null.
function tell(text) {
  notice.textContent = text ?? "";
  notice.hidden = !text;
}

/// Draws a row's trace, at `base` or where the view opens it, and the neighbours' ahead.
function showTrace(row, base) {
  const drawn = traceView.show(row, base);
  const at = rowsInSight.indexOf(row);
  traceView.prefetch([rowsInSight[at + 1], rowsInSight[at - 1]].filter((near) => near));
  return drawn;
}

/// Chooses a row in the table, on the map and for the trace. The promise holds when it is drawn.
function choose(row, base = null) {
  const before = view.chosen;
  view.chosen = row;
  table.choose(row);
  if (map && before !== row) map.choose(before, row);
  const drawn = showTrace(row, base);
  if (before !== null) tell(null);
  changeAddress();
  return drawn;
}

/// Chooses a row that the filter may hide: then the filter goes.
function reveal(row, base = null) {
  if (!view.isInSight(row)) {
    filterField.value = "";
    applyFilter(row);
  }
  return choose(row, base);
}

/// Shows the rows that the filter leaves. When the chosen one is not among them, the first one is
/// chosen, unless `next` will be.
function applyFilter(next = null) {
  const text = filterField.value;
  const { matches, hint } = parseFilter(text);
  rowsInSight = sortedRows.filter(matches);
  isInSight.fill(0);
  for (const row of rowsInSight) isInSight[row.index] = 1;
  const total = counted(sampleRows.length, "row");
  rowCount.textContent = hint || (rowsInSight.length === sampleRows.length ? total
    : `${formatNumber(rowsInSight.length)} of ${total}`);
  rowCount.classList.toggle("hint", hint !== "");
  head.update(text);
  table.show(rowsInSight);
  map?.redraw();
  if (next || rowsInSight.length === 0) return;
  if (view.chosen === null || !view.isInSight(view.chosen)) choose(rowsInSight[0]);
  else table.choose(view.chosen);
}

/// Puts a text into the filter, as if it were typed.
function setFilter(text) {
  filterField.value = text;
  applyFilter();
}

/// Sorts by a column: ascending, then descending, then by need again.
function sortBy(column) {
  if (sorting?.column !== column) sorting = { column, descending: false };
  else if (!sorting.descending) sorting = { column, descending: true };
  else sorting = null;
  sortedRows = sorting ? orderByColumn(orderByNeedOfAll, column, sorting.descending) : orderByNeedOfAll;
  rowsInSight = sortedRows.filter(view.isInSight);
  table.markSort(sorting?.column ?? null, sorting?.descending);
  table.show(rowsInSight);
}

/// Goes to another row of the table.
function step(by) {
  const at = rowsInSight.indexOf(view.chosen) + by;
  const row = rowsInSight[Math.max(0, Math.min(at, rowsInSight.length - 1))];
  if (row && row !== view.chosen) choose(row);
}

/// Puts the rows in sight on the clipboard as TSV and says so on the button.
async function copyRows(button) {
  const text = `${[pageData.columns.join("\t"), ...rowsInSight.map(tsvLine)].join("\n")}\n`;
  const isCopied = await navigator.clipboard?.writeText(text).then(() => true, () => false)
    || copyBySelection(text);
  const label = button.textContent;
  button.textContent = isCopied ? `Copied ${counted(rowsInSight.length, "row")}` : "Not copied";
  button.disabled = true;
  setTimeout(() => {
    button.textContent = label;
    button.disabled = false;
  }, 1500);
}

/// Copies a text where the clipboard itself is refused. False when this is refused too.
function copyBySelection(text) {
  const area = element("textarea", { className: "off-screen", "aria-hidden": "true" });
  area.value = text;
  document.body.append(area);
  area.select();
  const isCopied = document.execCommand("copy");
  area.remove();
  return isCopied;
}

/// Opens what the address names.
function openAddress() {
  if (sampleRows.length === 0) return;
  const { row, base, problem } = rowOfHash(location.hash, location.href.endsWith("#"));
  reveal(row ?? rowsInSight[0] ?? orderByNeedOfAll[0], base);
  tell(problem);
}

/// Draws everything again, after a change of colours.
function repaint() {
  forgetColours();
  table.repaint();
  map?.redraw();
  traceView.repaint();
}

/// The place of a sample's row by its name in links. Throws when there is none.
function rowNamed(name) {
  const row = rowByLinkName.get(String(name));
  if (!row) throw new RangeError(`no sample ${name}`);
  return row;
}

document.getElementById("static")?.remove();
app.hidden = false;
applyFilterToAll();
performance.mark("table");

/// Shows all rows for the first time; none is chosen yet.
function applyFilterToAll() {
  rowCount.textContent = counted(sampleRows.length, "row");
  head.update("");
  table.show(rowsInSight);
  if (sampleRows.length === 0) panelOf("trace").hidden = true;
}

map = createMap(panelOf("map"), {
  view,
  onChoose: (row) => reveal(row),
  onPlate: (plate) => setFilter(toggledFilter(filterField.value, filterToken("plate", plate ?? ""), ["plate"])),
});
app.classList.toggle("without-map", map === null);
openAddress();

filterField.placeholder = "filter: words, contiguous<300, state:cut, plate:\"Run 7\"   ( / )";
filterField.addEventListener("input", () => applyFilter());
filterField.addEventListener("keydown", (event) => {
  if (event.key === "Enter") filterField.blur();
});
app.querySelector(".copy").addEventListener("click", (event) => copyRows(event.currentTarget));
listenForKeys({
  step,
  filter: () => filterField.select(),
  help: openHelp,
  other: (event) => traceView.key(event),
});
window.addEventListener("hashchange", openAddress);
window.matchMedia("(prefers-color-scheme: dark)").addEventListener("change", repaint);
document.addEventListener("colours", repaint);
preparePrinting(traceView, () => ({
  rows: rowsInSight,
  filter: filterField.value,
  row: view.chosen,
}));

window.quillet = Object.freeze({
  /// Chooses a sample, at a 1-based base or where the view opens it. The promise holds when it is drawn.
  show: async (name, base = null) => {
    await reveal(rowNamed(name), base);
  },
  /// The samples in the table's order.
  order: () => rowsInSight.map((row) => row.sample),
  /// Where a channel's curve passes the called position of a 1-based base, in CSS px of the window.
  pixelOf: (base, channel) => traceView.pixelOf(base, channel),
  /// {x, y} of the sample's cell on the map, or null.
  wellOf: (sample) => map?.placeOf(rowNamed(sample)) ?? null,
});
