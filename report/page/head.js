// The head: two bars, a chip for each of their parts, and the sentence of one state.

const chipColumns = ["state", "contiguous"];

/// A small drawn shape; words beside it say the same.
function mark(look) {
  return element("span", { className: `mark ${look}`, ariaHidden: "true" });
}

/// Counts the rows of the group's chips, removes those without, and makes the parts of its bar.
function fillBar(group, onFilter) {
  const [bar, chips] = group.children;
  for (const chip of [...chips.children]) {
    const { filter } = chip.dataset;
    const count = sampleRows.filter(parseFilter(filter)).length;
    const onclick = () => onFilter(filter);
    chip.onclick = onclick;
    chip.lastChild.textContent = formatNumber(count);
    const className = `part ${chip.firstChild.classList[1]}`;
    const part = element("span", { className, title: chip.textContent, onclick });
    part.style.flexGrow = count;
    if (count > 0) bar.append(part);
    else chip.remove();
  }
  bar.ariaLabel = Array.from(bar.children, ({ title }) => title).join(", ");
}

/// Fills the head; a chip calls onFilter(terms). Returns update(text), which shows the chip that
/// the filter's text presses, and the sentence of its state, else of the worst one.
function createHead(panel, onFilter) {
  const bars = panel.querySelector(".bars");
  const sentence = panel.querySelector(".sentence");
  for (const group of bars.children) fillBar(group, onFilter);
  const chips = [...bars.querySelectorAll(".chip")];
  return (text) => {
    const isPressed = ({ dataset }) => toggledFilter(text, dataset.filter, chipColumns).isPressed;
    for (const chip of chips) chip.ariaPressed = isPressed(chip);
    const chip = chips.find(isPressed) ?? chips[0];
    const state = stateByName.get(/^state:(\S+)/.exec(chip?.dataset.filter)?.[1]);
    if (!state) return;
    const name = element("strong", { textContent: state.name });
    sentence.replaceChildren(mark(state.severity), name, `: ${state.text}`);
  };
}
