/** The page's foot: how the run was made, and where to read on. */

import { dataText, el } from './dom.js';

const RELATIVE_FILE = /^[\w.][\w.\-/]*$/;

/** Whether a link may be followed: https, or a file beside the page. Anything else stays text. */
function isSafeLink(link) {
  return /^https:\/\/[^\s]+$/i.test(link) || (RELATIVE_FILE.test(link) && !link.includes('..'));
}

function linkItem(link) {
  const text = dataText(link);
  return el('li', {}, isSafeLink(link) ? el('a', { href: link, rel: 'noopener noreferrer' }, text) : text);
}

/** Fills the foot. */
export function showFooter(element, dataset) {
  const { parameters, links, functions, terms } = dataset;
  if (parameters.length > 0) {
    element.append(el('dl', { class: 'parameters' }, ...parameters.map(([term = '', value = '']) =>
      el('div', {}, el('dt', {}, dataText(term)), el('dd', {}, dataText(value))))));
  }
  if (links.length > 0) element.append(el('ul', { class: 'links' }, ...links.map(linkItem)));
  if (functions.some((text) => text !== '' && text !== 'NULL')) {
    element.append(el('p', { class: 'credit' },
      'Gene descriptions: Saccharomyces Genome Database, CC BY 4.0.'));
  }
  if (terms) {
    element.append(el('p', { class: 'credit' },
      'GO slim terms: Saccharomyces Genome Database and Gene Ontology, CC BY 4.0.'));
  }
}
