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

/// {name, kind, sign, value, isQuoted} of a term; null for a word, as with an unknown column.
function comparisonOf(token) {
  const [, name = "", sign, text] = /^(\w+)([:<>])(.*)$/s.exec(token) ?? [];
  const column = columnByName.get(name.toLowerCase());
  if (!column) return null;
  return { ...column, sign, value: withoutQuotes(text), isQuoted: text.startsWith('"') };
}

/// A number, or NaN when the text is none.
function numberOf(text) {
  return /^[-+]?(\d+\.?\d*|\.\d+)$/.test(text) ? Number(text) : NaN;
}

/// A test of rows for a comparison. A text is equal as a whole when some row has just this value,
/// else in part; the quoted empty one is the unknown. Every row passes before a value is typed.
function testOf({ name, kind, sign, value, isQuoted }) {
  if (value === "") {
    return isQuoted && sign === ":" ? (row) => (row[name] ?? "") === "" : () => true;
  }
  const isText = kind === "text" || kind === "state";
  if (isText && sign === ":") {
    const wanted = value.toLowerCase();
    const lower = (row) => (row[name] ?? "").toLowerCase();
    const isWhole = stateByName.has(wanted) || sampleRows.some((row) => lower(row) === wanted);
    return (row) => (isWhole ? lower(row) === wanted : lower(row).includes(wanted));
  }
  // Days compare as texts; other texts are not less or more than anything.
  const limit = name === "run_date" ? value : isText ? NaN : numberOf(value);
  const holds = { ":": (x) => x === limit, "<": (x) => x < limit, ">": (x) => x > limit }[sign];
  if (kind === "positions") return (row) => row[name]?.some(holds) ?? false;
  return (row) => row[name] !== null && holds(row[name]);
}

/// What is wrong with a comparison, for the one who types; undefined when nothing is.
function hintOf({ name, kind, sign, value }) {
  if (value === "" || name === "run_date") return undefined;
  const isText = kind === "text" || kind === "state";
  if (isText) return sign === ":" ? undefined : `${name} holds no numbers`;
  return Number.isNaN(numberOf(value)) ? `“${value}” is no number` : undefined;
}

/// {matches(row), hint} of a text. All of its terms must hold.
function parseFilter(text) {
  const tokens = filterTokens(text);
  const comparisons = tokens.map(comparisonOf).filter((comparison) => comparison);
  const words = tokens.filter((token) => !comparisonOf(token)).map(withoutQuotes);
  const tests = comparisons.map(testOf);
  const hasWord = (row, word) => {
    row.words ??= wordColumns.map((name) => row[name] ?? "").join("\n").toLowerCase();
    return row.words.includes(word.toLowerCase());
  };
  return {
    matches: (row) => tests.every((test) => test(row)) && words.every((word) => hasWord(row, word)),
    hint: comparisons.map(hintOf).find((hint) => hint),
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
