/** An index of places: points sorted into cells, so that a question looks at few of them. */

const POINTS_PER_CELL = 4;
const MOST_CELLS = 1 << 20;

/** Smallest and largest coordinates of some points; null for none. */
function extentOf({ x, y, genes }) {
  if (genes.length === 0) return null;
  const box = { x0: Infinity, x1: -Infinity, y0: Infinity, y1: -Infinity };
  for (let i = 0; i < genes.length; i += 1) {
    const atX = x[genes[i]];
    const atY = y[genes[i]];
    if (atX < box.x0) box.x0 = atX;
    if (atX > box.x1) box.x1 = atX;
    if (atY < box.y0) box.y0 = atY;
    if (atY > box.y1) box.y1 = atY;
  }
  return box;
}

/** The grid over a box: about as many cells as are worth their memory, all in one row of a flat box. */
function gridOver(box, count) {
  const width = box.x1 - box.x0;
  const height = box.y1 - box.y0;
  const cells = Math.min(Math.max(Math.floor(count / POINTS_PER_CELL), 1), MOST_CELLS);
  const isPlane = width > 0 && height > 0 && Number.isFinite(width) && Number.isFinite(height);
  const columns = isPlane ? Math.min(Math.max(Math.round(Math.sqrt((cells * width) / height)), 1), cells) : 1;
  const rows = isPlane ? Math.max(Math.floor(cells / columns), 1) : 1;
  const place = (value, low, span, steps) => Math.min(Math.max(Math.floor(((value - low) / span) * steps), 0), steps - 1);
  return {
    columns,
    rows,
    column: (x) => (columns > 1 ? place(x, box.x0, width, columns) : 0),
    row: (y) => (rows > 1 ? place(y, box.y0, height, rows) : 0),
    step: isPlane ? Math.min(width / columns, height / rows) : Infinity,
  };
}

/**
 * Sorts points into cells.
 *
 * @param {{x, y, genes}} points
 * @returns `starts` (of each cell in `items`, row by row, and the end), `items` (genes) and the grid
 */
function buildIndex(points) {
  const { x, y, genes } = points;
  const box = extentOf(points);
  if (!box) return null;
  const grid = gridOver(box, genes.length);
  const { columns, rows, column, row } = grid;
  const starts = new Int32Array(columns * rows + 1);
  const cells = new Int32Array(genes.length);
  for (let i = 0; i < genes.length; i += 1) {
    cells[i] = row(y[genes[i]]) * columns + column(x[genes[i]]);
    starts[cells[i] + 1] += 1;
  }
  for (let cell = 1; cell < starts.length; cell += 1) starts[cell] += starts[cell - 1];
  const next = starts.slice(0, -1);
  const items = new Int32Array(genes.length);
  for (let i = 0; i < genes.length; i += 1) {
    items[next[cells[i]]] = genes[i];
    next[cells[i]] += 1;
  }
  return { ...grid, starts, items, box };
}

const known = new WeakMap();

/** The index of some points, made when it is first asked for; null without points. */
export function indexOf(points) {
  if (!known.has(points)) known.set(points, buildIndex(points));
  return known.get(points);
}

/** Calls `visit(gene)` for every gene of the cells that a box touches; few lie outside the box. */
export function visitNear(index, box, visit) {
  const [left, right] = [index.column(box.x0), index.column(box.x1)];
  const [low, high] = [index.row(box.y0), index.row(box.y1)];
  for (let row = low; row <= high; row += 1) {
    const end = index.starts[row * index.columns + right + 1];
    for (let i = index.starts[row * index.columns + left]; i < end; i += 1) visit(index.items[i]);
  }
}

/** How many points lie in a box: cells within are counted whole. */
export function countInBox(index, { x, y }, box) {
  const [left, right] = [index.column(box.x0), index.column(box.x1)];
  const [low, high] = [index.row(box.y0), index.row(box.y1)];
  let count = 0;
  const countAmong = (first, end) => {
    for (let i = first; i < end; i += 1) {
      const gene = index.items[i];
      if (x[gene] >= box.x0 && x[gene] <= box.x1 && y[gene] >= box.y0 && y[gene] <= box.y1) count += 1;
    }
  };
  for (let row = low; row <= high; row += 1) {
    const at = (column) => index.starts[row * index.columns + column];
    if (row === low || row === high || right - left < 2) {
      countAmong(at(left), at(right + 1));
    } else {
      countAmong(at(left), at(left + 1));
      count += at(right) - at(left + 1);
      countAmong(at(right), at(right + 1));
    }
  }
  return count;
}
