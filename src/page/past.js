// SPDX-License-Identifier: MIT
// The last ten minutes of the channels that are drawn: asked for once, then continued from the stream.

import {askHistory} from './api.js';
import {keyOf} from './readings.js';

export const kSpan = 600;  // seconds
const kStep = 1;

export class Past {
  #byKey = new Map();  // to lists of [time, value], value null in a gap

  // Nothing is known of the time without a connection.
  forget() {
    this.#byKey.clear();
  }

  of(channel) {
    const key = keyOf(channel);
    if (!this.#byKey.has(key)) this.#load(channel, key);
    return this.#byKey.get(key);
  }

  async #load(channel, key) {
    const points = [];
    this.#byKey.set(key, points);
    try {
      const {points: earlier} = await askHistory(channel);
      const first = points.length > 0 ? points[0][0] : Infinity;
      points.unshift(...earlier.filter(([time]) => time < first));
    } catch {
      // It grows from now on.
    }
  }

  // At most a point a second, as the server keeps them.
  take(readings, channels) {
    for (const channel of channels) {
      const points = this.#byKey.get(keyOf(channel));
      if (!points) continue;
      const last = points.length > 0 ? points[points.length - 1][0] : -Infinity;
      if (readings.now < last) points.length = 0;  // the boat's clock was set back
      else if (readings.now - last < kStep) continue;
      points.push([readings.now, readings.of(channel).value]);
      while (points[0][0] < readings.now - kSpan) points.shift();
    }
  }
}

export const isTurn = (kind) => kind === 'bearing' || kind === 'angle' || kind === 'wind-angle';

// They go through north, or astern, without a jump to the other edge of the picture.
export function unwrapped(points, kind) {
  if (!isTurn(kind)) return points;
  let last = null;
  return points.map(([time, value]) => {
    if (value === null) return [time, null];
    last = last === null ? value : last + ((((value - last + 180) % 360) + 360) % 360) - 180;
    return [time, last];
  });
}
