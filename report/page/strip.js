// The strip of a read: one look at its length, quality, trimmed ends and mixed bases.

const stripWidth = 180;
const stripHeight = 22;
const stripBarHeight = 16;
const stripDigits = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";

/// A canvas with the strip of a row. All strips have one scale: 0 to the longest read.
function stripCanvas(row) {
  const ariaLabel = `Qualities of ${counted(row.bases ?? 0, "base")}`;
  const canvas = element("canvas", { role: "img", ariaLabel });
  const context = sizedContext(canvas, stripWidth, stripHeight);
  // Edges lie on whole pixels: neighbouring bars close up without seams.
  const snapped = (length) => Math.round(length * devicePixelRatio) / devicePixelRatio;
  const xOf = (base) => snapped((base * stripWidth) / longestRead);
  [...row.strip].forEach((digit, i) => {
    const quality = stripDigits.indexOf(digit);
    const first = i * 10;
    const end = Math.min(first + 10, row.bases);
    const isKept = first + end >= 2 * row.trim_start && first + end < 2 * row.trim_end;
    const height = Math.max(1, snapped((Math.min(quality, 60) / 60) * stripBarHeight));
    const box = [xOf(first), stripHeight - height, xOf(end) - xOf(first), height];
    context.globalAlpha = isKept ? 1 : 0.4;
    fill(context, quality < 20 ? "--low" : "--bar", ...box);
  });
  context.globalAlpha = 1;
  row.mixed_positions?.forEach((base) => fill(context, "--mixed", xOf(base - 0.5), 0, 1, 4));
  return canvas;
}
