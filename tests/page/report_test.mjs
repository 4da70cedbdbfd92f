// SPDX-License-Identifier: MIT
// The page that `halyrigctl report` writes, opened from the disk in a real browser. What it needs comes from the environment:
//   PAGE_CTL      halyrigctl
// and what browser.mjs needs.

import assert from 'node:assert/strict';
import {execFileSync} from 'node:child_process';
import {writeFileSync} from 'node:fs';
import {join} from 'node:path';
import {after, before, test} from 'node:test';
import {pathToFileURL} from 'node:url';

import {close, complaints, expectToFit, folder, kThemes, launch, openAt, runAxe, shotPath, sizesIn} from './browser.mjs';

const kSizes = [[360, 640], [1024, 768], [2560, 1440], [3840, 2160]];
const kStart = Date.parse('2026-11-25T10:00:00Z');
const kGun = 300, kRounding = 1200, kEnd = 2000;  // seconds

// A beat of three tacks from a line, and a run with a gybe; nothing was recorded for a minute and a half of the run, and never a depth.
function race() {
  const lines = [];
  let [lat, lon] = [49.99, -5];
  const wind = 240, knot = 1 / 216000;  // degrees a second
  const side = (s) => (s < kRounding ? (Math.floor(Math.max(s - kGun, 0) / 225) % 2 === 0 ? 1 : -1) : s < 1600 ? -1 : 1);
  for (let s = 0; s < kEnd; ++s) {
    const twa = (s < kRounding ? 42 : 150) * side(s), turned = (s - kGun) % 225;
    const bsp = s > kGun + 30 && turned < 20 ? 5 : s < kRounding ? 7 : 8.5, course = ((wind - twa) * Math.PI) / 180;
    lat += bsp * knot * Math.cos(course);
    lon += (bsp * knot * Math.sin(course)) / 0.643;
    if (s >= 1700 && s < 1790) continue;
    const time = new Date(kStart + s * 1000).toISOString();
    const told = {0: 46351 + (36000 + s) / 86400, 1: bsp, 4: twa, 5: 12 + Math.sin(s / 40), 6: wind, 13: (wind - twa + 360) % 360, 18: twa / 3, 48: lat, 49: lon,
                  51: bsp + 0.3, 237: s < kRounding ? 41 : 151, 238: s < kRounding ? 7.4 : 8.8, 161: s < kRounding ? 50.1 : 49.9, 162: -5.1, 163: 49.995,
                  164: -5.001, 165: 49.993, 166: -5.003};
    if (s < kGun) told[204] = (kGun - s) / 86400;
    for (const [id, value] of Object.entries(told)) lines.push(JSON.stringify({time, id: Number(id), value}));
  }
  return lines.join('\n') + '\n';
}

const bare = Array.from({length: 120}, (_, s) => [[0, 46351 + s / 86400], [48, 50 + s / 1e5], [49, 10]].map(([id, value]) =>
  JSON.stringify({time: new Date(kStart + s * 1000).toISOString(), id, value})).join('\n')).join('\n') + '\n';

function report(name, recording) {
  const from = join(folder, name), to = `${from}.html`;
  writeFileSync(from, recording);
  execFileSync(process.env.PAGE_CTL, ['report', from, '-o', to]);
  return to;
}

let browser, page;
const open = (file) => openAt(browser, pathToFileURL(file).href, (asked) => asked === pathToFileURL(file).href);

const textOf = (selector, of = page) => of.$eval(selector, (element) => element.textContent);
const part = (title) => `section[aria-label="${title}"]`;

before(async () => {
  browser = await launch();
  page = await open(report('<!--<script>.jsonl', race()));
});

after(() => close(browser));

test('what was sailed is told', async () => {
  const rows = (title) => page.$$eval(`${part(title)} tbody tr`, (found) => found.map((row) => row.textContent));
  assert.deepEqual((await rows('Tacks and gybes')).map((row) => row.slice(0, 12)), ['10:08:45Tack', '10:12:30Tack', '10:16:15Tack', '10:26:40Gybe']);
  assert.deepEqual((await rows('Legs')).map((row) => row.slice(0, 12)), ['10:05:00beat', '10:20:00run,']);
  assert.match(await textOf(part('Start')), /Gun at 10:05:00\. .* the line .*port end.*Speed at the gun 7\.0 kt, 95 % of the target/);
  assert.match(await textOf(part('This file')), /Not recorded: Depth\..*1 gap: 10:28:19 to 10:29:50\..*<!--<script>\.jsonl/);
  assert.equal((await page.$$('.strip canvas')).length, 7);
});

test('the cursor goes through all by keyboard, and a time shows what happened then', async () => {
  await page.focus('#moment');
  const [clock, speed] = [await textOf('.clock'), await textOf('[data-name="BSP"] .now')];
  assert.equal(clock, '10:05:00');
  for (let i = 0; i < 3; ++i) await page.keyboard.press('ArrowRight');
  assert.equal(await textOf('.clock'), '10:05:03');
  await page.focus(`${part('Tacks and gybes')} tbody button`);
  await page.keyboard.press('Enter');
  assert.equal(await textOf('.clock'), '10:08:45');
  assert.equal(await textOf('.tile[data-channel="1-0"] .digits'), '5.00');
  assert.notEqual(await textOf('[data-name="BSP"] .now'), speed);
  // In the middle of the few minutes that all charts show then.
  const lines = await page.$$eval('.strip .u-cursor-x', (all) => all.map((line) =>
    (new DOMMatrix(getComputedStyle(line).transform).m41 / line.parentElement.clientWidth).toFixed(1)));
  assert.deepEqual(new Set(lines), new Set(['0.5']));
  await page.locator(`${part('Track')} button ::-p-text(VMG)`).click();
  assert.match(await textOf(`${part('Track')} .legend`), /kt/);
});

test('what is missing is said, and not drawn', async () => {
  const poor = await open(report('bare', bare));
  for (const [title, says] of [['Start', /No start was recorded/], ['Legs', /None was found/], ['Tacks and gybes', /No true wind angle was recorded/],
                               ['Speeds', /were not recorded together/], ['This file', /Not recorded: TWS, TWD, BSP.*No gaps/]]) {
    assert.match(await textOf(part(title), poor), says);
  }
  assert.equal((await poor.$$('.strip, .tile')).length, 0);
  assert.ok(await poor.$('.track-picture path'));
  await poor.close();
});

for (const theme of kThemes) {
  test(`axe finds nothing, and nothing is wider than the screen: ${theme}`, async () => {
    await page.evaluate((name) => localStorage.setItem('halyrig.theme', name), theme);
    await page.reload({waitUntil: 'load'});
    for (const [width, height] of sizesIn(theme, kSizes)) {
      await page.setViewport({width, height});
      await expectToFit(page, `${theme} ${width}`);
      await page.waitForFunction(() => [...document.querySelectorAll('.strip')].every((strip) => strip.querySelector('canvas')?.clientWidth <= strip.clientWidth));
      if (shotPath('')) await page.screenshot({path: shotPath(`report-${theme}-${width}x${height}.png`), fullPage: true});
      await runAxe(page, `${theme} ${width}`);
    }
  });
}

test('on paper it is dark on light, without controls, and nothing is cut off', async () => {
  await page.evaluate(() => dispatchEvent(new Event('beforeprint')));
  await page.emulateMediaType('print');
  await page.setViewport({width: 700, height: 1000});
  const seen = await page.$$eval('.cursor, .actions, .choices', (controls) => controls.filter((control) => control.checkVisibility()).length);
  assert.equal(seen, 0);
  assert.equal(await page.evaluate(() => document.documentElement.dataset.theme), 'day');
  const wide = await page.$$eval('canvas', (all) => Math.max(...all.map(({clientWidth}) => clientWidth)));
  assert.ok(wide <= 700, `${wide}`);
  await page.pdf({format: 'A4', ...(shotPath('') && {path: shotPath('report.pdf')})});
});

test('the browser has nothing to complain of, and no request leaves the file', () => assert.deepEqual(complaints, []));
