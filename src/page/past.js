// SPDX-License-Identifier: MIT
// The last ten minutes of the channels that are drawn: asked for once, then continued from the stream.

import {askHistory} from './api.js';
import {kSpan} from './plot.js';
import {keyOf} from './readings.js';

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
