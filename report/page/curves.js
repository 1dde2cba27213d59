// Curves through the stored samples, and the rule that sets two readings side by side.

/// The two inner control points of the cubic from kept sample `k` to the next one (Catmull-Rom), as
/// levels. Never below 0: else a steep foot of a peak would dive under the zero line.
function controlLevels(levels, k) {
  const from = levels[k];
  const to = levels[k + 1];
  const before = levels[Math.max(0, k - 1)];
  const after = levels[Math.min(levels.length - 1, k + 2)];
  return [Math.max(0, from + (to - before) / 6), Math.max(0, to - (after - from) / 6)];
}

/// The level of the curve at a sample, which may lie between two samples; null outside of the trace.
function levelAt(levels, sample) {
  const last = levels.length - 1;
  // The trace may end one sample after the last one kept.
  if (!(sample >= 0 && sample < 2 * last + 2)) return null;
  const k = Math.min(Math.floor(sample / 2), last);
  if (k === last) return levels[last];
  const [first, second] = controlLevels(levels, k);
  const t = sample / 2 - k;
  const u = 1 - t;
  return u * u * u * levels[k] + 3 * u * t * (u * first + t * second) + t * t * t * levels[k + 1];
}

/// Adds the curve from kept sample `first` to `last` to the context's path.
function addCurve(context, levels, first, last, xOf, yOf) {
  context.moveTo(xOf(2 * first), yOf(levels[first]));
  for (let k = first; k < last; ++k) {
    const [one, two] = controlLevels(levels, k);
    const x = 2 * k;
    context.bezierCurveTo(
      xOf(x + 2 / 3), yOf(one), xOf(x + 4 / 3), yOf(two), xOf(x + 2), yOf(levels[k + 1]),
    );
  }
}

/// The same where more than one kept sample falls on a column of half a pixel: from the lowest to the
/// highest of each column. On the screen it is the curve, at a tenth of the time.
function addDenseCurve(context, levels, first, last, xOf, yOf) {
  let column = NaN;
  let low = 0;
  let high = 0;
  const finish = () => {
    if (Number.isNaN(column)) return;
    context.lineTo(column / 2, yOf(low));
    context.lineTo(column / 2, yOf(high));
  };
  context.moveTo(xOf(2 * first), yOf(levels[first]));
  for (let k = first; k <= last; ++k) {
    const level = levels[k];
    const at = Math.round(2 * xOf(2 * k));
    if (at !== column) {
      finish();
      column = at;
      low = high = level;
    }
    low = Math.min(low, level);
    high = Math.max(high, level);
  }
  finish();
}

/// Where a channel leaves the picture: for each run of kept samples above `limit` its highest
/// {sample, level}.
function cutPeaks(levels, first, last, limit) {
  const peaks = [];
  let highest = null;
  for (let k = first; k <= last; ++k) {
    if (levels[k] <= limit && levels[k] < 255) {
      highest = null;
    } else if (!highest) {
      peaks.push((highest = { sample: 2 * k, level: levels[k] }));
    } else if (levels[k] > highest.level) {
      highest.sample = 2 * k;
      highest.level = levels[k];
    }
  }
  return peaks;
}

/// The mean distance of neighbouring calls in samples; 12 where there are too few to tell.
function spacingOf(calls) {
  const last = calls.positions.length - 1;
  const mean = last > 0 ? (calls.positions[last] - calls.positions[0]) / last : 0;
  return mean >= 1 ? mean : 12;
}

/// Sets the bases of a second reading beside the trace's own.
///
/// With as many bases as the trace, base i stands against base i. Otherwise each base stands against
/// the own one that is nearest by position, at most half a base's distance away, in order and none
/// twice. `kinds` has an entry for each base of the reading: 2 where the letter is another or there is
/// no own base, 1 where only quality or position differ, else 0. `partners` are indices of own bases
/// or -1, `missing` the own bases without a partner.
function compareReadings(calls, reading) {
  const count = reading.bases.length;
  const ownCount = calls.bases.length;
  const partners = new Int32Array(count).fill(-1);
  if (count === ownCount) {
    partners.forEach((_, i) => (partners[i] = i));
  } else {
    const reach = spacingOf(calls) / 2;
    const gap = (i, j) => Math.abs(calls.positions[i] - reading.positions[j]);
    let i = 0;
    for (let j = 0; j < count; ++j) {
      while (i < ownCount && calls.positions[i] < reading.positions[j] - reach) ++i;
      while (i + 1 < ownCount && gap(i + 1, j) < gap(i, j)) ++i;
      if (i < ownCount && gap(i, j) <= reach) partners[j] = i++;
    }
  }
  const kinds = Uint8Array.from(partners, (i, j) => {
    if (i < 0 || calls.bases[i] !== reading.bases[j]) return 2;
    const isSame =
      calls.qualities[i] === reading.qualities[j] && calls.positions[i] === reading.positions[j];
    return isSame ? 0 : 1;
  });
  const paired = new Set(partners);
  const missing = Array.from(calls.positions.keys()).filter((i) => !paired.has(i));
  return { partners, kinds, missing };
}

/// The sample of the first difference between `begin` and `end` (samples): of another letter or a
/// missing base if there is one, else of another quality or position. Null without any.
function firstDifference(calls, reading, comparison, begin, end) {
  const positions = [1, 2].map((kind) =>
    Array.from(reading.positions).filter((_, j) => comparison.kinds[j] === kind),
  );
  positions[1].push(...comparison.missing.map((i) => calls.positions[i]));
  for (const found of positions.reverse()) {
    const inside = found.filter((position) => position >= begin && position <= end);
    if (inside.length > 0) return inside.reduce((a, b) => Math.min(a, b));
  }
  return null;
}
