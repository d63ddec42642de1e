/** The chart as a picture of fixed size, with title and legend. */

import { canvasPen, shortened, svgPen } from './pen.js';
import { axisRoom } from './axes.js';
import { createLister, drawFront, drawGround, hasGround, marksOf, neededDensity, wantedLook } from './scene.js';
import { drawLegend } from './picture_legend.js';
import { createPixelPrinter } from './pixel_points.js';
import { contains, fitWindow, shareOf } from './windows.js';
import { countInWindow } from './points.js';
import { drawableText, fileStem } from './format.js';
import { inkOf } from './theme.js';
import { namesInView } from './names.js';
import { titleOf } from './summary.js';
import { download } from './files.js';

const PICTURE = { width: 1200, height: 900, pixelRatio: 2 };

const EDGE = 24;
const TITLE_SIZE = 20;
const TITLE_BASE = 32;
const NOTE_SIZE = 12;
const NOTE_BASE = 52;
const TITLE_HEIGHT = 64;
const LEGEND_GAP = 20;
const LEAST_LEGEND = 200;

/** Up to so many points are drawn as shapes; more would make files that no editor opens. */
const MOST_SHAPES = 20000;
const LEAST_SHAPE = 5;

function pictureLook(count, plot, state) {
  const look = wantedLook(count, plot, state);
  return count > MOST_SHAPES ? look : { ...look, shapes: true, size: Math.max(look.size, LEAST_SHAPE * state.pointSize) };
}

/** What the page shows now, as a scene of the picture's size. */
function pictureScene(chart, model, state) {
  const { layout, showLabels } = model.dataset;
  const ink = inkOf(state.theme);
  const pair = model.pairOf(state);
  const [bottom, left] = axisRoom(pair?.extent ?? { y0: -1, y1: 1 }, layout, state.coordinates);
  const legendRoom = Math.max(layout.legendWidth, LEAST_LEGEND) + LEGEND_GAP + EDGE;
  const margins = [TITLE_HEIGHT, legendRoom, bottom + EDGE / 2, left + EDGE / 2];
  const plot = {
    left: margins[3],
    top: margins[0],
    width: Math.max(PICTURE.width - margins[1] - margins[3], 40),
    height: Math.max(PICTURE.height - margins[0] - margins[2], 40),
  };
  // The whole map fills the picture, whatever the shape of the window.
  const isWhole = shareOf(chart.whole(), chart.view()) > 0.9999;
  const view = isWhole
    ? fitWindow(pair?.extent ?? null, plot.width, plot.height)
    : fitWindow(chart.view(), plot.width, plot.height, 0);
  const list = createLister(model)(state);
  const points = model.pointsOf(state);
  const look = pictureLook(countInWindow(points, view), plot, state);
  return {
    state,
    ink,
    drawings: chart.drawings(),
    pair,
    layout,
    margins,
    plot,
    view,
    list,
    look,
    marks: marksOf(list, model.stylesOf(state), look, ink),
    density: neededDensity(state, list, view, plot),
    names: showLabels ? namesInView(model.dataset, points, view, plot) : [],
  };
}

/** The points of a scene on a canvas, with what lies beneath them. */
function printedPoints(scene) {
  const { list, marks, view, plot, state, ink, layout } = scene;
  const context = document.createElement('canvas').getContext('2d', { willReadFrequently: true });
  const { canvas } = context;
  canvas.width = Math.round(plot.width * PICTURE.pixelRatio);
  canvas.height = Math.round(plot.height * PICTURE.pixelRatio);
  let ground = ink.surface;
  if (hasGround(state, layout)) {
    context.fillStyle = ink.surface;
    context.fillRect(0, 0, canvas.width, canvas.height);
    context.scale(PICTURE.pixelRatio, PICTURE.pixelRatio);
    drawGround(canvasPen(context), { ...scene, plot: { ...plot, left: 0, top: 0 } });
    ground = context.getImageData(0, 0, canvas.width, canvas.height);
  }
  createPixelPrinter()(context, list, marks, view, PICTURE.pixelRatio, ground);
  return canvas;
}

/** Draws the points of a scene one by one. */
function drawPoints(pen, { list, marks, view, plot }) {
  pen.within(plot, () => {
    for (let i = 0; i < list.count; i += 1) {
      if (contains(view, list.x[i], list.y[i])) {
        pen.mark(
          marks[list.kinds[i]],
          plot.left + ((list.x[i] - view.x0) / (view.x1 - view.x0)) * plot.width,
          plot.top + ((view.y1 - list.y[i]) / (view.y1 - view.y0)) * plot.height,
        );
      }
    }
  });
}

/** Draws what other parts of the page draw above the points. */
function drawDrawings(pen, { x, y }, { drawings, plot, ink, view }) {
  const pixelOf = (gene) => [
    plot.left + ((x[gene] - view.x0) / (view.x1 - view.x0)) * plot.width,
    plot.top + ((view.y1 - y[gene]) / (view.y1 - view.y0)) * plot.height,
  ];
  pen.within(plot, () => {
    for (const draw of drawings) draw(pen, { pixelOf, plot, ink, isNarrow: false });
  });
}

/** Draws everything but the points. */
function drawAround(pen, model, scene) {
  const { plot, ink, margins } = scene;
  drawDrawings(pen, model.pointsOf(scene.state), scene);
  drawFront(pen, scene);
  const room = PICTURE.width - margins[3] - EDGE;
  pen.text(shortened(drawableText(titleOf(model.dataset)), room, TITLE_SIZE, 600), plot.left, TITLE_BASE, {
    size: TITLE_SIZE, fill: ink.text, weight: 600,
  });
  const cut = drawLegend(pen, model, scene, {
    left: PICTURE.width - margins[1] + LEGEND_GAP,
    top: plot.top,
    width: margins[1] - LEGEND_GAP - EDGE / 2,
  });
  if (cut) {
    pen.text(`The legend names ${cut.named} of ${cut.present} labels.`, plot.left, NOTE_BASE, { size: NOTE_SIZE, fill: ink.muted });
  }
}

async function svgOf(model, scene, count) {
  const { plot, ink } = scene;
  const pen = svgPen();
  pen.box(0, 0, PICTURE.width, PICTURE.height, { fill: ink.surface });
  if (count > MOST_SHAPES) {
    pen.image(printedPoints(scene), plot.left, plot.top, plot.width, plot.height);
  } else {
    drawGround(pen, scene);
    drawPoints(pen, scene);
  }
  drawAround(pen, model, scene);
  return new Blob([pen.document(PICTURE.width, PICTURE.height)], { type: 'image/svg+xml' });
}

async function pngOf(model, scene) {
  const { plot, ink } = scene;
  const context = document.createElement('canvas').getContext('2d');
  const { canvas } = context;
  canvas.width = PICTURE.width * PICTURE.pixelRatio;
  canvas.height = PICTURE.height * PICTURE.pixelRatio;
  context.scale(PICTURE.pixelRatio, PICTURE.pixelRatio);
  const pen = canvasPen(context);
  pen.box(0, 0, PICTURE.width, PICTURE.height, { fill: ink.surface });
  pen.image(printedPoints(scene), plot.left, plot.top, plot.width, plot.height);
  drawAround(pen, model, scene);
  return new Promise((resolve) => {
    canvas.toBlob(resolve, 'image/png');
  });
}

/** Saves the picture as `kind`, 'png' or 'svg'. */
export async function savePicture(kind, chart, model, store) {
  const state = store.get();
  const scene = pictureScene(chart, model, state);
  const count = countInWindow(model.pointsOf(state), scene.view);
  const content = await { png: pngOf, svg: svgOf }[kind](model, scene, count);
  download(content, `${fileStem(model.dataset.name)}.${kind}`);
}
