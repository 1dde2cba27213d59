// The filter: one language for people, chips and plates.

const wordColumns =
  ["sample", "trace", "state", "detail", "plate", "well", "caller", "instrument"];

/// The terms of a text as they stand in it: parted by blanks, except between quotes.
function filterTokens(text) {
  return text.match(/(?:[^\s"]|"(?:[^"]|"")*(?:"|$))+/g) ?? [];
}

/// A term in small letters without its quotes; a doubled quote between quotes is one.
function plainTerm(token) {
  const plain = token.replace(/"((?:[^"]|"")*)(?:"|$)/g, (_, inner) => inner.replaceAll('""', '"'));
  return plain.toLowerCase();
}

/// {name, test(row)} of a term that compares a column; null for a word, as with an unknown column.
/// A text is equal as a whole when some row has just this value, else in part; the quoted empty one
/// is the unknown. Every row passes before a value is typed, and none when a number is missing.
function comparisonOf(token) {
  const [, typedName = "", sign, text] = /^(\w+)([:=<>])(.*)$/s.exec(token) ?? [];
  const { name, kind } = columnByName.get(typedName.toLowerCase()) ?? {};
  if (!name) return null;
  const isText = kind === "text" || kind === "state";
  const value = plainTerm(text);
  const limit = isText ? value : /^[-+]?(\d+\.?\d*|\.\d+)$/.test(value) ? Number(value) : NaN;
  const known = (row) => [row[name] ?? []].flat();
  const lower = (row) => (row[name] ?? "").toLowerCase();
  const isWhole = () => stateByName.has(value) || sampleRows.some((row) => lower(row) === value);
  let test = (row) => known(row).includes(limit);
  if (text === "") test = () => true;
  else if (sign === "<") test = (row) => known(row).some((each) => each < limit);
  else if (sign === ">") test = (row) => known(row).some((each) => each > limit);
  else if (value === "") test = (row) => (row[name] ?? "") === "";
  else if (isText && isWhole()) test = (row) => lower(row) === value;
  else if (isText) test = (row) => lower(row).includes(value);
  return { name, test };
}

function hasWord(row, word) {
  row.words ??= wordColumns.map((name) => row[name] ?? "").join("\n").toLowerCase();
  return row.words.includes(word);
}

/// A function that tells whether all terms of a text hold for a row.
function parseFilter(text) {
  const tests = filterTokens(text).map((token) => {
    const word = plainTerm(token);
    return comparisonOf(token)?.test ?? ((row) => hasWord(row, word));
  });
  return (row) => tests.every((test) => test(row));
}

/// {isPressed, text}: whether the terms of `text` on `columns` are those of `wanted`; and `text`
/// with these in the place of those, or without them if it has them.
function toggledFilter(text, wanted, columns) {
  const isOn = (token) => columns.includes(comparisonOf(token)?.name);
  const tokens = filterTokens(text);
  const terms = filterTokens(wanted);
  const isPressed = tokens.filter(isOn).join(" ") === terms.join(" ");
  const others = tokens.filter((token) => !isOn(token));
  return { isPressed, text: [...others, ...(isPressed ? [] : terms)].join(" ") };
}
