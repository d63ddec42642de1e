/**
 * What is drawn on top of what: small groups over large ones, grey ones beneath all, and within a group
 * in an order that is shuffled but fixed. It follows from the data alone, never from what the reader did
 * before.
 */

const GOLDEN_SHARE = 0.6180339887498949;

const commonDivisor = (a, b) => (b === 0 ? a : commonDivisor(b, a % b));

/** Steps of this length visit each of `count` numbers once, and stay far from those visited before. */
export function shuffleStep(count) {
  let step = Math.max(Math.round(count * GOLDEN_SHARE), 1);
  while (commonDivisor(step, count) > 1) step += 1;
  return step;
}

/** How low each category lies: those of one number are drawn at once, from 0 upwards. */
function depths({ list, scale }) {
  const isGrey = (category) => list[category].grey;
  // Steps of a scale are no groups: which of them are rare says nothing.
  if (scale) return Int32Array.from(list, (_, category) => (isGrey(category) ? 0 : 1));
  const order = Array.from(list.keys()).sort((a, b) =>
    Number(isGrey(b)) - Number(isGrey(a)) || list[b].count - list[a].count || a - b);
  const depth = new Int32Array(list.length);
  order.forEach((category, position) => {
    depth[category] = position;
  });
  return depth;
}

/**
 * The genes with a position, from the lowest to the topmost.
 *
 * @param {{x, y, placed}} pair
 * @param {object} categories as of `findCategories`
 * @returns {Int32Array}
 */
export function drawingOrder({ x, y, placed }, categories) {
  const depth = depths(categories);
  const next = new Int32Array(categories.list.length + 1);
  const isPlaced = (gene) => Number.isFinite(x[gene]) && Number.isFinite(y[gene]);
  for (let gene = 0; gene < x.length; gene += 1) {
    if (isPlaced(gene)) next[depth[categories.of[gene]] + 1] += 1;
  }
  for (let level = 1; level < next.length; level += 1) next[level] += next[level - 1];
  const order = new Int32Array(placed);
  const step = shuffleStep(x.length);
  let gene = 0;
  for (let turn = 0; turn < x.length; turn += 1) {
    if (isPlaced(gene)) {
      const level = depth[categories.of[gene]];
      order[next[level]] = gene;
      next[level] += 1;
    }
    gene = (gene + step) % x.length;
  }
  return order;
}

/** How a point stands out; what the search found and what is chosen lie above the rest. */
export const ROLES = ['plain', 'dim', 'found', 'chosen', 'both'];

/**
 * The role of each gene as a number; null when nothing stands out, so that all are plain. Beside what stands out
 * everything else is dim, so that fading shows without it alone.
 */
function rolesOf({ matches, selection, faded }, count) {
  const found = matches ?? new Int32Array(0);
  if (found.length + selection.length === 0) {
    if (!faded) return null;
    const roles = new Uint8Array(count);
    for (const gene of faded) roles[gene] = 1;
    return roles;
  }
  const roles = new Uint8Array(count).fill(1);
  for (const gene of found) roles[gene] = 2;
  for (const gene of selection) roles[gene] = roles[gene] === 2 ? 4 : 3;
  return roles;
}

/** Kinds of points: those of a category in a role look alike. */
export const kindOf = (category, role) => category * ROLES.length + role;
export const categoryOf = (kind) => Math.floor(kind / ROLES.length);
export const roleOf = (kind) => ROLES[kind % ROLES.length];

/**
 * Lists the points to draw, from the lowest to the topmost.
 *
 * @param {{x, y}} points coordinates of all genes
 * @param {Int32Array} order as of `drawingOrder`
 * @param {object} categories as of `findCategories`
 * @param {{shown, matches, selection, faded}} state
 * @returns {{count: number, lit: number, x: Float64Array, y: Float64Array, kinds: Uint16Array,
 *   present: {back: number[], lit: number[]}}} one entry per point; from `lit` on they stand out; `present`
 *   are the kinds that occur before and from there on
 */
export function listPoints({ x, y }, order, categories, { shown, matches, selection, faded }) {
  const roles = rolesOf({ matches, selection, faded }, x.length);
  const list = {
    x: new Float64Array(order.length),
    y: new Float64Array(order.length),
    kinds: new Uint16Array(order.length),
  };
  const occurs = new Uint8Array(kindOf(categories.list.length, 0));
  let count = 0;
  function take(isWanted) {
    for (let i = 0; i < order.length; i += 1) {
      const gene = order[i];
      const role = roles ? roles[gene] : 0;
      const category = categories.of[gene];
      if (shown[category] && isWanted(role)) {
        list.x[count] = x[gene];
        list.y[count] = y[gene];
        list.kinds[count] = kindOf(category, role);
        occurs[list.kinds[count]] = 1;
        count += 1;
      }
    }
  }
  take((role) => role < 2);
  const lit = count;
  if (roles) for (const wanted of [2, 3, 4]) take((role) => role === wanted);
  const present = { back: [], lit: [] };
  occurs.forEach((isThere, kind) => {
    if (isThere) present[kind % ROLES.length < 2 ? 'back' : 'lit'].push(kind);
  });
  return { ...list, count, lit, present };
}
