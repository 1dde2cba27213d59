// The strip of a read: one look at its length, quality, trimmed ends and mixed bases.

const stripWidth = 180;
const stripHeight = 22;
const stripDigits = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
const basesPerDigit = 10;
const tickHeight = 4;  // of a mixed base, at the upper edge

/// Mean quality of each ten bases, from the digits of a strip.
function stripQualities(strip) {
  return [...strip].map((digit) => stripDigits.indexOf(digit));
}

/// Draws the strip of a row. All strips have one scale: 0 to the longest read.
function drawStrip(canvas, row) {
  const context = sizedContext(canvas, stripWidth, stripHeight);
  const ratio = window.devicePixelRatio || 1;
  // Edges lie on whole pixels of the screen: neighbouring bars close up without seams.
  const snapped = (length) => Math.round(length * ratio) / ratio;
  const xOf = (base) => snapped((base * stripWidth) / longestRead);
  stripQualities(row.strip).forEach((quality, i) => {
    const first = i * basesPerDigit;
    const end = Math.min(first + basesPerDigit, row.bases);
    const isKept = first + end >= 2 * row.trim_start && first + end < 2 * row.trim_end;
    context.globalAlpha = isKept ? 1 : 0.4;
    context.fillStyle = colourOf(quality < 20 ? "--low" : "--bar");
    const height = Math.max(1, snapped((Math.min(quality, 60) / 60) * (stripHeight - tickHeight - 2)));
    context.fillRect(xOf(first), stripHeight - height, xOf(end) - xOf(first), height);
  });
  context.globalAlpha = 1;
  context.fillStyle = colourOf("--mixed");
  for (const position of row.mixed_positions ?? []) {
    context.fillRect(xOf(position - 0.5), 0, 1, tickHeight);
  }
}

/// A canvas with the strip of a row.
function stripCanvas(row) {
  const label = !row.bases ? "no calls"
    : `${counted(row.bases, "base")}, good from ${row.trim_start + 1} to ${row.trim_end}`;
  const canvas = element("canvas", { role: "img", "aria-label": label });
  drawStrip(canvas, row);
  return canvas;
}
