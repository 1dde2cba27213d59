// The filter: one text field, one language, for people, chips and plates.

const wordColumns = ["sample", "trace", "state", "detail", "plate", "well", "caller", "instrument"];

/// The terms of a text as they stand in it: parted by blanks, except between quotes.
function filterTokens(text) {
  return text.match(/(?:[^\s"]|"(?:[^"]|"")*(?:"|$))+/g) ?? [];
}

/// A term without its quotes; a doubled quote between quotes is one.
function withoutQuotes(token) {
  return token.replace(/"((?:[^"]|"")*)(?:"|$)/g, (whole, inner) => inner.replaceAll('""', '"'));
}

/// "plate:P07"; with quotes where the value needs them.
function filterToken(column, value) {
  const isPlain = value !== "" && !/[\s"]/.test(value);
  return `${column}:${isPlain ? value : `"${value.replaceAll('"', '""')}"`}`;
}

/// {name, kind, sign, value, isQuoted} of a term, or null for a word. An unknown column makes a word.
function comparisonOf(token) {
  const [, name, sign, text] = /^(\w+)([:<>])([^]*)$/.exec(token) ?? [];
  const column = name && columnByName.get(name.toLowerCase());
  if (!column) return null;
  return { ...column, sign, value: withoutQuotes(text), isQuoted: text.startsWith('"') };
}

/// A number, or NaN when the text is none.
function numberOf(text) {
  return /^[-+]?(\d+\.?\d*|\.\d+)$/.test(text) ? Number(text) : NaN;
}

/// A test of rows for a comparison. A text is equal as a whole when some row has just this value, else in
/// part; the quoted empty one is the unknown. What is unknown, or no number, is not less or more.
function testOf({ name, kind, sign, value, isQuoted }) {
  if (value === "") {
    return isQuoted && sign === ":" ? (row) => row[name] === null || row[name] === "" : () => true;
  }
  const isText = kind === "text" || kind === "state";
  if (isText && sign === ":") {
    const wanted = value.toLowerCase();
    const lower = (row) => (row[name] ?? "").toLowerCase();
    const isWhole = stateByName.has(wanted) || sampleRows.some((row) => lower(row) === wanted);
    return (row) => (isWhole ? lower(row) === wanted : lower(row).includes(wanted));
  }
  const limit = name === "run_date" ? value : isText ? NaN : numberOf(value);
  const holds = { ":": (x) => x === limit, "<": (x) => x < limit, ">": (x) => x > limit }[sign];
  if (kind === "positions") return (row) => row[name]?.some(holds) ?? false;
  return (row) => row[name] !== null && holds(row[name]);
}

/// What is wrong with a comparison, for the one who types; "" when nothing is.
function hintOf({ name, kind, sign, value }) {
  if (value === "" || name === "run_date") return "";
  if (kind !== "text" && kind !== "state") return numberOf(value) >= -Infinity ? "" : `“${value}” is no number`;
  return sign === ":" ? "" : `${name} holds no numbers`;
}

/// {matches(row), hint} of a text. All of its terms must hold.
function parseFilter(text) {
  const comparisons = [];
  const words = [];
  for (const token of filterTokens(text)) {
    const comparison = comparisonOf(token);
    if (comparison) comparisons.push(comparison);
    else words.push(withoutQuotes(token).toLowerCase());
  }
  const tests = comparisons.map(testOf);
  const wordsOf = (row) => {
    row.words ??= wordColumns.map((name) => row[name] ?? "").join("\n").toLowerCase();
    return row.words;
  };
  return {
    matches: (row) => tests.every((test) => test(row))
      && words.every((word) => wordsOf(row).includes(word)),
    hint: comparisons.map(hintOf).find((hint) => hint !== "") ?? "",
  };
}

/// The terms of `text` on the columns, those not on them, and whether the former are those of `wanted`.
function partedFilter(text, wanted, columns) {
  const isOn = (token) => columns.includes(comparisonOf(token)?.name);
  const present = filterTokens(text).filter(isOn);
  const tokens = filterTokens(wanted);
  return {
    others: filterTokens(text).filter((token) => !isOn(token)),
    tokens,
    isPressed: present.length === tokens.length && tokens.every((token) => present.includes(token)),
  };
}

/// `text` with `wanted` in the place of its terms on the columns; without them if it has `wanted`.
function toggledFilter(text, wanted, columns) {
  const { others, tokens, isPressed } = partedFilter(text, wanted, columns);
  return [...others, ...(isPressed ? [] : tokens)].join(" ");
}
