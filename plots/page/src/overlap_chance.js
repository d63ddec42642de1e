/** The chance of an overlap, in the same steps as annotation/overlap_chance.cpp, so that page and program agree. */

// What comes behind a summand of this share of the sum is below its last digit.
const NEGLIGIBLE = 2 ** -60;

/**
 * The chance that at least `hits` of `drawn` genes, drawn without replacement from `total` of which
 * `size` are of a kind, are of that kind.
 *
 * Each number of hits weighs as much as the number beside it times the ratio of their chances, from the most
 * likely one on, which weighs 1. So no logarithm loses digits, and what is summed is positive.
 */
export function upperTail(hits, size, drawn, total) {
  const least = Math.max(0, size + drawn - total);
  const most = Math.min(size, drawn);
  if (hits <= least) return 1;
  if (hits > most) return 0;
  const spare = total - size - drawn;
  const ratio = (x) => ((size - x) * (drawn - x)) / ((x + 1) * (spare + x + 1));
  const likeliest = Math.floor(((size + 1) * (drawn + 1)) / (total + 2));
  let tail = 0;
  let rest = 0;
  const add = (x, weight) => {
    if (x >= hits) tail += weight;
    else rest += weight;
  };
  let weight = 1;
  for (let x = likeliest; x <= most && (x <= hits || weight > tail * NEGLIGIBLE); x += 1) {
    add(x, weight);
    weight *= ratio(x);
  }
  weight = 1;
  for (let x = likeliest - 1; x >= least && weight > NEGLIGIBLE; x -= 1) {
    weight /= ratio(x);
    add(x, weight);
  }
  return tail / (rest + tail);
}

/**
 * The false discovery rate at which each result would count (Benjamini and Hochberg 1995).
 *
 * @param {ArrayLike<number>} ascending chances, least first
 * @param {number} [tests] how many there were; the chance of those that are not listed is 1
 */
export function falseDiscoveryRates(ascending, tests = ascending.length) {
  const rates = new Float64Array(ascending.length);
  let least = 1;
  for (let place = ascending.length; place > 0; place -= 1) {
    least = Math.min(least, (tests / place) * ascending[place - 1]);
    rates[place - 1] = least;
  }
  return rates;
}
