// Pictures of traces: from the element that holds one to samples, calls and a second reading.
// docs/report_page.md describes the bytes.

const channelLetters = "ACGT";
const pictureHeadSize = 32;

/// Why there is no picture, as a sentence for people. Its message is shown.
class PictureFault extends Error {}

/// Holds when the element of the row with this index is whole. While the page loads, an element can
/// be missing or half there: it is whole when another one follows it.
async function pictureElement(index) {
  for (;;) {
    const isLoading = document.readyState === "loading";
    const found = document.getElementById(`t${index}`);
    if (found && (found.nextElementSibling || !isLoading)) return found;
    if (!isLoading) {
      throw new PictureFault("The picture of this trace is missing: the page is not whole. Make it again.");
    }
    await new Promise((resolve) => setTimeout(resolve, 30));
  }
}

/// The bytes of a zlib stream in base64.
async function inflatedBytes(base64) {
  const packed = Uint8Array.from(atob(base64.trim()), (letter) => letter.charCodeAt(0));
  const stream = new Blob([packed]).stream().pipeThrough(new DecompressionStream("deflate"));
  return new Uint8Array(await new Response(stream).arrayBuffer());
}

/// Takes one part after the other out of bytes. Throws when there are too few.
class PartReader {
  constructor(bytes, offset) {
    this.bytes = bytes;
    this.offset = offset;
  }

  take(count) {
    const end = this.offset + count;
    if (end > this.bytes.length) throw new RangeError("too few bytes");
    const part = this.bytes.subarray(this.offset, end);
    this.offset = end;
    return part;
  }

  /// The levels of one channel: the running sum of the differences, modulo 256.
  takeLevels(count) {
    let level = 0;
    return this.take(count).map((difference) => (level = (level + difference) & 255));
  }

  /// Positions from the low and the high bytes of their differences.
  takePositions(count) {
    const low = this.take(count);
    const high = this.take(count);
    let position = 0;
    return Int32Array.from(low, (byte, i) => (position += ((byte | (high[i] << 8)) << 16) >> 16));
  }

  takeText(count) {
    return new TextDecoder("latin1").decode(this.take(count));
  }

  takeCalls(count) {
    const bases = this.takeText(count);
    const qualities = this.take(count);
    return { bases, qualities, positions: this.takePositions(count) };
  }
}

/// What the bytes of a picture say. Throws when they are no picture, or not that of this row.
///
/// `levels` has one array for each channel, in the order A, C, G, T, with every second sample; level
/// 255 is the amplitude `top` or more. `calls` and `reading` hold bases (a text), qualities and
/// positions (samples, from 0); `reading` is what the result says where that is something else, or null.
/// `mixed` maps a base (from 0) to {letter, percent}: the second base and its height, measured by the
/// called one.
function unpackedPicture(bytes, row) {
  const head = new DataView(bytes.buffer, 0, pictureHeadSize);
  const [pointCount, kept, top, inSight, baseCount, mixedCount, resultCount, hasResult] =
    Array.from({ length: 8 }, (_, i) => head.getUint32(4 * i, true));
  const positions = row.mixed_positions ?? [];
  if (kept !== Math.ceil(pointCount / 2) || top < 1 || mixedCount !== positions.length) {
    throw new RangeError("the head does not fit");
  }
  const parts = new PartReader(bytes, pictureHeadSize);
  const levels = Array.from(channelLetters, () => parts.takeLevels(kept));
  const calls = parts.takeCalls(baseCount);
  const letters = parts.takeText(mixedCount);
  const percents = parts.take(mixedCount);
  const reading = hasResult ? parts.takeCalls(resultCount) : null;
  if (parts.offset !== bytes.length) throw new RangeError("too many bytes");
  const mixed = new Map(
    positions.map((base, i) => [base - 1, { letter: letters[i], percent: percents[i] }]),
  );
  return { pointCount, top, inSight: Math.max(1, inSight), levels, calls, mixed, reading };
}

/// The picture of a row. Throws a PictureFault that says why there is none.
async function readPicture(row) {
  if (typeof DecompressionStream === "undefined") {
    throw new PictureFault(
      "This browser is too old to unpack traces (it has no DecompressionStream). The rest of the page works.",
    );
  }
  const holder = await pictureElement(row.index);
  try {
    return unpackedPicture(await inflatedBytes(holder.textContent), row);
  } catch {
    throw new PictureFault("The picture of this trace is damaged. Make the page again.");
  }
}

/// Keeps the pictures of few rows, and of no others.
class PictureStore {
  constructor() {
    this.promises = new Map();
  }

  /// A promise of the row's picture; unpacks it when it is not kept.
  get(row) {
    let promise = this.promises.get(row.index);
    if (!promise) {
      promise = readPicture(row);
      promise.catch(() => {}); // A fault is told by whoever shows the row.
      this.promises.set(row.index, promise);
    }
    return promise;
  }

  /// Unpacks the pictures of these rows ahead and lets go of all others.
  keep(rows) {
    const wanted = rows.filter((row) => row?.hasPicture);
    const indices = new Set(wanted.map((row) => row.index));
    for (const index of this.promises.keys()) {
      if (!indices.has(index)) this.promises.delete(index);
    }
    for (const row of wanted) this.get(row);
  }
}
