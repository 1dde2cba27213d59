// The rows, their order, and their names in links.

const pageData = JSON.parse(document.getElementById("rows").textContent);

/// The table's columns by its headings. `name` is the TSV's; the strip has none.
const tableColumns = [...document.querySelectorAll("#app th")].map((heading) => ({
  name: heading.dataset.column,
  kind: heading.dataset.kind,
  heading,
}));
const columnByName = new Map(tableColumns.map((column) => [column.name, column]));

/// {name, severity, text, rank} of each state. Rank 0 is the worst.
const stateByName = new Map(pageData.states.map((state, rank) => [state.name, { ...state, rank }]));

/// All rows in the order of the audit: the values by their names in the TSV, `strip` and
/// `hasPicture`; severity and rank of the state.
const sampleRows = pageData.rows.map((values, index) => {
  const names = [...pageData.columns, "strip", "hasPicture"];
  const row = Object.fromEntries(names.map((name, i) => [name, values[i]]));
  const { severity, rank } = stateByName.get(row.state);
  return { ...row, index, severity, rank };
});

/// Bases of the longest read: the right end of every strip.
const longestRead = sampleRows.reduce((most, row) => Math.max(most, row.bases), 0);

/// How good a read is by its good stretch; "none" when that is unknown.
function gradeOf(contiguous) {
  if (contiguous === null) return "none";
  if (contiguous > 600) return "good";
  return contiguous < 300 ? "poor" : "fair";
}

/// A value as text, as in the TSV before escaping; "" when it is unknown.
function valueText(row, name) {
  return (name === "mean_quality" ? row[name]?.toFixed(1) : row[name]?.toString()) ?? "";
}

const tsvEscapes = { "\t": "\\t", "\n": "\\n", "\r": "\\r", "\\": "\\\\", "\0": "\\0" };

/// A row as the program writes it into a TSV, without the line feed.
function tsvLine(row) {
  const field = (name) =>
    valueText(row, name).replace(/[\t\n\r\\\0]/g, (letter) => tsvEscapes[letter]);
  return pageData.columns.map(field).join("\t");
}

/// Rows by need: worst state first, and whole results by the shortest good stretch. Those without
/// calls have none and stand before all others of them.
function orderByNeed(rows) {
  const need = (row) => (row.severity === "whole" ? row.contiguous ?? -1 : 0);
  return [...rows].sort((a, b) => a.rank - b.rank || need(a) - need(b) || a.index - b.index);
}

const textOrder = new Intl.Collator("en", { numeric: true });

/// Rows by a column. Unknown values stand last either way, and equal ones keep their order.
function orderByColumn(rows, { name, kind }, isDescending) {
  const keyOf = (row) => (kind === "state" ? row.rank : [row[name]].flat()[0]) ?? "";
  const compare = (a, b) => (typeof a === "number" ? a - b : textOrder.compare(a, b));
  const known = rows.filter((row) => keyOf(row) !== "");
  known.sort((a, b) => (isDescending ? -1 : 1) * compare(keyOf(a), keyOf(b)));
  return [...new Set([...known, ...rows])];
}

/// The name of a row in links: its sample, or its trace when another row owns the sample.
function linkName(row) {
  return row.state === "hidden" ? row.trace : row.sample;
}

const rowByLinkName = new Map();
for (const row of sampleRows) {
  const name = linkName(row);
  if (row.state !== "hidden" || !rowByLinkName.has(name)) rowByLinkName.set(name, row);
}
