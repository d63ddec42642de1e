/** Building DOM nodes; every string of the data reaches the page as text, never as markup. */

const SVG_NAMESPACE = 'http://www.w3.org/2000/svg';

function fill(node, attributes, children) {
  for (const [name, value] of Object.entries(attributes)) {
    if (name === 'on') {
      for (const [event, listener] of Object.entries(value)) node.addEventListener(event, listener);
    } else if (value === true) {
      node.setAttribute(name, '');
    } else if (value !== false && value !== undefined) {
      node.setAttribute(name, String(value));
    }
  }
  node.append(...children);
  return node;
}

/**
 * Makes an HTML element.
 *
 * @param {string} tag
 * @param {object} [attributes] by name; `on` maps events to listeners; false and undefined are left out
 * @param {...(Node|string)} children strings become text nodes
 */
export function el(tag, attributes = {}, ...children) {
  return fill(document.createElement(tag), attributes, children);
}

/** Makes an SVG element; otherwise as `el`. */
export function svg(tag, attributes = {}, ...children) {
  return fill(document.createElementNS(SVG_NAMESPACE, tag), attributes, children);
}

/** Makes a push button. */
export function button(text, onClick, attributes = {}) {
  return el('button', { type: 'button', ...attributes, on: { click: onClick } }, text);
}

/** Text of the data, set apart so that its writing direction cannot spill over into its surroundings. */
export function dataText(text, className = '') {
  return el('bdi', { class: `data-text ${className}`.trim() }, text);
}

/** Runs `action` once, `delay` milliseconds after the last call. `cancel()` drops a waiting call. */
export function debounced(action, delay) {
  let timer = 0;
  const later = (...values) => {
    clearTimeout(timer);
    timer = setTimeout(() => action(...values), delay);
  };
  later.cancel = () => clearTimeout(timer);
  return later;
}
