// The map: wells of plates, and capillaries of runs. A cell is an element that names its rows by their
// indices; how it looks is the style sheet's: the fill is the good stretch, a ring or a cross the state.

/// The well of a row as [line, column] from 1: what the instrument notes, else the end of the sample's
/// name ("_B01"). Null when there is none.
function wellOfRow(row) {
  const [, letter, number] = /^\s*([A-P])0?(\d+)\s*$/i.exec(row.well ?? "")
    ?? /_([A-P])(\d\d)(?:\.\w+)*$/i.exec(row.sample) ?? [];
  return number >= 1 && number <= 24 ? [letter.toUpperCase().charCodeAt(0) - 64, Number(number)] : null;
}

/// Rows in lists by `keyOf(row)`, in natural order of the keys. Rows with the key null stay out.
function grouped(rows, keyOf) {
  const groups = new Map();
  for (const row of rows) {
    const key = keyOf(row);
    if (groups.has(key)) groups.get(key).push(row);
    else if (key !== null) groups.set(key, [row]);
  }
  return [...groups].sort(([a], [b]) => textOrder.compare(a, b)).map(([, group]) => group);
}

/// A grid of cells. `placeOf(row)` is [line, column]; samples in one cell show the worst and their number.
function cellGrid(label, rows, columnCount, lineCount, placeOf) {
  const grid = element("div", { className: "cells", role: "img", "aria-label": label });
  grid.style.setProperty("--columns", columnCount);
  grid.style.setProperty("--lines", lineCount);
  for (const group of grouped(rows, (row) => placeOf(row).join())) {
    const [worst] = orderByNeed(group);
    const cell = element("i", { className: `${gradeOf(worst.contiguous)} ${worst.severity}` });
    cell.dataset.rows = orderByNeed(group).map(({ index }) => index).join(" ");
    if (group.length > 1) cell.dataset.count = group.length;
    cell.style.gridArea = placeOf(worst).join(" / ");
    grid.append(cell);
  }
  return grid;
}

/// Numbers over the columns of a grid, each `step`.
function columnNumbers(columnCount, step) {
  const line = element("div", { className: "numbers", "aria-hidden": "true" });
  line.style.setProperty("--columns", columnCount);
  for (let n = 1; n <= columnCount; ++n) {
    if (n % step === 0 || n === 1) line.append(element("span", { text: n }));
    line.lastChild.style.gridColumn = line.lastChild.textContent;
  }
  return line;
}

/// Plates in natural order, wells whose plate is unknown at the end: {name, count, lineCount, grid}.
function platesOf(rows) {
  const plates = grouped(rows, (row) => wellOfRow(row) && (row.plate ?? "")).map((group) => {
    const isLarge = group.map(wellOfRow).some(([line, column]) => line > 8 || column > 12);
    const [lineCount, columnCount] = isLarge ? [16, 24] : [8, 12];
    const name = group[0].plate ?? "";
    const wells = new Set(group.map((row) => wellOfRow(row).join())).size;
    const count = `${counted(group.length, "sample")}, ${counted(wells, "well")}`;
    const grid = cellGrid(`Plate ${name}: ${count}`, group, columnCount, lineCount, wellOfRow);
    return { name, count, lineCount, columnCount, grid };
  });
  return plates.sort((a, b) => (a.name === "") - (b.name === ""));
}

/// A line for each run, under the numbers of the capillaries. Empty without capillaries.
function runLines(rows) {
  const held = rows.filter(({ capillary }) => capillary > 0 && capillary <= 384);
  const most = held.reduce((number, { capillary }) => Math.max(number, capillary), 1);
  const columnCount = [4, 8, 16, 24, 48, 96, 384].find((count) => count >= most);
  const runs = grouped(held, (row) => [row.run_date, row.instrument, row.plate].join("\n"));
  const lines = runs.map((group) => {
    const notes = [group[0].plate, group[0].run_date, group[0].instrument].filter((note) => note);
    const text = notes[0] ?? "unknown run";
    const name = element("span", { className: "run-name", text, title: notes.join(", ") });
    const label = `Run ${notes.join(", ")}: ${counted(group.length, "capillary sample")}`;
    return [name, cellGrid(label, group, columnCount, 1, ({ capillary }) => [1, capillary])];
  });
  if (lines.length > 0) lines.unshift([element("span", { className: "run-name", text: "capillary" }), columnNumbers(columnCount, columnCount > 24 ? 8 : 1)]);
  return lines.map((parts) => element("div", { className: "run" }, ...parts));
}

/// A cell's samples in words.
function cellText(rows) {
  const lines = rows.map(({ sample, state, detail, contiguous }) =>
    `${sample}: ${state}${detail && ` (${detail})`}, good stretch ${contiguous ?? "unknown"}`);
  return [...lines.slice(0, 8), ...(rows.length > 8 ? ["…"] : [])].join("\n");
}

/// Fills the map; null, and no map, when no row has a well or a capillary. `onChoose(row)` is called for a
/// cell, `onPlate(name)` for a plate's name. Returns choose(row); filter(isInSight), which dims cells; and
/// placeOf(row): {x, y} of its cell in CSS px of the window, brought into sight, or null.
function createMap(panel, { onChoose, onPlate }) {
  const plates = platesOf(sampleRows);
  const runs = runLines(sampleRows);
  if (plates.length + runs.length === 0) return null;
  panel.hidden = false;
  const scroller = panel.querySelector(".map-scroller");
  const large = scroller.querySelector(".large-plate");
  const rowsOf = (cell) => cell.dataset.rows.split(" ").map((index) => sampleRows[index]);
  const cellOf = (row) => `[data-rows~="${row.index}"]`;
  let chosen = null;
  let shown = null;  // the large plate

  const plateButton = ({ name }) => element("button", {
    type: "button",
    className: "plate-name",
    text: name || "no plate",
    title: `Filter by the plate ${name}`,
    onclick: () => onPlate(name),
  });

  function showLarge(plate) {
    const { count, lineCount, columnCount, grid } = plate;
    const letters = element("div", { className: "letters", "aria-hidden": "true" },
      ...[..."ABCDEFGHIJKLMNOP"].slice(0, lineCount).map((text) => element("span", { text })));
    const title = element("div", { className: "plate-title" }, plateButton(plate), count);
    large.replaceChildren(title, columnNumbers(columnCount, 1), letters, grid.cloneNode(true));
    shown?.grid.parentNode.classList.remove("current");
    grid.parentNode.classList.add("current");
    shown = plate;
  }

  const small = scroller.querySelector(".small-plates");
  small.append(...plates.map((plate) =>
    element("div", { className: "small-plate" }, plateButton(plate), plate.grid)));
  small.hidden = plates.length < 2;
  if (plates.length > 0) showLarge(plates[0]);
  scroller.lastElementChild.append(...runs);

  const tabs = [...panel.querySelectorAll(".tabs button")];
  const turnTo = (turned) => tabs.forEach((tab, i) => {
    tab.setAttribute("aria-pressed", i === turned);
    scroller.children[i].hidden = i !== turned;
  });
  tabs.forEach((tab, i) => {
    tab.hidden = [plates, runs][i].length === 0;
    tab.addEventListener("click", () => turnTo(i));
  });
  turnTo(plates.length > 0 ? 0 : 1);

  scroller.addEventListener("mouseover", ({ target }) => {
    if (target.dataset.rows) target.title = cellText(rowsOf(target));
  });
  scroller.addEventListener("click", ({ target }) => {
    if (!target.dataset.rows) return;
    const rows = rowsOf(target);
    // A further click on a cell with several samples goes on to the next of them.
    onChoose(rows[(rows.indexOf(chosen) + 1) % rows.length]);
  });

  function choose(row) {
    chosen = row;
    for (const cell of scroller.querySelectorAll(".chosen")) cell.classList.remove("chosen");
    const plate = plates.find(({ grid }) => grid.querySelector(cellOf(row)));
    if (plate && plate !== shown) showLarge(plate);
    for (const cell of scroller.querySelectorAll(cellOf(row))) cell.classList.add("chosen");
  }

  function filter(isInSight) {
    for (const cell of scroller.querySelectorAll("[data-rows]")) {
      cell.classList.toggle("dimmed", !rowsOf(cell).some(isInSight));
    }
  }

  function placeOf(row) {
    const half = [...scroller.children].find(({ hidden }) => !hidden);
    const cell = half.querySelector(cellOf(row));
    cell?.scrollIntoView({ block: "nearest" });
    const box = cell?.getBoundingClientRect();
    return cell && { x: box.left + box.width / 2, y: box.top + box.height / 2 };
  }
  return { choose, filter, placeOf };
}
