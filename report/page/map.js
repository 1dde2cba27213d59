// The map: wells of plates, or capillaries of runs. Both are grids of cells that hold samples.

const mostCapillaries = 384;
const linesPerCanvas = 50;  // of runs; a canvas can not be of any height

/// The worst of the samples in a cell: by state, then by good stretch.
function worstOf(rows) {
  return rows.length === 1 ? rows[0] : orderByNeed(rows)[0];
}

/// Draws one cell: its fill is the good stretch, a ring or a cross the state, an outline no sample.
/// `isDimmed` says that the filter leaves none of its samples; `count` is written when above 1.
function drawCell(context, { x, y, width, height }, { severity, contiguous, isDimmed, count }) {
  const gap = Math.min(width, height) >= 12 ? 1 : 0.5;
  const [left, top, wide, high] = [x + gap, y + gap, width - 2 * gap, height - 2 * gap];
  if (severity === null) {
    context.strokeStyle = colourOf("--line");
    context.lineWidth = 1;
    context.strokeRect(left + 0.5, top + 0.5, wide - 1, high - 1);
    return;
  }
  const line = Math.max(1.25, Math.min(3, Math.min(wide, high) / 6));
  context.globalAlpha = isDimmed ? 0.2 : 1;
  context.fillStyle = colourOf(`--${gradeOf(contiguous) ?? "none"}`);
  context.fillRect(left, top, wide, high);
  if (severity === "untrusted" || severity === "waiting") {
    // A ring at the edge, parted from the fill.
    const isThin = severity === "waiting";
    const ring = isThin ? Math.max(1, line / 2) : line;
    context.lineWidth = ring * 2 + Math.max(1, line * 0.7);
    context.strokeStyle = colourOf("--panel");
    context.strokeRect(left, top, wide, high);
    context.clearRect(left - gap, top - gap, wide + 2 * gap, gap);
    context.lineWidth = ring;
    context.strokeStyle = colourOf(`--${severity}`);
    context.strokeRect(left + ring / 2, top + ring / 2, wide - ring, high - ring);
  } else if (severity === "missing") {
    const inset = Math.max(line / 2, Math.min(wide, high) / 5);
    for (const [style, thickness] of [["--panel", line * 2.2], ["--missing", line]]) {
      context.strokeStyle = colourOf(style);
      context.lineWidth = thickness;
      context.beginPath();
      context.moveTo(left + inset, top + inset);
      context.lineTo(left + wide - inset, top + high - inset);
      context.moveTo(left + wide - inset, top + inset);
      context.lineTo(left + inset, top + high - inset);
      context.stroke();
    }
  }
  if (count > 1 && width >= 14 && height >= 12) {
    const size = Math.min(11, height - 4);
    context.font = `600 ${size}px system-ui, sans-serif`;
    context.textAlign = "right";
    context.textBaseline = "bottom";
    const textWidth = context.measureText(count).width + 4;
    context.fillStyle = colourOf("--panel");
    context.fillRect(left + wide - textWidth, top + high - size - 1, textWidth, size + 1);
    context.fillStyle = colourOf("--ink");
    context.fillText(count, left + wide - 2, top + high + 1);
  }
  context.globalAlpha = 1;
}

/// A cell's samples in words.
function cellText(rows) {
  const lines = rows.slice(0, 8).map((row) => {
    const state = row.detail ? `${row.state} (${row.detail})` : row.state;
    const stretch = row.contiguous === null ? "" : `, good stretch ${formatNumber(row.contiguous)}`;
    return `${row.sample}: ${state}${stretch}`;
  });
  if (rows.length > lines.length) lines.push(`and ${counted(rows.length - lines.length, "sample")} more`);
  return lines.join("\n");
}

/// A canvas with a grid of cells. `cells` maps line * columnCount + column to rows; `layout()` gives
/// {left, top, pitchX, pitchY}; `drawLabels(context, layout)` writes what stands around the cells;
/// `view` holds {chosen, isInSight(row)}. Returns {canvas, draw(), centreOf(key)}.
function createCellGrid({ label, lineCount, columnCount, cells, layout, drawLabels, view, onChoose }) {
  const canvas = element("canvas", { role: "img", "aria-label": label });
  let place = layout();

  function boxOf(key) {
    const { left, top, pitchX, pitchY } = place;
    const x = left + (key % columnCount) * pitchX;
    const y = top + Math.floor(key / columnCount) * pitchY;
    return { x, y, width: pitchX, height: pitchY };
  }

  function draw() {
    place = layout();
    const width = Math.ceil(place.left + columnCount * place.pitchX + 2);
    const context = sizedContext(canvas, width, Math.ceil(place.top + lineCount * place.pitchY + 2));
    drawLabels(context, place);
    let chosenBox = null;
    for (let key = 0; key < lineCount * columnCount; ++key) {
      const rows = cells.get(key);
      if (!rows) {
        drawCell(context, boxOf(key), { severity: null });
        continue;
      }
      const { severity, contiguous } = worstOf(rows);
      const isDimmed = !rows.some(view.isInSight);
      drawCell(context, boxOf(key), { severity, contiguous, isDimmed, count: rows.length });
      if (rows.includes(view.chosen)) chosenBox = boxOf(key);
    }
    if (!chosenBox) return;
    context.strokeStyle = colourOf("--ink");
    context.lineWidth = 2;
    context.strokeRect(chosenBox.x - 0.5, chosenBox.y - 0.5, chosenBox.width + 1, chosenBox.height + 1);
  }

  /// The rows under a pointer.
  function rowsAt(event) {
    const line = Math.floor((event.offsetY - place.top) / place.pitchY);
    const column = Math.floor((event.offsetX - place.left) / place.pitchX);
    if (line < 0 || line >= lineCount || column < 0 || column >= columnCount) return null;
    return cells.get(line * columnCount + column) ?? null;
  }

  canvas.addEventListener("mousemove", (event) => {
    const rows = rowsAt(event);
    canvas.title = rows ? cellText(rows) : "";
    canvas.classList.toggle("over-cell", rows !== null);
  });
  canvas.addEventListener("click", (event) => {
    const rows = rowsAt(event);
    if (!rows) return;
    // A further click on a well with several samples goes on to the next of them.
    const at = rows.indexOf(view.chosen);
    onChoose(at < 0 ? worstOf(rows) : rows[(at + 1) % rows.length]);
  });

  function centreOf(key) {
    const { x, y, width, height } = boxOf(key);
    return { x: x + width / 2, y: y + height / 2 };
  }
  return { canvas, draw, centreOf };
}

/// Adds a row to the list under `key`.
function addToCell(cells, key, row) {
  const rows = cells.get(key);
  if (rows) rows.push(row);
  else cells.set(key, [row]);
}

/// All plates in natural order: {name, lineCount, columnCount, cells, samples}. `name` is null for
/// wells whose plate is unknown, which stand last.
function platesOf(rows) {
  const byName = new Map();
  for (const row of rows) {
    const well = wellPlace(row);
    if (well) addToCell(byName, row.plate, { row, well });
  }
  const plates = [...byName].map(([name, placed]) => {
    const isLarge = placed.some(({ well }) => well.row > 7 || well.column > 11);
    const columnCount = isLarge ? 24 : 12;
    const cells = new Map();
    for (const { row, well } of placed) addToCell(cells, well.row * columnCount + well.column, row);
    return { name, lineCount: isLarge ? 16 : 8, columnCount, cells, sampleCount: placed.length };
  });
  const isUnnamed = (plate) => plate.name === null;
  return plates.sort((a, b) => isUnnamed(a) - isUnnamed(b) || textOrder.compare(a.name, b.name));
}

/// All runs in the order of their days: {day, instrument, plate, cells}, the cells by capillary from 0.
function runsOf(rows) {
  const runs = new Map();
  for (const row of rows) {
    if (!isCapillary(row.capillary)) continue;
    const { run_date: day, instrument, plate } = row;
    const key = JSON.stringify([day, instrument, plate]);
    if (!runs.has(key)) runs.set(key, { day, instrument, plate, cells: new Map() });
    addToCell(runs.get(key).cells, row.capillary - 1, row);
  }
  const text = (run) => [run.day, run.instrument, run.plate].map((part) => part ?? "").join("\n");
  return [...runs.values()].sort((a, b) => textOrder.compare(text(a), text(b)));
}

/// True for the number of a capillary that an instrument can have.
function isCapillary(number) {
  return number !== null && number >= 1 && number <= mostCapillaries;
}

/// Draws each canvas when it comes into sight of `scroller`, and again when it was marked stale.
function createLazyDrawing(scroller) {
  const drawOf = new Map();
  const visible = new Set();
  const stale = new Set();
  const observer = new IntersectionObserver((entries) => {
    for (const { target, isIntersecting } of entries) {
      if (!isIntersecting) visible.delete(target);
      else {
        visible.add(target);
        if (stale.delete(target)) drawOf.get(target)();
      }
    }
  }, { root: scroller, rootMargin: "100px" });
  return {
    add(canvas, draw) {
      drawOf.set(canvas, draw);
      stale.add(canvas);
      observer.observe(canvas);
    },
    /// Draws what is in sight now, and the rest when it comes into sight.
    redraw(canvases = drawOf.keys()) {
      for (const canvas of canvases) {
        if (visible.has(canvas)) drawOf.get(canvas)();
        else stale.add(canvas);
      }
    },
  };
}

/// The plates' half of the map: one plate large, all of them small below it.
function createPlates(container, plates, { view, lazy, space, onChoose, onPlate }) {
  const plateOfRow = new Map();
  for (const plate of plates) {
    for (const [key, rows] of plate.cells) {
      for (const row of rows) plateOfRow.set(row, { plate, key });
    }
  }
  const titleOf = (plate) => plate.name ?? "without a plate's name";
  const filterButton = (plate) => element("button", {
    type: "button",
    className: "plate-name",
    text: titleOf(plate),
    title: `Filter by ${titleOf(plate)}`,
    onclick: () => onPlate(plate.name),
  });
  const labelOf = (plate) =>
    `Plate ${titleOf(plate)}: ${counted(plate.sampleCount, "sample")} in ${counted(plate.cells.size, "well")}`;

  const large = element("div", { className: "large-plate" });
  const small = element("div", { className: "small-plates" });
  container.append(large, small);

  const smallGrids = new Map();
  if (plates.length > 1) {
    for (const plate of plates) {
      const grid = createCellGrid({
        ...plate,
        label: labelOf(plate),
        layout: () => ({ left: 1, top: 1, pitchX: 104 / plate.columnCount, pitchY: 68 / plate.lineCount }),
        drawLabels: () => {},
        view,
        onChoose,
      });
      const item = element("div", { className: "small-plate" }, filterButton(plate), grid.canvas);
      smallGrids.set(plate, { grid, item });
      small.append(item);
      lazy.add(grid.canvas, grid.draw);
    }
  }

  let shown = null;
  let largeGrid = null;

  /// Cells as wide as the panel allows, and flatter where it is low.
  function largeLayout() {
    const { width, height } = space();
    const left = 20;
    const top = 18;
    const pitchX = Math.max(10, Math.min(40, (width - left - 4) / shown.columnCount));
    const share = plates.length > 1 ? 0.66 : 0.9;
    const pitchY = Math.max(10, Math.min(pitchX, (height * share - top - 24) / shown.lineCount));
    return { left, top, pitchX, pitchY };
  }

  function drawLargeLabels(context, { left, top, pitchX, pitchY }) {
    context.fillStyle = colourOf("--faint");
    context.font = `${Math.min(12, pitchY)}px system-ui, sans-serif`;
    context.textAlign = "center";
    context.textBaseline = "middle";
    for (let column = 0; column < shown.columnCount; ++column) {
      if (pitchX < 16 && column % 2 === 1) continue;
      context.fillText(column + 1, left + (column + 0.5) * pitchX, top / 2);
    }
    for (let line = 0; line < shown.lineCount; ++line) {
      context.fillText(String.fromCharCode(65 + line), left / 2, top + (line + 0.5) * pitchY);
    }
  }

  function showLarge(plate) {
    smallGrids.get(shown)?.item.classList.remove("current");
    smallGrids.get(plate)?.item.classList.add("current");
    shown = plate;
    largeGrid = createCellGrid({
      ...plate,
      label: labelOf(plate),
      layout: largeLayout,
      drawLabels: drawLargeLabels,
      view,
      onChoose,
    });
    const count = `${counted(plate.sampleCount, "sample")}, ${counted(plate.cells.size, "well")}`;
    large.replaceChildren(
      element("div", { className: "plate-title" }, filterButton(plate), element("span", { text: count })),
      largeGrid.canvas,
    );
  }
  showLarge(plates[0]);

  return {
    /// Draws the large plate of the chosen row.
    draw() {
      const place = plateOfRow.get(view.chosen);
      if (place && place.plate !== shown) showLarge(place.plate);
      largeGrid.draw();
    },
    /// The small canvases that a change of choice from one row to another concerns.
    concerned: (rows) => rows.map((row) => smallGrids.get(plateOfRow.get(row)?.plate)?.grid.canvas)
      .filter((canvas) => canvas),
    /// {canvas, x, y} of a row's cell, or null.
    placeOf(row) {
      const place = plateOfRow.get(row);
      if (!place) return null;
      const grid = place.plate === shown ? largeGrid : smallGrids.get(place.plate).grid;
      return { canvas: grid.canvas, ...grid.centreOf(place.key) };
    },
  };
}

/// The capillaries' half of the map: a line for each run, a column for each capillary.
function createCapillaries(container, runs, { view, lazy, space, onChoose }) {
  const most = Math.max(...runs.map((run) => Math.max(...run.cells.keys()))) + 1;
  const columnCount = [1, 4, 8, 16, 24, 48, 96].find((usual) => usual >= most) ?? most;
  const labelWidth = 104;
  const nameOf = (run) => run.plate ?? run.day ?? run.instrument ?? "unknown run";
  const placeOfRow = new Map();
  const canvases = [];

  for (let first = 0; first < runs.length; first += linesPerCanvas) {
    const part = runs.slice(first, first + linesPerCanvas);
    const cells = new Map();
    part.forEach((run, line) => {
      for (const [capillary, rows] of run.cells) cells.set(line * columnCount + capillary, rows);
    });
    const layout = () => ({
      left: labelWidth,
      top: first === 0 ? 18 : 0,
      pitchX: Math.max(2.5, Math.min(24, (space().width - labelWidth - 4) / columnCount)),
      pitchY: 16,
    });
    const drawLabels = (context, place) => {
      context.font = "11px system-ui, sans-serif";
      context.fillStyle = colourOf("--faint");
      context.textBaseline = "middle";
      context.textAlign = "center";
      const step = [1, 2, 4, 8, 12, 24].find((n) => n * place.pitchX >= 24) ?? 48;
      for (let number = step; first === 0 && number <= columnCount; number += step) {
        context.fillText(number, place.left + (number - 0.5) * place.pitchX, 8);
      }
      context.textAlign = "left";
      part.forEach((run, line) => {
        const middle = place.top + (line + 0.5) * place.pitchY;
        context.fillText(fittingText(context, nameOf(run), labelWidth - 8), 0, middle);
      });
    };
    const label = `Capillaries 1 to ${columnCount} of ${counted(part.length, "run")}`;
    const grid = createCellGrid({
      label, lineCount: part.length, columnCount, cells, layout, drawLabels, view, onChoose,
    });
    // The names of the runs have no cells; their canvas tells them whole.
    grid.canvas.addEventListener("mousemove", (event) => {
      const run = part[Math.floor((event.offsetY - layout().top) / 16)];
      if (run && event.offsetX < labelWidth) {
        grid.canvas.title = [run.day, run.instrument, run.plate].filter((text) => text).join(" · ");
      }
    });
    for (const [key, rows] of cells) {
      for (const row of rows) placeOfRow.set(row, { grid, key });
    }
    canvases.push(grid.canvas);
    container.append(grid.canvas);
    lazy.add(grid.canvas, grid.draw);
  }
  return {
    draw() {},
    concerned: () => canvases,
    placeOf(row) {
      const place = placeOfRow.get(row);
      return place ? { canvas: place.grid.canvas, ...place.grid.centreOf(place.key) } : null;
    },
  };
}

/// `text`, or as much of it as fits into `width` with an ellipsis.
function fittingText(context, text, width) {
  if (context.measureText(text).width <= width) return text;
  let length = text.length;
  while (length > 0 && context.measureText(`${text.slice(0, length)}…`).width > width) --length;
  return `${text.slice(0, length)}…`;
}

/// The map's legend, drawn as its cells are. Returns {node, draw()}.
function createLegend() {
  const cell = (severity, contiguous) => ({ severity, contiguous, isDimmed: false, count: 1 });
  const entries = [
    ["above 600", cell("whole", 601)],
    ["300 to 600", cell("whole", 300)],
    ["below 300", cell("whole", 0)],
    ["not to be trusted", cell("untrusted", 601)],
    ["no result", cell("missing", null)],
    ["waiting or hidden", cell("waiting", null)],
    ["no sample", cell(null)],
  ];
  const canvases = entries.map(() => element("canvas", { "aria-hidden": "true" }));
  const items = entries.map(([text], i) => element("li", {}, canvases[i], text));
  const list = element("ul", { className: "legend", "aria-label": "Good stretch and state" }, ...items);
  const draw = () => canvases.forEach((canvas, i) => {
    drawCell(sizedContext(canvas, 16, 16), { x: 0, y: 0, width: 16, height: 16 }, entries[i][1]);
  });
  return { node: list, draw };
}

/// The tabs and their panels. `halves` are [{title, container}]; `onTurn(index)` is called when a tab is
/// chosen, by the pointer or the arrow keys.
function createTabs(halves, onTurn) {
  const list = element("div", { role: "tablist", className: "tabs", "aria-label": "Map" });
  const tabs = halves.map(({ title }, i) => element("button", {
    type: "button",
    role: "tab",
    id: `tab-${i}`,
    "aria-controls": `half-${i}`,
    text: title,
    onclick: () => turnTo(i),
  }));
  halves.forEach(({ container }, i) => {
    container.id = `half-${i}`;
    container.setAttribute("role", "tabpanel");
    container.setAttribute("aria-labelledby", `tab-${i}`);
  });
  list.append(...tabs);

  function turnTo(index) {
    tabs.forEach((tab, i) => {
      tab.setAttribute("aria-selected", String(i === index));
      tab.tabIndex = i === index ? 0 : -1;
      halves[i].container.hidden = i !== index;
    });
    onTurn(index);
  }
  list.addEventListener("keydown", (event) => {
    if (event.key !== "ArrowLeft" && event.key !== "ArrowRight") return;
    event.preventDefault();
    const index = (tabs.indexOf(event.target) + 1) % tabs.length;  // there are two at most
    tabs[index].focus();
    turnTo(index);
  });
  return { list, turnTo };
}

/// Fills the map; null, and no map, when no row has a well or a capillary. `view` holds {chosen,
/// isInSight(row)} and is read when the map is drawn. Returns
/// redraw(): after a change of filter, theme or size; choose(from, to): after a change of choice;
/// placeOf(row): {x, y} of its cell in CSS px of the window, brought into sight, or null.
function createMap(panel, { view, onChoose, onPlate }) {
  const plates = platesOf(sampleRows);
  const runs = runsOf(sampleRows);
  if (plates.length === 0 && runs.length === 0) return null;
  panel.hidden = false;
  const scroller = element("div", { className: "map-scroller", tabindex: "0", role: "group" });
  scroller.setAttribute("aria-label", "Map of wells or capillaries");
  const lazy = createLazyDrawing(scroller);
  // Inside the paddings of 12 px.
  const space = () => ({ width: scroller.clientWidth - 24, height: scroller.clientHeight - 20 });
  const shared = { view, lazy, space, onChoose, onPlate };
  const halves = [];
  const addHalf = (title, content, create) => {
    if (content.length === 0) return;
    const container = element("div", { className: "map-half" });
    halves.push({ title, container, half: create(container, content, shared) });
    scroller.append(container);
  };
  const legend = createLegend();
  let current = 0;
  const redraw = () => {
    halves[current].half.draw();
    lazy.redraw();
    legend.draw();
  };
  addHalf("Plates", plates, createPlates);
  addHalf("Capillaries", runs, createCapillaries);
  const tabs = createTabs(halves, (index) => {
    current = index;
    redraw();
  });
  panel.append(tabs.list, scroller, legend.node);
  tabs.turnTo(0);
  new ResizeObserver(redraw).observe(scroller);

  return {
    redraw,
    choose(from, to) {
      const { half } = halves[current];
      half.draw();
      lazy.redraw(halves.flatMap(({ half: any }) => any.concerned([from, to])));
    },
    placeOf(row) {
      const place = halves[current].half.placeOf(row);
      if (!place) return null;
      const frame = scroller.getBoundingClientRect();
      let box = place.canvas.getBoundingClientRect();
      const y = box.top + place.y;
      if (y < frame.top || y > frame.bottom) {
        scroller.scrollTop += y - (frame.top + frame.bottom) / 2;
        box = place.canvas.getBoundingClientRect();
      }
      return { x: box.left + place.x, y: box.top + place.y };
    },
  };
}
