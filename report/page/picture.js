// Pictures of traces: docs/report_page.md.

const channelLetters = "ACGT";

/// The text of the element of a row's picture once it is whole: while the page loads, it is only
/// when another element follows it.
async function pictureText(index) {
  for (;;) {
    const isLoading = document.readyState === "loading";
    const holder = document.getElementById(`t${index}`);
    if (!isLoading || holder?.nextElementSibling) return holder.textContent;
    await new Promise((resolve) => setTimeout(resolve, 30));
  }
}

async function inflatedBytes(base64) {
  const packed = Uint8Array.from(atob(base64), (letter) => letter.charCodeAt(0));
  const stream = new Blob([packed]).stream().pipeThrough(new DecompressionStream("deflate"));
  return new Uint8Array(await new Response(stream).arrayBuffer());
}

/// What the bytes of a row's picture say. Throws when they are no picture.
///
/// `levels` has an array for each channel with every second sample; 255 is the amplitude `top` or
/// more. `calls` and `reading` (the result's where that is another, or null) hold bases (a text),
/// qualities and positions (samples). `mixed` maps bases (from 0) to {letter, percent}: the second
/// base and its height, measured by the called one.
function unpackedPicture(bytes, row) {
  const [pointCount, kept, top, inSight, baseCount, mixedCount, resultCount, hasResult] =
    new Uint32Array(bytes.buffer, 0, 8);
  let offset = 32;
  const take = (count) => bytes.subarray(offset, (offset += count));
  const takeText = (count) => new TextDecoder("latin1").decode(take(count));
  const takeLevels = () => {
    let [a, b, c] = [0, 0, 0]; // the last level first
    return take(kept).map((difference) => {
      const expected = Math.min(Math.max((4 * a - 3 * b + c) >> 1, 0), 255);
      c = b;
      b = a;
      return (a = (expected + difference) & 255);
    });
  };
  const takeCalls = (count) => {
    const calls = { bases: takeText(count), qualities: take(count) };
    const [low, high] = [take(count), take(count)];
    let position = 0;
    const difference = (i) => ((low[i] | (high[i] << 8)) << 16) >> 16;
    return { ...calls, positions: Array.from(low, (_, i) => (position += difference(i))) };
  };

  const levels = Array.from(channelLetters, takeLevels);
  const calls = takeCalls(baseCount);
  const letters = takeText(mixedCount);
  const percents = take(mixedCount);
  const reading = hasResult ? takeCalls(resultCount) : null;
  const places = row.mixed_positions ?? [];
  if (offset !== bytes.length || places.length !== mixedCount) throw new RangeError();
  const second = (base, i) => [base - 1, { letter: letters[i], percent: percents[i] }];
  return { pointCount, top, inSight, levels, calls, mixed: new Map(places.map(second)), reading };
}

/// The picture of a row, or a sentence that says why there is none.
async function readPicture(row) {
  if (!pageData.pictures) return "This page was made without pictures of traces.";
  if (!row.hasPicture) return "There is no trace to show.";
  try {
    return unpackedPicture(await inflatedBytes(await pictureText(row.index)), row);
  } catch {
    return "DecompressionStream" in window
      ? "The picture of this trace is damaged or missing. Make the page again."
      : "This browser can not unpack traces: it has no DecompressionStream.";
  }
}
