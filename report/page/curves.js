// Curves through the stored samples, and the rule that sets two readings side by side.

/// The inner control points, as levels, of the cubic from kept sample `k` to the next
/// (Catmull-Rom). Never below 0: a steep foot of a peak would dive under the zero line.
function controlLevels(levels, k) {
  const from = levels[k];
  const to = levels[k + 1];
  const before = levels[k - 1] ?? from;
  const after = levels[k + 2] ?? to;
  return [Math.max(0, from + (to - before) / 6), Math.max(0, to - (after - from) / 6)];
}

/// The level of the curve at a sample, also between samples; null outside of the trace.
function levelAt(levels, sample) {
  const k = Math.floor(sample / 2);
  if (!(k in levels)) return null;
  if (k + 1 === levels.length) return levels[k];
  const [one, two] = controlLevels(levels, k);
  const t = sample / 2 - k;
  const u = 1 - t;
  return u * u * u * levels[k] + 3 * u * t * (u * one + t * two) + t * t * t * levels[k + 1];
}

/// Adds the curve from kept sample `first` to `last` to the path. Where `isDense`, samples lie so
/// close that lines from one to the next look the same.
function addCurve(pen, levels, first, last, xOf, yOf, isDense) {
  pen.moveTo(xOf(2 * first), yOf(levels[first]));
  for (let sample = 2 * first; isDense && sample <= 2 * last; ++sample) {
    pen.lineTo(xOf(sample), yOf(levelAt(levels, sample)));
  }
  for (let k = first; !isDense && k < last; ++k) {
    const [one, two] = controlLevels(levels, k);
    const at = (part, level) => [xOf(2 * k + part), yOf(level)];
    pen.bezierCurveTo(...at(2 / 3, one), ...at(4 / 3, two), ...at(2, levels[k + 1]));
  }
}

/// The mean distance of neighbouring calls in samples; 12 where there are too few to tell.
function spacingOf({ positions }) {
  const mean = (positions.at(-1) - positions[0]) / (positions.length - 1);
  return mean >= 1 ? mean : 12;
}

/// Sets a second reading beside the trace's own: base i against base i where there are as many,
/// else each base against the nearest own one, at most half a base away, in order and none twice.
///
/// `partners`: indices of own bases, -1 for none. `kinds`: 2 where the letter is another or there
/// is no partner, 1 where only quality or position differ, else 0. `missing`: positions of own
/// bases without a partner.
function compareReadings(calls, reading) {
  const own = calls.positions;
  const reach = spacingOf(calls) / 2;
  let next = 0;
  const partners = reading.positions.map((position, j) => {
    if (reading.bases.length === calls.bases.length) return j;
    const gap = (i) => Math.abs(own[i] - position);
    while (own[next] < position - reach || gap(next + 1) < gap(next)) ++next;
    return gap(next) <= reach ? next++ : -1;
  });
  const isSame = (part, j) => calls[part][partners[j]] === reading[part][j];
  const kinds = partners.map((_, j) => {
    if (!isSame("bases", j)) return 2;
    return isSame("qualities", j) && isSame("positions", j) ? 0 : 1;
  });
  const paired = new Set(partners);
  return { partners, kinds, missing: own.filter((_, i) => !paired.has(i)) };
}

/// The sample of the first difference within the good stretch: of another letter or a missing base
/// if there is one, else of another quality or position; undefined without any.
function firstDifference({ picture, comparison, row }) {
  if (!comparison) return undefined;
  const { begin, end } = trimOfCalls(picture.calls, row);
  const ofKind = (kind) => picture.reading.positions.filter((_, j) => comparison.kinds[j] === kind);
  const first = (samples) =>
    samples.filter((at) => at >= begin && at <= end).sort((a, b) => a - b)[0];
  return first([...ofKind(2), ...comparison.missing]) ?? first(ofKind(1));
}
