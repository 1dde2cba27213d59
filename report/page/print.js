// Paper: the rows that the filter leaves, and the chosen trace whole.

const mostPrintedRows = 1000;

/// A table of rows, with the columns that fit on paper.
function printedTable(rows) {
  const columns = tableColumns.slice(0, 12);
  const headings = columns.map(({ kind, heading }) =>
    element("th", { scope: "col", className: kind, text: heading.textContent }));
  const lines = rows.map((row) =>
    element("tr", {}, ...columns.map((column, i) => tableCell(row, column, i))));
  return element("table", { className: "print-rows" },
    element("thead", {}, element("tr", {}, ...headings)), element("tbody", {}, ...lines));
}

/// Makes the sheet before the browser prints, in the colours of paper, and removes it after it.
/// `current()` returns {rows, filter, row}.
function preparePrinting(traceView, current) {
  const root = document.documentElement;
  const sheet = document.querySelector(".print-sheet");
  window.addEventListener("beforeprint", () => {
    root.dataset.paper = "";
    forgetColours();
    const { rows, filter, row } = current();
    const printed = rows.slice(0, mostPrintedRows);
    let text = counted(rows.length, "sample");
    if (filter.trim() !== "") text += `, filtered by ${filter.trim()}`;
    if (printed.length < rows.length) text += `; the first ${formatNumber(printed.length)} follow`;
    sheet.replaceChildren(element("p", { text: `${text}.` }), printedTable(printed));
    if (row) traceView.print(row);
  });
  window.addEventListener("afterprint", () => {
    sheet.replaceChildren();
    delete root.dataset.paper;
    forgetColours();
  });
}
