/** Colours and marker shapes of the categories. */

// Okabe and Ito's eight colours, told apart with any colour vision. Their yellow is darkened on white,
// where it would vanish, and their black becomes grey on black.
const OKABE_ITO = {
  light: ['#0072b2', '#d55e00', '#009e73', '#cc79a7', '#e69f00', '#56b4e9', '#a39200', '#333333'],
  dark: ['#3d9bd6', '#e8742a', '#1db58a', '#d68fb6', '#e69f00', '#7cc7f2', '#f0e442', '#d9d9d9'],
};

const DARK2 = ['#1b9e77', '#d95f02', '#7570b3', '#e7298a', '#66a61e', '#e6ab02', '#a6761d', '#666666'];
const DARK2_ON_DARK = ['#2fb98f', '#f07d26', '#9a95d6', '#f2589f', '#82c43a', '#e6ab02', '#c99436', '#a0a0a0'];

// Nine equally spaced samples of the viridis scale.
const VIRIDIS = ['#440154', '#472d7b', '#3b528b', '#2c728e', '#21918c', '#28ae80', '#5ec962', '#addc30', '#fde725'];

/** Categories beyond this repeat the styles of the first ones, unless they have colours of their own. */
const STYLE_COUNT = 64;

/** Categories beyond this cannot have colours of their own: each colour is a series to draw. */
const MOST_OWN_COLOURS = 256;

/**
 * Marker shapes, as SVG paths within a square of 16 by 16; `scale` makes them look equally large.
 */
const SHAPES = [
  { name: 'circle', scale: 1, path: 'M8 .5A7.5 7.5 0 1 1 8 15.5A7.5 7.5 0 1 1 8 .5Z', symbol: 'circle' },
  { name: 'triangle', scale: 1.15, path: 'M8 .5L15.5 15.5H.5Z' },
  { name: 'square', scale: 0.9, path: 'M1.5 1.5H14.5V14.5H1.5Z', symbol: 'rect' },
  { name: 'diamond', scale: 1.25, path: 'M8 0L16 8L8 16L0 8Z' },
  { name: 'downward triangle', scale: 1.15, path: 'M.5 .5H15.5L8 15.5Z' },
  { name: 'plus', scale: 1.15, path: 'M5.5 .5H10.5V5.5H15.5V10.5H10.5V15.5H5.5V10.5H.5V5.5H5.5Z' },
  { name: 'cross', scale: 1.15, path: 'M4 .5L8 4.5L12 .5L15.5 4L11.5 8L15.5 12L12 15.5L8 11.5L4 15.5L.5 12L4.5 8L.5 4Z' },
  { name: 'star', scale: 1.3, path: 'M8 .3L10.2 5.4L15.8 5.9L11.6 9.6L12.8 15.2L8 12.2L3.2 15.2L4.4 9.6L.2 5.9L5.8 5.4Z' },
].map((shape) => ({ symbol: `path://${shape.path}`, ...shape }));

function mix(from, to, share) {
  const channel = (colour, at) => parseInt(colour.slice(at, at + 2), 16);
  const mixed = [1, 3, 5].map((at) => Math.round(channel(from, at) * (1 - share) + channel(to, at) * share));
  return `#${mixed.map((value) => value.toString(16).padStart(2, '0')).join('')}`;
}

// The darkest colours vanish on black, the brightest on white.
const VIRIDIS_PART = { light: [0, 0.9], dark: [0.22, 1] };

function viridis(theme, index, count) {
  const [first, last] = VIRIDIS_PART[theme];
  const share = count > 1 ? index / (count - 1) : 0.5;
  const position = (first + (last - first) * share) * (VIRIDIS.length - 1);
  const below = Math.min(Math.floor(position), VIRIDIS.length - 2);
  return mix(VIRIDIS[below], VIRIDIS[below + 1], position - below);
}

const PALE = { light: '#b4bcc4', dark: '#4c5863' };

/**
 * Colour and shape of the levels of numbers, and of genes without one, which come last.
 *
 * @param {number} levels number of levels
 * @param {'light'|'dark'} theme
 */
export function levelStyles(levels, theme) {
  const colours = Array.from({ length: levels }, (_, level) => viridis(theme, level, levels));
  return [...colours, PALE[theme]].map((colour) => ({ colour, shape: SHAPES[0] }));
}

function schemeColour(scheme, theme, index, count) {
  if (scheme === 'viridis') return viridis(theme, index, Math.min(count, STYLE_COUNT));
  const colours = scheme === 'dark2'
    ? { light: DARK2, dark: DARK2_ON_DARK }[theme]
    : OKABE_ITO[theme];
  return colours[index % colours.length];
}

const OWN_COLOUR = /^#[0-9a-f]{6}$/i;

/**
 * Colour and shape of each category. The first eight differ in both, the first 64 in one of them.
 *
 * @param {number} count number of categories
 * @param {{scheme: string, own: string[], theme: 'light'|'dark', beneath: number}} choice `own`: #rrggbb
 *   per category, anything else is ignored; `beneath`: 0 if the first category steps back, pale, and the
 *   second one is styled like a first
 * @returns {{colour: string, shape: object}[]}
 */
export function categoryStyles(count, { scheme, own, theme, beneath = -1 }) {
  if (beneath === 0) {
    const others = categoryStyles(count - 1, { scheme, own: own.slice(1), theme });
    return [{ colour: PALE[theme], shape: SHAPES[0] }, ...others];
  }
  return Array.from({ length: count }, (_, category) => {
    const index = category % STYLE_COUNT;
    const hasOwn = category < MOST_OWN_COLOURS && OWN_COLOUR.test(own[category] ?? '');
    return {
      colour: hasOwn ? own[category].toLowerCase() : schemeColour(scheme, theme, index, count),
      shape: SHAPES[(index + Math.floor(index / SHAPES.length)) % SHAPES.length],
    };
  });
}
