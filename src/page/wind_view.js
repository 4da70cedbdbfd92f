// SPDX-License-Identifier: MIT
// The wind dial with the numbers that go with it.

import {kAwa, kAws, kBsp, kTargBsp, kTwa, kTws, own} from './channels.js';
import {Dial} from './dial.js';
import {make} from './dom.js';
import {Grid} from './grid.js';

const kTiles = [kTwa, kTws, kAwa, kAws, kBsp, kTargBsp].map((id) => ({...own(id), size: 'S'}));

export class WindView {
  #dial;
  #grid;
  actions = [];

  constructor(boat, press) {
    this.#dial = new Dial(boat);
    this.#grid = new Grid(boat, kTiles, press, 'Wind');
    this.element = make('section', {class: 'wind', 'aria-label': 'Wind'}, this.#dial.element, this.#grid.element);
  }

  get watched() {
    return [...this.#dial.watched, ...kTiles];
  }

  show() {}

  update() {
    this.#dial.update();
    this.#grid.update();
  }
}
