/** Keeping the selection and the sets in the page's address, from which they come back. */

import { copyAndTell } from './copies.js';
import { counted, formatCount } from './format.js';
import { debounced } from './dom.js';
import { fingerprintOf, LONGEST_ADDRESS, MARK, readFragment, toFragment } from './set_address.js';

const PAUSE_MILLISECONDS = 200;

/** A page within another one has no address of its own. */
const NO_ADDRESS = 'This page has no address of its own: save the sets as a file';

function restoredText({ selection, sets }) {
  const parts = [
    ...(selection.length > 0 ? [`a selection of ${counted(selection.length, 'gene')}`] : []),
    ...(sets.length > 0 ? [counted(sets.length, 'set')] : []),
  ];
  return parts.length > 0 ? `The address brought ${parts.join(' and ')}` : '';
}

/**
 * Makes the keeper of the address.
 *
 * @param {object[]} given the sets that the page was written with
 * @returns `restore(tell)`: takes up what the address holds; `follow(tell)`: keeps it there from now on;
 *   `copyLink(note)`; `tell(text)` is called with what there is to say
 */
export function createAddress(model, store, given) {
  const { dataset } = model;
  let fingerprint = null;
  const fingerprintOnce = () => (fingerprint ??= fingerprintOf(dataset));
  let isTooLong = false;

  function restore(tell) {
    try {
      const found = readFragment(window.location.hash, dataset, window.location.hash.startsWith(MARK) ? fingerprintOnce() : 0, given);
      if (!found) return;
      store.set(found);
      tell(restoredText(found));
    } catch (error) {
      tell(`Selection and sets of this address cannot be taken: ${error.message}`);
    }
  }

  function keep(tell) {
    const { hash, pathname, search } = window.location;
    const fragment = toFragment(store.get(), dataset, fingerprintOnce());
    const wasTooLong = isTooLong;
    isTooLong = fragment.length > LONGEST_ADDRESS;
    if (isTooLong && !wasTooLong) {
      tell(`Selection and sets are too large for the address (${formatCount(fragment.length)} of ${formatCount(LONGEST_ADDRESS)} characters): save them as a file`);
    }
    const wanted = isTooLong ? '' : fragment;
    if (wanted === hash || (wanted === '' && !hash.startsWith(MARK))) return true;
    try {
      window.history.replaceState(null, '', `${pathname}${search}${wanted}`);
      return true;
    } catch {
      return false;
    }
  }

  return {
    restore,
    follow(tell) {
      store.listen(['selection', 'sets'], debounced(() => keep(tell), PAUSE_MILLISECONDS));
      window.addEventListener('hashchange', () => restore(tell));
    },
    copyLink(note) {
      if (!keep(note.tell)) note.tell(NO_ADDRESS);
      else if (isTooLong) note.tell('Selection and sets are too large for a link: save the sets as a file');
      else copyAndTell(window.location.href, 'Link copied', note);
    },
  };
}
