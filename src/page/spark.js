// SPDX-License-Identifier: MIT
// The last ten minutes as a small line, drawn once a second, and at once when the time before this page has come.

import {draw, setAttribute} from './dom.js';
import {kSpan, unwrapped} from './plot.js';

const kWide = 200, kHigh = 40;

// A line through the mean of each step of the picture; it is broken where there were no values.
function sparkPath(points, now, flat) {
  const sums = new Map();
  for (const [time, value] of points) {
    const step = Math.round(kWide * (1 - (now - time) / kSpan));
    if (value === null || step < 0) continue;
    const {sum, count} = sums.get(step) ?? {sum: 0, count: 0};
    sums.set(step, {sum: sum + value, count: count + 1});
  }
  const means = [...sums].map(([step, {sum, count}]) => [step, sum / count]);
  const values = means.map(([, value]) => value);
  const low = Math.min(...values), high = Math.max(...values);
  const scale = flat || high === low ? 0 : (kHigh - 4) / (high - low);
  let path = '', last = -Infinity;
  for (const [step, value] of means) {
    const y = scale === 0 ? kHigh / 2 : kHigh - 2 - (value - low) * scale;
    path += `${step - last > 3 ? 'M' : 'L'}${step} ${y.toFixed(1)}`;
    last = step;
  }
  return path;
}

export class Spark {
  #line = draw('path', {'vector-effect': 'non-scaling-stroke'});
  #drawn = 0;
  #first = 0;
  element = draw('svg', {class: 'spark', viewBox: `0 0 ${kWide} ${kHigh}`, preserveAspectRatio: 'none', 'aria-hidden': 'true'}, this.#line);

  // `flat`: low and high read the same, so the line must not make mountains of what differs.
  update(points, kind, now, flat) {
    const first = points.length > 0 ? points[0][0] : 0;
    if (Math.abs(now - this.#drawn) < 1 && first === this.#first) return;
    [this.#drawn, this.#first] = [now, first];
    setAttribute(this.#line, 'd', sparkPath(unwrapped(points, kind), now, flat));
  }
}
