/** The chart as a picture of fixed size, with title and legend. */

import { init } from './engine.js';
import { plotOption } from './chart_option.js';
import { lookOf } from './detail.js';
import { drawableText, fileStem } from './format.js';
import { buildLayers, highlighted } from './layers.js';
import { namesInView } from './names.js';
import { genesInWindow } from './points.js';
import { inkOf } from './theme.js';
import { titleOf } from './summary.js';
import { download } from './files.js';
import { fitWindow } from './windows.js';

const PICTURE = { width: 1200, height: 900, pixelRatio: 2 };

const TITLE_HEIGHT = 64;
const MOST_ENTRIES = 36;
const MOST_LEVELS = 9;
/** Up to so many points are drawn as shapes; more would make files that no editor opens. */
const MOST_SHAPES = 20000;

function pictureLook(count) {
  const look = lookOf(count);
  return look.shapes || count > MOST_SHAPES ? look : { shapes: true, size: 5, opacity: 0.6 };
}

/** At most `most` of some categories: the first ones, or of a scale those at equal steps. */
function namedOf(shown, scale, most) {
  if (!scale || shown.length <= most) return shown.slice(0, most);
  return Array.from({ length: most }, (_, step) => shown[Math.round((step * (shown.length - 1)) / (most - 1))]);
}

function legend(model, categories, named, ink, margins) {
  return {
    show: categories.labelled,
    type: 'plain',
    orient: 'vertical',
    left: PICTURE.width - margins[1] + 20,
    top: margins[0],
    itemWidth: 12,
    itemHeight: 12,
    itemGap: 8,
    selectedMode: false,
    data: named.map((category) => ({ name: `${category}`, itemStyle: { opacity: 1 } })),
    formatter: (name) => drawableText(categories.list[Number(name)].text, 60),
    textStyle: { color: ink.text, width: model.dataset.layout.legendWidth - 14, overflow: 'truncate' },
  };
}

/** The option of the picture that shows what the page shows now. */
function pictureOption(chart, model, state) {
  const { dataset } = model;
  const ink = inkOf(state.theme);
  const margins = [...dataset.layout.margins];
  margins[0] = Math.max(margins[0], TITLE_HEIGHT);
  const plot = {
    width: Math.max(PICTURE.width - margins[1] - margins[3], 40),
    height: Math.max(PICTURE.height - margins[0] - margins[2], 40),
  };
  const range = fitWindow(chart.view(), plot.width, plot.height, 0);
  const drawn = model.pointsOf(state);
  const points = { ...drawn, genes: genesInWindow(drawn, range) };
  const categories = model.categoriesOf(state);
  const layers = buildLayers(points, categories, model.stylesOf(state), highlighted(state));
  const drawnAlike = [...new Set(layers.map((layer) => layer.category))].sort((a, b) => a - b);
  const named = namedOf(drawnAlike, categories.scale, categories.scale ? MOST_LEVELS : MOST_ENTRIES);
  const shownCount = new Set(Array.from(points.genes, (gene) => categories.of[gene])).size;
  return {
    ...plotOption({
      pair: model.pairOf(state),
      range,
      layers,
      look: pictureLook(points.genes.length),
      names: dataset.showLabels ? namesInView(dataset, points, range, plot) : [],
      ink,
      layout: dataset.layout,
      margins,
      plot,
    }),
    title: {
      text: drawableText(titleOf(dataset)),
      subtext: named.length < shownCount && !categories.scale ? `The legend names ${named.length} of ${shownCount} labels.` : '',
      left: margins[3],
      top: 12,
      itemGap: 6,
      textStyle: { color: ink.text, fontSize: 20, fontWeight: 600, width: plot.width, overflow: 'truncate' },
      subtextStyle: { color: ink.muted, fontSize: 12 },
    },
    legend: legend(model, categories, named, ink, margins),
  };
}

const SIZE = { width: PICTURE.width, height: PICTURE.height };

async function svgOf(option) {
  const picture = init(null, null, { renderer: 'svg', ssr: true, ...SIZE });
  picture.setOption(option);
  const text = picture.renderToSVGString();
  picture.dispose();
  return new Blob([text], { type: 'image/svg+xml' });
}

async function pngOf(option) {
  const picture = init(document.createElement('div'), null, { renderer: 'canvas', ...SIZE });
  picture.setOption(option);
  const canvas = picture.renderToCanvas({ pixelRatio: PICTURE.pixelRatio, backgroundColor: option.backgroundColor });
  picture.dispose();
  return new Promise((resolve) => {
    canvas.toBlob(resolve, 'image/png');
  });
}

/** Saves the picture as `kind`, 'png' or 'svg'. */
export async function savePicture(kind, chart, model, store) {
  const option = pictureOption(chart, model, store.get());
  download(await { png: pngOf, svg: svgOf }[kind](option), `${fileStem(model.dataset.name)}.${kind}`);
}
