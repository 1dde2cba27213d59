// The table. Only the rows in sight are in the document: the space above and below them is that of the
// rows that are not.

const rowHeight = 26;
const headingHeight = 32;
const rowsAround = 6;  // in the document above and below those in sight

/// The cell of a column.
function tableCell(row, column, columnIndex) {
  const cell = element("td", { className: column.kind, "aria-colindex": columnIndex + 1 });
  if (column.kind === "strip") {
    const canvas = element("canvas", { role: "img", "aria-label": stripLabel(row) });
    drawStrip(canvas, row);
    cell.append(canvas);
    return cell;
  }
  const value = shownValue(row, column);
  if (column.kind === "state") cell.append(mark(row.severity));
  if (column.name === "contiguous" && value !== "") cell.append(mark(gradeOf(row.contiguous)));
  cell.append(value);
  return cell;
}

/// What the strip shows, in words.
function stripLabel(row) {
  if (!row.bases) return "no calls";
  return `${counted(row.bases, "base")}, trimmed to ${row.trim_start + 1} to ${row.trim_end}`;
}

/// A row of the table.
function tableRow(row, position, isChosen) {
  const line = element("tr", {
    id: `row-${row.index}`,
    "aria-rowindex": position + 2,  // the heading is the first
    "aria-selected": String(isChosen),
    "data-sample": row.sample,
    "data-state": row.state,
  });
  line.append(...tableColumns.map((column, i) => tableCell(row, column, i)));
  return line;
}

/// The heading of a column; a button where the column can sort.
function tableHeading(column, columnIndex, onSort) {
  const heading = element("th", {
    scope: "col",
    className: column.kind,
    "aria-colindex": columnIndex + 1,
  });
  heading.style.width = `${column.width}px`;
  if (column.kind === "strip") {
    heading.textContent = `read, to ${formatNumber(longestRead)}`;
    heading.title = "Mean quality of each ten bases; pale where trimmed; ticks are mixed bases";
    return heading;
  }
  heading.dataset.column = column.name;
  heading.setAttribute("aria-sort", "none");
  heading.append(element("button", {
    type: "button",
    text: column.label,
    title: `Sort by ${column.name}`,
    onclick: () => onSort(column),
  }));
  return heading;
}

/// Makes the table in `scroller`. `onChoose(row)` is called for a click, `onSort(column)` for one on a
/// heading. Returns
/// show(rows): these rows, in this order, from the first one on;
/// choose(row): marks a row and brings it into sight; nothing when it is not among the rows;
/// markSort(column, descending): what the headings say; null for the order by need;
/// repaint(): draws the strips again.
function createTable(scroller, { onChoose, onSort }) {
  const headings = tableColumns.map((column, i) => tableHeading(column, i, onSort));
  const body = element("tbody");
  const grid = element("table", { role: "grid", tabindex: "0", "aria-label": "Samples" });
  grid.setAttribute("aria-colcount", String(tableColumns.length));
  grid.append(element("thead", {}, element("tr", { "aria-rowindex": 1 }, ...headings)), body);
  grid.style.width = `${tableColumns.reduce((sum, { width }) => sum + width, 0)}px`;
  const empty = element("p", { className: "empty", text: "No sample matches the filter." });
  if (sampleRows.length === 0) empty.textContent = "The project has no samples.";
  scroller.append(grid, empty);

  let rows = [];
  let chosen = null;
  const positions = new Int32Array(sampleRows.length);  // in `rows`, by index of the row; -1: not there
  const lines = new Map();  // those in the document, by position

  /// Brings the lines of the document in line with what is in sight.
  function render() {
    const top = scroller.scrollTop;
    const inSight = Math.ceil(scroller.clientHeight / rowHeight);
    const first = Math.max(0, Math.min(Math.floor(top / rowHeight), rows.length) - rowsAround);
    const end = Math.min(rows.length, Math.floor(top / rowHeight) + inSight + rowsAround);
    for (const [position, line] of lines) {
      if (position >= first && position < end) continue;
      line.remove();
      lines.delete(position);
    }
    let next = body.firstChild;
    for (let position = first; position < end; ++position) {
      let line = lines.get(position);
      if (line === undefined) {
        line = tableRow(rows[position], position, rows[position] === chosen);
        lines.set(position, line);
        body.insertBefore(line, next);
      } else {
        next = line.nextSibling;
      }
    }
    body.style.setProperty("--above", `${first * rowHeight}px`);
    body.style.setProperty("--below", `${Math.max(0, rows.length - end) * rowHeight}px`);
  }

  /// Draws everything anew.
  function redraw() {
    lines.clear();
    body.replaceChildren();
    render();
  }

  function show(newRows) {
    rows = newRows;
    positions.fill(-1);
    rows.forEach((row, position) => {
      positions[row.index] = position;
    });
    grid.setAttribute("aria-rowcount", String(rows.length + 1));
    empty.hidden = rows.length > 0;
    scroller.scrollTop = 0;
    redraw();
    markChosen();
  }

  /// Says in the document which row is chosen.
  function markChosen() {
    for (const [position, line] of lines) {
      line.setAttribute("aria-selected", String(rows[position] === chosen));
    }
    const line = chosen && lines.get(positions[chosen.index]);
    if (line) grid.setAttribute("aria-activedescendant", line.id);
    else grid.removeAttribute("aria-activedescendant");
  }

  function choose(row) {
    chosen = row;
    const position = positions[row.index];
    if (position >= 0) {
      const top = position * rowHeight;
      const space = scroller.clientHeight - headingHeight - rowHeight;
      if (top < scroller.scrollTop) scroller.scrollTop = top;
      else if (top > scroller.scrollTop + space) scroller.scrollTop = top - space;
      render();
    }
    markChosen();
  }

  function markSort(column, descending) {
    for (const heading of headings) {
      if (!heading.dataset.column) continue;
      const isSorted = column !== null && heading.dataset.column === column.name;
      const direction = descending ? "descending" : "ascending";
      heading.setAttribute("aria-sort", isSorted ? direction : "none");
    }
  }

  scroller.addEventListener("scroll", render);
  new ResizeObserver(render).observe(scroller);
  body.addEventListener("click", (event) => {
    const line = event.target.closest("tr");
    if (line) onChoose(rows[Number(line.getAttribute("aria-rowindex")) - 2]);
  });
  // A text that does not fit is told whole.
  body.addEventListener("mouseover", (event) => {
    const cell = event.target.closest("td");
    if (cell && cell.scrollWidth > cell.clientWidth) cell.title = cell.textContent;
  });
  return { show, choose, markSort, repaint: redraw };
}
