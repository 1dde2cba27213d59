// Paper: the rows that the filter leaves, and the chosen trace whole.

const mostPrintedRows = 1000;
const printedColumns = [
  "state", "sample", "detail", "read", "contiguous", "q20", "mean_quality", "mixed", "plate", "well",
  "capillary", "bases",
];

/// The table of the printed rows.
function printedTable(rows) {
  const columns = tableColumns.filter(({ name }) => printedColumns.includes(name));
  const headings = columns.map((column) => element("th", {
    scope: "col",
    className: column.kind,
    text: column.kind === "strip" ? `read, to ${formatNumber(longestRead)}` : column.label,
  }));
  const lines = rows.slice(0, mostPrintedRows).map((row) =>
    element("tr", {}, ...columns.map((column, i) => tableCell(row, column, i))));
  return element("table", { className: "print-rows" },
    element("thead", {}, element("tr", {}, ...headings)), element("tbody", {}, ...lines));
}

/// Makes the pages for paper before the browser prints, and removes them after it. `current()` returns
/// {rows, filter, row}; `traceView` draws the trace.
function preparePrinting(traceView, current) {
  let sheet = null;

  function begin() {
    if (sheet) return;
    document.documentElement.dataset.paper = "";
    forgetColours();
    const { rows, filter, row } = current();
    let counts = filter.trim() === "" ? counted(rows.length, "sample")
      : `${counted(rows.length, "sample")} by the filter ${filter}`;
    if (rows.length > mostPrintedRows) {
      counts += `; the first ${formatNumber(mostPrintedRows)} are printed`;
    }
    sheet = element("div", { className: "print-sheet" }, element("p", { text: `${counts}.` }));
    sheet.append(printedTable(rows));
    document.getElementById("app").before(sheet);
    if (row) traceView.print(row);
  }

  function end() {
    if (!sheet) return;
    sheet.remove();
    sheet = null;
    delete document.documentElement.dataset.paper;
    forgetColours();
  }

  window.addEventListener("beforeprint", begin);
  window.addEventListener("afterprint", end);
}
