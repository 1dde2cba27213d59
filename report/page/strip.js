// The strip of a read: one look at its length, its quality, its trimmed ends and its mixed bases.

const stripWidth = 180;
const stripHeight = 22;
const stripDigits = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
const stripLevels = new Map([...stripDigits].map((digit, level) => [digit, level]));
const basesPerDigit = 10;
const tickHeight = 4;  // of a mixed base, at the upper edge

/// Mean quality of each ten bases, from the digits of a strip.
function stripQualities(strip) {
  return [...strip].map((digit) => stripLevels.get(digit) ?? 0);
}

/// Draws the strip of a row into a canvas. All strips have one scale: 0 to the longest read.
function drawStrip(canvas, row) {
  const context = sizedContext(canvas, stripWidth, stripHeight);
  const ratio = window.devicePixelRatio || 1;
  const perBase = stripWidth / longestRead;
  // Edges lie on whole pixels of the screen: bars of one colour close up without seams.
  const snapped = (x) => Math.round(x * ratio) / ratio;
  const barSpace = stripHeight - tickHeight - 2;
  const trimStart = row.trim_start ?? 0;
  const trimEnd = row.trim_end ?? 0;
  stripQualities(row.strip).forEach((quality, i) => {
    const first = i * basesPerDigit;
    const end = Math.min(first + basesPerDigit, row.bases);
    const middle = (first + end) / 2;
    context.globalAlpha = middle >= trimStart && middle < trimEnd ? 1 : 0.4;
    context.fillStyle = colourOf(quality < 20 ? "--low" : "--bar");
    const left = snapped(first * perBase);
    const height = Math.max(1, snapped((Math.min(quality, 60) / 60) * barSpace));
    context.fillRect(left, stripHeight - height, snapped(end * perBase) - left, height);
  });
  context.globalAlpha = 1;
  context.fillStyle = colourOf("--mixed");
  for (const position of row.mixed_positions ?? []) {
    context.fillRect(snapped((position - 0.5) * perBase), 0, Math.max(1, 1 / ratio), tickHeight);
  }
}
