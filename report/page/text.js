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

/// A new node. `className` and `text` are set as such, a function under "onclick" listens, and all else
/// becomes an attribute. Children are nodes or texts.
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

/// The computed value of a custom property of the root, such as "--base-a". Kept until forgetColours().
function colourOf(name) {
  if (!colours.has(name)) {
    const style = getComputedStyle(document.documentElement);
    colours.set(name, style.getPropertyValue(name).trim());
  }
  return colours.get(name);
}

/// Call it when the theme or the palette has changed, before anything is drawn again.
function forgetColours() {
  colours.clear();
}

/// The context of a canvas of `width` x `height` CSS px, cleared. One unit is one CSS px, and there are
/// as many pixels as the screen has.
function sizedContext(canvas, width, height) {
  const ratio = window.devicePixelRatio || 1;
  canvas.width = Math.max(1, Math.round(width * ratio));
  canvas.height = Math.max(1, Math.round(height * ratio));
  canvas.style.width = `${width}px`;
  canvas.style.height = `${height}px`;
  const context = canvas.getContext("2d");
  context.setTransform(ratio, 0, 0, ratio, 0, 0);
  return context;
}
