/** Light and dark; the colours themselves stand in the style sheet. */

const root = document.documentElement;
const prefersDark = matchMedia('(prefers-color-scheme: dark)');

/** The reader's preference. */
export function preferredTheme() {
  return prefersDark.matches ? 'dark' : 'light';
}

/** Calls back when the reader's preference changes. */
export function onPreferredTheme(listener) {
  prefersDark.addEventListener('change', () => listener(preferredTheme()));
}

/** Puts the page into a theme. */
export function applyTheme(theme) {
  root.dataset.theme = theme;
}

/** The colours that the chart takes from the style sheet. */
export function inkOf(theme) {
  const style = getComputedStyle(root);
  const colour = (name) => style.getPropertyValue(`--${name}`).trim();
  return {
    theme,
    text: colour('text'),
    muted: colour('muted'),
    axis: colour('axis'),
    grid: colour('grid'),
    surface: colour('surface'),
    accent: colour('accent'),
    border: colour('border'),
    found: colour('found'),
  };
}

/** Whether movement is to be avoided. */
export function prefersStillness() {
  return matchMedia('(prefers-reduced-motion: reduce)').matches;
}
