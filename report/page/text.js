// Numbers, nodes and colours: what every part of the page needs.

const numberFormat = new Intl.NumberFormat("en");

/// "1,480".
function formatNumber(number) {
  return numberFormat.format(number);
}

/// "1 row", "1,480 rows".
function counted(count, noun) {
  return `${formatNumber(count)} ${noun}${count === 1 ? "" : "s"}`;
}

/// A new node. `className` and `text` are set, a function under "onclick" listens, all else becomes
/// an attribute. Children are nodes or texts.
function element(tag, settings = {}, ...children) {
  const node = document.createElement(tag);
  for (const [name, value] of Object.entries(settings)) {
    if (name === "className") node.className = value;
    else if (name === "text") node.textContent = value;
    else if (typeof value === "function") node.addEventListener(name.slice(2), value);
    else node.setAttribute(name, value);
  }
  node.append(...children);
  return node;
}

const colours = new Map();

/// The computed value of a custom property of the root, such as "--base-a".
function colourOf(name) {
  const style = getComputedStyle(document.documentElement);
  if (!colours.has(name)) colours.set(name, style.getPropertyValue(name).trim());
  return colours.get(name);
}

/// To be called when theme or palette have changed, before anything is drawn again.
function forgetColours() {
  colours.clear();
}

/// The context of a canvas of `width` x `height` CSS px, cleared, in units of CSS px.
function sizedContext(canvas, width, height) {
  const ratio = window.devicePixelRatio || 1;
  canvas.width = Math.max(1, Math.round(width * ratio));
  canvas.height = Math.max(1, Math.round(height * ratio));
  canvas.style.width = `${width}px`;
  canvas.style.height = `${height}px`;
  const context = canvas.getContext("2d");
  context.scale(ratio, ratio);
  return context;
}
