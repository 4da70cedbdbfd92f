// SPDX-License-Identifier: MIT
// What a tap on a tile opens: the way of its value from the sensor to here, where it breaks, and what to do; and the tile's own buttons.

import {askExplain} from './api.js';
import {iconButton, make, setText} from './dom.js';
import {whyNoNumber} from './words.js';

const kStates = {holds: 'good', broken: 'broken', behind: 'not reached'};

function linkItem({link, state, says, toDo}) {
  const item = make('li', {'data-state': state}, make('strong', {text: link}), ' ', make('span', {class: 'verdict', text: kStates[state]}),
                    make('p', {text: says ?? ''}));
  if (toDo) item.append(make('p', {class: 'to-do', text: `To do: ${toDo}`}));
  return item;
}

export class ExplainDialog {
  #boat;
  #channel = null;
  #title = make('h2', {id: 'explain-title'});
  #now = make('p', {class: 'now'});
  #verdict = make('div', {'aria-live': 'polite'});
  #chain = make('div');
  #buttons = make('div', {class: 'buttons'});
  element;

  constructor(boat) {
    this.#boat = boat;
    const head = make('header', {}, this.#title, iconButton('close', 'Close', () => this.element.close()));
    this.element = make('dialog', {class: 'explain', 'aria-labelledby': 'explain-title'}, head, this.#now, this.#verdict, this.#buttons,
                        this.#chain);
  }

  open(channel, buttons) {
    const {name, longName} = this.#boat.channels.of(channel);
    this.#channel = channel;
    setText(this.#title, this.#boat.channels.title(channel) + (longName && longName !== name ? ` · ${longName}` : ''));
    this.#show([make('p', {class: 'hint', text: 'Asking the navigation computer …'})], []);
    this.#buttons.replaceChildren(...buttons);
    this.element.showModal();
    this.update();
    this.#ask(channel);
  }

  #show(verdict, chain) {
    this.#verdict.replaceChildren(...verdict);
    this.#chain.replaceChildren(...chain);
  }

  async #ask(channel) {
    let verdict, chain = [];
    try {
      const {fault, toDo, links} = await askExplain(channel);
      verdict = [make('p', {class: fault ? 'fault' : 'well', text: fault ?? 'All is well.'})];
      if (toDo) verdict.push(make('p', {class: 'to-do', text: `To do: ${toDo}`}));
      chain = [make('h3', {text: 'Step by step'}), make('ol', {class: 'chain'}, ...links.map(linkItem))];
    } catch (error) {
      verdict = [make('p', {class: 'fault', text: `Nothing can be explained now: ${error.message}.`})];
    }
    if (channel === this.#channel) this.#show(verdict, chain);
  }

  update() {
    if (!this.element.open) return;
    const reading = this.#boat.readings.of(this.#channel);
    const text = reading.text === null ? `– – ${whyNoNumber(reading)}` : `${reading.text} ${reading.unit ?? ''}`;
    setText(this.#now, text);
  }
}
