// SPDX-License-Identifier: MIT
// Tiles in a grid that fills the room: of all numbers of columns the one with the largest digits, without scrolling where possible.

import {make} from './dom.js';
import {Tile} from './tile.js';

const kCells = {S: [1, 1], M: [2, 1], L: [2, 2]};  // columns and rows
const kGap = 8;
const kLowest = 70, kNarrowest = 100;  // pixels: a glove finds it, and its digits can be read
const kRoomy = 150;  // from here on low, line and high fit beside each other
const kMostColumns = 16;

// The rows that the browser's own placing needs, which never goes back to fill a hole.
function rowsFor(sizes, columns) {
  const taken = new Set();
  let row = 0, column = 0, rows = 0;
  const fits = (wide, high) => {
    if (column + wide > columns) return false;
    for (let y = row; y < row + high; ++y) {
      for (let x = column; x < column + wide; ++x) if (taken.has(y * kMostColumns + x)) return false;
    }
    return true;
  };
  for (const size of sizes) {
    const [wide, high] = [Math.min(kCells[size][0], columns), kCells[size][1]];
    while (!fits(wide, high)) {
      if (++column >= columns) [row, column] = [row + 1, 0];
    }
    for (let y = row; y < row + high; ++y) {
      for (let x = column; x < column + wide; ++x) taken.add(y * kMostColumns + x);
    }
    rows = Math.max(rows, row + high);
  }
  return rows;
}

// Holes count against a number of columns, since the larger tiles would use their room.
function bestFit(sizes, width, height) {
  const used = sizes.reduce((sum, size) => sum + kCells[size][0] * kCells[size][1], 0);
  let best = null;
  for (let columns = 1; columns <= kMostColumns; ++columns) {
    const rows = Math.max(rowsFor(sizes, columns), 1);
    const cellWide = (width - kGap * (columns - 1)) / columns;
    if (columns > 1 && cellWide < kNarrowest) break;
    const room = (height - kGap * (rows - 1)) / rows;
    const score = room < kLowest ? (room - kLowest) * rows : Math.min(room * 0.5, cellWide * 0.3) * Math.sqrt(used / (rows * columns));
    if (!best || score > best.score) best = {columns, cellWide, cellHigh: Math.max(room, kLowest), score};
  }
  return best;
}

export class Grid {
  tiles;
  #sizes;

  constructor(boat, tiles, press, label) {
    this.#sizes = tiles.map(({size}) => size);
    this.tiles = tiles.map((tile) => new Tile(boat, tile, press));
    this.element = make('ul', {class: 'grid', 'aria-label': label}, ...this.tiles.map(({element}) => element));
    this.watcher = new ResizeObserver(([{contentRect}]) => this.#fit(contentRect));
    this.watcher.observe(this.element);
  }

  #fit({width, height}) {
    if (width === 0 || height === 0) return;
    const {columns, cellWide, cellHigh} = bestFit(this.#sizes, width, height);
    this.element.classList.toggle('narrow', cellWide < kRoomy);
    const style = this.element.style;
    style.setProperty('--columns', columns);
    style.setProperty('--cell-wide', `${cellWide}px`);
    style.setProperty('--cell-high', `${cellHigh}px`);
  }

  update() {
    for (const tile of this.tiles) tile.update();
  }
}
