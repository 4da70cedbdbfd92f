// SPDX-License-Identifier: MIT
// What counts before the gun.

import {kBiasAng, kBsp, kBurn, kDistToLn, kTargBsp, kTmToGun, kTmToLn, kTws, own} from './channels.js';
import {make} from './dom.js';
import {Grid} from './grid.js';

const kTiles = [[kTmToGun, 'L'], [kDistToLn, 'M'], [kBsp, 'S'], [kTargBsp, 'S'], [kTmToLn, 'S'], [kBurn, 'S'], [kTws, 'S'], [kBiasAng, 'S']]
  .map(([id, size]) => ({...own(id), size}));

export class StartView {
  #grid;
  watched = kTiles;
  actions = [];

  constructor(boat, press) {
    this.#grid = new Grid(boat, kTiles, press, 'Start');
    this.element = make('section', {class: 'start', 'aria-label': 'Start'}, this.#grid.element);
  }

  show() {}

  update() {
    this.#grid.update();
  }
}
