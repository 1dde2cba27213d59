// The filter: one text field, one language, for people, chips and plates.

const wordColumns =
  ["sample", "trace", "state", "detail", "plate", "well", "caller", "instrument"];

/// The terms of a text as they stand in it: parted by blanks, except between quotes.
function filterTokens(text) {
  return text.match(/(?:[^\s"]|"(?:[^"]|"")*(?:"|$))+/g) ?? [];
}

/// A term without its quotes; a doubled quote between quotes is one.
function withoutQuotes(token) {
  return token.replace(/"((?:[^"]|"")*)(?:"|$)/g, (_, inner) => inner.replaceAll('""', '"'));
}

/// A number, or NaN when the text is none.
function numberOf(text) {
  return /^[-+]?(\d+\.?\d*|\.\d+)$/.test(text) ? Number(text) : NaN;
}

/// {name, test(row), hint} of a term that compares a column; null for a word, as with an unknown
/// column. A text is equal as a whole when some row has just this value, else in part; the quoted
/// empty one is the unknown. Every row passes before a value is typed, and none when it should be a
/// number and is not: then the hint says so.
function comparisonOf(token) {
  const [, typedName = "", sign, text] = /^(\w+)([:<>])(.*)$/s.exec(token) ?? [];
  const { name, kind } = columnByName.get(typedName.toLowerCase()) ?? {};
  if (!name) return null;
  const value = withoutQuotes(text);
  if (text === "") return { name, test: () => true };
  if (value === "" && sign === ":") return { name, test: (row) => (row[name] ?? "") === "" };
  const isText = kind === "text" || kind === "state";
  if (isText && sign === ":") {
    const wanted = value.toLowerCase();
    const lower = (row) => (row[name] ?? "").toLowerCase();
    const isWhole = stateByName.has(wanted) || sampleRows.some((row) => lower(row) === wanted);
    const test = (row) => (isWhole ? lower(row) === wanted : lower(row).includes(wanted));
    return { name, test };
  }
  // Days compare as texts; other texts are not less or more than anything.
  const limit = name === "run_date" ? value : isText ? NaN : numberOf(value);
  const hint = Number.isNaN(limit) ? `no number: ${token}` : undefined;
  const holds = { ":": (x) => x === limit, "<": (x) => x < limit, ">": (x) => x > limit }[sign];
  const test = (row) => [row[name]].flat().some((x) => x !== null && holds(x));
  return { name, test, hint };
}

/// {matches(row), hint} of a text. All of its terms must hold.
function parseFilter(text) {
  const tokens = filterTokens(text);
  const comparisons = tokens.map(comparisonOf).filter((comparison) => comparison);
  const words = tokens.filter((token) => !comparisonOf(token)).map(withoutQuotes);
  const hasWord = (row, word) => {
    row.words ??= wordColumns.map((name) => row[name] ?? "").join("\n").toLowerCase();
    return row.words.includes(word.toLowerCase());
  };
  return {
    matches: (row) =>
      comparisons.every(({ test }) => test(row)) && words.every((word) => hasWord(row, word)),
    hint: comparisons.find(({ hint }) => hint)?.hint,
  };
}

/// {isPressed, text}: whether the terms of `text` on `columns` are those of `wanted`; and `text`
/// with these in the place of those, or without them if it has them.
function toggledFilter(text, wanted, columns) {
  const isOn = (token) => columns.includes(comparisonOf(token)?.name);
  const tokens = filterTokens(text);
  const present = tokens.filter(isOn);
  const terms = filterTokens(wanted);
  const isPressed = present.join(" ") === terms.join(" ");
  const others = tokens.filter((token) => !isOn(token));
  return { isPressed, text: [...others, ...(isPressed ? [] : terms)].join(" ") };
}
