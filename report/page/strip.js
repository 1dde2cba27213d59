// The strip of a read: one look at its length, quality, trimmed ends and mixed bases.

const stripWidth = 180;
const stripHeight = 22;
const stripBarHeight = 16;
const tickHeight = 4;  // of a mixed base, at the upper edge
const stripDigits = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";

/// A canvas with the strip of a row. All strips have one scale: 0 to the longest read.
function stripCanvas(row) {
  const label = `Qualities of ${counted(row.bases ?? 0, "base")}`;
  const canvas = element("canvas", { role: "img", "aria-label": label });
  const context = sizedContext(canvas, stripWidth, stripHeight);
  const ratio = window.devicePixelRatio || 1;
  // Edges lie on whole pixels of the screen: neighbouring bars close up without seams.
  const snapped = (length) => Math.round(length * ratio) / ratio;
  const xOf = (base) => snapped((base * stripWidth) / longestRead);
  [...row.strip].forEach((digit, i) => {
    const quality = stripDigits.indexOf(digit);
    const first = i * 10;
    const end = Math.min(first + 10, row.bases);
    const isKept = first + end >= 2 * row.trim_start && first + end < 2 * row.trim_end;
    context.globalAlpha = isKept ? 1 : 0.4;
    context.fillStyle = colourOf(quality < 20 ? "--low" : "--bar");
    const height = Math.max(1, snapped((Math.min(quality, 60) / 60) * stripBarHeight));
    context.fillRect(xOf(first), stripHeight - height, xOf(end) - xOf(first), height);
  });
  context.globalAlpha = 1;
  context.fillStyle = colourOf("--mixed");
  for (const position of row.mixed_positions ?? []) {
    context.fillRect(xOf(position - 0.5), 0, 1, tickHeight);
  }
  return canvas;
}
