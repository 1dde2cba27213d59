// Curves through the stored samples, and two readings side by side.

/// The level of the curve at a sample, also between samples; null outside of the trace. A cubic
/// through the kept samples (Catmull-Rom) whose control points are never below 0: a steep foot of a
/// peak would dive under the zero line.
function levelAt(levels, sample) {
  const k = Math.floor(sample / 2);
  if (!(k in levels)) return null;
  const from = levels[k];
  const to = levels[k + 1] ?? from;
  const one = Math.max(0, from + (to - (levels[k - 1] ?? from)) / 6);
  const two = Math.max(0, to - ((levels[k + 2] ?? to) - from) / 6);
  const t = sample / 2 - k;
  const u = 1 - t;
  return u * u * u * from + 3 * u * t * (u * one + t * two) + t * t * t * to;
}

/// The mean distance of neighbouring calls in samples; 12 where there are too few to tell.
function spacingOf({ positions }) {
  const mean = (positions.at(-1) - positions[0]) / (positions.length - 1);
  return mean >= 1 ? mean : 12;
}

/// Sets a second reading beside the trace's own: base i against base i where there are as many,
/// else each base against an own one at most half a base away.
///
/// `partners`: the indices of the own bases, -1 for none. `differing`: positions of the bases whose
/// letter is another. Both are empty where one of the readings is missing.
function compareReadings(calls, reading) {
  if (calls.bases === "" || !reading) return { partners: [], differing: [] };
  const reach = spacingOf(calls) / 2;
  const partners = reading.positions.map((position, j) => {
    if (reading.bases.length === calls.bases.length) return j;
    return calls.positions.findIndex((own) => Math.abs(own - position) <= reach);
  });
  const isOther = (_, j) => calls.bases[partners[j]] !== reading.bases[j];
  return { partners, differing: reading.positions.filter(isOther) };
}
