// The head: two bars, a chip for each of their parts, and the sentence of one state.

const chipColumns = ["state", "contiguous"];

/// A small drawn shape. What it says stands in words beside it.
function mark(look) {
  return element("span", { className: `mark ${look}`, "aria-hidden": "true" });
}

/// The parts of the bars that stand for samples: {label, look, filter, count}. States come worst first.
function barParts() {
  const whole = sampleRows.filter((row) => row.severity === "whole");
  const part = (label, look, filter, rows) => ({ label, look, filter, count: rows.length });
  const reads = (label, look, terms) => part(label, look, `state:converted ${terms}`,
    whole.filter(({ contiguous }) => gradeOf(contiguous) === look));
  const states = pageData.states.map(({ name, severity }) =>
    part(name, severity, `state:${name}`, sampleRows.filter((row) => row.state === name)));
  const grades = [
    reads("above 600", "good", "contiguous>600"),
    reads("300 to 600", "fair", "contiguous>299 contiguous<601"),
    reads("below 300", "poor", "contiguous<300"),
    reads("no calls", "none", 'contiguous:""'),
  ];
  return [states, grades].map((parts) => parts.filter(({ count }) => count > 0));
}

/// One bar and its chips. The bar has the whole results on its left.
function barGroup(title, parts, onFilter) {
  const text = ({ label, count }) => `${label} ${formatNumber(count)}`;
  const label = `${title}: ${parts.map(text).join(", ")}`;
  const bar = element("div", { className: "bar", role: "img", "aria-label": label });
  const chips = element("div", { className: "chips" });
  for (const part of parts) {
    const onclick = () => onFilter(part.filter);
    const piece = element("span", { className: `part ${part.look}`, title: text(part), onclick });
    piece.style.flexGrow = part.count;
    if (part.look in { good: 1, fair: 1, poor: 1, none: 1 }) bar.append(piece);
    else bar.prepend(piece);
    const settings = { type: "button", className: "chip", "data-filter": part.filter, onclick };
    chips.append(element("button", settings, mark(part.look), `${part.label} `,
      element("b", { text: formatNumber(part.count) })));
  }
  return element("div", { className: "bar-group", role: "group", "aria-label": title }, bar, chips);
}

/// Fills the head. `onFilter(terms)` is called for a chip. Returns update(text), which shows what the
/// filter's text says: the pressed chip, and the sentence of its state, else of the worst one.
function createHead(panel, onFilter) {
  const [states, grades] = barParts();
  const bars = panel.querySelector(".bars");
  const sentence = panel.querySelector(".sentence");
  if (states.length > 0) bars.append(barGroup("Results", states, onFilter));
  if (grades.length > 0) bars.append(barGroup("Good stretch of whole reads", grades, onFilter));
  bars.hidden = sentence.hidden = states.length === 0;
  return (text) => {
    let name = states[0]?.label;
    for (const chip of bars.querySelectorAll(".chip")) {
      const { tokens, isPressed } = partedFilter(text, chip.dataset.filter, chipColumns);
      chip.setAttribute("aria-pressed", isPressed);
      if (isPressed) name = comparisonOf(tokens[0]).value;
    }
    if (!name) return;
    const { severity, text: explanation } = stateOf(name);
    sentence.replaceChildren(mark(severity), element("strong", { text: name }), `: ${explanation}`);
  };
}
