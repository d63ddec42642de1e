/** The chart as an option of the chart library; used on the page and for pictures. */

import { drawableText, formatTick } from './format.js';
import { seriesLook } from './detail.js';

// The library writes this into attributes of SVG files without escaping double quotes.
const FONT = "system-ui, -apple-system, 'Segoe UI', Roboto, 'Helvetica Neue', Arial, sans-serif";

const PIXELS_BETWEEN_TICKS = 90;
// While an area is drawn the library forgets where series stand, and puts them at 0.
const BEHIND = -1;

function axis(side, title, range, { ink, layout, margins, plot }) {
  const horizontal = side === 'x';
  const [, , bottom, left] = margins;
  return {
    type: 'value',
    z: BEHIND,
    min: range[0],
    max: range[1],
    scale: true,
    splitNumber: Math.max(2, Math.round((horizontal ? plot.width : plot.height) / PIXELS_BETWEEN_TICKS)),
    name: drawableText(title),
    nameLocation: 'middle',
    nameGap: horizontal ? Math.min(50, bottom - 16) : Math.min(62, left - 16),
    // Turns are counted clockwise in the data and counter-clockwise by the library.
    nameRotate: horizontal ? 0 : -layout.yTitleTurn,
    nameTextStyle: { color: ink.text, fontSize: 13, fontFamily: FONT },
    axisLine: { show: true, onZero: false, lineStyle: { color: ink.axis } },
    axisTick: { show: true, lineStyle: { color: ink.axis } },
    axisLabel: {
      color: ink.muted,
      fontSize: 12,
      fontFamily: FONT,
      rotate: horizontal ? -layout.xTickTurn : 0,
      // The window's own ends are no round numbers.
      showMinLabel: false,
      showMaxLabel: false,
      hideOverlap: true,
      formatter: (value) => formatTick(value, layout.tickDecimals),
    },
    splitLine: { show: layout.grid, lineStyle: { color: ink.grid } },
  };
}

/** One series for each layer; `ids` stay the same for equal layers. */
function layerSeries(layers, look, ink) {
  return layers.map((layer) => ({
    id: `${layer.role}-${layer.category}`,
    name: `${layer.category}`,
    type: 'scatter',
    dimensions: ['x', 'y'],
    data: layer.data,
    // A layer without any point in view must not be drawn in the fast way, which needs one.
    largeThreshold: 1,
    progressive: 0,
    animation: false,
    silent: true,
    emphasis: { disabled: true },
    z: layer.role === 'lit' ? 3 : 2,
    ...seriesLook(layer, look, ink),
  }));
}

/** The series of names beside points. */
export function nameSeries(names, ink) {
  return {
    id: 'names',
    type: 'scatter',
    data: names,
    symbolSize: 1,
    // Not opacity, which the names would inherit.
    itemStyle: { color: 'transparent', opacity: 1 },
    silent: true,
    animation: false,
    emphasis: { disabled: true },
    z: 4,
    label: {
      show: true,
      position: 'right',
      distance: 5,
      fontSize: 11,
      fontFamily: FONT,
      color: ink.text,
      textBorderColor: ink.surface,
      textBorderWidth: 2,
      formatter: ({ value }) => value[2],
    },
    labelLayout: { hideOverlap: true },
  };
}

/**
 * Axes, grid and series.
 *
 * @param {object} chart
 * @param {object} chart.pair as of `readDataset`, or undefined without data
 * @param {object} chart.range window at the axes' ends
 * @param {object[]} chart.layers as of `buildLayers`
 * @param {object} chart.look as of `lookOf`
 * @param {Array} chart.names as of `namesInView`
 * @param {object} chart.ink colours
 * @param {object} chart.layout as of `readDataset`
 * @param {number[]} chart.margins top, right, bottom, left
 * @param {{width: number, height: number}} chart.plot pixels within the axes
 */
export function plotOption({ pair, range, layers, look, names, ink, layout, margins, plot }) {
  const [top, right, bottom, left] = margins;
  const frame = { ink, layout, margins, plot };
  return {
    animation: false,
    backgroundColor: ink.surface,
    textStyle: { fontFamily: FONT },
    grid: {
      top,
      right,
      bottom,
      left,
      z: BEHIND,
      outerBoundsMode: 'none',
      show: true,
      borderColor: ink.axis,
      borderWidth: 1,
    },
    xAxis: axis('x', pair?.xTitle ?? '', [range.x0, range.x1], frame),
    yAxis: axis('y', pair?.yTitle ?? '', [range.y0, range.y1], frame),
    series: [...layerSeries(layers, look, ink), nameSeries(names, ink)],
  };
}
