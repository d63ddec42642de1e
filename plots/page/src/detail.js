/**
 * How points are drawn. Few are shapes of their own, which tell labels apart without colour and get
 * darker where they overlap; more are circles, one path for each label; many are small squares, which
 * is fastest.
 */

/** Up to so many points in view are drawn as shapes. */
export const MOST_SHAPES = 1000;

const MOST_CIRCLES = 3000;

/**
 * The look of `count` points in view.
 *
 * @returns {{shapes: boolean, size: number, opacity: number}} size in pixels; no two looks share it
 */
export function lookOf(count) {
  if (count <= 150) return { shapes: true, size: 12, opacity: 0.7 };
  if (count <= 400) return { shapes: true, size: 10, opacity: 0.65 };
  if (count <= MOST_SHAPES) return { shapes: true, size: 8, opacity: 0.6 };
  if (count <= MOST_CIRCLES) return { shapes: false, size: 5.5, opacity: 0.65 };
  // The library draws squares, the fastest way, where the size is below four.
  if (count <= 20000) return { shapes: false, size: 3.5, opacity: 0.75 };
  if (count <= 80000) return { shapes: false, size: 2.6, opacity: 0.6 };
  return { shapes: false, size: 2, opacity: 0.45 };
}

const DIM_OPACITY = { light: 0.16, dark: 0.2 };

/** Series options that follow from a look; they may change without new data. */
export function seriesLook(layer, look, ink) {
  const lit = layer.role === 'lit';
  const shapes = look.shapes || (lit && layer.count <= MOST_SHAPES);
  const opacity = { plain: look.opacity, dim: Math.min(look.opacity, DIM_OPACITY[ink.theme]), lit: 1 };
  const size = lit ? Math.max(look.size, 9) : look.size;
  return {
    large: !shapes,
    symbol: shapes ? layer.shape.symbol : 'circle',
    symbolSize: shapes ? Math.round(size * layer.shape.scale) : look.size,
    itemStyle: {
      color: layer.colour,
      opacity: opacity[layer.role],
      borderColor: ink.surface,
      borderWidth: shapes && size >= 8 && layer.role !== 'dim' ? 1 : 0,
    },
  };
}
