// Draws a trace: on the screen's canvases and on those for paper.
//
// A scene says what and where: `row` and its `picture`; `numbered`, the calls that numbers count
// (the result's where the trace has none), `spacing` samples apart; `comparison` of both readings,
// or null; `width`, `height`, and edges of the curves `left` and `right`; `extent` samples of the
// trace; `from`, the sample at the left (counted from the end if `isReversed`: reverse complement);
// `scale`, px for a sample; `sight`, the amplitude at the top; `marked` base (from 0) and x of the
// `pointer`, or null.

const complements = { A: "T", C: "G", G: "C", T: "A" };
const barHeight = 26;

/// A letter of the trace as the scene shows it.
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

function isInside({ left, right }, x) {
  return x >= left && x <= right;
}

/// Calls `visit(x, i)` for each of these samples that is in sight.
function visitSamples(scene, samples, visit) {
  samples.forEach((sample, i) => {
    const x = xOfSample(scene, sample);
    if (isInside(scene, x)) visit(x, i);
  });
}

/// y of the rows of letters, and of the curves' edges.
function rowsOfScene({ picture, height }) {
  const result = picture.mixed.size > 0 ? 87 : 74;
  const top = (picture.reading ? result + 22 : result) + 2;
  const baseline = Math.max(top + 20, height - 7);
  return { bars: 17, letters: 54, second: 68, result, top, baseline };
}

/// A function that gives the y of a level.
function levelScale({ picture, sight }, { top, baseline }) {
  const unit = ((baseline - top) * picture.top) / (255 * sight);
  return (level) => baseline - level * unit;
}

/// The good stretch in samples, its borders halfway to the neighbours. Without figures it is the
/// whole trace; it is empty where nothing is good.
function trimOfCalls({ positions }, row) {
  const border = (i) => (positions[i - 1] + positions[i]) / 2;
  if (row.trim_end === 0) return { begin: Infinity, end: Infinity };
  return { begin: border(row.trim_start) || -Infinity, end: border(row.trim_end) || Infinity };
}

/// The least of 1, 2 or 5 times a power of ten that is not below `least`.
function roundStep(least) {
  const power = 10 ** Math.floor(Math.log10(Math.max(1, least)));
  return [1, 2, 5, 10].map((digit) => digit * power).find((step) => step >= least);
}

function fill(pen, colour, ...box) {
  pen.fillStyle = colourOf(colour);
  pen.fillRect(...box);
}

/// Writes centred, or as `align` says.
function write(pen, text, x, y, align = "center", colour = colourOf("--faint"), font = "11px") {
  pen.font = `${font} system-ui, sans-serif`;
  pen.textAlign = align;
  pen.textBaseline = "middle";
  pen.fillStyle = colour;
  pen.fillText(text, x, y);
}

/// The trimmed ends and the base in focus, below all else.
function drawGround(pen, scene, rows) {
  const inside = (x) => Math.min(Math.max(x, scene.left), scene.right);
  const { begin, end } = trimOfCalls(scene.picture.calls, scene.row);
  for (const [from, to] of [[0, Math.min(begin, scene.extent)], [end, scene.extent]]) {
    const [x, edge] = [from, to].map((at) => inside(xOfSample(scene, at))).sort((a, b) => a - b);
    if (from >= to) continue;
    fill(pen, "--shade", x, rows.bars, edge - x, rows.baseline - rows.bars);
    if (edge - x > 60) write(pen, "trimmed", (x + edge) / 2, rows.top + 8);
  }
  const width = Math.max(4, scene.spacing * scene.scale * 0.9);
  const x = xOfSample(scene, scene.numbered.positions[scene.marked]);
  if (isInside(scene, x)) fill(pen, "--choice", x - width / 2, 0, width, rows.baseline);
}

/// The zero line, and lines and numbers in the instrument's units.
function drawScale(pen, scene, rows) {
  const yOf = levelScale(scene, rows);
  const step = roundStep((35 * scene.sight) / (rows.baseline - rows.top));
  for (let height = 0; height <= scene.sight; height += step) {
    const y = Math.round(yOf((height * 255) / scene.picture.top));
    fill(pen, height === 0 ? "--faint" : "--line", scene.left, y, scene.right - scene.left, 1);
    write(pen, formatNumber(height), scene.left - 6, y, "right");
  }
}

/// The four curves, and a triangle over each peak that leaves the picture: hollow where the page
/// holds no more of it.
function drawCurves(pen, scene, rows) {
  const { picture, left, right, scale } = scene;
  const ends = [left, right].map((x) => sampleAtX(scene, x) / 2).sort((a, b) => a - b);
  const first = Math.max(0, Math.floor(ends[0]) - 1);
  const last = Math.min(picture.levels[0].length - 1, Math.ceil(ends[1]) + 1);
  const limit = Math.min(254, (scene.sight * 255) / picture.top);
  const xOf = (sample) => xOfSample(scene, sample);
  const isDense = 4 * scale < 1;
  pen.lineJoin = "round";
  picture.levels.forEach((levels, channel) => {
    const letter = shownLetter(scene, channelLetters[channel]);
    pen.strokeStyle = pen.fillStyle = letterColour(letter);
    pen.lineWidth = isDense ? 1.2 : 1.8;
    pen.save();
    pen.beginPath();
    pen.rect(left, rows.top - 2, right - left, rows.baseline - rows.top + 6);
    pen.clip();
    pen.beginPath();
    addCurve(pen, levels, first, last, xOf, levelScale(scene, rows), isDense);
    pen.stroke();
    pen.restore();
    let before = left - 9;
    for (let k = first; k <= last; ++k) {
      const isTop = levels[k] > limit && levels[k] >= levels[k - 1] && !(levels[k] < levels[k + 1]);
      const x = xOf(2 * k);
      if (!isTop || !isInside(scene, x) || Math.abs(x - before) < 9) continue;
      before = x;
      pen.beginPath();
      pen.moveTo(x - 4, rows.top - 3);
      pen.lineTo(x + 4, rows.top - 3);
      pen.lineTo(x, rows.top - 10);
      pen.closePath();
      if (levels[k] === 255) pen.stroke();
      else pen.fill();
    }
  });
}

/// Bars of qualities from `bottom` upwards, `height` px for 60: one for each base, or for the mean
/// of several where they would be narrower than 2 px. Outside of `begin` to `end` (samples) they
/// are pale.
function drawBars(pen, scene, bottom, height, { begin, end }) {
  const { positions, qualities } = scene.numbered;
  const spacing = scene.spacing * scene.scale;
  const every = Math.ceil(2 / spacing);
  const width = every > 1 ? every * spacing : Math.min(14, spacing * 0.62);
  visitSamples(scene, positions, (x, i) => {
    const group = qualities.subarray(i, i + every);
    const quality = group.reduce((sum, value) => sum + value) / group.length;
    const size = Math.max(1, (Math.min(quality, 60) / 60) * height);
    pen.globalAlpha = positions[i] < begin || positions[i] > end ? 0.4 : 1;
    const colour = quality < 20 ? "--low" : "--bar";
    if (i % every === 0) fill(pen, colour, x - width / 2, bottom - size, width, size);
  });
  pen.globalAlpha = 1;
}

/// Quality bars with a line at 20, and the number of every tenth base, or of fewer where they would
/// touch.
function drawQualities(pen, scene, rows) {
  const bottom = rows.bars + barHeight;
  drawBars(pen, scene, bottom, barHeight, {});
  const y = Math.round(bottom - barHeight / 3);
  write(pen, "Q 20", scene.left - 6, y, "right");
  for (let x = scene.left; x < scene.right; x += 6) pen.fillRect(x, y, 2, 1);
  const step = Math.max(10, roundStep(60 / (scene.spacing * scene.scale)));
  visitSamples(scene, scene.numbered.positions, (x, i) => {
    if ((i + 1) % step !== 0) return;
    write(pen, formatNumber(i + 1), x, 6);
    pen.fillRect(x - 0.5, 13, 1, 4);
  });
}

/// Letters with their middles at y: pale below quality 20, ticks where they would not be legible,
/// and nothing where these would not be.
function drawLetters(pen, scene, calls, y) {
  const spacing = scene.spacing * scene.scale;
  const font = `bold ${Math.min(13.5, Math.max(9, spacing * 1.2))}px`;
  visitSamples(scene, calls.positions, (x, i) => {
    const letter = shownLetter(scene, calls.bases[i]);
    pen.globalAlpha = calls.qualities[i] < 20 ? 0.5 : 1;
    pen.fillStyle = letterColour(letter);
    if (spacing >= 6) write(pen, letter, x, y, "center", pen.fillStyle, font);
    else if (spacing >= 2) pen.fillRect(x - spacing * 0.35, y - 5, spacing * 0.7, 10);
  });
  pen.globalAlpha = 1;
}

/// The second base under each mixed one, with a mark that stays when there is no room for letters.
function drawSeconds(pen, scene, y) {
  const spacing = scene.spacing * scene.scale;
  const width = Math.max(2, Math.min(9, spacing * 0.7));
  visitSamples(scene, scene.picture.calls.positions, (x, i) => {
    if (!scene.picture.mixed.has(i)) return;
    const letter = shownLetter(scene, scene.picture.mixed.get(i).letter);
    if (spacing >= 6) write(pen, letter, x, y, "center", letterColour(letter), "bold 11px");
    fill(pen, "--mixed", x - width / 2, y + 6, width, 2.5);
  });
}

/// The second reading at its own positions: boxed where letters are other than the trace's own,
/// underlined where only quality or position differ, a dash where a base is missing.
function drawReading(pen, scene, y) {
  const { reading } = scene.picture;
  const { kinds, missing } = scene.comparison ?? { kinds: [], missing: [] };
  const width = Math.max(2, Math.min(14, scene.spacing * scene.scale - 1));
  drawLetters(pen, scene, reading, y);
  write(pen, "result", scene.left - 6, y, "right");
  pen.strokeStyle = pen.fillStyle = colourOf("--untrusted");
  pen.lineWidth = 1.3;
  visitSamples(scene, reading.positions, (x, j) => {
    if (kinds[j] === 2) pen.strokeRect(x - width / 2, y - 8.5, width, 17);
    if (kinds[j] === 1) pen.fillRect(x - width / 2, y + 7, width, 1.5);
  });
  visitSamples(scene, missing, (x) => pen.fillRect(x - 4, y - 1, 8, 2));
}

/// Draws a whole scene.
function drawTrace(pen, scene) {
  const { picture, numbered, left } = scene;
  const rows = rowsOfScene(scene);
  drawGround(pen, scene, rows);
  if (picture.pointCount > 0) drawScale(pen, scene, rows);
  else write(pen, "no trace, only a result", left, rows.top + 8, "left");
  if (numbered.bases.length > 0) drawQualities(pen, scene, rows);
  drawLetters(pen, scene, picture.calls, rows.letters);
  drawSeconds(pen, scene, rows.second);
  if (picture.reading) drawReading(pen, scene, rows.result);
  if (scene.comparison) write(pen, "trace", left - 6, rows.letters, "right");
  if (picture.pointCount > 0) drawCurves(pen, scene, rows);
  const x = Math.round(scene.pointer);
  if (scene.pointer !== null) fill(pen, "--faint", x, rows.bars, 1, rows.baseline);
}

/// Draws the whole read: qualities, ticks for mixed bases and for differences, a box around the
/// `visible` samples that begin at `from`. A trace without calls shows its signal.
function drawOverview(pen, scene, from, visible) {
  const { picture, numbered, comparison, height, left, scale } = scene;
  const ticks = (samples, colour) =>
    visitSamples(scene, samples, (x) => fill(pen, colour, x - 1, 1, 2, 6));
  if (numbered.bases.length === 0) drawCurves(pen, scene, { top: 12, baseline: height - 2 });
  drawBars(pen, scene, height - 1, height - 9, trimOfCalls(picture.calls, scene.row));
  ticks(Array.from(picture.mixed.keys(), (base) => picture.calls.positions[base]), "--mixed");
  if (comparison) {
    ticks(picture.reading.positions.filter((_, j) => comparison.kinds[j] === 2), "--untrusted");
  }
  pen.strokeStyle = colourOf("--ink");
  pen.lineWidth = 1.5;
  const width = Math.max(4, Math.min(visible, scene.extent) * scale - 1.5);
  pen.strokeRect(left + from * scale + 0.75, 0.75, width, height - 1.5);
}
