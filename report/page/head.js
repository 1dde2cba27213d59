// The head: two bars, a chip for each of their parts, and the sentence of one state.

/// The columns that chips filter by.
const chipColumns = ["state", "contiguous"];

/// The parts of the first bar, worst first: a state, its count and its filter.
function stateParts() {
  return pageData.states
    .map(({ name, severity }) => ({
      label: name,
      look: severity,
      filter: `state:${name}`,
      count: sampleRows.filter((row) => row.state === name).length,
    }))
    .filter(({ count }) => count > 0);
}

/// The parts of the second bar: whole reads by their good stretch.
function readParts() {
  const whole = sampleRows.filter((row) => row.severity === "whole");
  const part = (label, look, terms, holds) => ({
    label,
    look,
    filter: `state:converted ${terms}`,
    count: whole.filter((row) => holds(row.contiguous)).length,
  });
  return [
    part("above 600", "good", "contiguous>600", (length) => gradeOf(length) === "good"),
    part("300 to 600", "fair", "contiguous>299 contiguous<601", (length) => gradeOf(length) === "fair"),
    part("below 300", "poor", "contiguous<300", (length) => gradeOf(length) === "poor"),
    part("no calls", "none", 'contiguous:""', (length) => length === null),
  ].filter(({ count }) => count > 0);
}

/// A small drawn shape. What it says stands in words beside it.
function mark(look) {
  return element("span", { className: `mark ${look}`, "aria-hidden": "true" });
}

/// One bar with its chips. `parts` stand in the order of the chips; the bar shows them in `barOrder`.
function barGroup(title, parts, barOrder, onFilter) {
  const bar = element("div", {
    className: "bar",
    role: "img",
    "aria-label": `${title}: ${parts.map((p) => `${p.label} ${formatNumber(p.count)}`).join(", ")}`,
  });
  for (const { label, look, count, filter } of barOrder) {
    const part = element("span", {
      className: `part ${look}`,
      title: `${label} ${formatNumber(count)}`,
      onclick: () => onFilter(filter),
    });
    part.style.flexGrow = String(count);
    bar.append(part);
  }
  const chips = parts.map(({ label, look, count, filter }) =>
    element("button", {
      type: "button",
      className: "chip",
      "data-filter": filter,
      "aria-pressed": "false",
      onclick: () => onFilter(filter),
    }, mark(look), `${label} `, element("b", { text: formatNumber(count) })));
  const group = element("div", { className: "bar-group", role: "group", "aria-label": title });
  group.append(bar, element("div", { className: "chips" }, ...chips));
  return group;
}

/// Fills the head. `onFilter(terms)` is called for a chip. Returns {update(text)}, which shows what the
/// filter's text says: the pressed chip, and the sentence of its state, else of the worst one.
function createHead(panel, onFilter) {
  const states = stateParts();
  const reads = readParts();
  const bars = panel.querySelector(".bars");
  if (states.length > 0) bars.append(barGroup("Results", states, [...states].reverse(), onFilter));
  if (reads.length > 0) bars.append(barGroup("Good stretch of whole reads", reads, reads, onFilter));
  bars.hidden = states.length === 0;
  const sentence = panel.querySelector(".sentence");
  const chips = [...bars.querySelectorAll(".chip")];

  function update(text) {
    let chosen = null;
    for (const chip of chips) {
      const isPressed = hasFilter(text, chip.dataset.filter, chipColumns);
      chip.setAttribute("aria-pressed", String(isPressed));
      if (isPressed) chosen = /^state:(\S+)/.exec(chip.dataset.filter)[1];
    }
    const name = chosen ?? states[0]?.label;
    sentence.hidden = name === undefined;
    if (name === undefined) return;
    const { severity, text: explanation } = stateOf(name);
    sentence.replaceChildren(mark(severity), element("strong", { text: name }), `: ${explanation}`);
  }
  return { update };
}
