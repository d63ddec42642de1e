/** Long labels in few characters, so that different ones still look different. */

const HEAD = 10;
const BEFORE_DIFFERENCE = 4;

function commonLength(texts) {
  const [first, ...others] = texts;
  const differs = (at) => others.some((other) => other[at] !== first[at]);
  let length = 0;
  while (length < first.length && !differs(length)) length += 1;
  return length;
}

/** The start of a text and, as far as there is room, what is around the place `difference`. */
function cutAround(text, difference, limit) {
  const room = limit - HEAD - 1;
  const from = Math.max(Math.min(difference - BEFORE_DIFFERENCE, text.length - room), HEAD);
  const rest = text.slice(from);
  const tail = rest.length > room ? [...rest.slice(0, room - 1), '\u2026'] : rest;
  return [...text.slice(0, HEAD), '\u2026', ...tail].join('');
}

function groupsOf(texts, keys) {
  const groups = new Map();
  keys.forEach((key, index) => {
    if (!groups.has(key)) groups.set(key, []);
    groups.get(key).push(index);
  });
  return [...groups.values()].filter((group) => group.length > 1 && group.some((index) => texts[index].join('') !== keys[index]));
}

/**
 * Cuts texts that are longer than `limit` characters, at their end; those that would then be alike are
 * cut in the middle, so that what tells them apart is seen.
 *
 * @param {string[]} texts all different
 * @param {number} limit at least 20
 * @returns {string[]} one for each
 */
export function cutApart(texts, limit) {
  const letters = texts.map((text) => [...text]);
  const short = letters.map((text) => (text.length > limit ? [...text.slice(0, limit - 1), '\u2026'] : text).join(''));
  // Of a group that is alike, some may still be so up to a later place.
  for (let round = 0; round < 8; round += 1) {
    const groups = groupsOf(letters, short);
    if (groups.length === 0) break;
    for (const group of groups) {
      const difference = commonLength(group.map((index) => letters[index]));
      for (const index of group) {
        if (letters[index].length > limit) short[index] = cutAround(letters[index], difference, limit);
      }
    }
  }
  return short;
}
