// The rows of the page: one object for each, their order, their names in links, their places on the map.

const pageData = JSON.parse(document.getElementById("rows").textContent);

/// The columns of the table. `name` is the TSV's, `label` what people read; `kind` says how a value is
/// shown, compared and looked for; `width` is in px. "read" is the strip, which the TSV does not have.
const tableColumns = [
  { name: "state", label: "state", kind: "state", width: 106 },
  { name: "sample", label: "sample", kind: "text", width: 136 },
  { name: "detail", label: "detail", kind: "text", width: 136 },
  { name: "read", label: "read", kind: "strip", width: 200 },
  { name: "contiguous", label: "good stretch", kind: "number", width: 104 },
  { name: "q20", label: "Q20", kind: "number", width: 64 },
  { name: "mean_quality", label: "mean Q", kind: "number", width: 78 },
  { name: "mixed", label: "mixed", kind: "number", width: 72 },
  { name: "plate", label: "plate", kind: "text", width: 130 },
  { name: "well", label: "well", kind: "text", width: 62 },
  { name: "capillary", label: "capillary", kind: "number", width: 86 },
  { name: "bases", label: "bases", kind: "number", width: 72 },
  { name: "no_calls", label: "no calls", kind: "number", width: 82 },
  { name: "trim_start", label: "trim start", kind: "number", width: 92 },
  { name: "trim_end", label: "trim end", kind: "number", width: 86 },
  { name: "signal_to_noise", label: "signal/noise", kind: "number", width: 108 },
  { name: "trace", label: "trace", kind: "text", width: 160 },
  { name: "run_date", label: "run date", kind: "text", width: 100 },
  { name: "instrument", label: "instrument", kind: "text", width: 150 },
  { name: "caller", label: "caller", kind: "text", width: 130 },
  { name: "mixed_positions", label: "mixed positions", kind: "positions", width: 190 },
];

const columnByName = new Map(tableColumns.map((column) => [column.name, column]));
columnByName.delete("read");

const stateByName = new Map(pageData.states.map((state) => [state.name, state]));
const stateRank = new Map(pageData.states.map((state, rank) => [state.name, rank]));

/// {name, severity, text} of a state.
function stateOf(name) {
  return stateByName.get(name) ?? { name, severity: "waiting", text: "" };
}

/// One row as an object: the twenty values by their names in the TSV, and what the page adds.
function sampleRow(values, index) {
  const row = { index, values, strip: values[pageData.columns.length] };
  row.hasPicture = values[pageData.columns.length + 1] === 1;
  pageData.columns.forEach((name, i) => {
    row[name] = values[i];
  });
  row.severity = stateOf(row.state).severity;
  return row;
}

/// All rows, in the order of the audit.
const sampleRows = pageData.rows.map(sampleRow);

/// Bases of the longest read: the right end of every strip.
const longestRead = sampleRows.reduce((most, row) => Math.max(most, row.bases ?? 0), 1);

/// The well of a row as {row, column}, from 0: what the instrument notes, else the end of the sample's
/// name ("_B01"). Null when there is none.
function wellPlace(row) {
  const noted = /^\s*([A-P])0?(\d{1,2})\s*$/i.exec(row.well ?? "");
  const found = noted ?? /_([A-P])(\d\d)(?:\.\w+)*$/i.exec(row.sample);
  if (!found) return null;
  const column = Number(found[2]) - 1;
  if (column < 0 || column > 23) return null;
  return { row: found[1].toUpperCase().charCodeAt(0) - 65, column };
}

/// How good a read is by its good stretch: "good", "fair", "poor", or null when it is unknown.
function gradeOf(contiguous) {
  if (contiguous === null) return null;
  if (contiguous > 600) return "good";
  return contiguous < 300 ? "poor" : "fair";
}

/// A value as a cell shows it; "" when it is unknown.
function shownValue(row, column) {
  const value = row[column.name];
  if (value === null || value === undefined) return "";
  if (column.name === "mean_quality") return value.toFixed(1);
  if (column.kind === "number") return formatNumber(value);
  return column.kind === "positions" ? value.join(", ") : value;
}

/// A row of the TSV, as the program writes it, without the line feed.
function tsvLine(row) {
  return pageData.columns
    .map((name) => {
      const value = row[name];
      if (value === null) return "";
      if (name === "mean_quality") return value.toFixed(1);
      return Array.isArray(value) ? value.join(",") : escapedForTsv(String(value));
    })
    .join("\t");
}

/// The order by need: worst state first, and within one state that is whole the shortest good stretch
/// first. A whole result without calls has no good stretch and stands before all of them.
function orderByNeed(rows) {
  const need = (row) => (row.severity === "whole" ? row.contiguous ?? -1 : 0);
  const rank = (row) => stateRank.get(row.state) ?? 0;
  return [...rows].sort((a, b) => rank(a) - rank(b) || need(a) - need(b) || a.index - b.index);
}

const textOrder = new Intl.Collator("en", { numeric: true });

/// What a row is sorted by in a column: a number, a text, or null when it is unknown.
function sortKey(row, column) {
  if (column.kind === "state") return stateRank.get(row.state) ?? 0;
  const value = row[column.name];
  if (column.kind === "positions") return value?.[0] ?? null;
  return value === "" ? null : value;
}

/// `rows` sorted by a column, ascending or descending; unknown values stand last either way, and equal
/// ones keep their order.
function orderByColumn(rows, column, descending) {
  const keyed = rows.map((row) => ({ row, key: sortKey(row, column) }));
  const sign = descending ? -1 : 1;
  const compare = (a, b) => (typeof a === "number" ? a - b : textOrder.compare(a, b));
  keyed.sort((a, b) => {
    if (a.key === null || b.key === null) return (a.key === null) - (b.key === null);
    return sign * compare(a.key, b.key);
  });
  return keyed.map(({ row }) => row);
}

/// The name of a row in links: its sample, or its trace when another row owns the sample.
function linkName(row) {
  return row.state === "hidden" ? row.trace ?? row.sample : row.sample;
}

const rowByLinkName = new Map();
for (const owns of [true, false]) {
  for (const row of sampleRows) {
    const name = linkName(row);
    if ((row.state !== "hidden") === owns && !rowByLinkName.has(name)) rowByLinkName.set(name, row);
  }
}
