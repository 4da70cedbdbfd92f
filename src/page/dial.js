// SPDX-License-Identifier: MIT
// The wind as seen from the helm: bow up, the compass turns. The laylines are the courses on which the boat would sail the target angle
// on either tack; when one of them points straight ahead, the boat is on it. What has no value that counts now is not drawn.

import {kAwa, kCog, kHdg, kTargTwa, kTwa, own} from './channels.js';
import {draw, make, setAttribute, setText} from './dom.js';
import {whyNoNumber} from './words.js';

const kDrawn = [kTwa, kAwa, kHdg, kCog, kTargTwa].map(own);

const at = (degrees, radius) => {
  const turned = (degrees * Math.PI) / 180;
  return [radius * Math.sin(turned), -radius * Math.cos(turned)];
};

function compass() {
  const ring = draw('g', {class: 'compass'}, draw('circle', {r: 92, class: 'rim'}));
  for (let degrees = 0; degrees < 360; degrees += 10) {
    const [x1, y1] = at(degrees, degrees % 30 === 0 ? 84 : 88), [x2, y2] = at(degrees, 92);
    ring.append(draw('line', {x1, y1, x2, y2}));
    if (degrees % 30 !== 0) continue;
    const name = {0: 'N', 90: 'E', 180: 'S', 270: 'W'}[degrees];
    const [x, y] = at(degrees, 75);
    const text = draw('text', {x, y, text: name ?? `${degrees}`.padStart(3, '0')});
    if (name) text.classList.add('cardinal');
    ring.append(text);
  }
  return ring;
}

// Points inward from the rim, as the wind blows.
const windNeedle = (kind, letter) => draw('g', {class: `needle ${kind}`}, draw('path', {d: 'M0 -52 L10 -90 L-10 -90 Z'}),
                                          draw('text', {x: 0, y: -79, text: letter}));

const layline = (side, name) => draw('g', {class: `layline ${side}`}, draw('line', {y1: -34, y2: -92}), draw('text', {x: 0, y: -107, text: name}));

const hull = () => draw('path', {class: 'hull', d: 'M0 -46 C18 -24 24 4 18 40 L-18 40 C-24 4 -18 -24 0 -46 Z'});

// Turned about the middle, with its texts upright.
function turn(element, degrees) {
  setAttribute(element, 'visibility', degrees === null ? 'hidden' : 'visible');
  if (degrees === null) return;
  setAttribute(element, 'transform', `rotate(${degrees.toFixed(1)})`);
  for (const text of element.querySelectorAll('text')) {
    setAttribute(text, 'transform', `rotate(${(-degrees).toFixed(1)} ${text.getAttribute('x')} ${text.getAttribute('y')})`);
  }
}

export class Dial {
  #boat;
  #compass = compass();
  #twa = windNeedle('true', 'T');
  #awa = windNeedle('apparent', 'A');
  #cog = draw('path', {class: 'cog', d: 'M0 -84 L6 -90 L0 -96 L-6 -90 Z'});
  #onStarboard = layline('starboard', 'Stbd');
  #onPort = layline('port', 'Port');
  #heading = draw('text', {class: 'heading', x: 0, y: 6});
  #picture = draw('svg', {viewBox: '-126 -116 252 232', role: 'img', class: 'dial-picture'}, this.#compass, hull(), this.#onStarboard,
                  this.#onPort, this.#twa, this.#awa, this.#cog, draw('path', {class: 'bow', d: 'M0 -92 L5 -101 L-5 -101 Z'}), this.#heading);
  #lacking = make('p', {class: 'lacking'});
  element = make('div', {class: 'dial'}, this.#picture, this.#lacking);
  watched = kDrawn;

  constructor(boat) {
    this.#boat = boat;
  }

  update() {
    const readings = kDrawn.map((channel) => this.#boat.readings.of(channel));
    const [twa, awa, hdg, cog, target] = readings.map(({value, text}) => (text === null ? null : value));
    turn(this.#compass, hdg === null ? null : -hdg);
    turn(this.#twa, twa);
    turn(this.#awa, awa);
    turn(this.#cog, cog === null || hdg === null ? null : cog - hdg);
    turn(this.#onStarboard, twa === null || target === null ? null : twa - Math.abs(target));
    turn(this.#onPort, twa === null || target === null ? null : twa + Math.abs(target));
    setText(this.#heading, readings[2].text ?? '– –');
    this.#say(readings);
  }

  #say(readings) {
    const name = (place) => this.#boat.channels.of(kDrawn[place]).name;
    const shown = readings.map(({text}, place) => (text === null ? '' : `${name(place)} ${text}`)).filter(Boolean);
    const lacking = readings.map((reading, place) => (reading.text === null ? `${name(place)}: ${whyNoNumber(reading)}` : '')).filter(Boolean);
    setAttribute(this.#picture, 'aria-label', `Wind dial, bow up: ${shown.join(', ') || 'no values'}`);
    setText(this.#lacking, lacking.join(' · '));
  }
}
