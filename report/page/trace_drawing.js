// Draws a trace: on the screen's canvases and on those for paper.
//
// A scene says what to draw and where:
//   picture, row         the trace; `numbered` are the calls that base numbers count: the trace's own,
//                        or those of the result where the trace has none
//   comparison           of both readings; null without a second one
//   width, height        of the canvas in CSS px; `left` and `right` are the curves' edges
//   from, scale          the sample at the left edge (from the right end under reverse complement), and
//                        px for one sample
//   extent               samples from the trace's start to its end
//   isReversed           reverse complement
//   sight                the amplitude at the upper edge of the curves
//   marked, pointer      base (from 0) in focus, x of the pointer; null without

const complements = { A: "T", C: "G", G: "C", T: "A", a: "t", c: "g", g: "c", t: "a" };
const goodQuality = 20;
const highQuality = 60;
const barHeight = 26;
const noTrim = { begin: -Infinity, end: Infinity };

/// The letter of a base as the scene shows it.
function shownLetter(scene, letter) {
  return scene.isReversed ? complements[letter] ?? letter : letter;
}

/// The colour of a letter as shown.
function letterColour(letter) {
  const isBase = channelLetters.includes(letter.toUpperCase());
  return colourOf(isBase ? `--base-${letter.toLowerCase()}` : "--base-n");
}

/// x of a sample.
function xOfSample(scene, sample) {
  const place = scene.isReversed ? scene.extent - 1 - sample : sample;
  return scene.left + (place - scene.from) * scene.scale;
}

/// The sample at x, perhaps outside of the trace.
function sampleAtX(scene, x) {
  const place = scene.from + (x - scene.left) / scene.scale;
  return scene.isReversed ? scene.extent - 1 - place : place;
}

/// Where the rows of a scene stand: y of their upper edges, and of the curves' edges.
function rowsOfScene(scene) {
  const bars = 17;
  const letters = bars + barHeight + 3;
  const seconds = letters + 17;
  const result = seconds + (scene.picture.mixed.size > 0 ? 16 : 0);
  const top = result + (scene.comparison ? 20 : 0) + 12;
  return { bars, letters, seconds, result, top, baseline: Math.max(top + 20, scene.height - 8) };
}

/// y of a level, for the scene's rows.
function levelScale(scene, rows) {
  const unit = ((rows.baseline - rows.top) * scene.picture.top) / (255 * scene.sight);
  return (level) => rows.baseline - level * unit;
}

/// The good stretch in samples, its borders halfway to the neighbours; null where it is unknown, and
/// empty where nothing is good.
function trimOfScene({ picture, row }) {
  const { positions } = picture.calls;
  if (row.trim_end === null || positions.length === 0) return null;
  if (row.trim_end === 0) return { begin: Infinity, end: Infinity };
  const border = (i) => (positions[i - 1] + positions[i]) / 2;
  return {
    begin: row.trim_start > 0 ? border(row.trim_start) : -Infinity,
    end: row.trim_end < positions.length ? border(row.trim_end) : Infinity,
  };
}

/// A step of 1, 2 or 5 times a power of ten that divides `range` into at most `most` parts.
function roundStep(range, most) {
  const rough = Math.max(1, range / most);
  const power = 10 ** Math.floor(Math.log10(rough));
  return [1, 2, 5, 10].map((digit) => digit * power).find((step) => step >= rough);
}

function setFont(context, size, isBold) {
  context.font = `${isBold ? "bold " : ""}${size}px ${getComputedStyle(context.canvas).fontFamily}`;
}

/// Draws the trimmed ends, the base in focus and the lines of the scale, which lie below all else.
function drawGround(context, scene, rows) {
  const { left, right, height } = scene;
  const trim = trimOfScene(scene);
  const shade = (from, to) => {
    const begin = Math.max(left, Math.min(from, to));
    const end = Math.min(right, Math.max(from, to));
    if (end <= begin) return;
    context.fillStyle = colourOf("--shade");
    context.fillRect(begin, rows.bars, end - begin, height - rows.bars);
    context.fillStyle = colourOf("--faint");
    if (end - begin > 60) context.fillText("trimmed", (begin + end) / 2, rows.top - 5);
  };
  setFont(context, 11);
  context.textAlign = "center";
  if (trim) {
    const start = xOfSample(scene, scene.isReversed ? scene.extent : 0);
    const end = xOfSample(scene, scene.isReversed ? 0 : scene.extent);
    const borders = [trim.begin, trim.end].map((at) => Math.min(Math.max(at, 0), scene.extent));
    const [first, last] = borders.map((at) => xOfSample(scene, at)).sort((a, b) => a - b);
    shade(start, first);
    if (first !== last || last < end) shade(last, end);
  }
  if (scene.marked !== null) {
    const x = xOfSample(scene, scene.numbered.positions[scene.marked]);
    const width = Math.max(4, spacingOf(scene.numbered) * scene.scale * 0.9);
    context.fillStyle = colourOf("--choice");
    if (x >= left && x <= right) context.fillRect(x - width / 2, 0, width, height);
  }
}

/// Draws the zero line and the lines and numbers of the scale, in the instrument's units.
function drawScale(context, scene, rows) {
  const yOf = levelScale(scene, rows);
  const step = roundStep(scene.sight, Math.max(2, (rows.baseline - rows.top) / 38));
  setFont(context, 11);
  context.textAlign = "right";
  context.textBaseline = "middle";
  for (let height = 0; height <= scene.sight; height += step) {
    const y = yOf((height * 255) / scene.picture.top);
    context.fillStyle = colourOf(height === 0 ? "--faint" : "--line");
    context.fillRect(scene.left, Math.round(y) - (height === 0 ? 0 : 0.5), scene.right - scene.left, 1);
    context.fillStyle = colourOf("--faint");
    context.fillText(formatNumber(height), scene.left - 6, y);
  }
}

/// Draws the four curves, and a triangle over each peak that leaves the picture: hollow where the page
/// holds no more of it.
function drawCurves(context, scene, rows) {
  const { picture, left, right, scale } = scene;
  const kept = picture.levels[0].length;
  const ends = [left, right].map((x) => sampleAtX(scene, x) / 2).sort((a, b) => a - b);
  const first = Math.max(0, Math.floor(ends[0]) - 1);
  const last = Math.min(kept - 1, Math.ceil(ends[1]) + 1);
  if (last <= first) return;
  const yOf = levelScale(scene, rows);
  const xOf = (sample) => xOfSample(scene, sample);
  const limit = (scene.sight * 255) / picture.top;
  const add = 4 * scale < 1 ? addDenseCurve : addCurve;
  context.lineJoin = "round";
  [...channelLetters].forEach((letter, channel) => {
    const levels = picture.levels[channel];
    context.save();
    context.beginPath();
    context.rect(left, rows.top, right - left, rows.baseline - rows.top + 4);
    context.clip();
    context.strokeStyle = context.fillStyle = letterColour(shownLetter(scene, letter));
    context.lineWidth = 4 * scale < 1 ? 1 : 1.6;
    context.beginPath();
    add(context, levels, first, last, xOf, yOf);
    context.stroke();
    context.restore();
    context.strokeStyle = context.fillStyle = letterColour(shownLetter(scene, letter));
    drawCuts(context, scene, rows, cutPeaks(levels, first, last, limit));
  });
}

function drawCuts(context, scene, rows, peaks) {
  let before = -Infinity;
  context.lineWidth = 1.2;
  for (const { sample, level } of peaks) {
    const x = xOfSample(scene, sample);
    if (x < scene.left || x > scene.right || Math.abs(x - before) < 9) continue;
    before = x;
    context.beginPath();
    context.moveTo(x - 4, rows.top - 2);
    context.lineTo(x + 4, rows.top - 2);
    context.lineTo(x, rows.top - 9);
    context.closePath();
    if (level === 255) context.stroke();
    else context.fill();
  }
}

/// Calls `visit(i, x)` for each base of these calls that is in sight.
function visitBases(scene, calls, visit) {
  for (let i = 0; i < calls.positions.length; ++i) {
    const x = xOfSample(scene, calls.positions[i]);
    if (x >= scene.left - 1 && x <= scene.right + 1) visit(i, x);
  }
}

/// Draws bars of the qualities, or of means where bases stand closer than 3 px, and a line at 20.
function drawQualities(context, scene, rows) {
  const { numbered, left, right } = scene;
  const spacing = spacingOf(numbered) * scene.scale;
  const bottom = rows.bars + barHeight;
  const bar = (x, width, quality) => {
    const size = Math.max(1, (Math.min(quality, highQuality) / highQuality) * barHeight);
    context.fillStyle = colourOf(quality < goodQuality ? "--low" : "--bar");
    context.fillRect(x - width / 2, bottom - size, width, size);
  };
  if (spacing >= 3) {
    const width = Math.min(14, spacing * 0.62);
    visitBases(scene, numbered, (i, x) => bar(x, width, numbered.qualities[i]));
  } else {
    drawMeans(scene, numbered, 2, bar);
  }
  const line = bottom - (goodQuality / highQuality) * barHeight;
  context.fillStyle = colourOf("--faint");
  for (let x = left; x < right; x += 6) context.fillRect(x, Math.round(line), 2, 1);
  setFont(context, 11);
  context.textAlign = "right";
  context.textBaseline = "middle";
  context.fillText("Q 20", left - 6, line);
}

/// Calls `bar(x, width, quality)` with the mean quality of the bases in each column of `width` px.
function drawMeans(scene, calls, width, bar) {
  const sums = new Map();
  visitBases(scene, calls, (i, x) => {
    const column = Math.floor(x / width);
    const sum = sums.get(column) ?? { total: 0, count: 0 };
    sum.total += calls.qualities[i];
    ++sum.count;
    sums.set(column, sum);
  });
  for (const [column, { total, count }] of sums) bar((column + 0.5) * width, width, total / count);
}

/// Draws the numbers of every tenth base, or of fewer where they would touch.
function drawNumbers(context, scene) {
  const step = Math.max(10, roundStep(60 / (spacingOf(scene.numbered) * scene.scale), 1));
  setFont(context, 11);
  context.textAlign = "center";
  context.textBaseline = "middle";
  context.fillStyle = colourOf("--faint");
  visitBases(scene, scene.numbered, (i, x) => {
    if ((i + 1) % step !== 0) return;
    context.fillText(formatNumber(i + 1), x, 6);
    context.fillRect(Math.round(x) - 0.5, 13, 1, 4);
  });
}

/// Draws the letters of calls centred at y: pale below quality 20, and as ticks where they would not be
/// legible.
function drawLetters(context, scene, calls, y) {
  const spacing = spacingOf(calls) * scene.scale;
  if (spacing < 2) return;
  const size = Math.min(13.5, Math.max(9, spacing * 1.2));
  setFont(context, size, true);
  context.textAlign = "center";
  context.textBaseline = "middle";
  visitBases(scene, calls, (i, x) => {
    const letter = shownLetter(scene, calls.bases[i]);
    context.fillStyle = letterColour(letter);
    context.globalAlpha = calls.qualities[i] < goodQuality ? 0.5 : 1;
    if (spacing >= 6) context.fillText(letter, x, y);
    else context.fillRect(x - spacing * 0.35, y - 5, spacing * 0.7, 10);
  });
  context.globalAlpha = 1;
}

/// Draws the second base under each mixed one, with a mark that stays when there is no room for letters.
function drawSeconds(context, scene, rows) {
  const spacing = spacingOf(scene.picture.calls) * scene.scale;
  setFont(context, 11, true);
  context.textAlign = "center";
  context.textBaseline = "middle";
  for (const [base, { letter }] of scene.picture.mixed) {
    const x = xOfSample(scene, scene.picture.calls.positions[base]);
    if (x < scene.left || x > scene.right) continue;
    const shown = shownLetter(scene, letter);
    context.fillStyle = letterColour(shown);
    if (spacing >= 6) context.fillText(shown, x, rows.seconds + 5);
    context.fillStyle = colourOf("--mixed");
    const width = Math.max(2, Math.min(9, spacing * 0.7));
    context.fillRect(x - width / 2, rows.seconds + 11, width, 2.5);
  }
}

/// Draws the letters of the second reading at their own positions. A box stands around those that are
/// other than the trace's own, an empty one where the reading lacks a base, and a line under those that
/// differ in quality or position only.
function drawReading(context, scene, rows) {
  const { picture, comparison } = scene;
  const y = rows.result + 9;
  drawLetters(context, scene, picture.reading, y);
  const width = Math.max(2, Math.min(14, spacingOf(picture.reading) * scene.scale - 1));
  context.strokeStyle = context.fillStyle = colourOf("--untrusted");
  context.lineWidth = 1.3;
  const box = (x) => context.strokeRect(x - width / 2, y - 9, width, 17);
  visitBases(scene, picture.reading, (j, x) => {
    if (comparison.kinds[j] === 2) box(x);
    if (comparison.kinds[j] === 1) context.fillRect(x - width / 2, y + 7, width, 1.5);
  });
  for (const i of comparison.missing) {
    const x = xOfSample(scene, picture.calls.positions[i]);
    if (x < scene.left || x > scene.right) continue;
    context.setLineDash([2, 2]);
    box(x);
    context.setLineDash([]);
  }
}

/// Draws the names of the two rows of letters, left of them.
function drawRowNames(context, scene, rows) {
  setFont(context, 11);
  context.textAlign = "right";
  context.textBaseline = "middle";
  context.fillStyle = colourOf("--faint");
  if (scene.picture.calls.bases.length > 0) context.fillText("trace", scene.left - 6, rows.letters + 8);
  context.fillText("result", scene.left - 6, rows.result + 9);
}

/// Draws a whole scene into a context whose unit is one CSS px.
function drawTrace(context, scene) {
  const rows = rowsOfScene(scene);
  const hasCurves = scene.picture.pointCount > 0;
  drawGround(context, scene, rows);
  if (hasCurves) drawScale(context, scene, rows);
  if (scene.comparison) drawRowNames(context, scene, rows);
  if (scene.numbered.bases.length > 0) drawQualities(context, scene, rows);
  context.save();
  context.beginPath();
  context.rect(scene.left - 1, 0, scene.right - scene.left + 2, scene.height);
  context.clip();
  drawNumbers(context, scene);
  drawLetters(context, scene, scene.picture.calls, rows.letters + 8);
  drawSeconds(context, scene, rows);
  if (scene.comparison) drawReading(context, scene, rows);
  context.restore();
  if (hasCurves) drawCurves(context, scene, rows);
  if (scene.pointer !== null) {
    context.fillStyle = colourOf("--faint");
    context.fillRect(Math.round(scene.pointer) - 0.5, rows.bars, 1, rows.baseline - rows.bars);
  }
}

/// Draws the whole read: qualities, mixed bases as ticks, and a box around what is in sight. A trace
/// without calls shows its signal. `scene` is that of the overview, from `inSight.begin` to `.end` in px.
function drawOverview(context, scene, inSight) {
  const { picture, numbered, height, left, right } = scene;
  const trim = trimOfScene(scene) ?? noTrim;
  const ground = 8;
  if (numbered.bases.length > 0) {
    drawMeans(scene, numbered, 2, (x, width, quality) => {
      const size = Math.max(1, (Math.min(quality, highQuality) / highQuality) * (height - ground - 1));
      const sample = sampleAtX(scene, x);
      context.globalAlpha = sample < trim.begin || sample > trim.end ? 0.4 : 1;
      context.fillStyle = colourOf(quality < goodQuality ? "--low" : "--bar");
      context.fillRect(x - width / 2, height - 1 - size, width - 0.5, size);
    });
    context.globalAlpha = 1;
  } else if (picture.pointCount > 0) {
    const rows = { top: ground, baseline: height - 1 };
    context.strokeStyle = colourOf("--faint");
    context.lineWidth = 1;
    for (const levels of picture.levels) {
      context.beginPath();
      addDenseCurve(context, levels, 0, levels.length - 1, (sample) => xOfSample(scene, sample),
        levelScale(scene, rows));
      context.stroke();
    }
  }
  context.fillStyle = colourOf("--mixed");
  for (const base of picture.mixed.keys()) {
    context.fillRect(xOfSample(scene, picture.calls.positions[base]) - 1, 1, 2, 6);
  }
  const begin = Math.max(left, inSight.begin);
  const end = Math.min(right, inSight.end);
  context.fillStyle = colourOf("--panel");
  context.globalAlpha = 0.35;
  context.fillRect(left, 0, begin - left, height);
  context.fillRect(end, 0, right - end, height);
  context.globalAlpha = 1;
  context.strokeStyle = colourOf("--ink");
  context.lineWidth = 1.5;
  context.strokeRect(begin + 0.75, 0.75, Math.max(4, end - begin - 1.5), height - 1.5);
}
