// The trace panel: what its buttons, keys and the pointer do. Its nodes stand in report.html.

const gutter = 58;
const baseWidth = 15; // px for a base where a trace opens
const actionOfKey = {
  m: "rightMixed", M: "leftMixed", "+": "closer", "=": "closer", "-": "farther", 0: "home",
  "[": "lower", "]": "higher", r: "reverse", g: "jump", ArrowLeft: "left", ArrowRight: "right",
};

/// The operations of the panel. `callbacks` may offer onBase(base), called when the base in focus
/// may be another (1-based, or null), and onHelp().
function createTraceView(panel, callbacks = {}) {
  const part = (selector) => panel.querySelector(selector);
  const [curves, overview, jump] = ["canvas.curves", "canvas.overview", "input"].map(part);
  const pictures = new Map(); // Promises by the index of the row.
  let view = null; // The scene in sight but for its sizes; `home` is the scale in which it opened.
  let request = 0; // Of the latest show(); an earlier one that ends later is dropped.
  let frame = null; // The next painting, where one is due.

  const plotWidth = () => Math.max(50, curves.parentNode.clientWidth - gutter - 8);
  const middle = () => gutter + plotWidth() / 2;
  const visible = () => plotWidth() / view.scale;
  const tell = (text) => (part(".trace-notice").textContent = text);

  /// The scene on a canvas, its scale and place kept within the trace.
  function sceneOn(canvas) {
    const least = Math.min(plotWidth() / view.extent, view.home);
    view.scale = Math.min(Math.max(view.scale, least), 6 * view.home);
    view.from = Math.max(0, Math.min(view.from, view.extent - visible()));
    const { clientWidth: width, clientHeight: height } = canvas.parentNode;
    return { ...view, width, height, left: gutter, right: gutter + plotWidth() };
  }

  /// The base (from 0) whose called position is nearest to x; null without bases.
  function baseNear(x) {
    const sample = sampleAtX(sceneOn(curves), x);
    const gaps = view.numbered.positions.map((position) => Math.abs(position - sample));
    return gaps.length > 0 ? gaps.indexOf(Math.min(...gaps)) : null;
  }

  /// The base in focus, 1-based: the marked one, else the middle one once the view was moved, or
  /// null.
  function base() {
    const focused = view?.marked ?? (view?.isMoved ? baseNear(middle()) : null);
    return focused === null ? null : focused + 1;
  }

  function paint() {
    if (!view) return;
    const scene = sceneOn(curves);
    const { positions } = view.numbered;
    const marked = xOfSample(scene, positions[view.marked]);
    if (!isInside(scene, marked)) scene.marked = view.marked = null;
    drawTrace(sizedContext(curves, scene.width, scene.height), scene);
    const whole = { ...sceneOn(overview), from: 0, scale: plotWidth() / view.extent };
    drawOverview(sizedContext(overview, whole.width, whole.height), whole, view.from, visible());
    const isPointed = view.pointer !== null;
    const at = isPointed ? baseNear(view.pointer) : view.marked;
    const sample = isPointed ? sampleAtX(scene, view.pointer) : positions[at];
    part(".readout").replaceChildren(...readoutOf(scene, at, sample));
    callbacks.onBase?.(base());
  }

  function paintSoon() {
    frame ??= requestAnimationFrame(() => {
      frame = null;
      paint();
    });
  }

  function pictureOf(row) {
    if (!pictures.has(row.index)) pictures.set(row.index, readPicture(row));
    return pictures.get(row.index);
  }

  /// Draws a row; `base` is 1-based, or null for the place where a trace opens. Holds when it is
  /// drawn, or when a later call has taken its place.
  async function show(row, base = null) {
    const mine = ++request;
    tell("");
    if (view?.row !== row) {
      delete panel.dataset.shown;
      showTitle(part, row);
      const slow = setTimeout(present, 150, row, "Waiting for the rest of the page.");
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
    part(".trace-empty").textContent = isText ? picture : "";
    panel.classList.toggle("without-picture", isText);
    part("[data-action=reverse]").ariaPressed = "false";
  }

  /// Puts a base (from 0) into focus and into the middle; says so if there is none.
  function goTo(base) {
    const { positions } = view.numbered;
    if (!(base in positions)) return tell(`This read has ${counted(positions.length, "base")}.`);
    view.marked = base;
    centre(positions[base]);
  }

  function centre(sample) {
    sceneOn(curves);
    view.from = (view.isReversed ? view.extent - 1 - sample : sample) - visible() / 2;
  }

  function pan(pixels) {
    view.from += pixels / view.scale;
    view.isMoved = true;
    paintSoon();
  }

  /// Multiplies the scale and leaves the sample at x where it is.
  function zoom(factor) {
    const x = (view.pointer ?? middle()) - gutter;
    const place = view.from + x / view.scale;
    view.scale *= factor;
    sceneOn(curves);
    view.from = place - x / view.scale;
    pan(0);
  }

  function changeHeight(factor) {
    view.sight = Math.min(Math.max(view.sight / factor, 1), view.picture.top);
  }

  /// Goes to the next mixed base to the right (1) or left (-1) of the one in focus, or into sight.
  function goToMixed(direction) {
    const step = view.isReversed ? -direction : direction;
    const here = view.marked ?? baseNear(middle() - (direction * plotWidth()) / 2) - step;
    const ahead = [...view.picture.mixed.keys()].filter((base) => step * (base - here) > 0);
    if (ahead.length > 0) goTo(ahead.at(step > 0 ? 0 : -1));
    else tell(view.picture.mixed.size > 0 ? "No more mixed bases this way." : "No mixed bases.");
  }

  const actions = {
    leftMixed: () => goToMixed(-1),
    rightMixed: () => goToMixed(1),
    closer: () => zoom(1.4),
    farther: () => zoom(1 / 1.4),
    home: () => zoom(view.home / view.scale),
    whole: () => zoom(0),
    lower: () => changeHeight(1 / 1.25),
    higher: () => changeHeight(1.25),
    left: () => pan(-plotWidth() / 5),
    right: () => pan(plotWidth() / 5),
    jump: () => jump.select(),
    reverse: () => {
      const sample = sampleAtX(sceneOn(curves), middle());
      view.isReversed = !view.isReversed;
      part("[data-action=reverse]").ariaPressed = view.isReversed;
      centre(sample);
    },
  };

  /// Does what a button or a key asks for; false when there is no trace to do it to.
  function act(name) {
    if (name === "help") callbacks.onHelp?.();
    else if (name === "palette") switchPalette(part("[data-action=palette]"));
    else if (!view) return false;
    else {
      tell("");
      actions[name]();
      paintSoon();
    }
    return true;
  }

  for (const button of panel.querySelectorAll("button")) {
    button.addEventListener("click", () => act(button.dataset.action));
  }
  jump.addEventListener("keydown", ({ key }) => {
    if (key === "Enter" && view) goTo(Number(jump.value.replaceAll(",", "")) - 1);
    if (key === "Enter" || key === "Escape") jump.blur();
    paintSoon();
  });

  // Dragging the curves moves them, dragging the overview moves its box; a press outside of the box
  // brings its middle there first. A press on the curves without a move puts a base into focus.
  for (const canvas of [curves, overview]) {
    let pressed = 0;
    let last = null;
    const listen = (type, act) => canvas.addEventListener(type, (event) => {
      if (view) act(event.clientX - canvas.getBoundingClientRect().left, event);
    });
    listen("pointerdown", (x, event) => {
      if (event.button !== 0) return;
      canvas.setPointerCapture(event.pointerId);
      pressed = last = x;
      const inBox = ((x - gutter) * view.extent) / plotWidth() - view.from;
      if (canvas === curves || (inBox >= 0 && inBox <= visible())) return;
      view.from += inBox - visible() / 2;
      pan(0);
    });
    listen("pointermove", (x) => {
      if (last !== null) {
        pan((x - last) * (canvas === curves ? -1 : view.extent / visible()));
        last = x;
      }
      view.pointer = canvas === curves && isInside(sceneOn(curves), x) ? x : null;
      paintSoon();
    });
    listen("pointerleave", () => {
      view.pointer = null;
      paintSoon();
    });
    listen("click", (x) => {
      if (canvas === curves && Math.abs(x - pressed) < 4) view.marked = baseNear(x);
      paintSoon();
    });
    canvas.addEventListener("lostpointercapture", () => (last = null));
  }
  curves.addEventListener("wheel", (event) => {
    if (!view || event.ctrlKey) return;
    event.preventDefault();
    const { deltaX, deltaY, shiftKey } = event;
    if (shiftKey || Math.abs(deltaX) > Math.abs(deltaY)) pan(deltaX || deltaY);
    else zoom(Math.exp(-deltaY / 500));
  }, { passive: false });
  new ResizeObserver(paintSoon).observe(curves.parentNode);
  window.addEventListener("resize", paintSoon); // The pixels in a CSS px may be others.

  /// In CSS px of the window: where the curve of a channel (a letter; the trace's own channel)
  /// passes the called position of a base (1-based). Null when that is not in sight.
  function pixelOf(base, channel) {
    const levels = view?.picture.levels[channelLetters.indexOf(channel)];
    const sample = view?.picture.calls.positions[base - 1];
    const level = levels ? levelAt(levels, sample) : null;
    if (level === null) return null;
    const scene = sceneOn(curves);
    const x = xOfSample(scene, sample);
    if (!isInside(scene, x)) return null;
    const { top, baseline } = rowsOfScene(scene);
    const y = levelScale(scene, { top, baseline })(level);
    const box = curves.getBoundingClientRect();
    return {
      x: box.x + x,
      y: box.y + Math.max(top, y),
      top: box.y + top,
      baseline: box.y + baseline,
      clipped: y < top || level >= 255,
    };
  }

  /// Unpacks the pictures of these rows ahead, and lets go of all but these and the one in sight.
  function prefetch(rows) {
    const kept = new Set([view?.row, ...rows].map((row) => row?.index));
    for (const index of pictures.keys()) if (!kept.has(index)) pictures.delete(index);
    rows.forEach(pictureOf);
  }

  /// Draws the row in sight for paper, whole; the pictures of others are not at hand.
  function print(row) {
    part(".print-trace").replaceChildren();
    if (view?.row === row) drawPaper(part(".print-trace"), view);
  }

  const key = (event) => Object.hasOwn(actionOfKey, event.key) && act(actionOfKey[event.key]);
  return { show, prefetch, key, repaint: paint, pixelOf, base, print };
}

/// The scene in which a picture opens: at the first difference of both readings within the good
/// stretch, else at the first good base, else where the signal begins.
function openingView(row, picture) {
  const { calls, reading, levels } = picture;
  const hasCalls = calls.bases.length > 0;
  const numbered = hasCalls || !reading ? calls : reading;
  const spacing = spacingOf(numbered);
  const view = {
    row, picture, numbered, spacing,
    comparison: hasCalls && reading ? compareReadings(calls, reading) : null,
    extent: picture.pointCount || Math.max(0, ...numbered.positions) + Math.ceil(spacing),
    home: baseWidth / spacing, scale: baseWidth / spacing, sight: picture.inSight,
    isReversed: false, isMoved: false, marked: null, pointer: null,
  };
  const limit = (0.1 * picture.inSight * 255) / picture.top;
  const isSignal = (_, k) => levels.some((channel) => channel[k] > limit);
  const start = firstDifference(view) ?? numbered.positions[row.trim_start ?? 0] ??
    2 * levels[0].findIndex(isSignal);
  return { ...view, from: start - 6 * spacing };
}

/// Writes sample, state and facts, and what the state means.
function showTitle(part, row) {
  const facts = [
    row.plate && `plate ${row.plate}`,
    row.well && `well ${row.well}`,
    row.capillary !== null && `capillary ${row.capillary}`,
    row.bases !== null && counted(row.bases, "base"),
    row.contiguous > 0 && `good ${row.trim_start + 1} to ${formatNumber(row.trim_end)}`,
    row.mean_quality !== null && `mean Q ${row.mean_quality.toFixed(1)}`,
  ];
  const detail = row.detail && ` (${row.detail.replaceAll(/,(?=\S)/g, ", ")})`;
  part(".sample").textContent = row.sample;
  part(".pill").textContent = row.state;
  part(".pill").dataset.severity = row.severity;
  part(".facts").textContent = part(".facts").title = facts.filter(Boolean).join(" · ");
  const sentence = stateOf(row.state).text.replace(/(?=[.;:])/, () => detail);
  part(".trace-sentence").textContent = part(".trace-sentence").title = sentence;
}

/// The readout at a sample, as nodes; `at` is the base next to it, or null.
function readoutOf(scene, at, sample) {
  if (sample === undefined) return ["Point at the curves to read heights."];
  const { picture, numbered, comparison } = scene;
  const callOf = ({ bases, qualities }, i) => `${shownLetter(scene, bases[i])} · Q ${qualities[i]}`;
  const call = at === null ? "" : `base ${formatNumber(at + 1)} · ${callOf(numbered, at)} · `;
  const nodes = [`${call}sample ${formatNumber(Math.round(sample))} · `];
  picture.levels.forEach((levels, channel) => {
    const level = levelAt(levels, sample);
    if (level === null) return;
    const letter = element("b", { text: shownLetter(scene, channelLetters[channel]) });
    letter.style.color = letterColour(letter.textContent);
    const height = formatNumber(Math.round((level * picture.top) / 255));
    nodes.push(letter, ` ${level >= 255 ? "over " : ""}${height}  `);
  });
  const second = picture.mixed.get(at);
  const letter = second && shownLetter(scene, second.letter);
  if (second) nodes.push(`· second ${letter}, ${second.percent} % of the called `);
  const j = comparison ? comparison.partners.indexOf(at) : -1;
  if (j >= 0) nodes.push(`· result ${callOf(picture.reading, j)}`);
  return nodes;
}

function switchPalette(button) {
  const isOther = button.ariaPressed === "false";
  button.ariaPressed = isOther;
  document.documentElement.dataset.palette = isOther ? "2" : "1";
  forgetColours();
  document.dispatchEvent(new Event("colours"));
}

/// Appends a canvas for each 100 bases of a view to `paper`; without calls, for as many samples.
function drawPaper(paper, view) {
  const { spacing, numbered } = view;
  const steps = Array.from({ length: Math.ceil(view.extent / spacing) }, (_, i) => i * spacing);
  const starts = numbered.positions.length > 0 ? numbered.positions : steps;
  const after = (base) => starts.at(-1) + spacing * (base - starts.length + 1);
  const startOf = (base) => (starts[base] ?? after(base)) - spacing / 2;
  const [left, width, height] = [46, 1030, 190];
  for (let first = 0; first < starts.length; first += 100) {
    const from = startOf(first);
    const scale = (width - left) / (startOf(first + 100) - from);
    const right = left + (startOf(Math.min(starts.length, first + 100)) - from) * scale;
    const place = { left, right, width, height, from, scale, isReversed: false, marked: null };
    const label = `${view.row.sample} from base ${first + 1}`;
    const canvas = element("canvas", { role: "img", "aria-label": label });
    paper.append(canvas);
    const pen = sizedContext(canvas, 2 * width, 2 * height); // Finer than a screen.
    pen.scale(2, 2);
    drawTrace(pen, { ...view, ...place, pointer: null });
  }
}
