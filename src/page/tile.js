// SPDX-License-Identifier: MIT
// One channel as a tile: big digits, unit, and the last ten minutes. Without a value that counts now it has no digits at all.

import {make, setAttribute, setText} from './dom.js';
import {keyOf} from './readings.js';
import {Spark} from './spark.js';
import {textWidth} from './text_width.js';
import {whyNoNumber} from './words.js';

const kNoDigits = '– –';
const kNoExtent = ['duration', 'latitude', 'longitude'];  // lows and highs that say nothing, in long texts

export class Tile {
  #boat;
  #name = make('span', {class: 'name'});
  #unit = make('span', {class: 'unit'});
  #digits = make('span', {class: 'digits'});
  #why = make('span', {class: 'why'});
  #low = make('span', {class: 'low'});
  #high = make('span', {class: 'high'});
  #spark = new Spark();
  #width = '';

  // `boat` has the readings, the past and the channels; `press` opens what explains the tile.
  constructor(boat, tile, press) {
    this.#boat = boat;
    this.tile = tile;
    const past = make('span', {class: 'past'}, this.#low, this.#spark.element, this.#high);
    const head = make('span', {class: 'head'}, this.#name, ' ', this.#unit);
    this.button = make('button', {type: 'button', class: 'face', click: () => press(tile)}, head, this.#digits, ' ', this.#why, ' ', past);
    this.element = make('li', {class: 'tile', 'data-size': tile.size, 'data-channel': keyOf(tile)}, this.button);
  }

  update() {
    const {channels, readings, past} = this.#boat;
    const reading = readings.of(this.tile);
    setText(this.#name, channels.title(this.tile));
    setText(this.#unit, reading.unit ?? channels.of(this.tile).unit ?? '');
    setText(this.#digits, reading.text ?? kNoDigits);
    setText(this.#why, reading.text === null ? whyNoNumber(reading) : '');
    setAttribute(this.element, 'data-state', reading.text === null ? reading.state : 'fresh');
    const kind = channels.of(this.tile).kind;
    const extent = reading.text !== null && reading.spark && !kNoExtent.includes(kind);
    setText(this.#low, extent ? reading.spark[0] : '');
    setText(this.#high, extent ? reading.spark[1] : '');
    const flat = reading.spark !== null && reading.spark[0] === reading.spark[1];
    this.#fit(textWidth(reading.text ?? kNoDigits));
    this.#spark.update(past.of(this.tile), kind, readings.now, flat);
  }

  #fit(width) {
    if (width === this.#width) return;
    this.#width = width;
    this.element.style.setProperty('--text-width', width);
  }
}
