/** Colours of values around 0, told apart with any colour vision; what is missing has one of its own. */

// The blue and orange of points that are coloured by numbers; here the middle goes into the surface.
const STOPS = {
  light: ['#06316b', '#2f78bf', '#a3c8e6', '#f8f7f4', '#f3bd85', '#d9771c', '#7a2f00'],
  dark: ['#a8dcff', '#4a9fe0', '#235580', '#1d242c', '#7a4a1c', '#dd8428', '#ffd09a'],
};

const MISSING = { light: '#a9b1b9', dark: '#6c7681' };

const STEPS = 255;

function channels(colour) {
  return [1, 3, 5].map((at) => parseInt(colour.slice(at, at + 2), 16));
}

function mixed(stops, share) {
  const place = share * (stops.length - 1);
  const below = Math.min(Math.floor(place), stops.length - 2);
  const [from, to] = [channels(stops[below]), channels(stops[below + 1])];
  return from.map((value, channel) => Math.round(value + (to[channel] - value) * (place - below)));
}

/**
 * The colours of a theme.
 *
 * @param {'light'|'dark'} theme
 * @returns `fill(pixels, values, reach)`, which sets four bytes per value, from the colour of `-reach` to that of
 *   `reach`, with what lies beyond as the ends; and `missing`, the colour of NaN
 */
export function heatColours(theme) {
  const table = Array.from({ length: STEPS }, (_, step) => mixed(STOPS[theme], step / (STEPS - 1)));
  const missing = channels(MISSING[theme]);
  const middle = (STEPS - 1) / 2;
  return {
    missing: MISSING[theme],
    fill(pixels, values, reach) {
      values.forEach((value, index) => {
        const step = Math.round(middle + middle * Math.max(-1, Math.min(1, value / reach)));
        pixels.set(Number.isNaN(value) ? missing : table[step], 4 * index);
        pixels[4 * index + 3] = 255;
      });
    },
  };
}
