/** Paper is white: the page is printed in the light theme, whatever the screen shows. */

/** Changes the theme for as long as printing takes. */
export function printLight(chart, store) {
  let onScreen = store.get().theme;
  window.addEventListener('beforeprint', () => {
    onScreen = store.get().theme;
    store.set({ theme: 'light' });
    // Printing does not wait for the next frame.
    chart.flush();
  });
  window.addEventListener('afterprint', () => store.set({ theme: onScreen }));
}
