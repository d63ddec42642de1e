/** Moving and zooming the view by mouse, wheel, trackpad and fingers. */

import { panned, zoomAbout } from './windows.js';

/** Pixels that the wheel scrolls to make the map e times as large. */
const PIXELS_PER_FOLD = 480;

/** Browsers report a pinch on a trackpad as a wheel with Ctrl: a hundred times its logarithm. */
const PINCH_PER_FOLD = 100;

const LINE_PIXELS = 16;

/** A pointer that moves less still clicks. */
const CLICK_REACH = { mouse: 4, pen: 6, touch: 12 };

/** A distance that the wheel scrolled, in pixels. */
export function scrolledPixels(delta, mode, pageHeight) {
  return delta * [1, LINE_PIXELS, pageHeight][mode];
}

/** What a wheel event does: zooms by a factor, or moves by pixels. */
export function wheelAction({ deltaX, deltaY, deltaMode, ctrlKey }, pageHeight) {
  const across = scrolledPixels(deltaX, deltaMode, pageHeight);
  const down = scrolledPixels(deltaY, deltaMode, pageHeight);
  if (ctrlKey) return { factor: Math.exp(-down / PINCH_PER_FOLD), right: 0 };
  if (Math.abs(across) > Math.abs(down)) return { factor: 1, right: across };
  return { factor: Math.exp(-down / PIXELS_PER_FOLD), right: 0 };
}

/** Middle of and distance between two places. */
function spread([one, other]) {
  return {
    x: (one.x + other.x) / 2,
    y: (one.y + other.y) / 2,
    apart: Math.max(Math.hypot(one.x - other.x, one.y - other.y), 1),
  };
}

/**
 * Listens to pointers in the chart.
 *
 * @param {object} chart as of `createChart`
 * @param {object} store as of `createStore`
 * @param {object} actions `click(event, place)`; `area(kind, place, event)` with `kind` 'begin', 'move', 'end'
 *   or 'drop' for dragging while the tool is not 'move'; `hover(event, place)` without a button pressed,
 *   `place` null where the pointer has left or presses; places in pixels of the element
 */
export function followGestures(chart, store, actions) {
  const { element } = chart;
  const held = new Map();
  let began = null;
  let isDragging = false;

  const placeIn = (event) => {
    const box = element.getBoundingClientRect();
    return { x: event.clientX - box.left, y: event.clientY - box.top };
  };
  const usesArea = () => store.get().tool !== 'move';

  function move(from, to) {
    const view = chart.view();
    const perPixel = (view.x1 - view.x0) / chart.plot().width;
    chart.setView(panned(chart.whole(), view, (from.x - to.x) * perPixel, (to.y - from.y) * perPixel));
  }

  function zoom(place, factor) {
    const [x, y] = chart.placeOf(place.x, place.y);
    chart.setView(zoomAbout(chart.whole(), chart.view(), { x, y }, factor));
  }

  function dragOne(event, from, to) {
    if (!isDragging && Math.hypot(to.x - began.x, to.y - began.y) <= CLICK_REACH[event.pointerType || 'mouse']) return;
    const isFirst = !isDragging;
    isDragging = true;
    if (usesArea()) {
      if (isFirst) actions.area('begin', began, event);
      actions.area('move', to, event);
    } else {
      move(isFirst ? began : from, to);
    }
  }

  function dragTwo(before) {
    const [old, now] = [spread(before), spread([...held.values()])];
    move(old, now);
    zoom(now, now.apart / old.apart);
  }

  element.addEventListener('pointerdown', (event) => {
    if (event.pointerType === 'mouse' && event.button !== 0) return;
    element.setPointerCapture(event.pointerId);
    held.set(event.pointerId, placeIn(event));
    actions.hover(event, null);
    if (held.size === 1) {
      began = placeIn(event);
      isDragging = false;
    } else {
      if (isDragging && usesArea()) actions.area('drop', began, event);
      isDragging = true;
    }
  });

  element.addEventListener('pointermove', (event) => {
    const place = placeIn(event);
    if (!held.has(event.pointerId)) {
      if (event.pointerType !== 'touch' && held.size === 0) actions.hover(event, place);
      return;
    }
    const before = [...held.values()];
    const from = held.get(event.pointerId);
    held.set(event.pointerId, place);
    if (held.size === 1 && began) dragOne(event, from, place);
    else if (held.size === 2) dragTwo(before);
  });

  function release(event, isWanted) {
    if (!held.delete(event.pointerId)) return;
    const place = placeIn(event);
    if (held.size > 0) {
      // The finger that stays on moves the map, but neither clicks nor draws.
      began = usesArea() ? null : [...held.values()][0];
      return;
    }
    if (!began) return;
    if (isDragging && usesArea()) actions.area(isWanted ? 'end' : 'drop', place, event);
    else if (!isDragging && isWanted) actions.click(event, place);
  }
  element.addEventListener('pointerup', (event) => release(event, true));
  element.addEventListener('pointercancel', (event) => release(event, false));
  element.addEventListener('pointerleave', (event) => actions.hover(event, null));

  element.addEventListener('wheel', (event) => {
    event.preventDefault();
    const { factor, right } = wheelAction(event, element.clientHeight);
    if (right !== 0) move({ x: right, y: 0 }, { x: 0, y: 0 });
    else if (factor !== 1) zoom(placeIn(event), factor);
  }, { passive: false });
}
