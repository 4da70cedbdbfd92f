// SPDX-License-Identifier: MIT
// The page in a real browser over the real programs. What it needs comes from the environment:
//   PAGE_LOG      a log of NMEA 0183
//   PAGE_SHORT    what looks the same whoever serves it is left out
// and what browser.mjs and programs.mjs need.

import assert from 'node:assert/strict';
import {after, before, test} from 'node:test';

import {close, complaints, expectToFit, kPatience, kThemes, launch, openAt, runAxe, shotPath, sizesIn} from './browser.mjs';
import {bridge, endSuite, Program, server, startSuite, url} from './programs.mjs';

const {PAGE_CTL, PAGE_LOG, PAGE_SHORT} = process.env;
const replay = new Program(`${PAGE_CTL} replay --loop --into ${PAGE_LOG}`);
const missing = 27;  // a channel that nothing feeds
const kTiles = `#view=tiles&page=1&tiles=L1,M5,S6,S${missing}~M18&strips=6,5`;
const kViews = ['tiles', 'wind', 'start', 'chart', 'boats', 'setup'];
const kSizes = [[360, 640], [640, 360], [1024, 768], [2560, 1440]];

let browser, page;

// A lost server is no fault of the page; anything else that the browser complains of is.
async function openPage(context = browser, address = `${url}/${kTiles}`) {
  const isOwn = (asked) => new URL(asked).protocol === 'data:' || new URL(asked).host === new URL(url).host;
  return openAt(context, address, isOwn, /ERR_|WebSocket/);
}

const textOf = (selector) => page.$eval(selector, (element) => element.textContent);
const digitsOf = (channel) => textOf(`.tile[data-channel="${channel}-0"] .digits`);
const stateIs = (channel, state) =>
  page.waitForSelector(`.tile[data-channel="${channel}-0"][data-state="${state}"]`, {timeout: kPatience});
const ask = (path) => page.evaluate((what) => fetch(what).then((answer) => answer.json()), path);
const picture = (name) => shotPath('') && page.screenshot({path: shotPath(`${name}.png`)});
const closeDialog = () => page.click('dialog[open] [aria-label="Close"]');

// The slowest machine manages it once; a page that waits for something else never does.
async function withinASecond(cause, seen, undo) {
  const times = [];
  while (times.length < 5) {
    const from = performance.now();
    await cause();
    await seen();
    times.push(performance.now() - from);
    await undo();
    if (times.at(-1) < 1000) return `after ${times.at(-1).toFixed(0)} ms`;
  }
  assert.fail(`took ${times.map((time) => time.toFixed(0))} ms`);
}

// All tiles of the first page in one look, so that none is grey after another one came back.
const allGrey = (state) => page.waitForFunction((wanted) => {
  const tiles = [...document.querySelectorAll('.page:first-child .tile:not([data-state="missing"])')];
  return tiles.length > 0 && tiles.every((tile) => tile.dataset.state === wanted &&
    !/\d/.test(tile.querySelector('.digits').textContent + tile.querySelector('.past').textContent));
}, {polling: 20}, state);

before(async () => {
  browser = await launch();
  await startSuite();
  page = await openPage();
});

after(async () => {
  await close(browser);
  await replay.kill();
  await endSuite();
});

test('values move, in the units that the server tells', async () => {
  await stateIs(1, 'fresh');
  const first = await digitsOf(1);
  await page.waitForFunction((before) => document.querySelector('[data-channel="1-0"] .digits').textContent !== before, {}, first);
  const units = new Map((await ask('/halyrig/v1/channels')).channels.map(({id, unit}) => [id, unit]));
  for (const id of [1, 5, 6]) assert.equal(await textOf(`[data-channel="${id}-0"] .unit`), units.get(id));
});

test('a missing value has no digits and tells the reason by a press or Enter', async () => {
  await stateIs(missing, 'missing');
  assert.doesNotMatch(await digitsOf(missing), /\d/);
  const {fault, links} = await ask(`/halyrig/v1/explain?channel=${missing}&boat=0`);
  const button = `.tile[data-channel="${missing}-0"] button`;
  for (const open of [() => page.click(button), () => page.focus(button).then(() => page.keyboard.press('Enter'))]) {
    await open();
    await page.waitForSelector('.explain[open] .fault');
    assert.equal(await textOf('.explain .fault'), fault);
    assert.equal((await page.$$('.explain .chain > li')).length, links.length);
    await page.keyboard.press('Escape');
    await page.waitForSelector('.explain:not([open])');
  }
});

test('a stopped bridge greys its values within a second, with the age, and they return with it', async (context) => {
  const outcome = await withinASecond(() => bridge.kill(), () => allGrey('stopped'), async () => {
    assert.match(await textOf('[data-channel="1-0"] .why'), /^bridge stopped \d+ s$/);
    assert.equal(await textOf('#state'), 'Bridge stopped');
    await picture('stopped');
    bridge.start();
    await stateIs(1, 'fresh');
  });
  context.diagnostic(outcome);
});

const losses = {killed: [() => server.kill(), () => server.start()], silent: [() => server.freeze(), () => server.thaw()]};
for (const [how, [lose, give]] of Object.entries(losses)) {
  test(`a ${how} server greys all within a second, and the page connects again by itself`, async (context) => {
    const outcome = await withinASecond(lose, () => allGrey('lost'), async () => {
      assert.equal(await textOf('#state'), 'No connection');
      await picture('lost');
      await page.click('[data-channel="1-0"] button');
      await page.waitForSelector('.explain[open] .fault');
      assert.match(await textOf('.explain .fault'), /does not answer/);
      await closeDialog();
      give();
      await stateIs(1, 'fresh');
    });
    context.diagnostic(outcome);
  });
}

test('a reload keeps the tiles, and a link shows them to others', async () => {
  await page.click('[aria-label="Choose channels"]');
  await page.type('#picker-search', 'heel');
  const [row] = await page.$$('.channels li:not([hidden]) button');
  await row.click();
  await closeDialog();
  await page.waitForSelector('.page:first-child .tile[data-channel="18-0"]');
  await page.click('.page:first-child .tile[data-channel="18-0"] button');
  await page.click('.explain summary');
  await page.locator('.explain details button ::-p-text(Large)').click();
  await page.waitForSelector('.page:first-child .tile[data-channel="18-0"][data-size="L"]');
  const tilesOf = (shown) => shown.$$eval('.tile', (tiles) => tiles.map(({dataset}) => dataset.channel + dataset.size).join());
  const tiles = await tilesOf(page), link = page.url();
  await page.goto(`${url}/`, {waitUntil: 'load'});
  assert.equal(await tilesOf(page), tiles);
  const other = await browser.createBrowserContext();
  assert.equal(await tilesOf(await openPage(other, link)), tiles);
  await other.close();
});

test('pages turn by keyboard and by swipe', async () => {
  await page.waitForSelector('.page:nth-child(2)');
  await page.click('[aria-label="Next page"]');
  await page.waitForFunction(() => location.hash.includes('page=2'));
  await page.focus('.page:nth-child(2) button');
  await page.keyboard.press('ArrowLeft');
  await page.waitForFunction(() => location.hash.includes('page=1'));
  await page.$eval('.pager', (pager) => pager.scrollTo({left: pager.clientWidth}));
  await page.waitForFunction(() => location.hash.includes('page=2'));
});

test('a replay is marked over everything while it plays', async () => {
  replay.start();
  await page.waitForSelector('#replay:not([hidden])');
  const marks = await page.$$eval('.tile', (tiles) => tiles.map((tile) => getComputedStyle(tile, '::after').content));
  assert.ok(marks.length > 0 && marks.every((mark) => mark === '"REPLAY"'), marks.join());
  await picture('replay');
  await replay.kill();
  await page.waitForSelector('#replay[hidden]');
});

// The pairs of ink and ground that lie on patterns or in pictures, where axe can't look.
test('every theme has its contrast', async () => {
  const pairs = [['ink', 'ground'], ['soft', 'ground'], ['ink', 'card'], ['soft', 'card'], ['gone-ink', 'gone'], ['gone-ink', 'gone-line'], ['on-accent', 'accent'],
                 ['accent', 'card'], ['on-replay', 'replay'], ['port', 'card'], ['starboard', 'card'], ['port', 'ground'], ['starboard', 'ground']];
  for (const theme of kThemes) {
    const contrasts = await page.evaluate((name, all) => {
      document.documentElement.dataset.theme = name;
      const style = getComputedStyle(document.documentElement), {Color, getContrast} = axe.commons.color;
      const colour = (called) => new Color().parseString(style.getPropertyValue(`--${called}`).trim());
      return all.map(([ink, ground]) => getContrast(colour(ground), colour(ink)));
    }, theme, pairs);
    for (const [place, contrast] of contrasts.entries()) {
      assert.ok(contrast >= 4.5, `${theme}: ${pairs[place].join(' on ')} has ${contrast.toFixed(2)}`);
    }
  }
});

async function lookOver(name) {
  await expectToFit(page, name);
  const cut = await page.$$eval('.tile', (tiles) => tiles.flatMap((tile) => [...tile.querySelectorAll('.digits, .past')])
    .filter(({scrollWidth, clientWidth}) => scrollWidth > clientWidth + 1).map(({textContent}) => textContent));
  assert.deepEqual(cut, [], name);
  await picture(name);
}

async function showView(view) {
  await page.click(`#to-${view}`);
  const ready = {tiles: '[data-channel="1-0"][data-state="fresh"]', boats: '.boats tbody tr', setup: '.setup dl', chart: '.picture canvas'};
  if (ready[view]) await page.waitForSelector(ready[view]);
}

const dialogs = {
  explain: async () => {
    await page.click(`.tile[data-channel="${missing}-0"] button`);
    await page.waitForSelector('.explain .chain');
    await page.click('.explain summary');
  },
  picker: async () => {
    await page.click('[aria-label="Choose channels"]');
    await page.waitForSelector('.channels li');
  },
};

for (const theme of PAGE_SHORT ? [] : kThemes) {
  test(`axe finds nothing, and nothing is small or cut off: ${theme}`, async () => {
    await page.evaluate((name) => localStorage.setItem('halyrig.theme', name), theme);
    // Through another document: a changed hash alone would not load the page.
    await page.goto('about:blank');
    await page.goto(`${url}/#view=tiles&page=1&tiles=L1,M4,M5,S2,S13,S51,S${missing}&strips=6,5`, {waitUntil: 'load'});
    for (const [place, [width, height]] of sizesIn(theme, kSizes).entries()) {
      await page.setViewport({width, height});
      for (const view of kViews) {
        await showView(view);
        await lookOver(`${view}-${theme}-${width}x${height}`);
        if (place === 0) await runAxe(page, `${view}-${theme}`);
      }
      if (place > 0) continue;  // what axe looks at differs little with the size
      await showView('tiles');
      for (const [name, open] of Object.entries(dialogs)) {
        await open();
        await lookOver(`${name}-${theme}-${width}x${height}`);
        await runAxe(page, `${name}-${theme}`);
        await page.keyboard.press('Escape');
      }
    }
  });
}

test('the browser has nothing to complain of, and no request leaves the boat', () => assert.deepEqual(complaints, []));
