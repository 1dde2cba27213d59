// Keys, and the list of them.

const keyLines = [
  ["↑ ↓", "previous and next sample of the table"],
  ["/", "filter"],
  ["← →", "move along the trace (or drag it, or turn the wheel sideways)"],
  ["+ − 0", "zoom in, out, the whole read (or turn the wheel)"],
  ["[ ]", "lower and higher peaks"],
  ["m M", "next and previous mixed base"],
  ["g", "go to a base"],
  ["r", "reverse complement; numbers stay the trace's own"],
  ["?", "this list"],
];

const filterLines = [
  ["P07 cut", "rows with both words in sample, trace, state, detail, plate, well, caller or instrument"],
  ["state:cut", "a column's value: the whole of it where a row has just this value, else a part"],
  ["contiguous<300", "a column's number; also mixed>5, run_date>2026-01-31"],
  ['plate:"Run 7"', "quotes around blanks; a quote inside is doubled"],
  ['plate:""', "a column that is unknown"],
];

/// A list of terms in code and their meanings.
function meaningList(lines) {
  const list = element("dl");
  for (const [term, meaning] of lines) {
    list.append(element("dt", {}, element("code", { text: term })), element("dd", { text: meaning }));
  }
  return list;
}

/// The dialog with all keys and the filter's language. Returns a function that opens it.
function createHelp() {
  const dialog = element("dialog", { className: "help", "aria-label": "Keys and filter" });
  const columns = [...columnByName.keys()].join(", ");
  dialog.append(
    element("form", { method: "dialog" }, element("button", { text: "Close" })),
    element("h2", { text: "Keys" }), meaningList(keyLines),
    element("h2", { text: "Filter" }), meaningList(filterLines),
    element("p", { text: `Columns: ${columns}.` }),
  );
  document.body.append(dialog);
  return () => {
    if (!dialog.open) dialog.showModal();
  };
}

/// True when a key belongs to a field in which one types.
function isTyping(target) {
  return Boolean(target.closest?.("input, textarea, select, [contenteditable]"));
}

/// Listens for keys. `actions`: step(by) to another row, filter(), help(), other(event) for the rest.
/// None acts while one types, in a dialog, or with Ctrl, Alt or Meta.
function listenForKeys({ step, filter, help, other }) {
  document.addEventListener("keydown", (event) => {
    if (event.defaultPrevented || event.ctrlKey || event.altKey || event.metaKey) return;
    if (event.isComposing || isTyping(event.target) || document.querySelector("dialog[open]")) return;
    if (event.key === "ArrowDown") step(1);
    else if (event.key === "ArrowUp") step(-1);
    else if (event.key === "/") filter();
    else if (event.key === "?") help();
    else if (!other(event)) return;
    event.preventDefault();
  });
}
