// SPDX-License-Identifier: MIT
// The charts of a report, one below the other over the same time, with one cursor through all, and the time that they show.

import {kBsp, kDepth, kHeel, kSog, kTargBsp, kTargTwa, kTwa, kTwd, kTws} from './channels.js';
import {make, setAttribute, setText} from './dom.js';
import {colourOf, plotStyle, unwrapped} from './plot.js';

const kTimeSteps = [1, 2, 5, 10, 15, 30, 60, 120, 300, 600, 900, 1800, 3600, 7200, 10800, 21600, 43200, 86400];  // seconds
const kPaperWide = 680;  // pixels of a sheet

const magnitude = (values) => values?.map((value) => (value === null ? null : Math.abs(value))) ?? null;

// Each chart's name and lines; the second is the target.
function chartsOf(data) {
  const of = (id) => data.of(id);
  const one = (id) => ({name: of(id).name, unit: of(id).unit, kind: of(id).kind, digits: of(id).digits, lines: [data.values(id)]});
  const turning = (id) => {
    const values = data.values(id);
    const line = values && unwrapped(values.map((value, i) => [data.times[i], value]), of(id).kind).map(([, value]) => value);
    return {...one(id), lines: [line]};
  };
  return [
    one(kTws), turning(kTwd),
    {...one(kBsp), lines: [data.values(kBsp), data.values(kTargBsp)]},
    {name: 'BSP, % of target', unit: '%', kind: 'percent', digits: 0, lines: [data.percent]},
    {...one(kTwa), name: 'TWA, either side', kind: 'number', lines: [magnitude(data.values(kTwa)), magnitude(data.values(kTargTwa))]},
    one(kHeel), one(kSog), one(kDepth),
  ];
}

function textOf(value, {kind, digits}) {
  if (value === null || value === undefined) return '– –';
  return kind === 'bearing' ? `${((Math.round(value) % 360) + 360) % 360}`.padStart(3, '0') : value.toFixed(digits);
}

class Chart {
  #data;
  #chart;
  #moved;
  #plot = null;
  #now = make('span', {class: 'now'});
  #picture = make('div', {class: 'picture', role: 'img'});
  #place = 0;
  #from;
  #to;

  constructor(data, chart, moved) {
    this.#data = data;
    this.#chart = chart;
    this.#moved = moved;
    const target = chart.lines[1] ? make('span', {class: 'dashed', text: 'target'}) : '';
    const head = make('div', {class: 'strip-head'}, make('h3', {text: chart.name}), ' ', target, ' ', this.#now);
    this.element = make('li', {class: 'strip', 'data-state': 'fresh', 'data-name': chart.name}, head, this.#picture);
    const known = chart.lines[0].filter((value) => value !== null);
    const [low, high] = known.reduce(([least, most], value) => [Math.min(least, value), Math.max(most, value)], [Infinity, -Infinity]);
    const extent = chart.kind === 'bearing' ? '' : `, from ${low.toFixed(chart.digits)} to ${high.toFixed(chart.digits)} ${chart.unit ?? ''}`;
    setAttribute(this.#picture, 'aria-label', `${chart.name} over time${extent}`);
    new ResizeObserver(() => this.draw()).observe(this.#picture);
  }

  #x(time) {
    return time + this.#data.shift;
  }

  draw(width = this.#picture.clientWidth) {
    const height = this.#picture.clientHeight, data = this.#data;
    this.#plot?.destroy();
    this.#plot = null;
    if (width === 0 || height === 0) return;
    const style = plotStyle(this.element, this.#chart.kind, kTimeSteps, (x) => this.#clock(x));
    const line = (name, dash) => ({stroke: colourOf(this.element, name), width: 2, dash, points: {show: false}, spanGaps: false});
    const lines = this.#chart.lines.filter(Boolean);
    this.#plot = new uPlot({
      width, height, ...style, scales: {x: {time: false}},
      series: [{}, line('--accent'), line('--ink', [6, 5])].slice(0, lines.length + 1),
      cursor: {y: false, drag: {x: true, y: false}, sync: {key: 'report'}, points: {show: false}},
      hooks: {setCursor: [(plot) => plot.cursor.event && plot.cursor.idx !== null && this.#moved(plot.cursor.idx)]},
    }, [data.times.map((time) => this.#x(time)), ...lines], this.#picture);
    this.show(this.#from, this.#to);
    this.mark(this.#place);
  }

  #clock(x) {
    const time = x - this.#data.shift;
    return time % 60 === 0 ? this.#data.minute(time) : this.#data.clock(time);
  }

  show(from, to) {
    [this.#from, this.#to] = [from, to];
    if (from === undefined || !this.#plot) return;
    this.#plot.batch(() => this.#plot.setScale('x', {min: this.#x(from), max: this.#x(to)}));  // at once, so that the cursor finds its place
  }

  mark(place) {
    this.#place = place;
    setText(this.#now, `${textOf(this.#chart.lines[0][place], this.#chart)} ${this.#chart.unit ?? ''}`);
    this.#plot?.setCursor({left: this.#plot.valToPos(this.#x(this.#data.times[place]), 'x'), top: 0}, false);
  }
}

export class Charts {
  #charts;
  element;

  // `moved` gets the place in the lists to which the reader has moved the cursor.
  constructor(data, moved) {
    const all = chartsOf(data);
    const has = (chart) => chart.lines[0]?.some((value) => value !== null);
    this.lacking = all.filter((chart) => !has(chart)).map(({name}) => name);
    this.#charts = all.filter(has).map((chart) => new Chart(data, chart, moved));
    this.element = make('ul', {class: 'strips', 'aria-label': 'Charts'}, ...this.#charts.map(({element}) => element));
  }

  show(from, to) {
    for (const chart of this.#charts) chart.show(from, to);
  }

  mark(place) {
    for (const chart of this.#charts) chart.mark(place);
  }

  drawAgain(onPaper = false) {
    for (const chart of this.#charts) chart.draw(onPaper ? kPaperWide : undefined);
  }
}
