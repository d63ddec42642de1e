/** The genes of one label, which the reader points at in the legend, above a veil over all others. */

const VEIL_OPACITY = 0.78;
const FULL_TURN = 2 * Math.PI;

function radiusOf(count) {
  if (count <= 300) return 4.5;
  return count <= 3000 ? 3.2 : 2;
}

/** Draws them as long as the state has a `spotlight`. */
export function showSpotlight(chart, model, store) {
  chart.addOverlay((context, { pixelOf, plot, ink }) => {
    const state = store.get();
    if (state.spotlight < 0 || !state.shown[state.spotlight]) return;
    const { of } = model.categoriesOf(state);
    const genes = model.pointsOf(state).genes.filter((gene) => of[gene] === state.spotlight);
    context.globalAlpha = VEIL_OPACITY;
    context.fillStyle = ink.surface;
    context.fillRect(plot.left, plot.top, plot.width, plot.height);
    context.globalAlpha = 1;
    context.fillStyle = model.stylesOf(state)[state.spotlight].colour;
    context.strokeStyle = ink.surface;
    context.lineWidth = 0.75;
    const radius = radiusOf(genes.length);
    for (const gene of genes) {
      const [x, y] = pixelOf(gene);
      context.beginPath();
      context.arc(x, y, radius, 0, FULL_TURN);
      context.fill();
      if (radius > 2) context.stroke();
    }
  });
  store.listen(['colouring'], () => store.set({ spotlight: -1 }));
  store.listen(['spotlight', 'shown'], chart.repaintOverlays);
}
