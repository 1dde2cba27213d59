// Paper: the rows that the filter leaves, and the chosen trace whole.

const mostPrintedRows = 1000;

/// Makes the page ready for paper before the browser prints, and for the screen after it.
/// `current()` returns {rows, filter, row}.
function preparePrinting(table, traceView, current) {
  const root = document.documentElement;
  window.addEventListener("beforeprint", () => {
    root.dataset.paper = "";
    forgetColours();
    table.repaint(mostPrintedRows);
    const { rows, filter, row } = current();
    let text = counted(rows.length, "sample");
    if (filter.trim() !== "") text += `, filtered by ${filter.trim()}`;
    if (rows.length > mostPrintedRows) text += `; ${formatNumber(mostPrintedRows)} are printed`;
    document.querySelector(".print-note").textContent = `${text}.`;
    if (row) traceView.print(row);
  });
  window.addEventListener("afterprint", () => {
    delete root.dataset.paper;
    forgetColours();
    table.repaint();
  });
}
