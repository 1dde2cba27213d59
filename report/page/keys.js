// Keys. The list of them stands in the page.

/// Listens for keys: step(by) goes to another row, filter() and help() as they say; other(event) is
/// true when it took the key. None acts while one types, in a dialog, or with Ctrl, Alt or Meta.
function listenForKeys({ step, filter, help, other }) {
  document.addEventListener("keydown", (event) => {
    if (event.ctrlKey || event.altKey || event.metaKey || event.isComposing) return;
    if (event.target.closest?.("input, textarea, select, dialog")) return;
    if (event.key === "ArrowDown") step(1);
    else if (event.key === "ArrowUp") step(-1);
    else if (event.key === "/") filter();
    else if (event.key === "?") help();
    else if (!other(event)) return;
    event.preventDefault();
  });
}
