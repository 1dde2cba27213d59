// The trace panel: title, buttons, overview, curves and readout, and what keys and pointer do to them.

const gutter = 58;
const baseWidth = 15; // px for a base where a trace opens

// The buttons: action, text, title, and a name where the text is none.
const traceButtons = [
  ["left mixed", "◂ mixed", "Mixed base to the left (M)"],
  ["right mixed", "mixed ▸", "Mixed base to the right (m)"],
  ["farther", "−", "Show more bases (-)", "Zoom out"],
  ["closer", "+", "Show fewer bases (+)", "Zoom in"],
  ["whole", "All", "The whole read; 0 goes back"],
  ["lower", "⇣", "Lower peaks ([)", "Lower peaks"],
  ["higher", "⇡", "Higher peaks (])", "Higher peaks"],
  ["reverse", "Rev. comp.", "Reverse complement (r)"],
  ["palette", "Palette", "Colours for colour-blind people"],
  ["help", "?", "Keys (?)", "Keys"],
];
const actionOfKey = {
  m: "right mixed", M: "left mixed", "+": "closer", "=": "closer", "-": "farther", 0: "home",
  "[": "lower", "]": "higher", r: "reverse", g: "jump", ArrowLeft: "left", ArrowRight: "right",
};

/// Fills `panel` and returns its operations. `callbacks` may offer onBase(base), called when the base in
/// focus changes (1-based, or null), and onHelp().
function createTraceView(panel, callbacks = {}) {
  const parts = buildTracePanel(panel, act);
  const pictures = new Map(); // Promises by the index of the row.
  let view = null; // The scene in sight but for its sizes; `home` is the scale in which it opened.
  let request = 0; // Of the latest show(); an earlier one that ends later is dropped.
  let isPaintDue = false;
  let toldBase = null;

  const plotWidth = () => Math.max(50, parts.curvesBox.clientWidth - gutter - 8);
  const middle = () => gutter + plotWidth() / 2;
  const placeOf = (sample) => (view.isReversed ? view.extent - 1 - sample : sample);

  /// The scene in a box of the panel, its scale and place kept within the trace.
  function sceneIn(box) {
    const least = Math.min(plotWidth() / view.extent, view.home);
    const most = Math.max(view.home, 90 / spacingOf(view.numbered));
    view.scale = view.isWhole ? least : Math.min(Math.max(view.scale, least), most);
    view.from = Math.max(0, Math.min(view.from, view.extent - plotWidth() / view.scale));
    const { clientWidth: width, clientHeight: height } = box;
    return { ...view, width, height, left: gutter, right: gutter + plotWidth() };
  }

  function isInSight(base) {
    const place = placeOf(view.numbered.positions[base]) - view.from;
    return place >= 0 && place <= plotWidth() / view.scale;
  }

  /// The base (from 0) whose called position is nearest to x; null without bases.
  function baseNear(x) {
    const sample = sampleAtX(sceneIn(parts.curvesBox), x);
    const gaps = view.numbered.positions.map((position) => Math.abs(position - sample));
    return gaps.length > 0 ? gaps.indexOf(Math.min(...gaps)) : null;
  }

  /// The base in focus, 1-based: the marked one, else the middle one once the view was moved, else null.
  function base() {
    const focused = view?.marked ?? (view?.isMoved ? baseNear(middle()) : null);
    return focused === null ? null : focused + 1;
  }

  function paint() {
    if (!view) return;
    const scene = sceneIn(parts.curvesBox);
    if (view.marked !== null && !isInSight(view.marked)) scene.marked = view.marked = null;
    drawTrace(sizedContext(parts.curves, scene.width, scene.height), scene);
    const scale = plotWidth() / view.extent;
    const whole = { ...sceneIn(parts.overviewBox), from: 0, scale };
    const begin = gutter + view.from * scale;
    const end = begin + (plotWidth() / view.scale) * scale;
    drawOverview(sizedContext(parts.overview, whole.width, whole.height), whole, begin, end);
    const at = view.pointer === null ? view.marked : baseNear(view.pointer);
    const sample = view.pointer === null ? view.numbered.positions[at] : sampleAtX(scene, view.pointer);
    if (sample === undefined) parts.readout.textContent = "Point at the curves to read heights.";
    else parts.readout.replaceChildren(...readoutOf(scene, at, sample));
    tellBase();
  }

  function tellBase() {
    if (base() === toldBase) return;
    toldBase = base();
    callbacks.onBase?.(toldBase);
  }

  function paintSoon() {
    if (isPaintDue) return;
    isPaintDue = true;
    requestAnimationFrame(() => {
      isPaintDue = false;
      paint();
    });
  }

  const tell = (text) => (parts.notice.textContent = text);

  function pictureOf(row) {
    if (!pictures.has(row.index)) pictures.set(row.index, readPicture(row));
    return pictures.get(row.index);
  }

  /// Draws a row; `base` is 1-based, or null for the place where a trace opens. Holds when it is drawn,
  /// or when a later call has taken its place.
  async function show(row, base = null) {
    const mine = ++request;
    tell("");
    if (view?.row !== row) {
      delete panel.dataset.shown;
      const slow = setTimeout(() => present(row, "Waiting for the rest of the page."), 150);
      const picture = await pictureOf(row);
      clearTimeout(slow);
      if (mine !== request) return;
      present(row, picture);
    }
    if (view && base !== null) goTo(base - 1);
    paint();
    panel.dataset.shown = row.sample;
  }

  /// Shows a picture as it opens, or a sentence in its place.
  function present(row, picture) {
    const isText = typeof picture === "string";
    view = isText ? null : openingView(row, picture);
    showTitle(parts, row);
    parts.empty.textContent = isText ? picture : "";
    panel.classList.toggle("without-picture", isText);
    parts.reverse.setAttribute("aria-pressed", "false");
    if (isText) tellBase();
  }

  /// Puts a base (from 0) into focus, and into the middle unless it is there; says so if there is none.
  function goTo(base) {
    const { positions } = view.numbered;
    if (!(base in positions)) return tell(`This read has ${formatNumber(positions.length)} bases.`);
    sceneIn(parts.curvesBox);
    view.from = placeOf(positions[base]) - plotWidth() / view.scale / 2;
    view.marked = base;
  }

  function pan(pixels) {
    view.from += pixels / view.scale;
    view.isMoved = true;
  }

  /// Multiplies the scale and leaves the sample at x where it is.
  function zoom(factor, x = view.pointer ?? middle()) {
    const place = view.from + (x - gutter) / view.scale;
    view.isWhole = false;
    view.scale *= factor;
    sceneIn(parts.curvesBox);
    view.from = place - (x - gutter) / view.scale;
    view.isMoved = true;
  }

  function changeHeight(factor) {
    view.sight = Math.min(Math.max(view.sight / factor, view.picture.top / 100), view.picture.top);
  }

  /// Goes to the next mixed base to the right (1) or to the left (-1) of the one in focus.
  function goToMixed(direction) {
    const at = (base) => direction * placeOf(view.numbered.positions[base]);
    const edge = view.from + (direction < 0 ? plotWidth() / view.scale : 0);
    const here = view.marked === null ? direction * edge - 1 : at(view.marked);
    const bases = [...view.picture.mixed.keys()];
    const next = bases.filter((base) => at(base) > here).sort((a, b) => at(a) - at(b))[0];
    if (next !== undefined) goTo(next);
    else tell(bases.length > 0 ? "No more mixed bases this way." : "This read has no mixed bases.");
  }

  const actions = {
    "left mixed": () => goToMixed(-1),
    "right mixed": () => goToMixed(1),
    closer: () => zoom(1.4),
    farther: () => zoom(1 / 1.4),
    home: () => zoom(view.home / view.scale),
    whole: () => (view.isWhole = view.isMoved = true),
    lower: () => changeHeight(1 / 1.25),
    higher: () => changeHeight(1.25),
    left: () => pan(-plotWidth() / 5),
    right: () => pan(plotWidth() / 5),
    jump: () => parts.jump.select(),
    reverse: () => {
      const sample = sampleAtX(sceneIn(parts.curvesBox), middle());
      view.isReversed = !view.isReversed;
      parts.reverse.setAttribute("aria-pressed", view.isReversed);
      view.from = placeOf(sample) - plotWidth() / view.scale / 2;
    },
  };

  /// Does what a button or a key asks for; false when there is no trace to do it to.
  function act(name) {
    if (name === "help") callbacks.onHelp?.();
    else if (name === "palette") switchPalette(parts.palette);
    else if (!view) return false;
    else {
      tell("");
      actions[name]();
    }
    paintSoon();
    return true;
  }

  const xOfEvent = (event) => event.clientX - parts.curves.getBoundingClientRect().left;

  parts.curves.addEventListener("wheel", (event) => {
    if (!view || event.ctrlKey) return;
    event.preventDefault();
    const unit = event.deltaMode === 0 ? 1 : 30;
    const isSideways = event.shiftKey || Math.abs(event.deltaX) > Math.abs(event.deltaY);
    if (isSideways) pan(unit * (event.deltaX || event.deltaY));
    else zoom(Math.exp((-unit * event.deltaY) / 500), xOfEvent(event));
    paintSoon();
  }, { passive: false });

  // Dragging moves the trace; a press without a move puts the nearest base into focus.
  followDrags(parts.curves, (event) => {
    if (!view) return null;
    const { from } = view;
    let isClick = true;
    return (x, isOver) => {
      isClick &&= Math.abs(x - event.clientX) < 4;
      if (isClick && isOver) view.marked = baseNear(xOfEvent(event));
      if (!isClick) {
        view.from = from;
        pan(event.clientX - x);
      }
      paintSoon();
    };
  });

  // The box is dragged where it was taken; a press outside of it brings its middle there.
  followDrags(parts.overview, (event) => {
    if (!view) return null;
    const visible = plotWidth() / view.scale;
    const left = parts.overview.getBoundingClientRect().left + gutter;
    const placeAt = (x) => ((x - left) * view.extent) / plotWidth();
    const held = placeAt(event.clientX) - view.from;
    return (x) => {
      view.from = placeAt(x) - (held >= 0 && held <= visible ? held : visible / 2);
      view.isMoved = true;
      paintSoon();
    };
  });

  const pointAt = (x) => {
    if (!view) return;
    view.pointer = x >= gutter && x <= gutter + plotWidth() ? x : null;
    paintSoon();
  };
  parts.curves.addEventListener("pointermove", (event) => pointAt(xOfEvent(event)));
  parts.curves.addEventListener("pointerleave", () => pointAt(-1));
  parts.jump.addEventListener("keydown", (event) => {
    if (event.key === "Enter" && view) goTo(Number(parts.jump.value.replaceAll(",", "")) - 1);
    if (event.key === "Enter" || event.key === "Escape") parts.jump.blur();
    paintSoon();
  });
  new ResizeObserver(paintSoon).observe(parts.curvesBox);
  window.addEventListener("resize", paintSoon); // The pixels in a CSS px may be others.

  /// In CSS px of the window: where the curve of a channel (a letter; the trace's own channel) passes the
  /// called position of a base (1-based). Null when that is not in sight.
  function pixelOf(base, channel) {
    const levels = view?.picture.levels[channelLetters.indexOf(channel)];
    const sample = view?.picture.calls.positions[base - 1];
    const level = levels && levelAt(levels, sample);
    if (level === null || level === undefined) return null;
    const scene = sceneIn(parts.curvesBox);
    if (!isInSight(base - 1)) return null;
    const rows = rowsOfScene(scene);
    const y = levelScale(scene, rows)(level);
    const box = parts.curves.getBoundingClientRect();
    return {
      x: box.left + xOfSample(scene, sample),
      y: box.top + Math.max(rows.top, y),
      top: box.top + rows.top,
      baseline: box.top + rows.baseline,
      clipped: y < rows.top || level >= 255,
    };
  }

  return {
    show,
    /// Unpacks the pictures of these rows ahead and lets go of all but these and the one in sight.
    prefetch: (rows) => {
      const kept = new Set([view?.row, ...rows]);
      for (const index of pictures.keys()) {
        if (!kept.has(sampleRows[index])) pictures.delete(index);
      }
      rows.forEach(pictureOf);
    },
    key: ({ key }) => Object.hasOwn(actionOfKey, key) && act(actionOfKey[key]),
    repaint: paint,
    pixelOf,
    base,
    /// Draws the row in sight for paper, whole; other rows are not at hand.
    print: (row) => {
      parts.paper.replaceChildren();
      if (view?.row === row) drawPaper(parts.paper, view);
    },
  };
}

/// The scene in which a picture opens: at the first difference of both readings within the good stretch,
/// else at the first good base, else where the signal begins.
function openingView(row, picture) {
  const { calls, reading } = picture;
  const numbered = calls.bases.length > 0 || !reading ? calls : reading;
  const spacing = spacingOf(numbered);
  const view = {
    row, picture, numbered, comparison: reading && compareReadings(calls, reading),
    extent: picture.pointCount || Math.max(0, ...numbered.positions) + Math.ceil(spacing),
    home: baseWidth / spacing, scale: baseWidth / spacing, sight: picture.inSight,
    isReversed: false, isMoved: false, isWhole: false, marked: null, pointer: null,
  };
  const limit = (0.1 * picture.inSight * 255) / picture.top;
  const starts = picture.levels.map((levels) => 2 * levels.findIndex((level) => level > limit));
  const difference = numbered === calls && reading &&
    firstDifference(picture, view.comparison, trimOfScene(view));
  const start = difference || (numbered.positions[row.trim_start ?? 0] ??
    Math.min(...starts.map((sample) => (sample < 0 ? view.extent : sample))));
  view.from = start - 6 * spacing;
  return view;
}

/// Makes the panel's nodes. `act` is called with the action of a button.
function buildTracePanel(panel, act) {
  const text = (tag, className) => element(tag, { className });
  const status = (className) => element("p", { className, role: "status" });
  const parts = {
    sample: text("h2", ""), state: text("span", "pill"), facts: text("span", "facts"),
    sentence: text("p", "trace-sentence"), empty: status("trace-empty"),
    overview: element("canvas", { role: "img" }), curves: element("canvas", { role: "img" }),
    readout: text("p", "readout"), notice: status("trace-notice"), paper: text("div", "print-trace"),
    jump: element("input", {
      type: "text", inputmode: "numeric", placeholder: "base (g)", "aria-label": "Go to base",
    }),
  };
  const tools = text("div", "trace-tools");
  for (const [action, label, title, name] of traceButtons) {
    const onclick = () => act(action);
    parts[action] = element("button", { type: "button", text: label, title, "aria-label": name, onclick });
    tools.append(parts[action]);
  }
  tools.insertBefore(parts.jump, parts.farther);
  for (const toggle of [parts.reverse, parts.palette]) toggle.setAttribute("aria-pressed", "false");
  parts.overviewBox = element("div", { className: "overview-box" }, parts.overview);
  parts.curvesBox = element("div", { className: "curves-box" }, parts.curves);
  panel.append(
    element("div", { className: "trace-title" }, parts.sample, parts.state, parts.facts, tools),
    parts.sentence, parts.empty, parts.overviewBox, parts.curvesBox,
    element("div", { className: "readout-line" }, parts.readout, parts.notice), parts.paper,
  );
  return parts;
}

/// Writes sample, state and facts, what the state means, and the labels of the canvases.
function showTitle(parts, row) {
  const facts = [
    row.plate && `plate ${row.plate}`,
    row.well && `well ${row.well}`,
    row.capillary !== null && `capillary ${row.capillary}`,
    row.bases !== null && counted(row.bases, "base"),
    row.trim_end > 0 && `good ${formatNumber(row.trim_start + 1)} to ${formatNumber(row.trim_end)}`,
    row.mean_quality !== null && `mean Q ${row.mean_quality.toFixed(1)}`,
  ];
  parts.sample.textContent = row.sample;
  parts.state.textContent = row.state;
  parts.state.dataset.severity = row.severity;
  parts.facts.textContent = parts.facts.title = facts.filter(Boolean).join(" · ");
  const detail = row.detail && ` (${row.detail.replaceAll(/,(?=\S)/g, ", ")})`;
  parts.sentence.textContent = stateOf(row.state).text.replace(/(?=[.;:])/, () => detail);
  parts.curves.setAttribute("aria-label", `Curves, letters and qualities of ${row.sample}`);
  parts.overview.setAttribute("aria-label", `Qualities of the whole read of ${row.sample}`);
}

/// The readout at a sample, as nodes; `at` is the base next to it, or null.
function readoutOf(scene, at, sample) {
  const { picture, numbered, comparison } = scene;
  const letterOf = (calls, i) => shownLetter(scene, calls.bases[i]);
  const facts = at === null ? "" :
    `base ${formatNumber(at + 1)} · ${letterOf(numbered, at)} · Q ${numbered.qualities[at]} · `;
  const nodes = [`${facts}sample ${formatNumber(Math.round(sample))} · `];
  picture.levels.forEach((levels, channel) => {
    const level = levelAt(levels, sample);
    if (level === null) return;
    const letter = element("b", { text: shownLetter(scene, channelLetters[channel]) });
    letter.style.color = letterColour(letter.textContent);
    const height = formatNumber(Math.round((level * picture.top) / 255));
    nodes.push(letter, ` ${level >= 255 ? "over " : ""}${height}  `);
  });
  const second = picture.mixed.get(at);
  if (second) nodes.push(`· second ${shownLetter(scene, second.letter)}, ${second.percent} % of the called `);
  const j = numbered === picture.reading ? -1 : comparison?.partners.indexOf(at) ?? -1;
  if (j >= 0) nodes.push(`· result ${letterOf(picture.reading, j)}, Q ${picture.reading.qualities[j]}`);
  return nodes;
}

function switchPalette(button) {
  const { dataset } = document.documentElement;
  if (dataset.palette) delete dataset.palette;
  else dataset.palette = "2";
  button.setAttribute("aria-pressed", "palette" in dataset);
  forgetColours();
  document.dispatchEvent(new Event("colours"));
}

/// Follows drags with the primary button: `begin(event)` gives a function of (clientX, isOver), or null.
function followDrags(node, begin) {
  let drag = null;
  const end = (event) => {
    drag?.(event.clientX, true);
    drag = null;
  };
  node.addEventListener("pointerdown", (event) => {
    drag = event.button === 0 ? begin(event) : null;
    if (drag) node.setPointerCapture(event.pointerId);
  });
  node.addEventListener("pointermove", (event) => drag?.(event.clientX, false));
  node.addEventListener("pointerup", end);
  node.addEventListener("pointercancel", () => (drag = null));
}

/// Appends a canvas for each 100 bases of a view to `paper`; without calls, for 100 times 12 samples.
function drawPaper(paper, view) {
  const spacing = spacingOf(view.numbered);
  const { positions } = view.numbered;
  const width = 1030;
  const left = 46;
  const startOf = (base) => positions.length === 0 ? base * spacing
    : Math.max(0, (positions[base] ?? positions.at(-1) + spacing) - spacing / 2);
  const count = positions.length || Math.ceil(view.extent / spacing);
  for (let first = 0; first < count; first += 100) {
    const from = startOf(first);
    const samples = startOf(first + 100) - from;
    const scale = (width - left) / (first + 100 > count ? 100 * spacing : samples);
    const label = `${view.row.sample} from base ${first + 1}`;
    const canvas = element("canvas", { role: "img", "aria-label": label });
    paper.append(canvas);
    const right = Math.min(width, left + samples * scale);
    const changes = { width, left, right, from, scale, height: 190, isReversed: false };
    drawTrace(sizedContext(canvas, width, 190), { ...view, ...changes, marked: null, pointer: null });
  }
}
