// The table. Only the rows in sight are in the document; spaces stand for those above and below.

const rowHeight = 24;
const headingHeight = 28;
const rowsAround = 6;  // in the document beyond those in sight, at either end

/// The cell of a row in a column.
function tableCell(row, { name, kind }, columnIndex) {
  const cell = element("td", { className: kind, "aria-colindex": columnIndex + 1 });
  if (kind === "state") cell.append(mark(row.severity));
  if (name === "contiguous" && row[name] !== null) cell.append(mark(gradeOf(row[name])));
  const isWhole = kind === "number" && Number.isInteger(row[name]) && name !== "mean_quality";
  if (kind === "strip") cell.append(stripCanvas(row));
  else cell.append(isWhole ? formatNumber(row[name]) : valueText(row, name));
  return cell;
}

/// Brings the table to life. `onChoose(row)` is called for a click, `onSort(column)` for one on a
/// heading. Returns show(rows): these rows from the first one on; choose(row): marks it and brings
/// it into sight; markSort(column, isDescending); repaint(paperLines): makes the lines anew, those
/// in sight or as many for paper.
function createTable(scroller, { onChoose, onSort }) {
  const grid = scroller.querySelector("table");
  const body = grid.querySelector("tbody");
  const empty = scroller.querySelector(".empty");
  let rows = [];
  let chosen = null;
  const positions = new Map();  // in `rows`
  const lines = new Map();      // those in the document, by position
  let paperLines = 0;           // put into the document for paper, from the first one on

  function tableLine(position) {
    const row = rows[position];
    return element("tr", {
      id: `row-${row.index}`,
      "aria-rowindex": position + 2,  // the heading is the first
      "aria-selected": row === chosen,
      "data-sample": row.sample,
      "data-state": row.state,
    }, ...tableColumns.map((column, i) => tableCell(row, column, i)));
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
      if (lines.has(position)) {
        next = lines.get(position).nextSibling;
      } else {
        lines.set(position, tableLine(position));
        body.insertBefore(lines.get(position), next);
      }
    }
    body.style.setProperty("--above", `${first * rowHeight}px`);
    body.style.setProperty("--below", `${(rows.length - end) * rowHeight}px`);
    const chosenLine = lines.get(positions.get(chosen));
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
    positions.clear();
    rows.forEach((row, position) => positions.set(row, position));
    grid.setAttribute("aria-rowcount", rows.length + 1);
    empty.hidden = rows.length > 0;
    scroller.scrollTop = 0;
    repaint();
  }

  function choose(row) {
    lines.get(positions.get(chosen))?.setAttribute("aria-selected", "false");
    chosen = row;
    const top = positions.get(row) * rowHeight;
    const highest = top - (scroller.clientHeight - headingHeight - rowHeight);
    scroller.scrollTop = Math.max(Math.min(scroller.scrollTop, top), highest);
    render();
    lines.get(positions.get(row)).setAttribute("aria-selected", "true");
  }

  function markSort(sorted, isDescending) {
    for (const { name, heading } of tableColumns) {
      const direction = isDescending ? "descending" : "ascending";
      if (name) heading.setAttribute("aria-sort", name === sorted?.name ? direction : "none");
    }
  }

  for (const column of tableColumns) {
    if (column.name) column.heading.firstChild.addEventListener("click", () => onSort(column));
    else column.heading.append(`, to ${formatNumber(longestRead)}`);
  }
  scroller.addEventListener("scroll", render);
  new ResizeObserver(render).observe(scroller);
  body.addEventListener("click", ({ target }) => {
    const line = target.closest("tr");
    if (line) onChoose(rows[line.getAttribute("aria-rowindex") - 2]);
  });
  // A text that does not fit is told whole.
  body.addEventListener("mouseover", ({ target }) => {
    const cell = target.closest("td");
    if (cell?.scrollWidth > cell?.clientWidth) cell.title = cell.textContent;
  });
  return { show, choose, markSort, repaint };
}
