/** What has just been done, for those who see and for those who listen. */

import { el } from './dom.js';

/** Makes a line of text; `tell(text)` shows and says a text, `clear()` takes it away. */
export function createNote(say) {
  const element = el('p', { class: 'note counts' });
  return {
    element,
    tell(text) {
      element.textContent = text;
      say(text);
    },
    clear() {
      element.textContent = '';
    },
  };
}
