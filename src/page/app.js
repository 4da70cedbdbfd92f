// SPDX-License-Identifier: MIT
// Puts the page together: the connection feeds readings and past, the chosen view shows them.

import {askChannels} from './api.js';
import {BoatsView} from './boats_view.js';
import {Channels} from './channels.js';
import {ChartView} from './chart_view.js';
import {Connection} from './connection.js';
import {deviceControls} from './device.js';
import {setAttribute, setText} from './dom.js';
import {ExplainDialog} from './explain.js';
import {kViews, Layout} from './layout.js';
import {Past} from './past.js';
import {Picker} from './picker.js';
import {Readings} from './readings.js';
import {SetupView} from './setup_view.js';
import {StartView} from './start_view.js';
import {Theme} from './theme.js';
import {TileMenu} from './tile_menu.js';
import {TilesView} from './tiles_view.js';
import {WindView} from './wind_view.js';
import {ageInWords, connectionInWords} from './words.js';

const kLook = 150;  // milliseconds, so that a number is gone within a second of the connection's loss
const kAskAgain = 2000;

const find = (id) => document.getElementById(id);

let serverVersion = null;
const layout = new Layout();
const channels = new Channels();
const past = new Past();
const connection = new Connection(take);
const readings = new Readings(connection);
const boat = {channels, readings, past};
const picker = new Picker(boat);
const explain = new ExplainDialog(boat);
const menu = new TileMenu(layout, {picker, explain}, showView);
const theme = new Theme(() => views.chart.recolour());

const views = {
  tiles: new TilesView(boat, layout, (tile) => menu.openTile(tile), () => menu.pickTiles()),
  wind: new WindView(boat, (channel) => menu.openChannel(channel)),
  start: new StartView(boat, (channel) => menu.openChannel(channel)),
  chart: new ChartView(boat, layout, (channel) => menu.openStrip(channel), () => menu.pickStrips()),
  boats: new BoatsView(boat),
  setup: new SetupView(deviceControls(theme)),
};

// A new connection may be to a server that was started again: what it calls things and what it has seen is asked for afresh.
function take(message, renewed) {
  if (renewed) {
    past.forget();
    learnNames();
  }
  readings.take(message, renewed);
  past.take(readings, shownChannels());
  update();
}

async function learnNames() {
  try {
    const {name, version, channels: list} = await askChannels();
    if (version !== (serverVersion ??= version)) location.reload();  // an upgraded server has its own page
    channels.take(list);
    setText(find('boat-name'), name);
    document.title = `${name} – Halyrig`;
  } catch {
    setTimeout(learnNames, kAskAgain);
  }
}

function shownChannels() {
  return [...views[layout.view].watched, ...picker.watched, ...menu.watched];
}

function update() {
  readings.watch(shownChannels());
  views[layout.view].update();
  picker.update();
  explain.update();
  const live = readings.live && readings.bridge === 'running';
  setText(find('state'), connectionInWords(readings));
  setText(find('state-age'), readings.live ? '' : ageInWords(readings.silence));
  setAttribute(document.body, 'data-live', `${live}`);
  setAttribute(document.body, 'data-replay', `${readings.replay}`);
  find('replay').hidden = !readings.replay;
}

function showView() {
  const view = views[layout.view];
  for (const name of kViews) setAttribute(find(`to-${name}`), 'aria-current', name === layout.view ? 'page' : 'false');
  find('actions').replaceChildren(...view.actions, theme.button);
  if (view.element.parentNode !== find('view')) find('view').replaceChildren(view.element);
  view.show();
  update();
}

document.body.append(picker.element, explain.element);
for (const name of kViews) {
  find(`to-${name}`).addEventListener('click', () => {
    layout.view = name;
    layout.save();
    showView();
  });
}
addEventListener('hashchange', () => {
  layout.readAddress();
  showView();
});
document.addEventListener('visibilitychange', update);
showView();
setInterval(update, kLook);
