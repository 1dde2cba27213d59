// Links: "#sample:base", both percent-encoded.

const addressPause = 250;  // ms between two changes of the address; browsers refuse hundreds

/// {row, base, problem} of an address. Without a row, `problem` says why; it is missing for an
/// address without a hash. `base` is null when there is none.
function placeOfAddress({ href, hash }) {
  if (!href.includes("#")) return {};
  const [, nameText, baseText] = /^#?(.*?)(?::([^:]*))?$/s.exec(hash);
  let name = "";
  try {
    name = decodeURIComponent(nameText);
  } catch {
    // It stays empty.
  }
  if (name === "" || !/^[1-9]\d{0,8}$/.test(baseText ?? "1")) {
    return { problem: "The link can not be read. This is the first sample." };
  }
  const row = rowByLinkName.get(name);
  if (!row) return { problem: `There is no sample “${name}”. This is the first one.` };
  const base = baseText ? Number(baseText) : null;
  return base > row.bases ? { row, problem: `${name} has no base ${base}.` } : { row, base };
}

/// Returns a function to be called at each change. The address follows at most four times a second,
/// by what `current()` returns then, {row, base}.
function createAddress(current) {
  let timer = null;
  const write = () => {
    timer = null;
    const { row, base } = current();
    const hash = `#${encodeURIComponent(linkName(row))}${base === null ? "" : `:${base}`}`;
    try {
      if (hash !== location.hash) history.replaceState(null, "", hash);
    } catch {
      // A page inside a frame may not change its address.
    }
  };
  return () => {
    timer ??= setTimeout(write, addressPause);
  };
}
