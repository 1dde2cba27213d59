// Draws a trace: on the screen's canvases and on those for paper.
//
// A scene holds `row` and `picture`; `numbered`, the calls that numbers count (the result's where
// the trace has none), `spacing` samples or `pitch` px apart; what compareReadings() says; `width`,
// `height`, and the curves' `left` and `right`; `extent` samples of the trace; `from`, the sample
// at the left (counted from the end if `isReversed`); `scale`, px for a sample; `sight`, the
// amplitude at the top; `marked` base (from 0) and x of the `pointer`, or null.

const complements = { A: "T", C: "G", G: "C", T: "A" };
const barHeight = 26;

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

/// y of the rows of letters, of the curves' edges, and of a level.
function rowsOfScene({ picture, height, sight }) {
  const result = picture.mixed.size > 0 ? 87 : 74;
  const top = (picture.reading ? result + 22 : result) + 2;
  const baseline = Math.max(top + 20, height - 7);
  const unit = ((baseline - top) * picture.top) / (255 * sight);
  const yOf = (level) => baseline - level * unit;
  return { bars: 17, letters: 54, second: 68, result, top, baseline, yOf };
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

/// Writes centred, or as `align` says.
function write(pen, text, x, y, align = "center", colour = colourOf("--faint"), font = "11px") {
  Object.assign(pen, { textAlign: align, textBaseline: "middle", fillStyle: colour });
  pen.font = `${font} system-ui, sans-serif`;
  pen.fillText(text, x, y);
}

/// The trimmed ends and the base in focus, below all else.
function drawGround(pen, scene, rows) {
  const { left, right, extent } = scene;
  const { begin, end } = trimOfCalls(scene.picture.calls, scene.row);
  const within = (value, least, most) => Math.min(Math.max(value, least), most);
  for (const ends of [[0, within(begin, 0, extent)], [within(end, 0, extent), extent]]) {
    const [x, edge] = ends.map((at) => within(xOfSample(scene, at), left, right));
    fill(pen, "--shade", x, rows.bars, edge - x, rows.baseline - rows.bars);
    if (Math.abs(edge - x) > 60) write(pen, "trimmed", (x + edge) / 2, rows.top + 8);
  }
  const width = Math.max(4, scene.pitch * 0.9);
  const x = xOfSample(scene, scene.numbered.positions[scene.marked]);
  if (isInside(scene, x)) fill(pen, "--choice", x - width / 2, 0, width, rows.baseline);
}

/// Lines and numbers in the instrument's units.
function drawScale(pen, scene, rows) {
  const step = roundStep((35 * scene.sight) / (rows.baseline - rows.top));
  for (let height = 0; height <= scene.sight; height += step) {
    const y = Math.round(rows.yOf((height * 255) / scene.picture.top));
    fill(pen, height === 0 ? "--faint" : "--line", scene.left, y, scene.right - scene.left, 1);
    write(pen, formatNumber(height), scene.left - 6, y, "right");
  }
}

/// The curves, and a triangle over each peak that leaves the picture: hollow where the page holds
/// no more of it.
function drawCurves(pen, scene, rows) {
  const { picture, left, right, scale } = scene;
  const limit = Math.min(254, (scene.sight * 255) / picture.top);
  pen.lineJoin = "round";
  pen.lineWidth = scale < 0.25 ? 1.2 : 1.8;
  picture.levels.forEach((levels, channel) => {
    const letter = shownLetter(scene, channelLetters[channel]);
    pen.strokeStyle = pen.fillStyle = letterColour(letter);
    pen.save();
    pen.beginPath();
    pen.rect(left, rows.top - 2, right - left, rows.baseline - rows.top + 6);
    pen.clip();
    pen.beginPath();
    for (let x = left; x <= right; x += Math.min(0.6, scale)) {
      const level = levelAt(levels, sampleAtX(scene, x));
      if (level !== null) pen.lineTo(x, rows.yOf(level));
    }
    pen.stroke();
    pen.restore();
    let before = -Infinity;
    levels.forEach((level, k) => {
      const isTop = level > limit && level >= levels[k - 1] && !(level < levels[k + 1]);
      const x = isTop ? xOfSample(scene, 2 * k) : NaN;
      if (!isInside(scene, x) || Math.abs(x - before) < 9) return;
      before = x;
      pen.beginPath();
      for (const [dx, dy] of [[-4, 3], [4, 3], [0, 10]]) pen.lineTo(x + dx, rows.top - dy);
      pen.closePath();
      if (level === 255) pen.stroke();
      else pen.fill();
    });
  });
}

/// Bars of qualities, `height` px for 60. Outside of `begin` to `end` (samples) they are pale.
function drawBars(pen, scene, bottom, height, { begin, end }) {
  const { positions, qualities } = scene.numbered;
  const width = Math.max(1, Math.min(14, scene.pitch * 0.62));
  visitSamples(scene, positions, (x, i) => {
    const size = Math.max(1, (Math.min(qualities[i], 60) / 60) * height);
    pen.globalAlpha = positions[i] < begin || positions[i] > end ? 0.4 : 1;
    fill(pen, qualities[i] < 20 ? "--low" : "--bar", x - width / 2, bottom - size, width, size);
  });
  pen.globalAlpha = 1;
}

/// Quality bars with a line at 20, and the number of every tenth base, or of fewer.
function drawQualities(pen, scene, rows) {
  const bottom = rows.bars + barHeight;
  drawBars(pen, scene, bottom, barHeight, {});
  const y = Math.round(bottom - barHeight / 3);
  write(pen, "Q 20", scene.left - 6, y, "right");
  for (let x = scene.left; x < scene.right; x += 6) pen.fillRect(x, y, 2, 1);
  const step = Math.max(10, roundStep(60 / scene.pitch));
  visitSamples(scene, scene.numbered.positions, (x, i) => {
    if ((i + 1) % step !== 0) return;
    write(pen, formatNumber(i + 1), x, 6);
    pen.fillRect(x - 0.5, 13, 1, 4);
  });
}

/// Letters at y where there is room, pale below quality 20.
function drawLetters(pen, scene, calls, y) {
  if (scene.pitch < 6) return;
  const font = `bold ${Math.min(13.5, Math.max(9, scene.pitch * 1.2))}px`;
  visitSamples(scene, calls.positions, (x, i) => {
    const letter = shownLetter(scene, calls.bases[i]);
    pen.globalAlpha = calls.qualities[i] < 20 ? 0.5 : 1;
    write(pen, letter, x, y, "center", letterColour(letter), font);
  });
  pen.globalAlpha = 1;
}

/// The second base under each mixed one, over a mark.
function drawSeconds(pen, scene, y) {
  const { picture, pitch } = scene;
  const width = Math.max(2, Math.min(9, pitch * 0.7));
  visitSamples(scene, picture.calls.positions, (x, i) => {
    if (!picture.mixed.has(i)) return;
    const letter = shownLetter(scene, picture.mixed.get(i).letter);
    if (pitch >= 6) write(pen, letter, x, y, "center", letterColour(letter), "bold 11px");
    fill(pen, "--mixed", x - width / 2, y + 6, width, 2.5);
  });
}

/// The second reading, boxed where letters are other than the trace's own.
function drawReading(pen, scene, y) {
  const width = Math.max(2, Math.min(14, scene.pitch - 1));
  drawLetters(pen, scene, scene.picture.reading, y);
  write(pen, "result", scene.left - 6, y, "right");
  pen.strokeStyle = colourOf("--untrusted");
  pen.lineWidth = 1.3;
  visitSamples(scene, scene.differing, (x) => pen.strokeRect(x - width / 2, y - 8.5, width, 17));
}

function drawTrace(pen, scene) {
  const { picture, numbered, left, pointer } = scene;
  const rows = rowsOfScene(scene);
  drawGround(pen, scene, rows);
  if (picture.pointCount > 0) drawScale(pen, scene, rows);
  if (numbered.bases.length > 0) drawQualities(pen, scene, rows);
  drawLetters(pen, scene, picture.calls, rows.letters);
  drawSeconds(pen, scene, rows.second);
  if (picture.reading) drawReading(pen, scene, rows.result);
  if (scene.partners.length > 0) write(pen, "trace", left - 6, rows.letters, "right");
  drawCurves(pen, scene, rows);
  if (pointer !== null) fill(pen, "--faint", Math.round(pointer), rows.bars, 1, rows.baseline);
}

/// Draws the whole read, with a box around the `visible` samples that begin at `from`.
function drawOverview(pen, scene, from, visible) {
  const { picture, height, left, scale } = scene;
  const ticks = (samples, colour) =>
    visitSamples(scene, samples, (x) => fill(pen, colour, x - 1, 1, 2, 6));
  drawBars(pen, scene, height - 1, height - 9, trimOfCalls(picture.calls, scene.row));
  ticks(Array.from(picture.mixed.keys(), (base) => picture.calls.positions[base]), "--mixed");
  ticks(scene.differing, "--untrusted");
  pen.strokeStyle = colourOf("--ink");
  pen.lineWidth = 1.5;
  const width = Math.max(4, Math.min(visible, scene.extent) * scale - 1.5);
  pen.strokeRect(left + from * scale + 0.75, 0.75, width, height - 1.5);
}
