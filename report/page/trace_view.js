// The trace panel: what its keys, its buttons (which name a key each) and the pointer do.

const gutter = 58;
const baseWidth = 15;  // px for a base where a trace opens

/// The operations of the panel; `onBase()` is called when the base in focus may be another.
function createTraceView(panel, onBase) {
  const part = (selector) => panel.querySelector(selector);
  const [curves, overview, jump] = [".curves", ".overview", "input"].map(part);
  const pictures = new Map();  // promises by row
  let view = null;             // the scene in sight but for its sizes
  let request = 0;             // of the latest show(); an earlier one that ends later is dropped
  let frame = null;            // the next painting, where one is due

  const plotWidth = () => Math.max(50, curves.parentNode.clientWidth - gutter - 8);
  const middle = () => gutter + plotWidth() / 2;
  const visible = () => plotWidth() / view.scale;
  const home = () => baseWidth / view.spacing;
  const tell = (text) => (part(".trace-notice").textContent = text);

  /// The scene on a canvas, its scale and place kept within the trace.
  function sceneOn(canvas) {
    const least = Math.min(plotWidth() / view.extent, home());
    view.scale = Math.min(Math.max(view.scale, least), 6 * home());
    view.from = Math.max(0, Math.min(view.from, view.extent - visible()));
    return { ...view, ...placeOn(canvas.parentNode, view.scale) };
  }

  function placeOn({ clientWidth: width, clientHeight: height }, scale) {
    const right = gutter + plotWidth();
    return { width, height, left: gutter, right, scale, pitch: view.spacing * scale };
  }

  /// The base (from 0) whose called position is nearest to x; null without bases.
  function baseNear(x) {
    const sample = sampleAtX(sceneOn(curves), x);
    const gaps = view.numbered.positions.map((position) => Math.abs(position - sample));
    return gaps.length > 0 ? gaps.indexOf(Math.min(...gaps)) : null;
  }

  /// The base in focus, 1-based, or null.
  function base() {
    return view && view.marked !== null ? view.marked + 1 : null;
  }

  function paint() {
    frame = null;
    if (!view) return;
    const scene = sceneOn(curves);
    const { positions } = view.numbered;
    if (!isInside(scene, xOfSample(scene, positions[view.marked]))) {
      scene.marked = view.marked = null;
    }
    part("[data-key=r]").ariaPressed = view.isReversed;
    drawTrace(sizedContext(curves, scene.width, scene.height), scene);
    const place = placeOn(overview.parentNode, plotWidth() / view.extent);
    const pen = sizedContext(overview, place.width, place.height);
    drawOverview(pen, { ...view, ...place, from: 0 }, view.from, visible());
    const { pointer, marked } = view;
    const at = pointer === null ? marked : baseNear(pointer);
    const sample = pointer === null ? positions[at] : sampleAtX(scene, pointer);
    part(".readout").replaceChildren(...readoutOf(scene, at, sample));
    onBase();
  }

  function paintSoon() {
    frame ??= requestAnimationFrame(paint);
  }

  function pictureOf(row) {
    if (!pictures.has(row)) pictures.set(row, readPicture(row));
    return pictures.get(row);
  }

  /// Draws a row; `base` is 1-based, or null for the place where a trace opens. Holds when it is
  /// drawn, or a later call has taken its place.
  async function show(row, base) {
    const mine = ++request;
    tell("");
    if (view?.row !== row) {
      delete panel.dataset.shown;
      showTitle(part, row);
      if (document.readyState === "loading") present(row, "Waiting for the rest of the page.");
      const picture = await pictureOf(row);
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
  }

  /// Puts a base (from 0) into focus and into the middle.
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
  }

  /// Multiplies the scale and leaves the sample at x where it is.
  function zoom(factor) {
    const x = (view.pointer ?? middle()) - gutter;
    const place = view.from + x / view.scale;
    view.scale *= factor;
    sceneOn(curves);
    view.from = place - x / view.scale;
  }

  /// Goes to the next mixed base to the right (1) or left (-1) of the one in focus, or into sight.
  function goToMixed(direction) {
    const step = view.isReversed ? -direction : direction;
    const here = view.marked ?? baseNear(middle() - (direction * plotWidth()) / 2) - step;
    const ahead = [...view.picture.mixed.keys()].filter((base) => step * (base - here) > 0);
    if (ahead.length > 0) goTo(ahead.at(step > 0 ? 0 : -1));
    else tell("No mixed bases this way.");
  }

  const actions = {
    m: () => goToMixed(1),
    M: () => goToMixed(-1),
    "+": () => zoom(1.4),
    "=": () => zoom(1.4),
    "-": () => zoom(1 / 1.4),
    0: () => zoom(home() / view.scale),
    all: () => zoom(0),
    "[": () => (view.sight = Math.min(view.sight * 1.25, view.picture.top)),
    "]": () => (view.sight = Math.max(view.sight / 1.25, 1)),
    ArrowLeft: () => pan(-plotWidth() / 5),
    ArrowRight: () => pan(plotWidth() / 5),
    g: () => jump.select(),
    r: () => {
      const sample = sampleAtX(sceneOn(curves), middle());
      view.isReversed = !view.isReversed;
      centre(sample);
    },
  };

  /// Does what a key asks for; false when that is nothing, or there is no trace to do it to.
  function key(name) {
    if (!view || !Object.hasOwn(actions, name)) return false;
    tell("");
    actions[name]();
    paintSoon();
    return true;
  }

  for (const button of panel.querySelectorAll("[data-key]")) {
    button.onclick = () => key(button.dataset.key);
  }
  jump.addEventListener("keydown", (event) => {
    if (event.key === "Enter" && view) goTo(Number(jump.value) - 1);
    if (event.key === "Enter" || event.key === "Escape") jump.blur();
    paintSoon();
  });

  /// Calls `act(x, event)` for an event on a canvas, and paints.
  function listen(canvas, type, act) {
    canvas.addEventListener(type, (event) => {
      if (!view) return;
      act(event.clientX - canvas.getBoundingClientRect().left, event);
      paintSoon();
    }, { passive: false });
  }

  /// Calls `drag(x, event)` for a press on a canvas and each move until it ends.
  function listenForDrags(canvas, drag) {
    listen(canvas, "pointerdown", (x, event) => {
      canvas.setPointerCapture(event.pointerId);
      drag(x, event);
    });
    listen(canvas, "pointermove", (x, event) => {
      if (canvas.hasPointerCapture(event.pointerId)) drag(x, event);
    });
  }

  let pressed = null;
  let last = null;
  listenForDrags(curves, (x, { type }) => {
    if (type === "pointerdown") pressed = last = x;
    pan(last - x);
    last = x;
  });
  listen(curves, "click", (x) => {
    if (Math.abs(x - pressed) < 4) view.marked = baseNear(x);
  });
  listen(curves, "pointermove", (x) => (view.pointer = isInside(sceneOn(curves), x) ? x : null));
  listen(curves, "pointerleave", () => (view.pointer = null));
  listen(curves, "wheel", (x, event) => {
    const { deltaX, deltaY, shiftKey, ctrlKey } = event;
    if (ctrlKey) return;
    event.preventDefault();
    if (shiftKey || Math.abs(deltaX) > Math.abs(deltaY)) pan(deltaX || deltaY);
    else zoom(Math.exp(-deltaY / 500));
  });

  listenForDrags(overview, (x) => {
    view.from = ((x - gutter) * view.extent) / plotWidth() - visible() / 2;
  });
  new ResizeObserver(paintSoon).observe(curves.parentNode);

  /// In CSS px of the window: where the curve of the trace's own channel (a letter) passes the
  /// called position of a base (1-based). Null when that is not in sight.
  function pixelOf(base, channel) {
    const levels = view?.picture.levels[[...channelLetters].indexOf(channel)];
    const sample = view?.picture.calls.positions[base - 1];
    const level = levels ? levelAt(levels, sample) : null;
    if (level === null) return null;
    const scene = sceneOn(curves);
    const x = xOfSample(scene, sample);
    if (!isInside(scene, x)) return null;
    const { top, baseline, yOf } = rowsOfScene(scene);
    const y = yOf(level);
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
    for (const row of pictures.keys()) {
      if (row !== view?.row && !rows.includes(row)) pictures.delete(row);
    }
    rows.forEach(pictureOf);
  }

  /// Draws the row in sight for paper.
  function print(row) {
    part(".print-trace").replaceChildren();
    if (view && view.row === row) drawPaper(part(".print-trace"), view);
  }

  return { show, prefetch, key, repaint: paint, pixelOf, base, print };
}

/// The scene in which a picture opens: at the first difference of both readings within the good
/// stretch, else at the first good base; whole without calls.
function openingView(row, picture) {
  const { calls, reading } = picture;
  const numbered = calls.bases !== "" || !reading ? calls : reading;
  const { positions } = numbered;
  const spacing = spacingOf(numbered);
  const comparison = compareReadings(calls, reading);
  const { begin, end } = trimOfCalls(calls, row);
  const isGood = (position) => position >= begin && position <= end;
  const start = comparison.differing.find(isGood) ?? positions[row.trim_start ?? 0] ?? 0;
  return {
    row, picture, numbered, spacing, ...comparison,
    extent: picture.pointCount || (positions.at(-1) ?? 0) + Math.ceil(spacing),
    scale: positions.length > 0 ? baseWidth / spacing : 0,
    from: start - 6 * spacing,
    sight: picture.inSight, isReversed: false, marked: null, pointer: null,
  };
}

/// Writes sample, state, facts, and what the state means.
function showTitle(part, row) {
  const facts = [
    row.plate && `plate ${row.plate}`,
    row.well && `well ${row.well}`,
    row.capillary !== null && `capillary ${row.capillary}`,
    row.bases !== null && counted(row.bases, "base"),
    row.contiguous > 0 && `good ${row.trim_start + 1} to ${formatNumber(row.trim_end)}`,
    row.mean_quality !== null && `mean Q ${row.mean_quality.toFixed(1)}`,
  ].filter(Boolean).join(" · ");
  const detail = row.detail && ` (${row.detail})`;
  const sentence = stateByName.get(row.state).text.replace(/(?=[.;:])/, () => detail);
  const say = (place, text) => Object.assign(part(place), { textContent: text, title: text });
  say(".sample", row.sample);
  say(".pill", row.state).dataset.severity = row.severity;
  say(".facts", facts);
  say(".trace-sentence", sentence);
}

/// The readout at a sample, as nodes; `at` is the base next to it, or null.
function readoutOf(scene, at, sample) {
  if (sample === undefined) return ["Point at the curves to read heights."];
  const { picture, numbered } = scene;
  const callOf = ({ bases, qualities }, i) =>
    `${shownLetter(scene, bases[i])} · Q ${qualities[i]}`;
  const call = at === null ? "" : `base ${formatNumber(at + 1)} · ${callOf(numbered, at)} · `;
  const nodes = [`${call}sample ${formatNumber(Math.round(sample))} · `];
  picture.levels.forEach((levels, channel) => {
    const level = levelAt(levels, sample);
    if (level === null) return;
    const letter = element("b", { textContent: shownLetter(scene, channelLetters[channel]) });
    letter.style.color = letterColour(letter.textContent);
    const height = formatNumber(Math.round((level * picture.top) / 255));
    nodes.push(letter, ` ${level >= 255 ? "over " : ""}${height}  `);
  });
  const second = picture.mixed.get(at);
  const letter = second && shownLetter(scene, second.letter);
  if (second) nodes.push(`· second ${letter}, ${second.percent} % of the called `);
  const j = scene.partners.indexOf(at);
  if (j >= 0) nodes.push(`· result ${callOf(picture.reading, j)}`);
  return nodes;
}

/// Appends a canvas for each 100 bases to `paper`; one for all without calls.
function drawPaper(paper, view) {
  const { spacing, numbered: { positions } } = view;
  const [left, width, height] = [46, 1030, 190];
  const after = positions.at(-1) + spacing || view.extent;
  for (let first = 0; first < Math.max(1, positions.length); first += 100) {
    const from = (positions[first] ?? 0) - spacing / 2;
    const length = (positions[first + 100] ?? after) - spacing / 2 - from;
    const scale = (width - left - 16) / Math.max(length, 100 * spacing);
    const ariaLabel = `${view.row.sample} from base ${first + 1}`;
    const canvas = element("canvas", { role: "img", ariaLabel });
    paper.append(canvas);
    drawTrace(sizedContext(canvas, width, height, 2 * devicePixelRatio), {
      ...view, left, right: left + length * scale, width, height, from, scale,
      pitch: spacing * scale, isReversed: false, marked: null, pointer: null,
    });
  }
}
