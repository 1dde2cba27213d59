// Curves through the stored samples, and the rule that sets two readings side by side.

/// The two inner control points, as levels, of the cubic from kept sample `k` to the next (Catmull-Rom).
/// Never below 0: a steep foot of a peak would dive under the zero line.
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

/// Adds the curve from kept sample `first` to `last` to the context's path. Where `isDense`, half a pixel
/// holds several samples: a line from the lowest to the highest looks the same and takes a tenth of the
/// time.
function addCurve(context, levels, first, last, xOf, yOf, isDense) {
  context.moveTo(xOf(2 * first), yOf(levels[first]));
  for (let k = first; k < last && !isDense; ++k) {
    const [one, two] = controlLevels(levels, k);
    const at = (part, level) => [xOf(2 * k + part), yOf(level)];
    context.bezierCurveTo(...at(2 / 3, one), ...at(4 / 3, two), ...at(2, levels[k + 1]));
  }
  for (let k = first; k <= last && isDense; ++k) {
    const column = Math.round(2 * xOf(2 * k));
    let low = levels[k];
    let high = low;
    for (; k <= last && Math.round(2 * xOf(2 * k)) === column; ++k) {
      low = Math.min(low, levels[k]);
      high = Math.max(high, levels[k], levelAt(levels, 2 * k + 1));
    }
    --k;
    context.lineTo(column / 2, yOf(low));
    context.lineTo(column / 2, yOf(high));
  }
}

/// Where a channel leaves the picture: the highest kept sample of each run above `limit`.
function cutSamples(levels, first, last, limit) {
  const highest = [];
  let isAbove = false;
  for (let k = first; k <= last; ++k) {
    const wasAbove = isAbove;
    isAbove = levels[k] > limit || levels[k] === 255;
    if (isAbove && !wasAbove) highest.push(k);
    else if (isAbove && levels[k] > levels[highest.at(-1)]) highest[highest.length - 1] = k;
  }
  return highest;
}

/// The mean distance of neighbouring calls in samples; 12 where there are too few to tell.
function spacingOf({ positions }) {
  const mean = (positions.at(-1) - positions[0]) / (positions.length - 1);
  return mean >= 1 ? mean : 12;
}

/// Sets the bases of a second reading beside the trace's own: base i against base i where there are as
/// many, else each against the own one that is nearest by position, at most half a base away, in order
/// and none twice.
///
/// `partners` are indices of own bases, -1 for none. `kinds` has 2 where the letter is another or there
/// is no own base, 1 where only quality or position differ, else 0. `missing` are own bases without a
/// partner.
function compareReadings(calls, reading) {
  const reach = spacingOf(calls) / 2;
  const ownCount = calls.bases.length;
  const isSameCount = reading.bases.length === ownCount;
  let next = 0;
  const partners = reading.positions.map((position, j) => {
    if (isSameCount) return j;
    const gap = (i) => Math.abs(calls.positions[i] - position);
    while (next < ownCount && calls.positions[next] < position - reach) ++next;
    while (next + 1 < ownCount && gap(next + 1) < gap(next)) ++next;
    return gap(next) <= reach ? next++ : -1;
  });
  const isSame = (part, j) => calls[part][partners[j]] === reading[part][j];
  const kinds = partners.map((_, j) => {
    if (!isSame("bases", j)) return 2;
    return isSame("qualities", j) && isSame("positions", j) ? 0 : 1;
  });
  const paired = new Set(partners);
  return { partners, kinds, missing: [...calls.positions.keys()].filter((i) => !paired.has(i)) };
}

/// The sample of the first difference of both readings within the good stretch: of another letter or a
/// missing base if there is one, else of another quality or position; undefined without any.
function firstDifference({ picture: { calls, reading }, comparison, row }) {
  if (!comparison) return undefined;
  const { begin, end } = trimOfCalls(calls, row);
  const ofKind = (kind) => reading.positions.filter((_, j) => comparison.kinds[j] === kind);
  const letters = [...ofKind(2), ...comparison.missing.map((i) => calls.positions[i])];
  const isInside = (sample) => sample >= begin && sample <= end;
  const first = (samples) => samples.filter(isInside).sort((a, b) => a - b)[0];
  return first(letters) ?? first(ofKind(1));
}
