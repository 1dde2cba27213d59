// The head: two bars, a chip for each of their parts, and the sentence of one state.

const chipColumns = ["state", "contiguous"];

/// A small drawn shape. What it says stands in words beside it.
function mark(look) {
  return element("span", { className: `mark ${look}`, "aria-hidden": "true" });
}

/// What the bars show: [label, look, filter] of each part, states worst first.
const stateParts = pageData.states.map(({ name, severity }) => [name, severity, `state:${name}`]);
const gradeParts = [
  ["above 600", "good", "state:converted contiguous>600"],
  ["300 to 600", "fair", "state:converted contiguous>299 contiguous<601"],
  ["below 300", "poor", "state:converted contiguous<300"],
  ["no calls", "none", 'state:converted contiguous:""'],
];

/// A bar with a chip for each part that has samples; "" when none has. `put` says at which end of the
/// bar a further part goes.
function barGroup(title, parts, put, onFilter) {
  const bar = element("div", { className: "bar", role: "img" });
  const chips = element("div", { className: "chips" });
  for (const [label, look, filter] of parts) {
    const count = sampleRows.filter(parseFilter(filter).matches).length;
    if (count === 0) continue;
    const onclick = () => onFilter(filter);
    const number = formatNumber(count);
    const piece = element("span", { className: `part ${look}`, title: `${label} ${number}`, onclick });
    piece.style.flexGrow = count;
    bar[put](piece);
    const settings = { type: "button", className: "chip", "data-filter": filter, onclick };
    chips.append(element("button", settings, mark(look), `${label} `, element("b", { text: number })));
  }
  bar.setAttribute("aria-label", `${title}: ${chips.textContent}`);
  if (!bar.firstChild) return "";
  return element("div", { className: "bar-group", role: "group", "aria-label": title }, bar, chips);
}

/// Fills the head. `onFilter(terms)` is called for a chip. Returns update(text), which shows what the
/// filter's text says: the pressed chip, and the sentence of its state, else of the worst one.
function createHead(panel, onFilter) {
  const bars = panel.querySelector(".bars");
  const sentence = panel.querySelector(".sentence");
  bars.append(
    barGroup("Results", stateParts, "prepend", onFilter),
    barGroup("Good stretch of whole reads", gradeParts, "append", onFilter),
  );
  bars.hidden = sentence.hidden = sampleRows.length === 0;
  const chips = [...bars.querySelectorAll(".chip")];
  return (text) => {
    if (chips.length === 0) return;
    const isPressed = ({ dataset }) => partedFilter(text, dataset.filter, chipColumns).isPressed;
    for (const chip of chips) chip.setAttribute("aria-pressed", isPressed(chip));
    const chip = chips.find(isPressed) ?? chips[0];
    const name = comparisonOf(filterTokens(chip.dataset.filter)[0]).value;
    const { severity, text: explanation } = stateOf(name);
    sentence.replaceChildren(mark(severity), element("strong", { text: name }), `: ${explanation}`);
  };
}
