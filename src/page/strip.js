// SPDX-License-Identifier: MIT
// The last ten minutes of one channel, large, by uPlot (third_party/uplot), which index.html loads as a plain script.

import {make, setAttribute, setText} from './dom.js';
import {colourOf, kSpan, plotStyle, unwrapped} from './plot.js';
import {keyOf} from './readings.js';
import {whyNoNumber} from './words.js';

const kTimeSteps = [60, 120, 300];  // seconds between the marks

const clock = new Intl.DateTimeFormat(undefined, {hour: '2-digit', minute: '2-digit', hourCycle: 'h23'});

export class Strip {
  #boat;
  #plot = null;
  #drawn = 0;
  #first = 0;
  #title = make('span', {class: 'name'});
  #low = make('span', {class: 'low'});
  #high = make('span', {class: 'high'});
  #now = make('span', {class: 'now'});
  #picture = make('div', {class: 'picture', role: 'img'});

  constructor(boat, channel, press) {
    this.#boat = boat;
    this.channel = channel;
    const head = make('button', {type: 'button', class: 'strip-head', click: () => press(channel)}, this.#title, ' ', this.#low, ' ',
                      this.#high, ' ', this.#now);
    this.element = make('li', {class: 'strip', 'data-channel': keyOf(channel)}, head, this.#picture);
    this.watcher = new ResizeObserver(() => this.drawAgain());
    this.watcher.observe(this.#picture);
  }

  // uPlot takes its size and colours once.
  drawAgain() {
    const {clientWidth: width, clientHeight: height} = this.#picture;
    this.#plot?.destroy();
    this.#plot = width > 0 && height > 0 ? new uPlot({width, height, ...this.#style()}, [[], []], this.#picture) : null;
    this.#drawn = 0;
    this.update();
  }

  #style() {
    const kind = this.#boat.channels.of(this.channel).kind;
    const style = plotStyle(this.element, kind, kTimeSteps, (time) => clock.format(time * 1000));
    return {
      ...style, cursor: {show: false},
      scales: {x: {range: () => [this.#boat.readings.now - kSpan, this.#boat.readings.now]}},
      series: [{}, {stroke: colourOf(this.element, '--accent'), width: 3, points: {show: false}}],
    };
  }

  update() {
    const {channels, readings, past} = this.#boat;
    const reading = readings.of(this.channel);
    setText(this.#title, channels.title(this.channel));
    setText(this.#now, reading.text === null ? `– – ${whyNoNumber(reading)}` : `${reading.text} ${reading.unit ?? ''}`);
    setAttribute(this.element, 'data-state', reading.text === null ? reading.state : 'fresh');
    const shown = reading.text === null ? null : reading.spark;
    setText(this.#low, shown?.[0] ?? '');
    setText(this.#high, shown?.[1] ?? '');
    const extent = shown ? `, from ${shown[0]} to ${shown[1]} ${reading.unit ?? ''}` : '';
    setAttribute(this.#picture, 'aria-label', `${channels.title(this.channel)} over the last ten minutes${extent}`);
    const points = past.of(this.channel);
    const first = points.length > 0 ? points[0][0] : 0;
    if (!this.#plot || (Math.abs(readings.now - this.#drawn) < 1 && first === this.#first)) return;
    [this.#drawn, this.#first] = [readings.now, first];
    const line = unwrapped(points, channels.of(this.channel).kind);
    this.#plot.setData([line.map(([time]) => time), line.map(([, value]) => value)]);
  }

  end() {
    this.watcher.disconnect();
    this.#plot?.destroy();
  }
}
