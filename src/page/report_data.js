// SPDX-License-Identifier: MIT
// What a report holds, unpacked: a list of times, and beside it one of values for each channel. At a gap both have one entry more,
// without a value, so that whatever is drawn over time is broken there.

import {kBsp, kTargBsp, kTwa} from './channels.js';

const twoDigits = (number) => `${number}`.padStart(2, '0');

export class RaceData {
  times = [];  // seconds since 1970, or since midnight if no day is known
  #columns = new Map();
  #zone;

  constructor(told) {
    Object.assign(this, told);
    this.#zone = told.zone;
    this.shift = told.zone[0][1] * 60;  // seconds by which the time on board was ahead at the start
    const ends = new Set();
    for (const [first, count] of told.segments) {
      if (this.times.length > 0) {
        ends.add(this.times.length);
        this.times.push((this.times[this.times.length - 1] + first) / 2);
      }
      for (let i = 0; i < count; ++i) this.times.push(first + i * told.step);
    }
    this.gaps = [...ends].map((place) => [this.times[place - 1], this.times[place + 1]]);
    for (const column of told.columns) {
      this.#columns.set(column.id, {...column, values: column.values && this.#unpacked(column, ends)});
    }
    this.#derive();
  }

  #unpacked({values, digits}, ends) {
    const unpacked = [];
    let last = 0;
    for (const step of values) {
      if (ends.has(unpacked.length)) unpacked.push(null);
      if (step !== null) last += step;
      unpacked.push(step === null ? null : last / 10 ** digits);
    }
    return unpacked;
  }

  // What follows from others.
  #derive() {
    const bsp = this.values(kBsp), target = this.values(kTargBsp), twa = this.values(kTwa);
    this.percent = bsp && target && bsp.map((value, i) => (value === null || !target[i] ? null : (100 * value) / target[i]));
    this.vmg = bsp && twa && bsp.map((value, i) =>
      (value === null || twa[i] === null ? null : Math.abs(value * Math.cos((twa[i] * Math.PI) / 180))));
  }

  of(id) {
    return this.#columns.get(id);
  }

  // null if nothing of it was recorded.
  values(id) {
    return this.#columns.get(id)?.values ?? null;
  }

  get channels() {
    return [...this.#columns.values()];
  }

  #ahead(time) {
    let minutes = this.#zone[0][1];
    for (const [from, ahead] of this.#zone) if (from <= time) minutes = ahead;
    return minutes;
  }

  // As ISO 8601, on board.
  #iso(time) {
    return new Date((time + this.#ahead(time) * 60) * 1000).toISOString();
  }

  clock(time) {
    return this.#iso(time).slice(11, 19);
  }

  minute(time) {
    return this.#iso(time).slice(11, 16);
  }

  day(time) {
    return this.dated ? this.#iso(time).slice(0, 10) : '';
  }

  get zoneName() {
    const minutes = this.#ahead(this.from);
    return minutes === 0 ? 'UTC' : `UTC${minutes < 0 ? '−' : '+'}${twoDigits(Math.floor(Math.abs(minutes) / 60))}:${twoDigits(Math.abs(minutes) % 60)}`;
  }

  // The place in the lists that is nearest to a time, none of a gap.
  nearest(time) {
    let low = 0, high = this.times.length - 1;
    while (high - low > 1) {
      const middle = (low + high) >> 1;
      if (this.times[middle] <= time) low = middle;
      else high = middle;
    }
    return time - this.times[low] < this.times[high] - time ? low : high;
  }
}

export function lasting(seconds) {
  const whole = Math.round(seconds);
  const minutes = `${Math.floor(whole / 60) % 60}`;
  return whole < 3600 ? `${minutes}:${twoDigits(whole % 60)}` : `${Math.floor(whole / 3600)}:${twoDigits(minutes)}:${twoDigits(whole % 60)}`;
}
