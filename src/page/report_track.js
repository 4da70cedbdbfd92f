// SPDX-License-Identifier: MIT
// The track from above, north up, coloured by speed or by what was made good along the wind, with the turns, the marks and the line.

import {kBsp, kLat, kLon, kSog} from './channels.js';
import {draw, make, setAttribute} from './dom.js';

const kClasses = 5;
const kMetresPerDegree = 111120;
const kEdge = 28;  // pixels about the track
const kScales = [10, 20, 50, 100, 200, 500, 1000, 1852, 5 * 1852, 10 * 1852, 50 * 1852, 100 * 1852];  // metres

// The bounds between the classes: equal steps between what is seldom less and seldom more.
function boundsOf(values) {
  const sorted = values.filter((value) => value !== null).sort((a, b) => a - b);
  if (sorted.length === 0) return null;
  const low = sorted[Math.floor(sorted.length * 0.05)], high = sorted[Math.floor(sorted.length * 0.95)];
  return Array.from({length: kClasses - 1}, (_, i) => low + ((high - low) * (i + 1)) / kClasses);
}

const classOf = (value, bounds) => (value === null ? 0 : 1 + bounds.filter((bound) => value >= bound).length);

export class Track {
  #data;
  #range;
  #colourings;
  #colouring;
  #picture = draw('svg', {class: 'track-picture', role: 'img'});
  #dot = draw('circle', {class: 'here', r: 7});
  #legend = make('ul', {class: 'legend', 'aria-label': 'Colours of the track'});
  #buttons;
  #place = 0;
  #toPixel = null;

  // `range`: the first and the last place in the lists. `moved` gets that of a point that the reader has pressed.
  constructor(data, range, label, moved) {
    this.#data = data;
    this.#range = range;
    setAttribute(this.#picture, 'aria-label', label);
    const speed = data.values(kBsp) ?? data.values(kSog);
    this.#colourings = [['Speed', speed], ['VMG', data.vmg]].filter(([, values]) => values?.some((value) => value !== null));
    if (this.#colourings.length === 0) this.#colourings = [['Track', data.values(kLat).map(() => null)]];
    this.#colouring = this.#colourings[0];
    this.#buttons = this.#colourings.map((colouring) =>
      make('button', {type: 'button', text: colouring[0], click: () => this.#colourBy(colouring)}));
    this.#picture.addEventListener('pointerdown', (event) => moved && this.#pressed(event, moved));
    const choices = make('div', {class: 'choices', role: 'group', 'aria-label': 'Colour by'}, ...this.#buttons);
    this.element = make('div', {class: 'track'}, choices, this.#picture, this.#legend);
    new ResizeObserver(() => this.draw()).observe(this.#picture);
    this.#colourBy(this.#colouring);
  }

  #colourBy(colouring) {
    this.#colouring = colouring;
    for (const [i, button] of this.#buttons.entries()) setAttribute(button, 'aria-pressed', `${this.#colourings[i] === colouring}`);
    this.draw();
  }

  // Metres from the middle to pixels of the picture.
  #fit(width, height) {
    const lat = this.#data.values(kLat), lon = this.#data.values(kLon);
    let [south, north, west, east] = [Infinity, -Infinity, Infinity, -Infinity];
    const base = lon.find((value) => value !== null);
    const turned = (degrees) => base + ((((degrees - base + 180) % 360) + 360) % 360) - 180;
    for (let i = this.#range[0]; i <= this.#range[1]; ++i) {
      if (lat[i] === null || lon[i] === null) continue;
      [south, north] = [Math.min(south, lat[i]), Math.max(north, lat[i])];
      [west, east] = [Math.min(west, turned(lon[i])), Math.max(east, turned(lon[i]))];
    }
    const shrunk = Math.cos(((south + north) / 2) * (Math.PI / 180));
    const wide = Math.max((east - west) * shrunk * kMetresPerDegree, 20), high = Math.max((north - south) * kMetresPerDegree, 20);
    this.scale = Math.min((width - 2 * kEdge) / wide, (height - 2 * kEdge) / high);
    const x = (longitude) => width / 2 + (turned(longitude) - (west + east) / 2) * shrunk * kMetresPerDegree * this.scale;
    const y = (latitude) => height / 2 - (latitude - (south + north) / 2) * kMetresPerDegree * this.scale;
    this.#toPixel = (i) => (lat[i] === null || lon[i] === null || i < this.#range[0] || i > this.#range[1] ? null : [x(lon[i]), y(lat[i])]);
    this.placeToPixel = ([latitude, longitude]) => [x(longitude), y(latitude)];
  }

  draw() {
    const {clientWidth: width, clientHeight: height} = this.#picture;
    if (!width || !height) return;
    setAttribute(this.#picture, 'viewBox', `0 0 ${width} ${height}`);
    this.#fit(width, height);
    const [, values] = this.#colouring;
    const bounds = boundsOf(values.slice(this.#range[0], this.#range[1] + 1)) ?? [];
    const paths = Array.from({length: kClasses + 1}, () => '');
    let before = null, last = null;
    for (let i = this.#range[0]; i <= this.#range[1]; ++i) {
      const at = this.#toPixel(i);
      if (at && before) {
        const colour = classOf(values[i], bounds);
        const text = at.map((part) => part.toFixed(1)).join(' ');
        paths[colour] += last === colour ? `L${text}` : `M${before.map((part) => part.toFixed(1)).join(' ')}L${text}`;
        last = colour;
      } else {
        last = null;
      }
      before = at;
    }
    this.#picture.replaceChildren(...paths.map((d, colour) => draw('path', {d, class: `way speed-${colour}`})), ...this.#marks(), ...this.#turns(),
                                  ...this.#scale(width, height), this.#dot);
    this.#explain(bounds);
    this.mark(this.#place);
  }

  #turns() {
    const {turns} = this.#data;
    return turns.flatMap(({time, tack}) => {
      const at = this.#toPixel(this.#data.nearest(time));
      return at ? [draw('g', {class: 'turn'}, draw('circle', {cx: at[0], cy: at[1], r: 3}),
                        draw('text', {x: at[0] + 6, y: at[1] - 4, text: tack ? 'T' : 'G'}))] : [];
    });
  }

  #marks() {
    const marks = this.#data.marks.map((mark, i) => {
      const [x, y] = this.placeToPixel(mark);
      return draw('g', {class: 'buoy'}, draw('circle', {cx: x, cy: y, r: 6}), draw('text', {x: x + 9, y: y + 4, text: `Mark ${i + 1}`}));
    });
    const lines = this.#data.starts.filter(({line}) => line).map(({line}) => {
      const [[x1, y1], [x2, y2]] = line.map((end) => this.placeToPixel(end));
      return draw('line', {class: 'start-line', x1, y1, x2, y2});
    });
    return [...lines, ...marks];
  }

  #scale(width, height) {
    const metres = kScales.findLast((length) => length * this.scale < width / 3) ?? kScales[0];
    const long = metres * this.scale, y = height - 10;
    const text = metres % 1852 === 0 ? `${metres / 1852} nm` : `${metres} m`;
    return [draw('path', {class: 'scale', d: `M10 ${y - 5}V${y}H${10 + long}V${y - 5}`}), draw('text', {class: 'scale-text', x: 14, y: y - 6, text}),
            draw('path', {class: 'north', d: `M${width - 16} 10l6 16l-6 -4l-6 4Z`}), draw('text', {class: 'scale-text', x: width - 21, y: 40, text: 'N'})];
  }

  #explain(bounds) {
    if (bounds.length === 0) return;
    const unit = this.#data.speedUnit;
    const texts = bounds.map((bound) => bound.toFixed(1));
    const ranges = [`below ${texts[0]}`, ...texts.slice(1).map((text, i) => `${texts[i]} to ${text}`), `above ${texts.at(-1)}`];
    this.#legend.replaceChildren(...ranges.map((text, i) =>
      make('li', {}, draw('svg', {class: 'sample', viewBox: '0 0 32 12', 'aria-hidden': 'true'},
                          draw('path', {d: 'M0 6H32', class: `way speed-${i + 1}`})), `${text} ${unit}`)));
  }

  mark(place) {
    this.#place = place;
    const at = this.#toPixel?.(place);
    setAttribute(this.#dot, 'visibility', at ? 'visible' : 'hidden');
    if (!at) return;
    setAttribute(this.#dot, 'cx', at[0].toFixed(1));
    setAttribute(this.#dot, 'cy', at[1].toFixed(1));
  }

  #pressed(event, moved) {
    const box = this.#picture.getBoundingClientRect();
    const [x, y] = [event.clientX - box.left, event.clientY - box.top];
    let best = null, least = Infinity;
    for (let i = this.#range[0]; i <= this.#range[1]; ++i) {
      const at = this.#toPixel(i);
      const far = at ? Math.hypot(at[0] - x, at[1] - y) : Infinity;
      if (far < least) [best, least] = [i, far];
    }
    if (best !== null) moved(best);
  }
}
