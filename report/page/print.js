// Paper: the rows that the filter leaves, and the chosen trace whole.

const mostPrintedRows = 1000;
const printedColumns = [
  "state", "sample", "detail", undefined, "contiguous", "q20", "mean_quality", "mixed", "plate", "well",
  "capillary", "bases",
];

/// A table of rows, with the columns that fit on paper.
function printedTable(rows) {
  const columns = tableColumns.filter(({ name }) => printedColumns.includes(name));
  const heading = element("tr", {}, ...columns.map((column) =>
    element("th", { scope: "col", className: column.kind, text: column.heading.textContent })));
  const lines = rows.map((row) =>
    element("tr", {}, ...columns.map((column, i) => tableCell(row, column, i))));
  return element("table", { className: "print-rows" },
    element("thead", {}, heading), element("tbody", {}, ...lines));
}

/// Makes the sheet before the browser prints, in the colours of paper, and removes it after it.
/// `current()` returns {rows, filter, row}.
function preparePrinting(traceView, current) {
  const sheet = document.querySelector(".print-sheet");

  window.addEventListener("beforeprint", () => {
    document.documentElement.dataset.paper = "";
    forgetColours();
    const { rows, filter, row } = current();
    const rest = rows.length > mostPrintedRows ? `; the first ${formatNumber(mostPrintedRows)} are printed` : "";
    const terms = filter.trim() === "" ? "" : `, filtered by ${filter}`;
    const text = `${counted(rows.length, "sample")}${terms}${rest}.`;
    sheet.replaceChildren(element("p", { text }), printedTable(rows.slice(0, mostPrintedRows)));
    if (row) traceView.print(row);
  });
  window.addEventListener("afterprint", () => {
    sheet.replaceChildren();
    delete document.documentElement.dataset.paper;
    forgetColours();
  });
}
