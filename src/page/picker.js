// SPDX-License-Identifier: MIT
// The list from which channels are chosen, by name, with what they show now: a newcomer sees at once which ones live.

import {askBoats} from './api.js';
import {iconButton, make, setAttribute, setText} from './dom.js';
import {whyNoNumber} from './words.js';

export class Picker {
  #boat;
  #rows = [];
  #name = () => '';
  #chosen = () => false;
  #toggle = () => {};
  #title = make('h2', {id: 'picker-title'});
  #search = make('input', {type: 'search', id: 'picker-search', autocomplete: 'off', spellcheck: 'false', input: () => this.#filter()});
  #whose = make('select', {id: 'picker-boat', change: () => this.#list()});
  #count = make('p', {class: 'hint', role: 'status'});
  #channels = make('ul', {class: 'channels', 'aria-label': 'Channels'});
  #extra = make('span', {class: 'extra'});
  element;

  constructor(boat) {
    this.#boat = boat;
    const head = make('header', {}, this.#title, this.#extra, iconButton('close', 'Close', () => this.element.close()));
    const fields = make('div', {class: 'fields'}, make('label', {for: 'picker-search', text: 'Search'}), this.#search,
                        make('label', {for: 'picker-boat', text: 'Boat'}), this.#whose);
    this.element = make('dialog', {class: 'picker', 'aria-labelledby': 'picker-title'}, head, fields, this.#count, this.#channels);
  }

  // `title` is asked for all the time; `chosen` and `toggle` get a channel of a boat; `extra` are further buttons; `closed` is called
  // when the crew has chosen.
  open({title, chosen, toggle, extra = [], closed}) {
    this.#chosen = chosen;
    this.#toggle = toggle;
    this.#name = title;
    this.#extra.replaceChildren(...extra);
    this.#search.value = '';
    this.#whose.replaceChildren(make('option', {value: '0', text: 'Own'}));
    this.#addBoats();
    this.#list();
    this.element.addEventListener('close', closed, {once: true});
    this.element.showModal();
    this.#search.focus();
  }

  get watched() {
    return this.element.open ? this.#rows.map(({channel}) => channel) : [];
  }

  async #addBoats() {
    const boats = await askBoats().catch(() => []);
    const others = boats.filter(({boat}) => boat !== 0);
    this.#whose.append(...others.map(({boat, name}) => make('option', {value: `${boat}`, text: name ?? `Boat ${boat}`})));
  }

  #list() {
    const boat = Number(this.#whose.value);
    this.#rows = this.#boat.channels.list.filter(({boats}) => boats.includes(boat)).map((about) => this.#row(about, {id: about.id, boat}));
    this.#channels.replaceChildren(...this.#rows.map(({item}) => item));
    this.#filter();
  }

  #row(about, channel) {
    const value = make('span', {class: 'now'});
    const press = () => {
      this.#toggle(channel);
      this.update();
    };
    const name = make('span', {class: 'name', text: about.name});
    const long = make('span', {class: 'long', text: about.longName === about.name ? '' : about.longName});
    const button = make('button', {type: 'button', 'aria-pressed': 'false', click: press}, name, ' ', long, ' ', value);
    const words = `${about.name} ${about.longName} ${about.id}`.toLowerCase();
    return {channel, unit: about.unit, words, value, button, item: make('li', {}, button)};
  }

  #filter() {
    const parts = this.#search.value.toLowerCase().split(/\s+/);
    let shown = 0;
    for (const {item, words} of this.#rows) {
      item.hidden = !parts.every((part) => words.includes(part));
      shown += item.hidden ? 0 : 1;
    }
    setText(this.#count, `${shown} ${shown === 1 ? 'channel' : 'channels'}`);
  }

  update() {
    if (!this.element.open) return;
    setText(this.#title, this.#name());
    for (const {channel, unit, value, button} of this.#rows) {
      const reading = this.#boat.readings.of(channel);
      setText(value, reading.text === null ? whyNoNumber(reading) : `${reading.text} ${reading.unit ?? unit ?? ''}`);
      setAttribute(value, 'data-state', reading.state);
      setAttribute(button, 'aria-pressed', `${this.#chosen(channel)}`);
    }
  }
}
