// Links: "#sample:base", both percent-encoded.

const addressPause = 250;  // ms between two changes of the address; browsers refuse hundreds

/// {row, base, problem} of a hash. Without a row, `problem` says why; both are null for an address
/// without a hash. `base` is null when there is none.
function placeOfHash(hash, isEmptyHash) {
  const nowhere = (problem) => ({ row: null, base: null, problem });
  if (hash === "") return nowhere(isEmptyHash ? "The link names no sample. This is the first one." : null);
  const [, nameText, baseText] = /^#(.*?)(?::([^:]*))?$/s.exec(hash);
  let name = "";
  try {
    name = decodeURIComponent(nameText);
  } catch {
    // The name stays empty.
  }
  if (name === "" || (baseText !== undefined && !/^[1-9]\d{0,8}$/.test(baseText))) {
    return nowhere("The link can not be read. This is the first sample.");
  }
  const row = rowByLinkName.get(name);
  if (!row) return nowhere(`There is no sample “${name}”. This is the first one.`);
  if (baseText > (row.bases ?? 0)) return { row, base: null, problem: `${name} has no base ${baseText}.` };
  return { row, base: baseText === undefined ? null : Number(baseText), problem: null };
}

/// Writes the address. `current()` returns {row, base} at the time of writing. Returns changed(), to be
/// called at each change; the address follows at most four times a second.
function createAddress(current) {
  let timer = null;
  function write() {
    timer = null;
    const { row, base } = current();
    const hash = `#${encodeURIComponent(linkName(row))}${base === null ? "" : `:${base}`}`;
    if (hash === location.hash) return;
    try {
      history.replaceState(null, "", hash);
    } catch {
      // A page inside a frame may not change its address.
    }
  }
  return () => {
    timer ??= setTimeout(write, addressPause);
  };
}
