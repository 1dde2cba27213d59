// Links: "#sample:base", both percent-encoded.

const addressPause = 250;  // ms between two changes of the address; browsers refuse hundreds

/// {row, base, problem} of an address; without a row, `problem` says why. {} without a hash.
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
  if (baseText > row.bases) return { row, problem: `${name} has no base ${baseText}.` };
  return { row, base: baseText && Number(baseText) };
}

let addressTimer = null;

/// Lets the address follow the chosen row and its base.
function changeAddress() {
  addressTimer ??= setTimeout(() => {
    addressTimer = null;
    const base = traceView.base();
    const hash = `#${encodeURIComponent(linkName(chosen))}${base === null ? "" : `:${base}`}`;
    if (hash !== location.hash) history.replaceState(null, "", hash);
  }, addressPause);
}
