// SPDX-License-Identifier: MIT
// Puts a report together from the data in its file: what is not in them is said.

import {Channels, kBsp, kDepth, kHeel, kLat, kSog, kTargBsp, kTargTwa, kTwa, kTwd, kTws, own} from './channels.js';
import {make, setAttribute, setText} from './dom.js';
import {Grid} from './grid.js';
import {kSpan} from './plot.js';
import {Charts} from './report_charts.js';
import {RaceData, lasting} from './report_data.js';
import {bandPicture, legsTable, targetsTable, turnsTable} from './report_tables.js';
import {Track} from './report_track.js';
import {Theme} from './theme.js';

const kTiles = [kTws, kTwd, kBsp, kTargBsp, kTwa, kTargTwa, kHeel, kSog, kDepth];
const kAbout = 150;  // seconds to either side of what the reader has asked for

const find = (id) => document.getElementById(id);
const data = new RaceData(JSON.parse(find('data').textContent));
const last = data.times.length - 1;
let place = 0;

// The page's tiles, at the moment of the cursor instead of now.
const channels = new Channels();
channels.take(data.channels);
const past = {
  of: ({id}) => {
    const values = data.values(id) ?? [];
    const points = [];
    for (let i = data.nearest(data.times[place] - kSpan); i <= place; ++i) points.push([data.times[i], values[i] ?? null]);
    return points;
  },
};
const readings = {
  get now() {
    return data.times[place];
  },
  of: ({id}) => {
    const {unit, digits, kind} = data.of(id), value = data.values(id)?.[place] ?? null;
    if (value === null) return {value, text: null, unit, state: 'missing', age: null, spark: null};
    const text = kind === 'bearing' ? `${Math.round(value) % 360}`.padStart(3, '0') : value.toFixed(digits);
    return {value, text, unit, state: 'fresh', age: null, spark: null};
  },
};
const tiles = new Grid({channels, readings, past}, kTiles.filter((id) => data.values(id)).map((id) => ({...own(id), size: 'S'})), () => slider.focus(), 'At the cursor');

const section = (title, ...parts) => make('section', {class: 'part', 'aria-label': title}, make('h2', {text: title}), ...parts);
const said = (text) => make('p', {class: 'hint', text});

const charts = new Charts(data, (index) => moveTo(index));
const hasTrack = data.values(kLat) !== null;
const track = hasTrack ? new Track(data, [0, last], 'Track, north up', (index) => moveTo(index)) : null;
const theme = new Theme(() => charts.drawAgain());

const slider = make('input', {type: 'range', id: 'moment', min: '0', max: `${last}`, value: '0', step: '1', input: () => moveTo(Number(slider.value))});
const clock = make('output', {for: 'moment', class: 'clock'});

function moveTo(index) {
  place = index;
  const text = data.clock(data.times[place]);
  setText(clock, text);
  setAttribute(slider, 'aria-valuetext', text);
  slider.value = `${place}`;
  charts.mark(place);
  track?.mark(place);
  tiles.update();
}

function show(from, to) {
  charts.show(from, to);
  charts.mark(place);
}

function goTo(time) {
  show(time - kAbout, time + kAbout);
  moveTo(data.nearest(time));
  find('charts').scrollIntoView({block: 'start'});
}

const whole = make('button', {type: 'button', text: 'Whole time', click: () => show(data.from, data.to)});
const cursor = make('div', {class: 'cursor'}, make('label', {for: 'moment', text: 'Moment'}), slider, clock, whole);

function startPart(start) {
  const facts = [`Gun at ${data.clock(start.gun)}.`];
  if (!start.seen) facts.push('There is a gap at the gun.');
  if (start.seen && start.distance === null) facts.push('How far the line was, or where, was not recorded.');
  if (start.distance !== null) {
    facts.push(start.distance >= 0 ? `${start.distance.toFixed(0)} m behind the line at the gun.` : `${(-start.distance).toFixed(0)} m over the line at the gun.`);
  }
  if (start.crossed !== null) facts.push(`Crossed ${start.crossed.toFixed(0)} s after the gun.`);
  if (start.length !== null) facts.push(`The line was ${start.length.toFixed(0)} m long; at the gun she was ${(100 * start.along).toFixed(0)} % of it from the port end.`);
  if (start.bsp != null) facts.push(`Speed at the gun ${start.bsp.toFixed(1)} ${data.speedUnit}${start.percent === null ? '' : `, ${start.percent} % of the target`}.`);
  const parts = [make('p', {text: facts.join(' ')})];
  if (start.seen && hasTrack) {
    const range = [start.gun - 120, start.gun + 60].map((time) => data.nearest(time));
    const picture = new Track(data, range, `Track from two minutes before the gun to one after it`, null);
    picture.mark(data.nearest(start.gun));
    parts.push(picture.element);
  }
  return make('div', {class: 'start-of'}, ...parts);
}

function turnsPart() {
  if (!data.values(kTwa)) return [said('No true wind angle was recorded, by which tacks and gybes are found.')];
  if (data.turns.length === 0) return [said('None was found.')];
  const mean = (tack) => {
    const costs = data.turns.filter((turn) => turn.tack === tack && turn.metres !== null).map(({metres}) => metres);
    const all = data.turns.filter((turn) => turn.tack === tack).length;
    const cost = costs.length === 0 ? '' : `, ${(costs.reduce((sum, metres) => sum + metres, 0) / costs.length).toFixed(0)} m lost in the mean of ${costs.length}`;
    return `${all} ${tack ? 'tacks' : 'gybes'}${cost}`;
  };
  return [make('p', {text: `${mean(true)}; ${mean(false)}.`}), turnsTable(data, goTo),
          said('Lost: the way along the wind that she would have made from 10 s before to 50 s after, had she gone on at her mean VMG of the 20 s ahead of that, less the way that she made ' +
               '(BSP × cos TWA each second); in seconds, at that VMG. A dash where another turn, a mark or a gap has a part in it, or outside the legs.')];
}

function legsPart() {
  if (data.legs.length === 0) return [said('None was found: neither marks, nor a point of sailing held for two minutes.')];
  const how = data.byMarks ? 'From the gun and from mark to mark: where the mark changes, or where she was closest to it.'
                           : 'No mark was recorded: these are stretches of one point of sailing, of two minutes or more.';
  return [legsTable(data, goTo), said(how)];
}

function speedsPart() {
  if (data.bands.length === 0) return [said('Speed, wind angle and wind speed were not recorded together.')];
  const targets = data.bands.some(({upwind, downwind}) => upwind || downwind);
  return [make('div', {class: 'bands'}, ...data.bands.map((band) => bandPicture(data, band))),
          said(`Bars: the median of each 10° from the wind. Lines: what a tenth of the time exceeds. ${targets ? 'Diamonds: the targets. ' : ''}Without turns.`),
          targets ? targetsTable(data) : said('No targets were recorded.')];
}

function filePart() {
  const notes = data.notes.map((note) => make('p', {class: 'fault', text: note}));
  const gaps = data.gaps.map(([from, to]) => `${data.clock(from)} to ${data.clock(to)}`);
  const lacking = charts.lacking.length > 0 ? [said(`Not recorded: ${charts.lacking.join(', ')}.`)] : [];
  const gapText = gaps.length === 0 ? 'No gaps.' : `${gaps.length} ${gaps.length === 1 ? 'gap' : 'gaps'}: ${gaps.slice(0, 20).join(', ')}${gaps.length > 20 ? ', ...' : ''}.`;
  const step = data.step > 1 ? ` Charts and track have a point every ${data.step} s; the tables are made from every second.` : '';
  return [...notes, ...lacking, make('p', {text: gapText}),
          make('p', {text: `Made by Halyrig ${data.version} from ${data.files.join(', ')}.${step}`})];
}

const starts = data.starts.length > 0 ? data.starts.map(startPart) : [said('No start was recorded: nothing counted down to a gun.')];
setText(find('title'), data.name);
setText(find('when'), `${data.day(data.from)} ${data.clock(data.from)} to ${data.clock(data.to)} ${data.zoneName}, ${lasting(data.to - data.from)}`.trim());
document.title = `${data.name} ${data.day(data.from)}`.trim();
find('actions').append(make('button', {type: 'button', text: 'Print', click: () => print()}), theme.button);

const chartsPart = section('Charts', cursor, tiles.element, charts.element);
chartsPart.id = 'charts';
find('parts').append(section('Track', track ? track.element : said('No position was recorded.')), chartsPart, section(data.starts.length > 1 ? 'Starts' : 'Start', ...starts),
                     section('Legs', ...legsPart()), section('Tacks and gybes', ...turnsPart()), section('Speeds', ...speedsPart()),
                     section('This file', ...filePart()));
moveTo(data.starts.length > 0 ? data.nearest(data.starts[0].gun) : 0);

let before = null;
addEventListener('beforeprint', () => {
  before = document.documentElement.dataset.theme;
  document.documentElement.dataset.theme = 'day';
  charts.drawAgain(true);
});
addEventListener('afterprint', () => {
  if (before !== null) document.documentElement.dataset.theme = before;
  charts.drawAgain();
});
