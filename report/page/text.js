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

/// A new node. `className` and `text` are set as such; a function under "onclick" and the like listens;
/// true and false set or leave out; all else becomes an attribute. Children are nodes or texts.
function element(tag, settings = {}, ...children) {
  const node = document.createElement(tag);
  for (const [name, value] of Object.entries(settings)) {
    if (name === "className") node.className = value;
    else if (name === "text") node.textContent = value;
    else if (typeof value === "function") node.addEventListener(name.slice(2), value);
    else if (value === true) node.setAttribute(name, "");
    else if (value !== false && value !== null && value !== undefined) node.setAttribute(name, value);
  }
  node.append(...children);
  return node;
}

/// A value in a field of TSV, as the program itself writes it.
function escapedForTsv(text) {
  const letters = new Map([["\t", "\\t"], ["\n", "\\n"], ["\r", "\\r"], ["\\", "\\\\"], ["\0", "\\0"]]);
  return text.replace(/[\t\n\r\\\0]/g, (letter) => letters.get(letter));
}

const colours = new Map();

/// The computed value of a custom property of the root, such as "--base-a". Remembered until
/// forgetColours().
function colourOf(name) {
  let value = colours.get(name);
  if (value === undefined) {
    value = getComputedStyle(document.documentElement).getPropertyValue(name).trim();
    colours.set(name, value);
  }
  return value;
}

/// Call it when the theme or the palette has changed, before anything is drawn again.
function forgetColours() {
  colours.clear();
}

/// The context of a canvas of `width` x `height` CSS px, cleared, with one unit for one CSS px and as
/// many pixels as the screen has.
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
