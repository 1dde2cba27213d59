// Paper: the rows that the filter leaves, and the chosen trace whole.

const mostPrintedRows = 1000;

function turnToPaper() {
  document.documentElement.dataset.paper = "";
  colours.clear();
  table.repaint(mostPrintedRows);
  const filter = filterField.value.trim();
  const note = document.querySelector(".print-note");
  note.textContent = counted(rowsInSight.length, "sample") + (filter && `, filtered by ${filter}`);
  const isMore = rowsInSight.length > mostPrintedRows;
  if (isMore) note.append(`; ${formatNumber(mostPrintedRows)} are printed`);
  traceView.print(chosen);
}

function turnToScreen() {
  delete document.documentElement.dataset.paper;
  repaint();
  if (chosen) table.choose(chosen);
}
