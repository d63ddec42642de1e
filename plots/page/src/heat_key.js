/** What the colours of the heat map stand for. */

import { el } from './dom.js';
import { heatColours } from './heat_colours.js';

const STEPS = 120;
const HEIGHT = 12;

/** @returns `element`, and `show({reach, centred, ink})`, which draws it */
export function heatKey() {
  const bar = el('canvas', { class: 'heat-bar', width: STEPS, height: 1, role: 'img' });
  const missing = el('span', { class: 'heat-missing' });
  const ends = [el('span'), el('span')];
  const element = el('span', { class: 'heat-key' }, ends[0], bar, ends[1], missing, 'no value');
  return {
    element,
    show({ reach, centred, format, ink }) {
      const colours = heatColours(ink.theme);
      const context = bar.getContext('2d');
      const image = context.createImageData(STEPS, 1);
      colours.fill(image.data, Float32Array.from({ length: STEPS }, (_, step) => (2 * step) / (STEPS - 1) - 1), 1);
      context.putImageData(image, 0, 0);
      bar.style.height = `${HEIGHT}px`;
      missing.style.backgroundColor = colours.missing;
      const [least, most] = [-reach, reach].map(format);
      ends[0].textContent = least;
      ends[1].textContent = most;
      bar.setAttribute('aria-label', `Colours from ${least} to ${most}${centred ? ', less the mean of the gene' : ''}`);
    },
  };
}
