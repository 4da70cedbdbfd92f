// SPDX-License-Identifier: MIT
// The crew's pages of tiles, side by side: a swipe, an arrow key or the two buttons go from one to the next.

import {iconButton, make, setText} from './dom.js';
import {Grid} from './grid.js';

export class TilesView {
  #boat;
  #layout;
  #press;
  #grids = [];
  #place = make('span', {class: 'page-place'});
  #pages = make('span', {class: 'page-buttons'}, iconButton('back', 'Previous page', () => this.#turn(-1)), this.#place,
                iconButton('on', 'Next page', () => this.#turn(1)));
  element = make('section', {class: 'pager', 'aria-label': 'Tiles', keydown: (event) => this.#key(event)});
  actions;

  constructor(boat, layout, press, pick) {
    this.#boat = boat;
    this.#layout = layout;
    this.#press = press;
    this.actions = [this.#pages, iconButton('add', 'Choose channels', pick)];
    this.element.addEventListener('scroll', () => this.#scrolled(), {passive: true});
    new ResizeObserver(() => this.#goTo(this.#layout.page)).observe(this.element);
  }

  get watched() {
    return this.#layout.pages.flat();
  }

  show() {
    for (const grid of this.#grids) grid.watcher.disconnect();
    this.#grids = this.#layout.pages.map((tiles, page) => new Grid(this.#boat, tiles, this.#press, `Page ${page + 1}`));
    this.element.replaceChildren(...this.#grids.map(({element}, page) => make('div', {class: 'page'},
      this.#layout.pages[page].length > 0 ? element : make('p', {class: 'hint', text: 'No tiles yet. Press + and choose channels.'}))));
    this.#goTo(this.#layout.page);
  }

  update() {
    for (const grid of this.#grids) grid.update();
    setText(this.#place, `${this.#layout.page + 1}/${this.#layout.pages.length}`);
    this.#pages.hidden = this.#layout.pages.length < 2;
  }

  #goTo(page) {
    this.element.scrollTo({left: page * this.element.clientWidth, behavior: 'instant'});
  }

  #turn(by) {
    const page = Math.min(Math.max(this.#layout.page + by, 0), this.#layout.pages.length - 1);
    this.element.scrollTo({left: page * this.element.clientWidth});
  }

  #key(event) {
    if (event.key !== 'ArrowLeft' && event.key !== 'ArrowRight') return;
    event.preventDefault();
    this.#turn(event.key === 'ArrowLeft' ? -1 : 1);
  }

  #scrolled() {
    const page = Math.round(this.element.scrollLeft / this.element.clientWidth);
    if (page === this.#layout.page || page >= this.#layout.pages.length) return;
    this.#layout.page = page;
    this.#layout.save();
  }
}
