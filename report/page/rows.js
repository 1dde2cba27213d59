// The rows: one object for each, as cells and as TSV, in order, and by their names in links.

const pageData = JSON.parse(document.getElementById("rows").textContent);

/// The table's columns by its headings: {name, kind, heading}. `name` is the TSV's; the strip has none.
const tableColumns = [...document.querySelectorAll("#app th")].map((heading) => ({
  name: heading.dataset.column,
  kind: heading.dataset.kind,
  heading,
}));
const columnByName = new Map(tableColumns.map((column) => [column.name, column]));

const stateByName = new Map(pageData.states.map((state, rank) => [state.name, { ...state, rank }]));

/// {name, severity, text, rank} of a state. Rank 0 is the worst.
function stateOf(name) {
  return stateByName.get(name);
}

/// All rows in the order of the audit: the twenty values by their names in the TSV, and what the page
/// adds.
const sampleRows = pageData.rows.map((values, index) => {
  const row = { index, values };
  [...pageData.columns, "strip", "hasPicture"].forEach((name, i) => {
    row[name] = values[i];
  });
  row.severity = stateOf(row.state).severity;
  return row;
});

/// Bases of the longest read: the right end of every strip.
const longestRead = sampleRows.reduce((most, row) => Math.max(most, row.bases ?? 0), 0);

/// How good a read is by its good stretch; "none" when that is unknown.
function gradeOf(contiguous) {
  if (contiguous === null) return "none";
  if (contiguous > 600) return "good";
  return contiguous < 300 ? "poor" : "fair";
}

/// A value as a cell shows it; "" when it is unknown.
function shownValue(row, { name, kind }) {
  const value = row[name];
  if (value === null) return "";
  if (name === "mean_quality") return value.toFixed(1);
  if (kind === "number") return formatNumber(value);
  return kind === "positions" ? value.join(", ") : value;
}

const tsvEscapes = new Map([["\t", "t"], ["\n", "n"], ["\r", "r"], ["\\", "\\"], ["\0", "0"]]);

/// A row as the program writes it into a TSV, without the line feed.
function tsvLine(row) {
  const fields = pageData.columns.map((name) => {
    const value = row[name];
    if (value === null) return "";
    if (name === "mean_quality") return value.toFixed(1);
    return String(value).replace(/[\t\n\r\\\0]/g, (letter) => `\\${tsvEscapes.get(letter)}`);
  });
  return fields.join("\t");
}

/// Sorts by need: worst state first, and whole results by the shortest good stretch. Those without calls
/// have none and stand before all others of them.
function orderByNeed(rows) {
  const need = (row) => (row.severity === "whole" ? row.contiguous ?? -1 : 0);
  const rank = (row) => stateOf(row.state).rank;
  return [...rows].sort((a, b) => rank(a) - rank(b) || need(a) - need(b) || a.index - b.index);
}

const textOrder = new Intl.Collator("en", { numeric: true });

/// Sorts by a column. Unknown values stand last either way, and equal ones keep their order.
function orderByColumn(rows, { name, kind }, descending) {
  const keyOf = (row) => {
    if (kind === "state") return stateOf(row.state).rank;
    const value = kind === "positions" ? row[name]?.[0] : row[name];
    return value === "" ? null : value ?? null;
  };
  const sign = descending ? -1 : 1;
  const compare = (a, b) => (typeof a === "number" ? a - b : textOrder.compare(a, b));
  return rows.map((row) => ({ row, key: keyOf(row) }))
    .sort(({ key: a }, { key: b }) =>
      (a === null || b === null ? (a === null) - (b === null) : sign * compare(a, b)))
    .map(({ row }) => row);
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
