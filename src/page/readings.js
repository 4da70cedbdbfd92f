// SPDX-License-Identifier: MIT
// The latest reading of each watched channel, and whether it may still be shown.

export const keyOf = ({id, boat}) => `${id}-${boat}`;

const kNothing = {value: null, text: null, unit: null, state: 'waiting', age: null, spark: null};

export class Readings {
  bridge = 'running';
  replay = false;
  now = 0;  // the boat's clock, seconds since 1970
  #connection;
  #byKey = new Map();
  #void = -Infinity;  // what was published before the bridge last stopped, by the boat's clock, counts no more
  #watched = new Set();

  constructor(connection) {
    this.#connection = connection;
  }

  // A channel that is watched again begins empty: what was known of it has grown old unseen.
  watch(channels) {
    const watched = new Map(channels.map((channel) => [keyOf(channel), channel]));
    for (const key of this.#byKey.keys()) {
      if (!watched.has(key)) this.#byKey.delete(key);
    }
    this.#watched = new Set(watched.keys());
    this.#connection.watch([...watched.values()].map(({id, boat}) => [id, boat]));
  }

  take(message, renewed) {
    if (renewed) this.#byKey.clear();
    const stops = message.bridge !== 'running' && (renewed || this.bridge === 'running');
    if (stops) this.#void = message.t;
    else if (message.t < this.now) this.#void = -Infinity;  // the boat's clock was set back
    this.now = message.t;
    this.bridge = message.bridge;
    this.replay = message.replay;
    for (const reading of message.values) {
      const key = keyOf(reading);
      const published = reading.age === null ? null : message.t - reading.age;
      if (this.#watched.has(key)) this.#byKey.set(key, {...reading, published});
    }
  }

  get live() {
    return this.#connection.live;
  }

  get silence() {
    return this.#connection.silence;
  }

  // What may be shown: a reading without a text has none that counts now.
  of(channel) {
    const known = this.#byKey.get(keyOf(channel)) ?? kNothing;
    if (!this.live) return {...known, value: null, text: null, state: 'lost', age: this.silence};
    const age = known.published === null || known.published === undefined ? null : Math.max(0, this.now - known.published);
    const old = known.state === 'fresh' && known.published <= this.#void;
    return old ? {...known, value: null, text: null, state: this.bridge === 'running' ? 'waiting' : this.bridge, age} : {...known, age};
  }
}
