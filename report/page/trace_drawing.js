// Draws a trace: on the screen's canvases and on those for paper.
//
// A scene says what and where: `row` and its `picture`; `numbered`, the calls that numbers count (the
// trace's own, or the result's where the trace has none); `comparison` of both readings, or null; `width`
// and `height` of the canvas and `left` and `right` edge of the curves, in CSS px; `extent`, the samples
// of the trace; `from`, the sample at the left edge (counted from the end if `isReversed`: reverse
// complement); `scale`, px for a sample; `sight`, the amplitude at the upper edge; `marked`, the base in
// focus (from 0), and `pointer`, its x, or null.

const complements = { A: "T", C: "G", G: "C", T: "A", a: "t", c: "g", g: "c", t: "a" };
const barHeight = 26;

/// The letter of a base as the scene shows it.
function shownLetter(scene, letter) {
  return scene.isReversed ? complements[letter] ?? letter : letter;
}

function letterColour(letter) {
  return colourOf(/^[acgt]$/i.test(letter) ? `--base-${letter.toLowerCase()}` : "--base-n");
}

function xOfSample(scene, sample) {
  const place = scene.isReversed ? scene.extent - 1 - sample : sample;
  return scene.left + (place - scene.from) * scene.scale;
}

/// The sample at x, perhaps outside of the trace.
function sampleAtX(scene, x) {
  const place = scene.from + (x - scene.left) / scene.scale;
  return scene.isReversed ? scene.extent - 1 - place : place;
}

/// y of the middles of the rows, and of the curves' edges.
function rowsOfScene(scene) {
  const letters = 54;
  const result = letters + (scene.picture.mixed.size > 0 ? 33 : 20);
  const top = (scene.picture.reading ? result + 22 : result) + 2;
  return { bars: 17, letters, second: 68, result, top, baseline: Math.max(top + 20, scene.height - 7) };
}

/// A function that gives the y of a level.
function levelScale({ picture, sight }, { top, baseline }) {
  const unit = ((baseline - top) * picture.top) / (255 * sight);
  return (level) => baseline - level * unit;
}

/// The good stretch in samples, its borders halfway to the neighbours. Without figures it is the whole
/// trace; it is empty where nothing is good.
function trimOfCalls({ positions }, row) {
  const border = (i) => (positions[i - 1] + positions[i]) / 2;
  if (row.trim_end === 0) return { begin: Infinity, end: Infinity };
  return {
    begin: row.trim_start > 0 ? border(row.trim_start) : -Infinity,
    end: row.trim_end < positions.length ? border(row.trim_end) || Infinity : Infinity,
  };
}

/// The least step of 1, 2 or 5 times a power of ten that is not below `least`.
function roundStep(least) {
  const power = 10 ** Math.floor(Math.log10(Math.max(1, least)));
  return [1, 2, 5, 10].map((digit) => digit * power).find((step) => step >= least);
}

function write(context, text, x, y, align = "center", colour = colourOf("--faint"), font = "11px") {
  context.font = `${font} system-ui, sans-serif`;
  context.textAlign = align;
  context.textBaseline = "middle";
  context.fillStyle = colour;
  context.fillText(text, x, y);
}

function isInside({ left, right }, x) {
  return x >= left && x <= right;
}

/// Calls `visit(i, x)` for each base of these calls that is in sight.
function visitBases(scene, { positions }, visit) {
  positions.forEach((position, i) => {
    const x = xOfSample(scene, position);
    if (isInside(scene, x)) visit(i, x);
  });
}

/// The trimmed ends and the base in focus, below all else.
function drawGround(context, scene, rows) {
  const inside = (x) => Math.min(Math.max(x, scene.left), scene.right);
  const trim = trimOfCalls(scene.picture.calls, scene.row);
  for (const ends of [[0, Math.min(trim.begin, scene.extent)], [trim.end, scene.extent]]) {
    const [x, end] = ends.map((sample) => inside(xOfSample(scene, sample))).sort((a, b) => a - b);
    if (ends[0] >= ends[1] || end <= x) continue;
    context.fillStyle = colourOf("--shade");
    context.fillRect(x, rows.bars, end - x, rows.baseline - rows.bars);
    if (end - x > 60) write(context, "trimmed", (x + end) / 2, rows.top + 8);
  }
  const marked = scene.numbered.positions[scene.marked];
  if (marked === undefined) return;
  const width = Math.max(4, spacingOf(scene.numbered) * scene.scale * 0.9);
  context.fillStyle = colourOf("--choice");
  context.fillRect(xOfSample(scene, marked) - width / 2, 0, width, rows.baseline);
}

/// The zero line, and lines and numbers in the instrument's units.
function drawScale(context, scene, rows) {
  const yOf = levelScale(scene, rows);
  const step = roundStep((55 * scene.sight) / (rows.baseline - rows.top));
  for (let height = 0; height <= scene.sight; height += step) {
    const y = Math.round(yOf((height * 255) / scene.picture.top));
    context.fillStyle = colourOf(height === 0 ? "--faint" : "--line");
    context.fillRect(scene.left, y, scene.right - scene.left, 1);
    write(context, formatNumber(height), scene.left - 6, y, "right");
  }
}

/// The four curves, and a triangle over each peak that leaves the picture: hollow where the page holds no
/// more of it.
function drawCurves(context, scene, rows) {
  const { picture, left, right, scale } = scene;
  const ends = [left, right].map((x) => sampleAtX(scene, x) / 2).sort((a, b) => a - b);
  const first = Math.max(0, Math.floor(ends[0]) - 1);
  const last = Math.min(picture.levels[0].length - 1, Math.ceil(ends[1]) + 1);
  if (last <= first) return;
  const xOf = (sample) => xOfSample(scene, sample);
  const isDense = 4 * scale < 1;
  context.lineJoin = "round";
  picture.levels.forEach((levels, channel) => {
    context.strokeStyle = context.fillStyle = letterColour(shownLetter(scene, channelLetters[channel]));
    context.save();
    context.beginPath();
    context.rect(left, rows.top - 2, right - left, rows.baseline - rows.top + 6);
    context.clip();
    context.lineWidth = isDense ? 1 : 1.7;
    context.beginPath();
    addCurve(context, levels, first, last, xOf, levelScale(scene, rows), isDense);
    context.stroke();
    context.restore();
    let before = left - 9;
    for (const k of cutSamples(levels, first, last, (scene.sight * 255) / picture.top)) {
      const x = xOf(2 * k);
      if (!isInside(scene, x) || Math.abs(x - before) < 9) continue;
      before = x;
      context.beginPath();
      context.moveTo(x - 4, rows.top - 3);
      context.lineTo(x + 4, rows.top - 3);
      context.lineTo(x, rows.top - 10);
      context.closePath();
      if (levels[k] === 255) context.stroke();
      else context.fill();
    }
  });
}

/// Bars of qualities from `bottom` upwards, `height` px for 60: one for each base, or the mean of 2 px
/// where bases stand closer than 3 px. `isPale(x)` tells which are.
function drawBars(context, scene, bottom, height, isPale) {
  const spacing = spacingOf(scene.numbered) * scene.scale;
  const width = spacing < 3 ? 2 : Math.min(14, spacing * 0.62);
  const columns = new Map();
  visitBases(scene, scene.numbered, (i, x) => {
    const at = spacing < 3 ? 2 * Math.round(x / 2) : x;
    const column = columns.get(at) ?? { total: 0, count: 0 };
    columns.set(at, { total: column.total + scene.numbered.qualities[i], count: column.count + 1 });
  });
  for (const [x, { total, count }] of columns) {
    const quality = total / count;
    const size = Math.max(1, (Math.min(quality, 60) / 60) * height);
    context.globalAlpha = isPale(x) ? 0.4 : 1;
    context.fillStyle = colourOf(quality < 20 ? "--low" : "--bar");
    context.fillRect(x - width / 2, bottom - size, width, size);
  }
  context.globalAlpha = 1;
}

/// Quality bars with a line at 20, and the numbers of every tenth base, or of fewer where they would
/// touch.
function drawQualities(context, scene, rows) {
  const bottom = rows.bars + barHeight;
  drawBars(context, scene, bottom, barHeight, () => false);
  const y = Math.round(bottom - barHeight / 3);
  write(context, "Q 20", scene.left - 6, y, "right");
  for (let x = scene.left; x < scene.right; x += 6) context.fillRect(x, y, 2, 1);
  const step = Math.max(10, roundStep(60 / (spacingOf(scene.numbered) * scene.scale)));
  visitBases(scene, scene.numbered, (i, x) => {
    if ((i + 1) % step !== 0) return;
    write(context, formatNumber(i + 1), x, 6);
    context.fillRect(x - 0.5, 13, 1, 4);
  });
}

/// The letters of calls with their middles at y: pale below quality 20; ticks where they would not be
/// legible, nothing where these would not be.
function drawLetters(context, scene, calls, y) {
  const spacing = spacingOf(calls) * scene.scale;
  if (spacing < 2) return;
  const font = `bold ${Math.min(13.5, Math.max(9, spacing * 1.2))}px`;
  visitBases(scene, calls, (i, x) => {
    const letter = shownLetter(scene, calls.bases[i]);
    context.globalAlpha = calls.qualities[i] < 20 ? 0.5 : 1;
    context.fillStyle = letterColour(letter);
    if (spacing >= 6) write(context, letter, x, y, "center", context.fillStyle, font);
    else context.fillRect(x - spacing * 0.35, y - 5, spacing * 0.7, 10);
  });
  context.globalAlpha = 1;
}

/// The second base under each mixed one, with a mark that stays when there is no room for letters.
function drawSeconds(context, scene, y) {
  const { calls, mixed } = scene.picture;
  const spacing = spacingOf(calls) * scene.scale;
  const width = Math.max(2, Math.min(9, spacing * 0.7));
  visitBases(scene, calls, (i, x) => {
    if (!mixed.has(i)) return;
    const letter = shownLetter(scene, mixed.get(i).letter);
    if (spacing >= 6) write(context, letter, x, y, "center", letterColour(letter), "bold 11px");
    context.fillStyle = colourOf("--mixed");
    context.fillRect(x - width / 2, y + 6, width, 2.5);
  });
}

/// The letters of the second reading at their own positions: boxed where they are other than the trace's
/// own, underlined where only quality or position differ, a dash where a base is missing.
function drawReading(context, scene, y) {
  const { picture, comparison } = scene;
  drawLetters(context, scene, picture.reading, y);
  const width = Math.max(2, Math.min(14, spacingOf(picture.reading) * scene.scale - 1));
  context.strokeStyle = context.fillStyle = colourOf("--untrusted");
  context.lineWidth = 1.3;
  if (!comparison) return;
  visitBases(scene, picture.reading, (j, x) => {
    if (comparison.kinds[j] === 2) context.strokeRect(x - width / 2, y - 8.5, width, 17);
    if (comparison.kinds[j] === 1) context.fillRect(x - width / 2, y + 7, width, 1.5);
  });
  const missing = { positions: comparison.missing.map((i) => picture.calls.positions[i]) };
  visitBases(scene, missing, (_, x) => context.fillRect(x - 4, y - 1, 8, 2));
}

/// Draws a whole scene.
function drawTrace(context, scene) {
  const { picture, numbered, comparison, left } = scene;
  const rows = rowsOfScene(scene);
  drawGround(context, scene, rows);
  if (picture.pointCount > 0) drawScale(context, scene, rows);
  if (numbered.bases.length > 0) drawQualities(context, scene, rows);
  drawLetters(context, scene, picture.calls, rows.letters);
  drawSeconds(context, scene, rows.second);
  if (picture.reading) {
    drawReading(context, scene, rows.result);
    if (comparison) write(context, "trace", left - 6, rows.letters, "right");
    write(context, "result", left - 6, rows.result, "right");
  }
  if (picture.pointCount > 0) drawCurves(context, scene, rows);
  else write(context, "no trace, only a result", left, rows.top + 8, "left");
  if (scene.pointer === null) return;
  context.fillStyle = colourOf("--faint");
  context.fillRect(Math.round(scene.pointer), rows.bars, 1, rows.baseline - rows.bars);
}

/// Draws the whole read: qualities, mixed bases as ticks, a box around the `visible` samples that begin at
/// `from`. A trace without calls shows its signal.
function drawOverview(context, scene, from, visible) {
  const { picture, height, left, scale } = scene;
  const trim = trimOfCalls(picture.calls, scene.row);
  drawBars(context, scene, height - 1, height - 9, (x) => {
    const sample = sampleAtX(scene, x);
    return sample < trim.begin || sample > trim.end;
  });
  if (scene.numbered.bases.length === 0) drawCurves(context, scene, { top: 12, baseline: height - 2 });
  context.fillStyle = colourOf("--mixed");
  visitBases(scene, picture.calls, (i, x) => picture.mixed.has(i) && context.fillRect(x - 1, 1, 2, 6));
  context.fillStyle = colourOf("--untrusted");
  const isOther = (j) => scene.comparison?.kinds[j] === 2;
  if (picture.reading) visitBases(scene, picture.reading, (j, x) => isOther(j) && context.fillRect(x - 1, 1, 2, 5));
  context.strokeStyle = colourOf("--ink");
  context.lineWidth = 1.5;
  const width = Math.min(visible, scene.extent) * scale;
  context.strokeRect(left + from * scale + 0.75, 0.75, Math.max(4, width - 1.5), height - 1.5);
}
