// SPDX-License-Identifier: MIT
// What a press on a tile, a strip or the + does. The page has no mode for changing it: a wet thumb can't leave one on.

import {make} from './dom.js';
import {kSizes} from './layout.js';
import {keyOf} from './readings.js';

const kSizeNames = {S: 'Small', M: 'Medium', L: 'Large'};

export class TileMenu {
  #layout;
  #picker;
  #explain;
  #changed;
  #opened = null;

  // `changed` shows the view again.
  constructor(layout, {picker, explain}, changed) {
    this.#layout = layout;
    this.#picker = picker;
    this.#explain = explain;
    this.#changed = changed;
  }

  get watched() {
    return this.#explain.element.open ? [this.#opened] : [];
  }

  openChannel(channel, more = []) {
    this.#opened = channel;
    this.#explain.open(channel, [this.#button('Show as chart', () => this.#chart(channel)), ...more]);
  }

  openTile(tile) {
    this.#opened = tile;
    const sizes = make('div', {class: 'choices', role: 'group', 'aria-label': 'Size'});
    for (const size of kSizes) {
      const choose = () => {
        tile.size = size;
        this.#layout.save();
      };
      const button = this.#button(kSizeNames[size], choose);
      button.setAttribute('aria-pressed', `${tile.size === size}`);
      sizes.append(button);
    }
    const move = (by) => this.#layout.moveTile(tile, by);
    const change = make('details', {}, make('summary', {text: 'Change this tile'}), sizes,
      make('div', {class: 'choices'}, this.#button('Earlier', () => move(-1)), this.#button('Later', () => move(1)),
           this.#button('Remove', () => this.#remove(tile))));
    this.openChannel(tile, [change]);
  }

  openStrip(channel) {
    this.#opened = channel;
    this.#explain.open(channel, [this.#button('Remove this strip', () => this.#layout.toggleStrip(channel))]);
  }

  pickTiles() {
    const layout = this.#layout;
    const newPage = make('button', {type: 'button', text: 'New page', click: () => layout.addPage()});
    this.#picker.open({
      title: () => `Tiles of page ${layout.page + 1}`, extra: [newPage], chosen: (channel) => layout.placeOf(channel) >= 0,
      toggle: (channel) => layout.toggleTile(channel), closed: () => {
        layout.dropEmptyPages();
        this.#changed();
      },
    });
  }

  pickStrips() {
    const layout = this.#layout;
    this.#picker.open({
      title: () => 'Strips of the chart', chosen: ({id, boat}) => layout.strips.some((strip) => strip.id === id && strip.boat === boat),
      toggle: (channel) => layout.toggleStrip(channel), closed: this.#changed,
    });
  }

  // A button that does its work, closes what it is in, and shows the outcome, where the keyboard goes on from the same channel.
  #button(text, work) {
    const channel = this.#opened;
    return make('button', {type: 'button', text, click: () => {
      work();
      this.#explain.element.close();
      this.#changed();
      document.querySelector(`[data-channel="${keyOf(channel)}"] button`)?.focus({preventScroll: true});
    }});
  }

  #remove(tile) {
    this.#layout.toggleTile(tile);
    this.#layout.dropEmptyPages();
  }

  #chart(channel) {
    const has = this.#layout.strips.some(({id, boat}) => id === channel.id && boat === channel.boat);
    if (!has) this.#layout.toggleStrip(channel);
    this.#layout.view = 'chart';
    this.#layout.save();
  }
}
