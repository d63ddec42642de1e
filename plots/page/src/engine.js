/** The parts of the chart library that the page needs. */

import { graphic, init, use } from 'echarts/core';
import { ScatterChart } from 'echarts/charts';
import {
  BrushComponent,
  DataZoomInsideComponent,
  GridComponent,
  LegendComponent,
  TitleComponent,
  TooltipComponent,
} from 'echarts/components';
import { LabelLayout } from 'echarts/features';
import { CanvasRenderer, SVGRenderer } from 'echarts/renderers';

use([
  ScatterChart,
  BrushComponent,
  DataZoomInsideComponent,
  GridComponent,
  LegendComponent,
  TitleComponent,
  TooltipComponent,
  LabelLayout,
  CanvasRenderer,
  SVGRenderer,
]);

export { graphic, init };
