// SPDX-License-Identifier: MIT
// Strips of the channels that the crew has chosen, one below the other over the same ten minutes.

import {iconButton, make} from './dom.js';
import {Strip} from './strip.js';

export class ChartView {
  #boat;
  #layout;
  #press;
  #strips = [];
  #list = make('ul', {class: 'strips', 'aria-label': 'Strips'});
  #hint = make('p', {class: 'hint', text: 'No strips yet. Press + and choose channels.'});
  element = make('section', {class: 'chart', 'aria-label': 'Chart'}, this.#list, this.#hint);
  actions;

  constructor(boat, layout, press, pick) {
    this.#boat = boat;
    this.#layout = layout;
    this.#press = press;
    this.actions = [iconButton('add', 'Choose channels', pick)];
  }

  get watched() {
    return this.#layout.strips;
  }

  show() {
    for (const strip of this.#strips) strip.end();
    this.#strips = this.#layout.strips.map((channel) => new Strip(this.#boat, channel, this.#press));
    this.#list.replaceChildren(...this.#strips.map(({element}) => element));
    this.#hint.hidden = this.#strips.length > 0;
  }

  recolour() {
    for (const strip of this.#strips) strip.drawAgain();
  }

  update() {
    for (const strip of this.#strips) strip.update();
  }
}
