// SPDX-License-Identifier: MIT
// The boats that the suite knows, with bearing and distance from the own one.

import {askBoats} from './api.js';
import {kBrg, kRng, kSog} from './channels.js';
import {make, setText} from './dom.js';
import {ageInWords, whyNoNumber} from './words.js';

const kEvery = 2000;  // milliseconds
const kLive = [kBrg, kRng, kSog];

export class BoatsView {
  #boat;
  #rows = [];
  #head = make('tr');
  #body = make('tbody');
  #hint = make('p', {class: 'hint', role: 'status'});
  element = make('section', {class: 'boats', 'aria-label': 'Boats'}, make('table', {}, make('thead', {}, this.#head), this.#body), this.#hint);
  actions = [];

  constructor(boat) {
    this.#boat = boat;
    setInterval(() => this.element.isConnected && !document.hidden && this.show(), kEvery);
  }

  get watched() {
    return this.#rows.flatMap(({cells}) => cells.map(({channel}) => channel));
  }

  async show() {
    try {
      const boats = await askBoats();
      this.#take(boats);
      setText(this.#hint, boats.length === 0 ? 'No boat is in use, named or known by an MMSI.' : '');
    } catch (error) {
      this.#take([]);
      setText(this.#hint, `The boats can't be shown: ${error.message}.`);
    }
  }

  #take(boats) {
    const titles = ['Boat', ...kLive.map((id) => this.#boat.channels.of({id}).name), 'Last value', 'MMSI'];
    this.#head.replaceChildren(...titles.map((text) => make('th', {scope: 'col', text})));
    this.#rows = boats.map((boat) => this.#row(boat));
    this.#body.replaceChildren(...this.#rows.map(({item}) => item));
    this.update();
  }

  #row({boat, name, mmsi, colour, age}) {
    const swatch = make('span', {class: 'swatch'});
    swatch.style.backgroundColor = colour;
    // The own boat's bearing and distance from itself are nothing.
    const cells = kLive.filter((id) => boat !== 0 || id === kSog).map((id) => ({channel: {id, boat}, cell: make('td')}));
    const known = [age === null ? 'never' : ageInWords(age), mmsi ? `${mmsi}`.padStart(9, '0') : ''];
    const item = make('tr', {}, make('th', {scope: 'row'}, swatch, name ?? `Boat ${boat}`), ...(boat === 0 ? [make('td'), make('td')] : []),
                      ...cells.map(({cell}) => cell), ...known.map((text) => make('td', {text})));
    return {item, cells};
  }

  update() {
    for (const {channel, cell} of this.#rows.flatMap(({cells}) => cells)) {
      const reading = this.#boat.readings.of(channel);
      setText(cell, reading.text === null ? whyNoNumber(reading) : `${reading.text} ${reading.unit ?? ''}`);
      cell.classList.toggle('absent', reading.text === null);
    }
  }
}
