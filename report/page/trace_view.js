// The trace panel: title, buttons, overview, curves and readout, and what keys and pointer do to them.

const gutter = 58;
const openingBaseWidth = 15;
const largestBaseWidth = 90;

/// Fills `panel` and returns its operations. `callbacks` may offer onBase(base), called when the base
/// in focus changes (1-based, or null), and onHelp().
function createTraceView(panel, callbacks = {}) {
  const store = new PictureStore();
  const parts = buildTracePanel(panel, act);
  const { overview, curves, notice, readout, jump } = parts;
  let view = null; // What is in sight: a scene without sizes, and `home`, its opening scale.
  let request = 0; // The latest show(); an earlier one that ends later is dropped.
  let isPaintDue = false;
  let toldBase = null;

  // Sizes and places

  function plotWidth() {
    return Math.max(50, parts.curvesBox.clientWidth - gutter - 8);
  }

  function sceneOf(box, changes) {
    const { clientWidth, clientHeight } = box;
    return { ...view, width: clientWidth, height: clientHeight, left: gutter, right: gutter + plotWidth(), ...changes };
  }

  function smallestScale() {
    return Math.min(plotWidth() / view.extent, view.home);
  }

  /// Keeps scale and place within the trace.
  function settle() {
    const most = Math.max(view.home, largestBaseWidth / spacingOf(view.numbered));
    view.scale = view.isWhole ? smallestScale() : Math.min(Math.max(view.scale, smallestScale()), most);
    view.from = Math.max(0, Math.min(view.from, view.extent - plotWidth() / view.scale));
  }

  function placeOf(sample) {
    return view.isReversed ? view.extent - 1 - sample : sample;
  }

  function isInSight(base) {
    const place = placeOf(view.numbered.positions[base]) - view.from;
    return place >= 0 && place <= plotWidth() / view.scale;
  }

  /// The base (from 0) whose called position is nearest to a sample; null without bases.
  function nearestBase(sample) {
    let best = null;
    view.numbered.positions.forEach((position, i) => {
      const distance = Math.abs(position - sample);
      if (best === null || distance < Math.abs(view.numbered.positions[best] - sample)) best = i;
    });
    return best;
  }

  /// The base in focus, from 0: the marked one, else the middle one once the view was moved.
  function focus() {
    if (!view) return null;
    if (view.marked !== null || !view.isMoved) return view.marked;
    return nearestBase(sampleAtX(sceneOf(parts.curvesBox), gutter + plotWidth() / 2));
  }

  function base() {
    const focused = focus();
    return focused === null ? null : focused + 1;
  }

  // Painting

  function paint() {
    if (!view) return;
    settle();
    if (view.marked !== null && !isInSight(view.marked)) view.marked = null;
    const scene = sceneOf(parts.curvesBox);
    drawTrace(sizedContext(curves, scene.width, scene.height), scene);
    const width = plotWidth();
    const whole = sceneOf(parts.overviewBox, { from: 0, scale: width / view.extent });
    const begin = gutter + view.from * whole.scale;
    drawOverview(sizedContext(overview, whole.width, whole.height), whole, {
      begin,
      end: begin + (width / view.scale) * whole.scale,
    });
    showReadout(scene);
    if (base() !== toldBase) {
      toldBase = base();
      callbacks.onBase?.(toldBase);
    }
  }

  function repaintSoon() {
    if (isPaintDue) return;
    isPaintDue = true;
    requestAnimationFrame(() => {
      isPaintDue = false;
      paint();
    });
  }

  function showReadout(scene) {
    readout.replaceChildren();
    const at = view.pointer === null ? view.marked : nearestBase(sampleAtX(scene, view.pointer));
    const sample =
      view.pointer !== null ? sampleAtX(scene, view.pointer) : at === null ? null : view.numbered.positions[at];
    if (sample !== null) readout.append(...readoutOf(scene, at, sample));
    else readout.textContent = "Point at the curves to read heights.";
  }

  function tell(text) {
    notice.textContent = text;
  }

  // Showing a sample

  /// The scene in which a picture opens.
  function openingView(row, picture, base) {
    const { calls, reading } = picture;
    const numbered = calls.bases.length > 0 || !reading ? calls : reading;
    const comparison = reading && compareReadings(calls, reading);
    const last = numbered.positions.reduce((most, position) => Math.max(most, position), 0);
    const spacing = spacingOf(numbered);
    const opened = {
      row, picture, numbered, comparison, from: 0, scale: openingBaseWidth / spacing, isReversed: false,
      extent: picture.pointCount || last + Math.ceil(spacing), sight: picture.inSight, marked: null,
      pointer: null, isMoved: false, isWhole: false,
    };
    opened.home = opened.scale;
    const trim = trimOfScene(opened) ?? noTrim;
    let start = calls.positions[row.trim_start ?? 0] ?? numbered.positions[0] ?? signalStart(picture);
    if (reading && calls.bases.length > 0) {
      start = firstDifference(calls, reading, comparison, trim.begin, trim.end) ?? start;
    }
    opened.from = start - 6 * spacing;
    return opened;
  }

  /// Draws a row; `base` is 1-based, or null for the place where a trace opens. Holds when it is drawn,
  /// or when a later call has taken its place.
  async function show(row, base = null) {
    const mine = ++request;
    tell("");
    if (view?.row !== row) {
      delete panel.dataset.shown;
      const slow = setTimeout(() => present(row, null, "Waiting for the rest of the page."), 150);
      let picture = null;
      let why = row.severity === "untrusted" ? "" : "There is no trace to show.";
      try {
        if (row.hasPicture) picture = await store.get(row);
        else if (!pageData.pictures) why = "This page was made without pictures of traces.";
      } catch (fault) {
        why = fault.message;
      } finally {
        clearTimeout(slow);
      }
      if (mine !== request) return;
      present(row, picture, why);
    }
    if (view && base !== null) markBase(base - 1);
    paint();
    panel.dataset.shown = row.sample;
  }

  function present(row, picture, why) {
    view = picture && openingView(row, picture);
    showTitle(parts, row);
    parts.empty.textContent = picture ? "" : why;
    panel.classList.toggle("without-picture", !picture);
    curves.setAttribute("aria-label", `Curves, letters and qualities of ${row.sample}`);
    overview.setAttribute("aria-label", `Qualities of the whole read ${row.sample}`);
    parts.reverse.setAttribute("aria-pressed", "false");
    if (!picture) toldBase = null;
  }

  // Moving

  /// Puts base (from 0) into focus and into the middle; false when there is none of this number.
  function markBase(base) {
    if (!(base in view.numbered.positions)) return false;
    if (!isInSight(base) || view.marked !== base) centre(view.numbered.positions[base]);
    view.marked = base;
    return true;
  }

  function centre(sample) {
    settle();
    view.from = placeOf(sample) - plotWidth() / view.scale / 2;
    view.isMoved = true;
    settle();
  }

  function pan(pixels) {
    view.from += pixels / view.scale;
    view.isMoved = true;
    repaintSoon();
  }

  /// Multiplies the scale and leaves the sample at x where it is.
  function zoom(factor, x = view.pointer ?? gutter + plotWidth() / 2) {
    const place = view.from + (x - gutter) / view.scale;
    view.isWhole = false;
    view.scale *= factor;
    settle();
    view.from = place - (x - gutter) / view.scale;
    view.isMoved = true;
    repaintSoon();
  }

  function changeHeight(factor) {
    view.sight = Math.min(Math.max(view.sight / factor, view.picture.top / 100), view.picture.top);
    repaintSoon();
  }

  /// Goes to the mixed base that follows the one in focus to the right (1) or to the left (-1).
  function goToMixed(direction) {
    const bases = [...view.picture.mixed.keys()];
    const at = (base) => direction * placeOf(view.picture.calls.positions[base]);
    const here = view.marked !== null
      ? at(view.marked)
      : direction * (view.from + (direction > 0 ? -1 : 1 + plotWidth() / view.scale));
    const next = bases.filter((base) => at(base) > here).sort((a, b) => at(a) - at(b))[0];
    if (next !== undefined) markBase(next);
    else tell(bases.length > 0 ? "No more mixed bases this way." : "This read has no mixed bases.");
    repaintSoon();
  }

  function reverse() {
    const middle = sampleAtX(sceneOf(parts.curvesBox), gutter + plotWidth() / 2);
    view.isReversed = !view.isReversed;
    parts.reverse.setAttribute("aria-pressed", view.isReversed);
    view.from = placeOf(middle) - plotWidth() / view.scale / 2;
    repaintSoon();
  }

  function jumpToTyped() {
    const number = Number(jump.value.replaceAll(",", ""));
    if (markBase(number - 1)) jump.blur();
    else tell(`This read has no base ${jump.value}: it has ${formatNumber(view.numbered.bases.length)}.`);
    repaintSoon();
  }

  /// Does what a button or a key asks for; false when there is nothing to do it to.
  function act(name) {
    if (name === "help") callbacks.onHelp?.();
    else if (name === "palette") switchPalette();
    else if (!view) return false;
    else {
      tell("");
      actions[name]();
    }
    return true;
  }

  const actions = {
    nextMixed: () => goToMixed(1),
    previousMixed: () => goToMixed(-1),
    closer: () => zoom(1.4),
    farther: () => zoom(1 / 1.4),
    home: () => zoom(view.home / view.scale),
    whole: () => {
      view.isWhole = view.isMoved = true;
      repaintSoon();
    },
    lower: () => changeHeight(1 / 1.25),
    higher: () => changeHeight(1.25),
    reverse,
    jump: () => {
      jump.focus();
      jump.select();
    },
    jumpToTyped,
    left: () => pan(-plotWidth() / 5),
    right: () => pan(plotWidth() / 5),
  };
  const actionOfKey = {
    m: "nextMixed", M: "previousMixed", "+": "closer", "=": "closer", "-": "farther", 0: "home",
    "[": "lower", "]": "higher", r: "reverse", g: "jump", ArrowLeft: "left", ArrowRight: "right",
  };

  function switchPalette() {
    const { dataset } = document.documentElement;
    if (dataset.palette) delete dataset.palette;
    else dataset.palette = "2";
    parts.palette.setAttribute("aria-pressed", dataset.palette === "2");
    forgetColours();
    document.dispatchEvent(new Event("colours"));
    repaintSoon();
  }

  // Pointer

  function xOfEvent(event) {
    return event.clientX - curves.getBoundingClientRect().left;
  }

  curves.addEventListener("wheel", (event) => {
    if (!view || event.ctrlKey) return;
    event.preventDefault();
    const unit = event.deltaMode === 0 ? 1 : 30;
    const isSideways = event.shiftKey || Math.abs(event.deltaX) > Math.abs(event.deltaY);
    if (isSideways) pan(unit * (event.deltaX || event.deltaY));
    else zoom(Math.exp((-unit * event.deltaY) / 500), xOfEvent(event));
  }, { passive: false });

  // Dragging moves the trace; a press without a move puts the nearest base into focus.
  followDrags(curves, (event) => {
    if (!view) return null;
    const { from } = view;
    let isClick = true;
    return {
      move: (x) => {
        if (isClick && Math.abs(x - event.clientX) < 4) return;
        isClick = false;
        view.from = from;
        pan(event.clientX - x);
      },
      end: () => {
        if (isClick) view.marked = nearestBase(sampleAtX(sceneOf(parts.curvesBox), xOfEvent(event)));
        repaintSoon();
      },
    };
  });

  followDrags(overview, (event) => {
    if (!view) return null;
    const visible = plotWidth() / view.scale;
    const placeAt = (x) =>
      ((x - overview.getBoundingClientRect().left - gutter) * view.extent) / plotWidth();
    // Where the window was taken hold of; a press outside of it moves its middle there.
    const held = placeAt(event.clientX) - view.from;
    const grip = held >= 0 && held <= visible ? held : visible / 2;
    const move = (x) => {
      view.from = placeAt(x) - grip;
      pan(0);
    };
    move(event.clientX);
    return { move, end: () => {} };
  });

  function pointAt(x) {
    if (!view) return;
    view.pointer = x;
    repaintSoon();
  }
  curves.addEventListener("pointermove", (event) => {
    const x = xOfEvent(event);
    pointAt(x >= gutter && x <= gutter + plotWidth() ? x : null);
  });
  curves.addEventListener("pointerleave", () => pointAt(null));
  jump.addEventListener("keydown", (event) => {
    if (event.key === "Enter") act("jumpToTyped");
    if (event.key === "Escape") jump.blur();
  });
  new ResizeObserver(repaintSoon).observe(parts.curvesBox);
  window.addEventListener("resize", repaintSoon); // The number of pixels in a CSS px may have changed.

  // What the page asks for

  /// In CSS px of the window: where the curve of a channel ("A", "C", "G", "T": the trace's own) passes
  /// the called position of a base (1-based). Null when that is not in sight.
  function pixelOf(base, channel) {
    const levels = view?.picture.levels[channelLetters.indexOf(channel)];
    const sample = view?.picture.calls.positions[base - 1];
    if (!levels || sample === undefined) return null;
    settle();
    const level = levelAt(levels, sample);
    if (level === null || !isInSight(base - 1)) return null;
    const scene = sceneOf(parts.curvesBox);
    const rows = rowsOfScene(scene);
    const y = levelScale(scene, rows)(level);
    const box = curves.getBoundingClientRect();
    return {
      x: box.left + xOfSample(scene, sample),
      y: box.top + Math.max(rows.top, y),
      top: box.top + rows.top,
      baseline: box.top + rows.baseline,
      clipped: y < rows.top || level >= 255,
    };
  }

  /// Draws the row in sight on paper: the whole trace in lines of 100 bases.
  function print(row) {
    parts.paper.replaceChildren();
    if (view?.row === row) drawPaper(parts.paper, view);
  }

  return {
    show,
    prefetch: (rows) => store.keep([view?.row, ...rows]),
    key: (event) => Object.hasOwn(actionOfKey, event.key) && act(actionOfKey[event.key]),
    repaint: paint,
    pixelOf,
    base,
    print,
  };
}

/// The sample where the signal of a trace without calls begins.
function signalStart(picture) {
  const limit = (0.1 * picture.inSight * 255) / picture.top;
  const starts = picture.levels.map((levels) => levels.findIndex((level) => level > limit));
  return 2 * Math.min(...starts.map((start) => (start < 0 ? Infinity : start)).concat(picture.levels[0].length));
}

/// Makes the panel's nodes. `act` is called with the name of what a button does.
function buildTracePanel(panel, act) {
  const button = (name, text, title, label) =>
    element("button", { type: "button", text, title, "aria-label": label, onclick: () => act(name) });
  const canvas = () => element("canvas", { role: "img" });
  const parts = {
    sample: element("h2", {}),
    state: element("span", { className: "pill" }),
    facts: element("span", { className: "facts" }),
    sentence: element("p", { className: "trace-sentence" }),
    empty: element("p", { className: "trace-empty", role: "status" }),
    overview: canvas(),
    curves: canvas(),
    readout: element("p", { className: "readout" }),
    notice: element("p", { className: "trace-notice", role: "status" }),
    jump: element("input", {
      type: "text", inputmode: "numeric", size: 5, placeholder: "base (g)", "aria-label": "Go to base", autocomplete: "off",
    }),
    reverse: button("reverse", "Rev. comp.", "Reverse complement (r)"),
    palette: button("palette", "Palette", "Colours for colour-blind people"),
    paper: element("div", { className: "print-trace" }),
  };
  parts.reverse.setAttribute("aria-pressed", "false");
  parts.palette.setAttribute("aria-pressed", "false");
  parts.overviewBox = element("div", { className: "overview-box" }, parts.overview);
  parts.curvesBox = element("div", { className: "curves-box" }, parts.curves);
  const tools = element("div", { className: "trace-tools" },
    button("previousMixed", "◂ mixed", "Mixed base to the left (M)"),
    button("nextMixed", "mixed ▸", "Mixed base to the right (m)"),
    parts.jump,
    button("farther", "−", "Show more bases (-)", "Zoom out"),
    button("closer", "+", "Show fewer bases (+)", "Zoom in"),
    button("whole", "All", "The whole read; 0 goes back"),
    button("lower", "⇣", "Lower peaks ([)", "Lower peaks"),
    button("higher", "⇡", "Higher peaks (])", "Higher peaks"),
    parts.reverse,
    parts.palette,
    button("help", "?", "Keys (?)", "Keys"),
  );
  panel.append(
    element("div", { className: "trace-title" }, parts.sample, parts.state, parts.facts, tools),
    parts.sentence,
    parts.empty,
    parts.overviewBox,
    parts.curvesBox,
    element("div", { className: "readout-line" }, parts.readout, parts.notice),
    parts.paper,
  );
  return parts;
}

/// Writes sample, state, facts and what the state means.
function showTitle(parts, row) {
  const number = (value, text) => value !== null && text(formatNumber(value));
  const facts = [
    row.plate && `plate ${row.plate}`,
    row.well && `well ${row.well}`,
    number(row.capillary, (text) => `capillary ${text}`),
    number(row.bases, (text) => `${text} bases`),
    row.trim_end > 0 && `good ${formatNumber(row.trim_start + 1)} to ${formatNumber(row.trim_end)}`,
    row.trim_end === 0 && "no good stretch",
    row.mean_quality !== null && `mean Q ${row.mean_quality.toFixed(1)}`,
  ];
  parts.sample.textContent = row.sample;
  parts.state.textContent = row.state;
  parts.state.dataset.severity = row.severity;
  parts.facts.textContent = parts.facts.title = facts.filter(Boolean).join(" · ");
  const { text } = stateOf(row.state);
  const detail = row.detail ? ` (${row.detail.replaceAll(/,(?=\S)/g, ", ")})` : "";
  const end = text.search(/[.;:]/);
  parts.sentence.textContent = end < 0 ? text + detail : text.slice(0, end) + detail + text.slice(end);
}

/// The readout at a sample, as nodes; `at` is the base next to it, or null.
function readoutOf(scene, at, sample) {
  const { picture, numbered, comparison } = scene;
  const facts = [];
  if (at !== null) {
    facts.push(`base ${formatNumber(at + 1)}`, shownLetter(scene, numbered.bases[at]), `Q ${numbered.qualities[at]}`);
  }
  facts.push(`sample ${formatNumber(Math.round(sample))}`);
  const heights = [...channelLetters].map((letter, channel) => {
    const level = levelAt(picture.levels[channel], sample);
    if (level === null) return "";
    const shown = shownLetter(scene, letter);
    const height = `${level >= 255 ? "over " : ""}${formatNumber(Math.round((Math.max(0, level) * picture.top) / 255))}`;
    const name = element("b", { text: shown });
    name.style.color = letterColour(shown);
    return element("span", { className: "height" }, name, ` ${height}`);
  });
  const more = [];
  const second = picture.mixed.get(at);
  if (second) {
    more.push(`second ${shownLetter(scene, second.letter)}, ${second.percent} % of the called`);
  }
  const j = comparison && numbered !== picture.reading ? comparison.partners.indexOf(at) : -1;
  if (j >= 0) {
    const letter = shownLetter(scene, picture.reading.bases[j]);
    more.push(`result ${letter}, Q ${picture.reading.qualities[j]}`);
  }
  return [`${facts.join(" · ")} · `, ...heights, ...more.map((text) => `· ${text} `)];
}

/// Follows drags with the primary button from `node`: `begin(event)` returns {move(clientX), end()}, or
/// null for no drag.
function followDrags(node, begin) {
  let drag = null;
  node.addEventListener("pointerdown", (event) => {
    if (event.button !== 0) return;
    drag = begin(event);
    if (drag) node.setPointerCapture(event.pointerId);
  });
  node.addEventListener("pointermove", (event) => drag?.move(event.clientX));
  for (const type of ["pointerup", "pointercancel"]) {
    node.addEventListener(type, () => {
      drag?.end();
      drag = null;
    });
  }
}

/// Appends a canvas for each 100 bases of a view to `paper`; a trace without calls has lines as long.
function drawPaper(paper, view) {
  const left = 46;
  const width = 1030;
  const spacing = spacingOf(view.numbered);
  const { positions } = view.numbered;
  const lines = Math.max(1, Math.ceil((positions.length || view.extent / spacing) / 100));
  const startOf = (line) => {
    const base = 100 * line;
    if (positions.length === 0 || base === 0) return Math.max(0, (positions[0] ?? 0) - spacing);
    return base < positions.length ? (positions[base - 1] + positions[base]) / 2 : positions.at(-1) + spacing;
  };
  for (let line = 0; line < lines; ++line) {
    const from = positions.length > 0 ? startOf(line) : line * 100 * spacing;
    const samples = Math.max(spacing, positions.length > 0 ? startOf(line + 1) - from : 100 * spacing);
    const isFull = 100 * (line + 1) <= positions.length;
    const scale = (width - left) / (isFull ? samples : 100 * spacing);
    const label = `${view.row.sample}, line ${line + 1} of ${lines}`;
    const canvas = element("canvas", { role: "img", "aria-label": label });
    paper.append(canvas);
    const scene = {
      ...view, width, left, from, scale, height: 190, isReversed: false, marked: null, pointer: null,
      right: Math.min(width, left + samples * scale),
    };
    drawTrace(sizedContext(canvas, width, scene.height), scene);
  }
}
