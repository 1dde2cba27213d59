// The table. Only the rows in sight are in the document; spaces stand for those above and below.

const rowHeight = 24;
const headingHeight = 28;
const rowsAround = 6;  // in the document beyond those in sight, at either end

/// The cell of a row in a column.
function tableCell(row, { name, kind }, columnIndex) {
  const cell = element("td", { className: kind, ariaColIndex: columnIndex + 1 });
  if (kind === "state") cell.append(mark(row.severity));
  if (name === "contiguous" && row[name] !== null) cell.append(mark(gradeOf(row[name])));
  const isWhole = Number.isInteger(row[name]) && name !== "mean_quality";
  if (kind === "strip") cell.append(stripCanvas(row));
  else cell.append(isWhole ? formatNumber(row[name]) : valueText(row, name));
  if (kind === "text") cell.title = cell.textContent;
  return cell;
}

/// Brings the table to life; clicks call onChoose(row) and onSort(column). Returns show(rows), from
/// the first one on; choose(row), which marks it and brings it into sight; markSort(column,
/// isDescending); repaint(paperLines), which makes the lines anew, or as many for paper.
function createTable(scroller, { onChoose, onSort }) {
  const grid = scroller.firstElementChild;
  const body = grid.tBodies[0];
  let rows = [];
  let chosen = null;
  let paperLines = 0;       // put into the document for paper, from the first one on
  const lines = new Map();  // those in the document, by position in `rows`

  function tableLine(position) {
    const row = rows[position];
    const line = element("tr", {
      id: `row-${row.index}`,
      ariaRowIndex: position + 2,  // the heading is the first
      ariaSelected: row === chosen,
      dataset: { sample: row.sample, state: row.state },
    }, ...tableColumns.map((column, i) => tableCell(row, column, i)));
    line.addEventListener("click", () => onChoose(row));
    return line;
  }

  /// Takes out the lines that have left and puts in those that have entered.
  function render() {
    const top = Math.min(Math.floor(scroller.scrollTop / rowHeight), rows.length);
    const first = paperLines > 0 ? 0 : Math.max(0, top - rowsAround);
    const last = top + Math.ceil(scroller.clientHeight / rowHeight) + rowsAround;
    const end = Math.min(rows.length, paperLines || last);
    for (const [position, line] of lines) {
      if (position >= first && position < end) continue;
      line.remove();
      lines.delete(position);
    }
    let next = body.firstChild;
    for (let position = first; position < end; ++position) {
      if (!lines.has(position)) {
        lines.set(position, tableLine(position));
        body.insertBefore(lines.get(position), next);
      }
      next = lines.get(position).nextSibling;
    }
    body.style.setProperty("--above", `${first * rowHeight}px`);
    body.style.setProperty("--below", `${(rows.length - end) * rowHeight}px`);
    const chosenLine = lines.get(rows.indexOf(chosen));
    grid.setAttribute("aria-activedescendant", chosenLine?.id ?? "");
  }

  function repaint(newPaperLines = 0) {
    paperLines = newPaperLines;
    lines.clear();
    body.replaceChildren();
    render();
  }

  function show(newRows) {
    rows = newRows;
    grid.ariaRowCount = rows.length + 1;
    scroller.scrollTop = 0;
    repaint();
  }

  function choose(row) {
    lines.get(rows.indexOf(chosen))?.setAttribute("aria-selected", "false");
    chosen = row;
    const top = rows.indexOf(row) * rowHeight;
    const highest = top - (scroller.clientHeight - headingHeight - rowHeight);
    scroller.scrollTop = Math.max(Math.min(scroller.scrollTop, top), highest);
    render();
    lines.get(rows.indexOf(row)).ariaSelected = "true";
  }

  function markSort(sorted, isDescending) {
    for (const { name, heading } of tableColumns) {
      const direction = isDescending ? "descending" : "ascending";
      if (name) heading.ariaSort = name === sorted?.name ? direction : "none";
    }
  }

  for (const column of tableColumns) {
    if (column.name) column.heading.firstChild.addEventListener("click", () => onSort(column));
    else column.heading.append(`, to ${formatNumber(longestRead)}`);
  }
  scroller.addEventListener("scroll", render);
  new ResizeObserver(render).observe(scroller);
  return { show, choose, markSort, repaint };
}
