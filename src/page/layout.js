// SPDX-License-Identifier: MIT
// What the crew has chosen: the view, the pages of tiles and the strips of the chart. All of it is one short text, which is both
// the address after its # (so that a link shows the same to others) and what the browser keeps.

import {keep, kept} from './kept.js';

export const kSizes = ['S', 'M', 'L'];
export const kViews = ['tiles', 'wind', 'start', 'chart', 'boats', 'setup'];

const kFirst = 'view=tiles&page=1&tiles=L1,M4,M5,S2,S13,S51,S17~L238,M58,M237,S31,S1,S6,S8~M18,M30,S16,S15,S11,S12&strips=6,5';
const kMostPages = 20, kMostTiles = 60, kMostStrips = 4;

function readTile(text) {
  const found = /^([SML])?(\d{1,3})(?:-(\d{1,2}))?$/.exec(text);
  return found && {size: found[1] ?? 'S', id: Number(found[2]), boat: Number(found[3] ?? 0)};
}

const writeChannel = ({id, boat}) => (boat === 0 ? `${id}` : `${id}-${boat}`);

// The address is typed and cut off by people: what makes no sense in it is left out.
const readTiles = (text, most) => (text ?? '').split(',').map(readTile).filter(Boolean).slice(0, most);

export class Layout {
  constructor() {
    const address = location.hash.slice(1);
    this.#read(address || kept('layout') || kFirst);
    this.save();
  }

  #read(text) {
    const fields = new URLSearchParams(text);
    const pages = (fields.get('tiles') ?? '').split('~').slice(0, kMostPages).map((page) => readTiles(page, kMostTiles));
    this.pages = pages.filter((page) => page.length > 0);
    if (this.pages.length === 0) this.pages = [[]];
    this.strips = readTiles(fields.get('strips'), kMostStrips);
    this.view = kViews.includes(fields.get('view')) ? fields.get('view') : kViews[0];
    this.page = Math.min(Math.max(Number(fields.get('page')) || 1, 1), this.pages.length) - 1;
  }

  readAddress() {
    this.#read(location.hash.slice(1));
    this.save();
  }

  save() {
    const pages = this.pages.map((page) => page.map((tile) => tile.size + writeChannel(tile)).join(',')).join('~');
    const text = `view=${this.view}&page=${this.page + 1}&tiles=${pages}&strips=${this.strips.map(writeChannel).join(',')}`;
    history.replaceState(null, '', `#${text}`);
    keep('layout', text);
  }

  get tiles() {
    return this.pages[this.page];
  }

  placeOf({id, boat}) {
    return this.tiles.findIndex((tile) => tile.id === id && tile.boat === boat);
  }

  toggleTile(channel) {
    const place = this.placeOf(channel);
    if (place < 0) this.tiles.push({...channel, size: 'M'});
    else this.tiles.splice(place, 1);
    this.save();
  }

  moveTile(tile, by) {
    const from = this.tiles.indexOf(tile);
    const to = from + by;
    if (to < 0 || to >= this.tiles.length) return;
    this.tiles.splice(to, 0, ...this.tiles.splice(from, 1));
    this.save();
  }

  addPage() {
    if (this.pages.length >= kMostPages) return;
    this.pages.push([]);
    this.page = this.pages.length - 1;
    this.save();
  }

  // The last tile takes its page with it.
  dropEmptyPages() {
    this.pages = this.pages.filter((page) => page.length > 0);
    if (this.pages.length === 0) this.pages = [[]];
    this.page = Math.min(this.page, this.pages.length - 1);
    this.save();
  }

  toggleStrip({id, boat}) {
    const place = this.strips.findIndex((strip) => strip.id === id && strip.boat === boat);
    if (place >= 0) this.strips.splice(place, 1);
    else this.strips = [...this.strips.slice(1 - kMostStrips), {id, boat}];
    this.save();
  }
}
