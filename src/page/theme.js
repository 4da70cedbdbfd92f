// SPDX-License-Identifier: MIT
// Colours for day, sunlight and night (themes.css), as this device was last told.

import {icon, make} from './dom.js';
import {keep, kept} from './kept.js';

const kThemes = {day: 'Day', sun: 'Sunlight', night: 'Night'};
const kNames = Object.keys(kThemes);

export class Theme {
  #changed;
  #group = make('div', {class: 'choices', role: 'group', 'aria-label': 'Colours'});
  button = make('button', {type: 'button', class: 'icon-button', click: () => this.choose(this.#next)});

  // `changed` is called for what can't take its colours from a style sheet.
  constructor(changed) {
    this.#changed = changed;
    for (const name of kNames) {
      this.#group.append(make('button', {type: 'button', 'data-name': name, text: kThemes[name], click: () => this.choose(name)}));
    }
    this.#apply(kNames.includes(kept('theme')) ? kept('theme') : kNames[0]);
  }

  get #name() {
    return document.documentElement.dataset.theme;
  }

  get #next() {
    return kNames[(kNames.indexOf(this.#name) + 1) % kNames.length];
  }

  get choices() {
    return this.#group;
  }

  choose(name) {
    keep('theme', name);
    this.#apply(name);
    this.#changed();
  }

  #apply(name) {
    document.documentElement.dataset.theme = name;
    const ground = getComputedStyle(document.documentElement).getPropertyValue('--ground').trim();
    document.querySelector('meta[name=theme-color]').content = ground;
    for (const button of this.#group.children) button.setAttribute('aria-pressed', `${button.dataset.name === name}`);
    this.button.replaceChildren(icon(name));
    this.button.setAttribute('aria-label', `Colours: ${kThemes[name]}. Change to ${kThemes[this.#next]}`);
  }
}
