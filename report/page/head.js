// The head: two bars, a chip for each of their parts, and the sentence of one state.

const chipColumns = ["state", "contiguous"];

/// The parts of the bars: [label, look, filter], states worst first.
const stateParts = pageData.states.map(({ name, severity }) => [name, severity, `state:${name}`]);
const gradeParts = [
  ["above 600", "good", "state:converted contiguous>600"],
  ["300 to 600", "fair", "state:converted contiguous>299 contiguous<601"],
  ["below 300", "poor", "state:converted contiguous<300"],
  ["no calls", "none", 'state:converted contiguous:""'],
];

/// A small drawn shape. What it says stands in words beside it.
function mark(look) {
  return element("span", { className: `mark ${look}`, "aria-hidden": "true" });
}

/// Puts a bar into `bars`, with a chip for each part that has samples. `put` says at which end of
/// the bar a further part goes.
function addBar(bars, title, parts, put, onFilter) {
  const bar = element("div", { className: "bar", role: "img" });
  const chips = element("div", { className: "chips" });
  for (const [label, look, filter] of parts) {
    const count = sampleRows.filter(parseFilter(filter).matches).length;
    if (count === 0) continue;
    const onclick = () => onFilter(filter);
    const number = formatNumber(count);
    const part = element("span", { className: `part ${look}`, title: `${label} ${number}`, onclick });
    part.style.flexGrow = count;
    bar[put](part);
    const settings = { type: "button", className: "chip", "data-filter": filter, onclick };
    const text = [`${label} `, element("b", { text: number })];
    chips.append(element("button", settings, mark(look), ...text));
  }
  if (!bar.firstChild) return;
  bar.setAttribute("aria-label", `${title}: ${chips.textContent}`);
  const settings = { className: "bar-group", role: "group", "aria-label": title };
  bars.append(element("div", settings, bar, chips));
}

/// Fills the head. `onFilter(terms)` is called for a chip. Returns update(text), which shows what
/// the filter's text says: the pressed chip, and the sentence of its state, else of the worst one.
function createHead(panel, onFilter) {
  const bars = panel.querySelector(".bars");
  const sentence = panel.querySelector(".sentence");
  addBar(bars, "Results", stateParts, "prepend", onFilter);
  addBar(bars, "Good stretch of whole reads", gradeParts, "append", onFilter);
  const chips = [...bars.querySelectorAll(".chip")];
  bars.hidden = sentence.hidden = chips.length === 0;
  return (text) => {
    const isPressed = ({ dataset }) => toggledFilter(text, dataset.filter, chipColumns).isPressed;
    for (const chip of chips) chip.setAttribute("aria-pressed", isPressed(chip));
    const chip = chips.find(isPressed) ?? chips[0];
    if (!chip) return;
    const state = stateOf(/^state:(\S+)/.exec(chip.dataset.filter)[1]);
    const name = element("strong", { text: state.name });
    sentence.replaceChildren(mark(state.severity), name, `: ${state.text}`);
  };
}
