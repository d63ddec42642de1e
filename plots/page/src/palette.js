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

/** Categories beyond this cannot have colours of their own. */
const MOST_OWN_COLOURS = 256;

/**
 * Marker shapes, as SVG paths within a square of 16 by 16; `scale` makes pointed ones look as large as
 * others. The figure has the same in the same order.
 */
const SHAPES = [
  { name: 'circle', scale: 1, path: 'M8 .5A7.5 7.5 0 1 1 8 15.5A7.5 7.5 0 1 1 8 .5Z' },
  { name: 'triangle', scale: 1.15, path: 'M8 .5L15.5 15.5H.5Z' },
  { name: 'square', scale: 0.9, path: 'M1.5 1.5H14.5V14.5H1.5Z' },
  { name: 'diamond', scale: 1.25, path: 'M8 0L16 8L8 16L0 8Z' },
  { name: 'downward triangle', scale: 1.15, path: 'M.5 .5H15.5L8 15.5Z' },
  { name: 'plus', scale: 1.15, path: 'M5.5 .5H10.5V5.5H15.5V10.5H10.5V15.5H5.5V10.5H.5V5.5H5.5Z' },
  { name: 'cross', scale: 1.15, path: 'M4 .5L8 4.5L12 .5L15.5 4L11.5 8L15.5 12L12 15.5L8 11.5L4 15.5L.5 12L4.5 8L.5 4Z' },
  { name: 'star', scale: 1.3, path: 'M8 .3L10.2 5.4L15.8 5.9L11.6 9.6L12.8 15.2L8 12.2L3.2 15.2L4.4 9.6L.2 5.9L5.8 5.4Z' },
];

function mix(from, to, share) {
  const channel = (colour, at) => parseInt(colour.slice(at, at + 2), 16);
  const mixed = [1, 3, 5].map((at) => Math.round(channel(from, at) * (1 - share) + channel(to, at) * share));
  return `#${mixed.map((value) => value.toString(16).padStart(2, '0')).join('')}`;
}

/** The colour at a share, 0 to 1, of the way along equally spaced colours. */
function between(colours, share) {
  const position = share * (colours.length - 1);
  const below = Math.min(Math.floor(position), colours.length - 2);
  return mix(colours[below], colours[below + 1], position - below);
}

// The darkest colours vanish on black, the brightest on white.
const VIRIDIS_PART = { light: [0, 0.9], dark: [0.22, 1] };

function viridis(theme, index, count) {
  const [first, last] = VIRIDIS_PART[theme];
  return between(VIRIDIS, first + (last - first) * (count > 1 ? index / (count - 1) : 0.5));
}

// Blue and orange are told apart with any colour vision. Their ends stand out from the surface most, and
// the middle is still to be seen on it.
const DIVERGING = {
  light: ['#06316b', '#2f78bf', '#c9c3b0', '#d9771c', '#7a2f00'],
  dark: ['#a8dcff', '#4a9fe0', '#6f6a5e', '#dd8428', '#ffd09a'],
};

// Of categories that step back, and, paler still, of genes without a number.
const GREY = { light: '#b4bcc4', dark: '#4c5863' };
const MISSING = { light: '#dde2e7', dark: '#2d3740' };

/**
 * Colour and shape of the levels of numbers, and of genes without one, which come last.
 *
 * @param {number} levels number of levels
 * @param {'light'|'dark'} theme
 * @param {boolean} [diverging] whether the scale has a middle
 */
export function levelStyles(levels, theme, diverging = false) {
  const colourOf = (level) => (diverging
    ? between(DIVERGING[theme], levels > 1 ? level / (levels - 1) : 0.5)
    : viridis(theme, level, levels));
  const colours = Array.from({ length: levels }, (_, level) => colourOf(level));
  return [...colours, MISSING[theme]].map((colour) => ({ colour, shape: SHAPES[0] }));
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
 * Colour and shape of each category. The first eight differ in both, the first 64 in one of them. Grey
 * ones are grey circles, unless they have a colour of their own.
 *
 * @param {{grey: boolean, position: number}[]} list as of `findCategories`
 * @param {{scheme: string, own: string[], theme: 'light'|'dark'}} choice `own`: #rrggbb for each
 *   position, anything else is ignored
 * @returns {{colour: string, shape: object}[]}
 */
export function categoryStyles(list, { scheme, own, theme }) {
  const bright = list.filter(({ grey }) => !grey).length;
  let next = 0;
  return list.map(({ grey, position }) => {
    const hasOwn = position < MOST_OWN_COLOURS && OWN_COLOUR.test(own[position] ?? '');
    const index = next % STYLE_COUNT;
    if (!grey) next += 1;
    const given = grey ? GREY[theme] : schemeColour(scheme, theme, index, bright);
    return {
      colour: hasOwn ? own[position].toLowerCase() : given,
      shape: grey ? SHAPES[0] : SHAPES[(index + Math.floor(index / SHAPES.length)) % SHAPES.length],
    };
  });
}
