// Keys. The list of them stands in the page.

const pageKeys = {
  ArrowDown: () => step(1),
  ArrowUp: () => step(-1),
  "/": () => filterField.select(),
  "?": openHelp,
};

/// None acts while one types, in a dialog, or with Ctrl, Alt or Meta.
function onKey(event) {
  if (event.ctrlKey || event.altKey || event.metaKey || event.isComposing) return;
  if (event.target.closest?.("input, textarea, select, dialog")) return;
  if (Object.hasOwn(pageKeys, event.key)) pageKeys[event.key]();
  else if (!traceView.key(event.key)) return;
  event.preventDefault();
}
