// The map: wells of plates, and capillaries of runs. The style sheet says how cells look.

/// The well of a row as [line, column] from 1: what the instrument notes, else the end of the
/// sample's name ("_B01"). Null when there is none.
function wellOfRow(row) {
  const [, letter, number] = /^\s*([A-P])0?(\d+)\s*$/i.exec(row.well ?? "")
    ?? /_([A-P])(\d\d)(?:\.\w+)*$/i.exec(row.sample) ?? [];
  return number >= 1 && number <= 24 ? [parseInt(letter, 36) - 9, Number(number)] : null;
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

/// A grid of cells by `placeOf(row)`, [line, column]. A cell shows its worst sample, and how many.
function cellGrid(ariaLabel, rows, [lineCount, columnCount], placeOf) {
  const grid = element("div", { className: "cells", role: "img", ariaLabel });
  grid.style.setProperty("--lines", lineCount);
  grid.style.setProperty("--columns", columnCount);
  const textOf = ({ sample, state, detail, contiguous }) =>
    `${sample}: ${state} ${detail && `(${detail}) `}· good stretch ${contiguous ?? "unknown"}`;
  for (const group of grouped(rows, (row) => placeOf(row).join())) {
    const held = orderByNeed(group);
    const [worst] = held;
    const cell = element("i", {
      className: `${gradeOf(worst.contiguous)} ${worst.severity}`,
      title: held.slice(0, 9).map(textOf).join("\n"),
      dataset: { rows: held.map(({ index }) => index).join(" ") },
    });
    if (held.length > 1) cell.dataset.count = held.length;
    cell.style.gridArea = placeOf(worst).join(" / ");
    grid.append(cell);
  }
  return grid;
}

/// Numbers or letters beside a grid, which the style sheet counts.
function gridLabels(className, count) {
  const spans = Array.from({ length: count }, () => element("span"));
  const labels = element("div", { className, ariaHidden: "true" }, ...spans);
  labels.style.setProperty("--columns", count);
  return labels;
}

/// Plates in natural order, wells whose plate is unknown at the end: {name, count, size, grid}.
function platesOf(rows) {
  const lastName = "\uffff";
  return grouped(rows, (row) => wellOfRow(row) && (row.plate ?? lastName)).map((group) => {
    const isLarge = group.map(wellOfRow).some(([line, column]) => line > 8 || column > 12);
    const size = isLarge ? [16, 24] : [8, 12];
    const name = group[0].plate ?? "";
    const grid = cellGrid(`Plate ${name}`, group, size, wellOfRow);
    const count = `${counted(group.length, "sample")}, ${counted(grid.children.length, "well")}`;
    return { name, count, size, grid };
  });
}

/// A line for each run, under the numbers of the capillaries; none without capillaries. A run goes
/// by its plate, or by its day where the plate has several.
function runLines(rows) {
  const held = rows.filter(({ capillary }) => capillary > 0 && capillary <= 384);
  if (held.length === 0) return [];
  const most = Math.max(...new Set(held.map(({ capillary }) => capillary)));
  const columnCount = [4, 8, 16, 24, 48, 96, 384].find((count) => count >= most);
  const runs = grouped(held, (row) => [row.run_date, row.instrument, row.plate].join("\n"));
  const line = (textContent, title, grid) => element("div", { className: "run" },
    element("span", { className: "run-name", textContent, title }), grid);
  const lines = runs.map((group) => {
    const { plate, run_date: day, instrument } = group[0];
    const isOnlyRun = runs.filter(([row]) => row.plate === plate).length === 1;
    const name = (isOnlyRun && plate) || day || plate || instrument || "unknown";
    const label = `Run ${[plate, day, instrument].filter(Boolean).join(", ")}`;
    const grid = cellGrid(label, group, [1, columnCount], ({ capillary }) => [1, capillary]);
    return line(name, label, grid);
  });
  return [line("capillary", "", gridLabels(`numbers of-${columnCount}`, columnCount)), ...lines];
}

/// Fills the map; clicks call onChoose(row) and onPlate(name). Returns choose(row);
/// filter(isInSight), which dims cells; placeOf(row): {x, y} of its cell, brought into sight, in
/// CSS px of the window, or null. Undefined, and no map, without wells and capillaries.
function createMap(panel, { onChoose, onPlate }) {
  const plates = platesOf(sampleRows);
  const runs = runLines(sampleRows);
  if (plates.length + runs.length === 0) return undefined;
  panel.hidden = false;
  const scroller = panel.querySelector(".map-scroller");
  const [plateHalf, runHalf] = scroller.children;
  const [large, small] = plateHalf.children;
  const rowsOf = (cell) => cell.dataset.rows.split(" ").map((index) => sampleRows[index]);
  const cellsOf = (row, part) => [...part.querySelectorAll(`[data-rows~="${row.index}"]`)];

  const plateButton = ({ name }) => element("button", {
    type: "button",
    className: "plate-name",
    textContent: name || "no plate",
    title: `Filter by the plate ${name}`,
    onclick: () => onPlate(name),
  });

  function showLarge(plate) {
    small.querySelector(".current")?.classList.remove("current");
    plate.grid.parentNode.classList.add("current");
    const [lineCount, columnCount] = plate.size;
    large.replaceChildren(
      element("div", { className: "plate-title" }, plateButton(plate), plate.count),
      gridLabels("numbers", columnCount),
      gridLabels("letters", lineCount),
      plate.grid.cloneNode(true),
    );
  }

  function choose(row) {
    for (const cell of scroller.querySelectorAll(".chosen")) cell.classList.remove("chosen");
    const grid = cellsOf(row, small)[0]?.parentNode;
    if (grid && !grid.closest(".current")) showLarge(plates.find((plate) => plate.grid === grid));
    for (const cell of cellsOf(row, scroller)) cell.classList.add("chosen");
  }

  function filter(isInSight) {
    for (const cell of scroller.querySelectorAll("i")) {
      cell.classList.toggle("dimmed", !rowsOf(cell).some(isInSight));
    }
  }

  function placeOf(row) {
    const [cell] = cellsOf(row, plateHalf.hidden ? runHalf : plateHalf);
    if (!cell) return null;
    cell.scrollIntoView({ block: "nearest" });
    const { x, y, width, height } = cell.getBoundingClientRect();
    return { x: x + width / 2, y: y + height / 2 };
  }

  small.append(...plates.map((plate) =>
    element("div", { className: "small-plate" }, plateButton(plate), plate.grid)));
  small.hidden = plates.length < 2;
  if (plates.length > 0) showLarge(plates[0]);
  runHalf.append(...runs);
  const tabs = [...panel.querySelectorAll(".tabs button")];
  const turnTo = (turned) => tabs.forEach((tab, i) => {
    tab.ariaPressed = i === turned;
    scroller.children[i].hidden = i !== turned;
  });
  tabs.forEach((tab, i) => {
    tab.hidden = [plates, runs][i].length === 0;
    tab.onclick = () => turnTo(i);
  });
  turnTo(plates.length > 0 ? 0 : 1);
  scroller.addEventListener("click", ({ target }) => {
    if (target.dataset.rows) onChoose(rowsOf(target)[0]);
  });
  return { choose, filter, placeOf };
}
