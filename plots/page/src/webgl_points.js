/** Printing points by a graphics card: the same marks in the same order as in an array of pixels. */

import { el } from './dom.js';
import { pixelsOf } from './marks.js';

/** Cards that are none: their work is done by the processor, more slowly than by the array of pixels. */
const SOFTWARE = /swiftshader|llvmpipe|softpipe|software|basic render/i;

const SHEET_WIDTH = 2048;

const VERTEX = `#version 300 es
in vec2 place;
in float tile;
uniform vec2 scale;
uniform vec2 shift;
uniform vec2 screen;
uniform float side;
uniform vec2 tiles;
flat out vec2 corner;
void main() {
  vec2 pixel = (place * scale + shift) * screen;
  pixel = floor(pixel - side * 0.5 + 0.5) + side * 0.5;
  gl_Position = vec4(pixel / screen * 2.0 - 1.0, 0.0, 1.0);
  gl_PointSize = side;
  corner = vec2(mod(tile, tiles.x), floor(tile / tiles.x));
}`;

const FRAGMENT = `#version 300 es
precision highp float;
uniform sampler2D sheet;
uniform vec2 tiles;
flat in vec2 corner;
out vec4 colour;
void main() {
  colour = texture(sheet, (corner + gl_PointCoord) / tiles);
}`;

function programOf(gl) {
  const program = gl.createProgram();
  for (const [type, source] of [[gl.VERTEX_SHADER, VERTEX], [gl.FRAGMENT_SHADER, FRAGMENT]]) {
    const shader = gl.createShader(type);
    gl.shaderSource(shader, source);
    gl.compileShader(shader);
    gl.attachShader(program, shader);
  }
  gl.linkProgram(program);
  return gl.getProgramParameter(program, gl.LINK_STATUS) ? program : null;
}

/** The marks of some kinds side by side in one picture, premultiplied by their opacity. */
function sheetOf(kinds, marks, ratio) {
  const pictures = kinds.map((kind) => ({ ...pixelsOf(marks[kind], ratio), opacity: marks[kind].opacity }));
  const side = pictures.reduce((most, { size }) => Math.max(most, size), 1);
  const columns = Math.max(Math.floor(SHEET_WIDTH / side), 1);
  const rows = Math.max(Math.ceil(kinds.length / columns), 1);
  const data = new Uint8Array(columns * side * rows * side * 4);
  pictures.forEach(({ size, data: pixels, opacity }, tile) => {
    const inset = Math.floor((side - size) / 2);
    const left = (tile % columns) * side + inset;
    const top = Math.floor(tile / columns) * side + inset;
    for (let at = 0; at < size * size; at += 1) {
      const to = ((top + Math.floor(at / size)) * columns * side + left + (at % size)) * 4;
      const alpha = (pixels[4 * at + 3] / 255) * opacity;
      for (let part = 0; part < 3; part += 1) data[to + part] = Math.round(pixels[4 * at + part] * alpha);
      data[to + 3] = Math.round(255 * alpha);
    }
  });
  return { side, columns, rows, data };
}

/** What the points of a list are on the card: places within -1 to 1, and tiles of their marks. */
function columnsOf(list) {
  let [x0, x1, y0, y1] = [Infinity, -Infinity, Infinity, -Infinity];
  for (let i = 0; i < list.count; i += 1) {
    x0 = Math.min(x0, list.x[i]);
    x1 = Math.max(x1, list.x[i]);
    y0 = Math.min(y0, list.y[i]);
    y1 = Math.max(y1, list.y[i]);
  }
  const middle = list.count > 0 ? { x: (x0 + x1) / 2, y: (y0 + y1) / 2 } : { x: 0, y: 0 };
  const reach = Math.max(x1 - middle.x, y1 - middle.y, Number.MIN_VALUE);
  const tileOf = new Uint16Array(1 << 16);
  for (const kinds of [list.present.back, list.present.lit]) kinds.forEach((kind, tile) => { tileOf[kind] = tile; });
  const places = new Float32Array(2 * list.count);
  const tiles = new Uint16Array(list.count);
  for (let i = 0; i < list.count; i += 1) {
    places[2 * i] = (list.x[i] - middle.x) / reach;
    places[2 * i + 1] = (list.y[i] - middle.y) / reach;
    tiles[i] = tileOf[list.kinds[i]];
  }
  return { places, tiles, middle, reach };
}

/**
 * Makes a printer on a canvas of its own.
 *
 * @returns {{canvas: HTMLCanvasElement, print: function, isLost: function(): boolean}|null} null where there
 *   is no card
 */
export function createWebglPrinter() {
  const canvas = el('canvas', { class: 'chart-layer card-points', 'aria-hidden': 'true' });
  const gl = canvas.getContext('webgl2', {
    antialias: false, depth: false, preserveDrawingBuffer: true, failIfMajorPerformanceCaveat: true,
  });
  if (!gl) return null;
  const named = gl.getExtension('WEBGL_debug_renderer_info');
  const program = SOFTWARE.test(gl.getParameter(named ? named.UNMASKED_RENDERER_WEBGL : gl.RENDERER)) ? null : programOf(gl);
  if (!program) {
    gl.getExtension('WEBGL_lose_context')?.loseContext();
    return null;
  }

  const at = (name) => gl.getUniformLocation(program, name);
  const places = { scale: at('scale'), shift: at('shift'), screen: at('screen'), side: at('side'), tiles: at('tiles') };
  const buffers = { place: gl.createBuffer(), tile: gl.createBuffer() };
  const sheets = { back: gl.createTexture(), lit: gl.createTexture() };
  let known = { list: null, marks: null, ratio: 0 };
  gl.useProgram(program);
  gl.enable(gl.BLEND);
  gl.blendFunc(gl.ONE, gl.ONE_MINUS_SRC_ALPHA);

  function fill(name, data, size, type) {
    const location = gl.getAttribLocation(program, name);
    gl.bindBuffer(gl.ARRAY_BUFFER, buffers[name]);
    gl.bufferData(gl.ARRAY_BUFFER, data, gl.STATIC_DRAW);
    gl.enableVertexAttribArray(location);
    gl.vertexAttribPointer(location, size, type, false, 0, 0);
  }

  function fillSheet(name, marks, ratio) {
    const sheet = sheetOf(known.list.present[name], marks, ratio);
    gl.bindTexture(gl.TEXTURE_2D, sheets[name]);
    gl.texImage2D(gl.TEXTURE_2D, 0, gl.RGBA, sheet.columns * sheet.side, sheet.rows * sheet.side, 0, gl.RGBA, gl.UNSIGNED_BYTE, sheet.data);
    for (const edge of [gl.TEXTURE_MIN_FILTER, gl.TEXTURE_MAG_FILTER]) gl.texParameteri(gl.TEXTURE_2D, edge, gl.NEAREST);
    for (const side of [gl.TEXTURE_WRAP_S, gl.TEXTURE_WRAP_T]) gl.texParameteri(gl.TEXTURE_2D, side, gl.CLAMP_TO_EDGE);
    return sheet;
  }

  function prepare(list, marks, ratio) {
    if (known.list !== list) {
      const columns = columnsOf(list);
      fill('place', columns.places, 2, gl.FLOAT);
      fill('tile', columns.tiles, 1, gl.UNSIGNED_SHORT);
      known = { list, middle: columns.middle, reach: columns.reach, marks: null };
    }
    if (known.marks !== marks || known.ratio !== ratio) {
      known.back = fillSheet('back', marks, ratio);
      known.lit = fillSheet('lit', marks, ratio);
      known.marks = marks;
      known.ratio = ratio;
    }
  }

  function drawPart(name, first, count) {
    if (count === 0) return;
    const { side, columns, rows } = known[name];
    gl.bindTexture(gl.TEXTURE_2D, sheets[name]);
    gl.uniform1f(places.side, side);
    gl.uniform2f(places.tiles, columns, rows);
    gl.drawArrays(gl.POINTS, first, count);
  }

  /** Prints a list of points, as the array of pixels does, on a ground that shines through. */
  function print(list, marks, view, ratio) {
    prepare(list, marks, ratio);
    const [width, height] = [view.x1 - view.x0, view.y1 - view.y0];
    gl.viewport(0, 0, canvas.width, canvas.height);
    gl.clearColor(0, 0, 0, 0);
    gl.clear(gl.COLOR_BUFFER_BIT);
    gl.uniform2f(places.scale, known.reach / width, known.reach / height);
    gl.uniform2f(places.shift, (known.middle.x - view.x0) / width, (known.middle.y - view.y0) / height);
    gl.uniform2f(places.screen, canvas.width, canvas.height);
    drawPart('back', 0, list.lit);
    drawPart('lit', list.lit, list.count - list.lit);
  }

  return { canvas, print, isLost: () => gl.isContextLost() };
}
