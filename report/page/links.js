// Links: "#sample:base", both percent-encoded.

const addressPause = 250;  // ms between two changes of the address; browsers refuse hundreds

/// {row, base, problem} of an address' hash. `row` is null and `problem` a sentence when it names no
/// sample; both are null for the address without a hash. `base` is null when there is none.
function rowOfHash(hash, isEmptyHash) {
  const nowhere = (problem) => ({ row: null, base: null, problem });
  if (hash === "" || hash === "#") {
    return nowhere(isEmptyHash ? "The link names no sample; this is the first one." : null);
  }
  const malformed = "The link can not be read; this is the first sample.";
  const [, encodedName, baseText] = /^#([^]*?)(?::([^:]*))?$/.exec(hash);
  let name;
  try {
    name = decodeURIComponent(encodedName);
  } catch {
    return nowhere(malformed);
  }
  if (name === "" || (baseText !== undefined && !/^[1-9]\d{0,8}$/.test(baseText))) {
    return nowhere(malformed);
  }
  const row = rowByLinkName.get(name);
  if (!row) return nowhere(`There is no sample “${name}” here; this is the first one.`);
  const base = baseText === undefined ? null : Number(baseText);
  if (base !== null && base > (row.bases ?? 0)) {
    return { row, base: null, problem: `${name} has no base ${formatNumber(base)}.` };
  }
  return { row, base, problem: null };
}

/// Writes the address. `current()` returns {row, base} at the time of writing. Returns changed(), to be
/// called at each change; the address follows at most four times a second.
function createAddress(current) {
  let timer = null;
  let wanted = false;

  function write() {
    timer = null;
    if (!wanted) return;
    wanted = false;
    timer = setTimeout(write, addressPause);
    const { row, base } = current();
    if (!row) return;
    const hash = `#${encodeURIComponent(linkName(row))}${base === null ? "" : `:${base}`}`;
    try {
      history.replaceState(null, "", hash);
    } catch {
      // A page inside a frame may not change its address; it works without.
    }
  }

  return function changed() {
    wanted = true;
    if (timer === null) write();
  };
}
