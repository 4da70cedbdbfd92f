// SPDX-License-Identifier: MIT
// The tables of a report. A value that was not recorded is a dash.

import {draw, make} from './dom.js';
import {lasting} from './report_data.js';

const kNone = '–';
const shown = (value, digits = 0) => (value === null || value === undefined ? kNone : value.toFixed(digits));

// Columns have a head and `of`, which makes an element or a text of a row. A narrow screen scrolls it, by keyboard too.
export function table(caption, columns, rows) {
  const head = make('tr', {}, ...columns.map(([name]) => make('th', {scope: 'col', text: name})));
  const body = rows.map((row, i) => make('tr', {}, ...columns.map(([, of], column) => {
    const cell = of(row, i);
    return make(column === 0 ? 'th' : 'td', column === 0 ? {scope: 'row'} : {}, cell instanceof Node ? cell : `${cell}`);
  })));
  const whole = make('table', {}, make('caption', {text: caption}), make('thead', {}, head), make('tbody', {}, ...body));
  return make('div', {class: 'scrolls', tabindex: '0', role: 'region', 'aria-label': `${caption}, table`}, whole);
}

function timeButton(data, time, go) {
  return make('button', {type: 'button', class: 'time', text: data.clock(time), click: () => go(time)});
}

export function turnsTable(data, go) {
  return table('Tacks and gybes', [
    ['Time', ({time}) => timeButton(data, time, go)],
    ['Turn', ({tack}) => (tack ? 'Tack' : 'Gybe')],
    [`TWS ${data.windUnit}`, ({tws}) => shown(tws, 1)],
    ['Turned °', ({degrees}) => shown(degrees === null ? null : Math.abs(degrees))],
    [`Before ${data.speedUnit}`, ({before}) => shown(before, 1)],
    [`Least ${data.speedUnit}`, ({least}) => shown(least, 1)],
    ['Lost m', ({metres}) => shown(metres)],
    ['Lost s', ({seconds}) => shown(seconds)],
  ], data.turns);
}

export function legsTable(data, go) {
  return table('Legs', [
    ['From', ({from}) => timeButton(data, from, go)],
    ['Course', ({sailed, toMark}) => (sailed ?? kNone) + (data.byMarks && !toMark ? ', unfinished' : '')],
    ['Time', ({from, to}) => lasting(to - from)],
    ['Sailed nm', ({miles}) => shown(miles, 2)],
    ['Tacks', ({tacks}) => tacks],
    ['Gybes', ({gybes}) => gybes],
    [`BSP ${data.speedUnit}`, ({bsp}) => shown(bsp, 2)],
    ['% of target', ({percent}) => shown(percent)],
    [`VMG ${data.speedUnit}`, ({vmg}) => shown(vmg, 2)],
    [`TWS ${data.windUnit}`, ({tws}) => shown(tws, 1)],
    ['TWD °', ({twd}) => (twd === null ? kNone : `${twd % 360}`.padStart(3, '0'))],
  ], data.legs);
}

export function targetsTable(data) {
  const rows = data.bands.flatMap((band) => [['upwind', band.upwind], ['downwind', band.downwind]]
    .filter(([, target]) => target).map(([name, target]) => ({band, name, ...target})));
  return table('Beside the targets', [
    [`TWS ${data.windUnit}`, ({band: {from, to}}) => `${from}–${to}`],
    ['Course', ({name}) => name],
    [`BSP ${data.speedUnit}`, ({sailedBsp}) => shown(sailedBsp, 2)],
    ['Target', ({bsp}) => shown(bsp, 2)],
    ['%', ({bsp, sailedBsp}) => shown((100 * sailedBsp) / bsp)],
    ['TWA °', ({sailedTwa}) => shown(sailedTwa, 1)],
    ['Target', ({twa}) => shown(twa, 1)],
  ], rows);
}

// Speed against the angle from the wind: the median of each ten degrees as a bar, what a tenth of the time exceeds as a line, the
// targets as diamonds.
export function bandPicture(data, {from, to, minutes, cells, upwind, downwind}) {
  const [wide, high, left, low] = [320, 200, 34, 170];
  const most = Math.ceil(Math.max(...data.bands.flatMap((band) => band.cells.map(([, , , fast]) => fast)),
                                  ...data.bands.flatMap((band) => [band.upwind, band.downwind]).map((target) => target?.bsp ?? 0), 1) / 2) * 2;
  const x = (angle) => left + ((wide - left - 16) * angle) / 180, y = (speed) => low - ((low - 10) * speed) / most;
  const grid = [0, 45, 90, 135, 180].map((angle) => draw('g', {class: 'grid-line'}, draw('line', {x1: x(angle), x2: x(angle), y1: 10, y2: low}),
    draw('text', {x: x(angle), y: low + 16, 'text-anchor': 'middle', text: `${angle}°`})));
  const levels = [0, most / 2, most].map((speed) => draw('g', {class: 'grid-line'}, draw('line', {x1: left, x2: wide - 16, y1: y(speed), y2: y(speed)}),
    draw('text', {x: left - 5, y: y(speed) + 4, 'text-anchor': 'end', text: `${speed}`})));
  const bars = cells.flatMap(([angle, , middle, fast]) => [
    draw('rect', {class: 'cell', x: x(angle) + 1, width: x(10) - x(0) - 2, y: y(middle), height: low - y(middle)}),
    draw('line', {class: 'fast', x1: x(angle), x2: x(angle + 10), y1: y(fast), y2: y(fast)})]);
  const targets = [upwind, downwind].filter(Boolean).map(({twa, bsp}) => draw('path', {class: 'target', d: `M${x(twa)} ${y(bsp) - 7}l6 7l-6 7l-6 -7Z`}));
  const said = cells.map(([angle, , middle]) => `${middle.toFixed(1)} at ${angle} to ${angle + 10}°`).join(', ');
  const picture = draw('svg', {viewBox: `0 0 ${wide} ${high}`, role: 'img', class: 'band-picture',
                               'aria-label': `Median speed in ${data.speedUnit}: ${said}`}, ...grid, ...levels, ...bars, ...targets);
  return make('figure', {class: 'band'}, make('figcaption', {text: `TWS ${from} to ${to} ${data.windUnit}, ${minutes} min`}), picture);
}
