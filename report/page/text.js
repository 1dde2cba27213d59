// What every part of the page needs.

/// "1,480".
const formatNumber = new Intl.NumberFormat("en").format;

/// "1 row", "1,480 rows".
function counted(count, noun) {
  return `${formatNumber(count)} ${noun}${count === 1 ? "" : "s"}`;
}

/// A new node with these properties, those in `dataset` included. Children are nodes or texts.
function element(tag, { dataset, ...properties } = {}, ...children) {
  const node = Object.assign(document.createElement(tag), properties);
  Object.assign(node.dataset, dataset);
  node.append(...children);
  return node;
}

/// To be cleared when theme or palette have changed.
const colours = new Map();

/// The computed value of a custom property of the root, such as "--base-a".
function colourOf(name) {
  const style = getComputedStyle(document.documentElement);
  if (!colours.has(name)) colours.set(name, style.getPropertyValue(name).trim());
  return colours.get(name);
}

/// The context of a canvas of `width` x `height` CSS px, cleared, in units of CSS px.
function sizedContext(canvas, width, height, ratio = window.devicePixelRatio) {
  canvas.width = Math.round(width * ratio);
  canvas.height = Math.round(height * ratio);
  Object.assign(canvas.style, { width: `${width}px`, height: `${height}px` });
  const context = canvas.getContext("2d");
  context.scale(ratio, ratio);
  return context;
}

function fill(context, colour, ...box) {
  context.fillStyle = colourOf(colour);
  context.fillRect(...box);
}
