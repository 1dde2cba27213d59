// The filter: one text field, one language, for people, chips and plates.

const wordColumns = [
  "sample", "trace", "state", "detail", "plate", "well", "caller", "instrument",
];

/// The terms of a filter's text, as they stand in it: parted by blanks, except between quotes.
function filterTokens(text) {
  return text.match(/(?:[^\s"]|"(?:[^"]|"")*(?:"|$))+/g) ?? [];
}

/// A term without its quotes; a doubled quote between quotes is one.
function withoutQuotes(token) {
  return token.replace(/"((?:[^"]|"")*)(?:"|$)/g, (whole, inner) => inner.replaceAll('""', '"'));
}

/// "plate:P07" or, with blanks or quotes in the value, "plate:\"Run 7\"".
function filterToken(column, value) {
  const plain = value !== "" && !/[\s"]/.test(value);
  return `${column}:${plain ? value : `"${value.replaceAll('"', '""')}"`}`;
}

/// The column, sign and value of a term, or null when it is a word: an unknown column is one.
function comparisonOf(token) {
  const found = /^([a-z0-9_]+)([:<>])([^]*)$/i.exec(token);
  const column = found && columnByName.get(found[1].toLowerCase());
  if (!column) return null;
  return { column, sign: found[2], value: withoutQuotes(found[3]), isQuoted: found[3].startsWith('"') };
}

/// A number, or NaN when the text is none.
function numberOf(text) {
  return /^[-+]?(\d+\.?\d*|\.\d+)$/.test(text) ? Number(text) : NaN;
}

/// A test for "column:value". A text matches as a whole when some row has exactly this value, else in
/// part; a number or a position when it is the same. The quoted empty value stands for unknown.
function equalityTest({ column, value, isQuoted }) {
  const name = column.name;
  if (value === "") {
    return isQuoted ? (row) => row[name] === null || row[name] === "" : () => true;
  }
  if (column.kind === "number") return (row) => row[name] === numberOf(value);
  if (column.kind === "positions") return (row) => row[name]?.includes(numberOf(value)) ?? false;
  const wanted = value.toLowerCase();
  const lower = (row) => (row[name] ?? "").toLowerCase();
  const isWhole = column.kind === "state" ? stateByName.has(wanted)
    : sampleRows.some((row) => lower(row) === wanted);
  return isWhole ? (row) => lower(row) === wanted : (row) => lower(row).includes(wanted);
}

/// A test for "column<value" and "column>value". Days compare as texts, and what is unknown never
/// matches; neither does any row when the value is no number.
function orderTest({ column, sign, value }) {
  const holds = sign === "<" ? (a, b) => a < b : (a, b) => a > b;
  if (column.name === "run_date") return (row) => row.run_date !== null && holds(row.run_date, value);
  const limit = numberOf(value);
  if (column.kind === "positions") {
    return (row) => row.mixed_positions?.some((position) => holds(position, limit)) ?? false;
  }
  return (row) => typeof row[column.name] === "number" && holds(row[column.name], limit);
}

/// What is wrong with a comparison, as a hint to the one who types; "" when nothing is.
function comparisonHint({ column, sign, value }) {
  if (value === "") return "";
  const isNumeric = column.kind === "number" || column.kind === "positions";
  if (sign !== ":" && !isNumeric && column.name !== "run_date") return `${column.name} has no numbers`;
  if (isNumeric && Number.isNaN(numberOf(value))) return `“${value}” is not a number`;
  return "";
}

/// The text in which the words of a filter are looked for. Made once for a row.
function wordsOf(row) {
  row.words ??= wordColumns.map((name) => row[name] ?? "").join("\n").toLowerCase();
  return row.words;
}

/// {matches(row), hint} of a filter's text. All terms must hold.
function parseFilter(text) {
  const tests = [];
  let hint = "";
  for (const token of filterTokens(text)) {
    const comparison = comparisonOf(token);
    if (comparison) {
      hint ||= comparisonHint(comparison);
      if (comparison.sign !== ":" && comparison.value === "") continue;  // still being typed
      tests.push(comparison.sign === ":" ? equalityTest(comparison) : orderTest(comparison));
    } else {
      const word = withoutQuotes(token).toLowerCase();
      if (word !== "") tests.push((row) => wordsOf(row).includes(word));
    }
  }
  return { matches: (row) => tests.every((test) => test(row)), hint };
}

/// The terms of a text that compare one of the columns.
function tokensOf(text, columns) {
  return filterTokens(text).filter((token) => columns.includes(comparisonOf(token)?.column.name));
}

/// True when the terms of `text` on the columns are just those of `wanted`.
function hasFilter(text, wanted, columns) {
  const present = tokensOf(text, columns);
  const tokens = filterTokens(wanted);
  return present.length === tokens.length && tokens.every((token) => present.includes(token));
}

/// `text` with `wanted` in the place of its terms on the columns; without them if it has `wanted`.
function toggledFilter(text, wanted, columns) {
  const present = tokensOf(text, columns);
  const others = filterTokens(text).filter((token) => !present.includes(token));
  return [...others, ...(hasFilter(text, wanted, columns) ? [] : filterTokens(wanted))].join(" ");
}
