/**
 * Drawing lines, texts and marks on a canvas or into SVG alike. Places are pixels of the page from the top
 * left corner; texts stand on their base line.
 *
 * @typedef {object} Pen
 * @property {function} box `(x, y, width, height, {fill, stroke})`
 * @property {function} lines `(segments, {stroke, width, opacity})`, a segment as [x0, y0, x1, y1]
 * @property {function} text `(text, x, y, {size, fill, align, weight, turn, halo})`; `align` 'start',
 *   'middle' or 'end'; `turn` in degrees clockwise
 * @property {function} mark `(mark, x, y)`, as of `markOf`
 * @property {function} image `(canvas, x, y, width, height)`
 * @property {function} within `(box, draw)`: what `draw()` draws is cut to the box
 */

import { drawMark, outlineOf, rimsOf, SHAPE_BOX } from './marks.js';

export const FONT = "system-ui, -apple-system, 'Segoe UI', Roboto, 'Helvetica Neue', Arial, sans-serif";

const HALO_WIDTH = 3;

let ruler = null;

/** The width of a text in pixels. */
export function widthOf(text, size, weight = 400) {
  ruler ??= document.createElement('canvas').getContext('2d');
  ruler.font = `${weight} ${size}px ${FONT}`;
  return ruler.measureText(text).width;
}

/** The text, or as much of it as `width` pixels hold. */
export function shortened(text, width, size, weight = 400) {
  if (widthOf(text, size, weight) <= width) return text;
  const letters = [...text];
  let [low, high] = [0, letters.length];
  while (low < high) {
    const middle = (low + high + 1) >> 1;
    if (widthOf(`${letters.slice(0, middle).join('')}\u2026`, size, weight) <= width) low = middle;
    else high = middle - 1;
  }
  return `${letters.slice(0, low).join('')}\u2026`;
}

/** @returns {Pen} */
export function canvasPen(context) {
  const alignments = { start: 'left', middle: 'center', end: 'right' };
  return {
    box(x, y, width, height, { fill, stroke }) {
      if (fill) {
        context.fillStyle = fill;
        context.fillRect(x, y, width, height);
      }
      if (stroke) {
        context.strokeStyle = stroke;
        context.lineWidth = 1;
        context.strokeRect(x, y, width, height);
      }
    },
    lines(segments, { stroke, width = 1, opacity = 1 }) {
      context.save();
      context.globalAlpha = opacity;
      context.strokeStyle = stroke;
      context.lineWidth = width;
      context.beginPath();
      for (const [x0, y0, x1, y1] of segments) {
        context.moveTo(x0, y0);
        context.lineTo(x1, y1);
      }
      context.stroke();
      context.restore();
    },
    text(text, x, y, { size, fill, align = 'start', weight = 400, turn = 0, halo = null }) {
      context.save();
      context.translate(x, y);
      context.rotate((turn * Math.PI) / 180);
      context.font = `${weight} ${size}px ${FONT}`;
      context.textAlign = alignments[align];
      context.textBaseline = 'alphabetic';
      if (halo) {
        context.strokeStyle = halo;
        context.lineWidth = HALO_WIDTH;
        context.lineJoin = 'round';
        context.strokeText(text, 0, 0);
      }
      context.fillStyle = fill;
      context.fillText(text, 0, 0);
      context.restore();
    },
    mark(mark, x, y) {
      context.save();
      context.globalAlpha = mark.opacity;
      context.translate(x, y);
      drawMark(context, mark);
      context.restore();
    },
    image: (canvas, x, y, width, height) => context.drawImage(canvas, x, y, width, height),
    within({ left, top, width, height }, draw) {
      context.save();
      context.beginPath();
      context.rect(left, top, width, height);
      context.clip();
      draw();
      context.restore();
    },
  };
}

const ESCAPES = { '&': '&amp;', '<': '&lt;', '>': '&gt;', '"': '&quot;', "'": '&#39;' };

const escaped = (text) => text.replace(/[&<>"']/g, (character) => ESCAPES[character]);

/** Two decimals are a fiftieth of what a screen shows. */
const short = (value) => String(Math.round(value * 100) / 100);

function attributes(values) {
  return Object.entries(values)
    .filter(([, value]) => value !== null && value !== undefined)
    .map(([name, value]) => ` ${name}="${escaped(typeof value === 'number' ? short(value) : value)}"`)
    .join('');
}

/** A pen that writes SVG. @returns {Pen & {document: function(number, number): string}} */
export function svgPen() {
  const parts = [];
  let clips = 0;
  const write = (tag, values) => parts.push(`<${tag}${attributes(values)}/>`);
  return {
    box: (x, y, width, height, { fill = 'none', stroke }) => write('rect', { x, y, width, height, fill, stroke }),
    lines(segments, { stroke, width = 1, opacity = 1 }) {
      const d = segments.map(([x0, y0, x1, y1]) => `M${short(x0)} ${short(y0)}L${short(x1)} ${short(y1)}`).join('');
      if (d !== '') write('path', { d, fill: 'none', stroke, 'stroke-width': width, 'stroke-opacity': opacity < 1 ? opacity : null });
    },
    text(text, x, y, { size, fill, align = 'start', weight = 400, turn = 0, halo = null }) {
      parts.push(`<text${attributes({
        x,
        y,
        'font-size': size,
        'font-weight': weight === 400 ? null : String(weight),
        'text-anchor': align === 'start' ? null : align,
        transform: turn ? `rotate(${turn} ${short(x)} ${short(y)})` : null,
        fill,
        ...(halo ? { stroke: halo, 'stroke-width': HALO_WIDTH, 'stroke-linejoin': 'round', 'paint-order': 'stroke' } : {}),
      })}>${escaped(text)}</text>`);
    },
    mark(mark, x, y) {
      const { path, box } = outlineOf(mark);
      const scale = box / SHAPE_BOX;
      const opacity = mark.opacity < 1 ? mark.opacity : null;
      const [outer, inner] = rimsOf(mark).map(({ colour, reach }) => ({ colour, width: (2 * reach) / scale }));
      const transform = `translate(${short(x - box / 2)} ${short(y - box / 2)}) scale(${Math.round(scale * 1000) / 1000})`;
      const edge = inner ?? outer;
      if (inner) write('path', { d: path, transform, fill: 'none', stroke: outer.colour, 'stroke-width': outer.width });
      write('path', {
        d: path,
        transform,
        fill: mark.colour,
        'fill-opacity': opacity,
        ...(edge ? { stroke: edge.colour, 'stroke-width': edge.width, 'paint-order': 'stroke' } : {}),
      });
    },
    image: (canvas, x, y, width, height) => write('image', { x, y, width, height, href: canvas.toDataURL('image/png') }),
    within({ left, top, width, height }, draw) {
      clips += 1;
      parts.push(`<clipPath id="cut${clips}"><rect${attributes({ x: left, y: top, width, height })}/></clipPath><g clip-path="url(#cut${clips})">`);
      draw();
      parts.push('</g>');
    },
    /** The whole picture. */
    document: (width, height) =>
      `<svg xmlns="http://www.w3.org/2000/svg" width="${width}" height="${height}" viewBox="0 0 ${width} ${height}" font-family="${FONT}">${parts.join('\n')}</svg>\n`,
  };
}
