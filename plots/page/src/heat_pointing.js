/** Pointing at the lines of a heat map by mouse, finger or keys. */

/** Before the first line and column, so that the first key leads to these. */
const NOWHERE = { line: -1, column: -1 };

/** By how many lines and columns a key moves; undefined for other keys. */
function stepOf(key, { lines, rowHeight, top }, frameHeight) {
  const page = Math.max(1, Math.floor((frameHeight - top) / rowHeight) - 1);
  const steps = new Map([
    ['ArrowDown', [1, 0]], ['ArrowUp', [-1, 0]], ['ArrowRight', [0, 1]], ['ArrowLeft', [0, -1]],
    ['PageDown', [page, 0]], ['PageUp', [-page, 0]], ['Home', [-lines, 0]], ['End', [lines, 0]],
  ]);
  return steps.get(key);
}

const within = (value, count) => Math.max(0, Math.min(count - 1, value));

/**
 * Makes the frame listen.
 *
 * @param {object} frame as of `createHeatFrame`
 * @param {number} columnCount
 * @param {object} ways `pointAt(place)`, with null when nothing is pointed at any more; `moveTo(place)`, when keys
 *   have come to it; `pick(line)`
 * @returns `cursor()`, the place that the keys are at, or null; `forget()`
 */
export function followHeat(frame, columnCount, { pointAt, moveTo, pick }) {
  const { element } = frame;
  let cursor = NOWHERE;

  element.addEventListener('keydown', (event) => {
    if (event.ctrlKey || event.altKey || event.metaKey) return;
    const step = stepOf(event.key, frame.layout(), element.clientHeight);
    if (step) {
      cursor = { line: within(cursor.line + step[0], frame.layout().lines), column: within(cursor.column + step[1], columnCount) };
      moveTo(cursor);
    } else if (event.key === 'Enter' && cursor.line >= 0) {
      pick(cursor.line);
    } else {
      return;
    }
    event.preventDefault();
  });
  element.addEventListener('pointermove', (event) => {
    if (event.pointerType === 'mouse') pointAt(frame.placeOf(event));
  });
  element.addEventListener('pointerleave', () => pointAt(null));
  element.addEventListener('click', (event) => {
    const place = frame.placeOf(event);
    if (place) pick(place.line);
  });
  element.addEventListener('blur', () => {
    cursor = NOWHERE;
    pointAt(null);
  });
  return {
    cursor: () => (cursor.line >= 0 ? cursor : null),
    forget() {
      cursor = NOWHERE;
    },
  };
}
