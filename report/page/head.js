// The head: two bars, a chip for each of their parts, and the sentence of one state.

const chipColumns = ["state", "contiguous"];

/// A small drawn shape. What it says stands in words beside it.
function mark(look) {
  return element("span", { className: `mark ${look}`, "aria-hidden": "true" });
}

/// Counts the rows of the group's chips, removes those without, and makes the parts of its bar.
function fillBar(group, onFilter) {
  const bar = group.querySelector(".bar");
  for (const chip of group.querySelectorAll(".chip")) {
    const { filter } = chip.dataset;
    const count = sampleRows.filter(parseFilter(filter).matches).length;
    if (count === 0) {
      chip.remove();
      continue;
    }
    const onclick = () => onFilter(filter);
    chip.addEventListener("click", onclick);
    chip.lastChild.textContent = formatNumber(count);
    const className = `part ${chip.firstChild.classList[1]}`;
    const part = element("span", { className, title: chip.textContent, onclick });
    part.style.flexGrow = count;
    bar.append(part);
  }
  group.hidden = !bar.firstChild;
  const texts = [...bar.children].map(({ title }) => title);
  bar.setAttribute("aria-label", texts.join(", "));
}

/// Fills the head. `onFilter(terms)` is called for a chip. Returns update(text), which shows what
/// the filter's text says: the pressed chip, and the sentence of its state, else of the worst one.
function createHead(panel, onFilter) {
  const bars = panel.querySelector(".bars");
  const sentence = panel.querySelector(".sentence");
  for (const group of bars.children) fillBar(group, onFilter);
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
