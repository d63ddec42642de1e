/** Where the lines and columns of a heat map stand. All lengths are pixels of the style sheet. */

export const ROW_HEIGHT = 16;
const LEAST_CELL_WIDTH = 12;
const MOST_CELL_WIDTH = 44;

/**
 * Lays out the heat map.
 *
 * @param {object} size `genes` and `columns` (their numbers), the `width` of the frame, the `height` that lines
 *   may take, and the room for names on the `left` and at the `top`
 * @param {boolean} named true for a line per gene, high enough for its name, as many as there are; false for lines
 *   that all fit into the height, if need be each the mean of several genes
 * @returns `left`, `top`, `cellWidth`, `rowHeight`, `lines`, `perLine` (genes of a line), and `width` and `height`
 *   of everything
 */
export function layOut({ genes, columns, width, height, left, top }, named) {
  const room = (width - left) / Math.max(columns, 1);
  const cellWidth = Math.max(LEAST_CELL_WIDTH, Math.min(MOST_CELL_WIDTH, room));
  const perLine = named ? 1 : Math.max(1, Math.ceil(genes / height));
  const lines = Math.ceil(genes / perLine);
  const rowHeight = named ? ROW_HEIGHT : Math.max(1, Math.min(ROW_HEIGHT, Math.floor(height / Math.max(lines, 1))));
  return {
    left, top, cellWidth, rowHeight, lines, perLine, width: left + columns * cellWidth, height: top + lines * rowHeight,
  };
}

/** The lines `{from, to}` that are in view of a frame of some height, scrolled to `scrollTop`. */
export function linesInView({ top, rowHeight, lines }, scrollTop, frameHeight) {
  const from = Math.max(0, Math.min(lines, Math.floor(scrollTop / rowHeight)));
  const to = Math.min(lines, Math.ceil((scrollTop + frameHeight - top) / rowHeight));
  return { from, to: Math.max(from, to) };
}

/**
 * The line and column under a place of the frame, whose names stay in view however far it is scrolled.
 *
 * @returns {{line: number, column: number}|null} column -1 over the names of the genes; null beside the lines
 */
export function placeAt(layout, { left, top }, x, y) {
  if (y < layout.top) return null;
  const line = Math.floor((y - layout.top + top) / layout.rowHeight);
  const column = x < layout.left ? -1 : Math.floor((x - layout.left + left) / layout.cellWidth);
  return line >= 0 && line < layout.lines && layout.left + column * layout.cellWidth < layout.width ? { line, column } : null;
}
