// SPDX-License-Identifier: MIT
// What the tests in a real browser share. From the environment:
//   PAGE_SHOTS    a folder for the pictures
//   PAGE_BROWSER  /usr/bin/chromium unless given

import assert from 'node:assert/strict';
import {mkdirSync, mkdtempSync, readFileSync, rmSync} from 'node:fs';
import {createRequire} from 'node:module';
import {tmpdir} from 'node:os';
import {join} from 'node:path';
import puppeteer from 'puppeteer-core';

const {PAGE_SHOTS: shots, PAGE_BROWSER: executablePath = '/usr/bin/chromium'} = process.env;
const axe = readFileSync(createRequire(import.meta.url).resolve('axe-core/axe.min.js'), 'utf8');

export const folder = mkdtempSync(join(tmpdir(), 'page-test-')), complaints = [];
export const kPatience = 60000;  // milliseconds: the machine may be slow, the page may not
export const kThemes = ['day', 'sun', 'night'];
// What has its place in one theme has it in all: they differ in colours alone.
export const sizesIn = (theme, sizes) => (theme === kThemes[0] ? sizes : sizes.slice(0, 1));
export const shotPath = (name) => shots && join(shots, name);

export async function launch() {
  if (shots) mkdirSync(shots, {recursive: true});
  return puppeteer.launch({
    executablePath, headless: true, userDataDir: join(folder, 'profile'),
    args: ['--no-sandbox', '--disable-gpu', '--disable-quic', '--no-first-run', '--disable-background-networking', '--disable-component-update',
           '--disable-sync'],
  });
}

export async function close(browser) {
  await browser?.close();
  rmSync(folder, {recursive: true, force: true});
}

// What the browser complains of, unless it is no fault of the page, and what is asked for elsewhere, goes to the complaints.
export async function openAt(context, address, isOwn, noFault = /(?!)/) {
  const opened = await context.newPage();
  await opened.evaluateOnNewDocument(axe);
  opened.setDefaultTimeout(kPatience);
  opened.on('pageerror', ({message}) => complaints.push(message));
  opened.on('console', (said) => said.type() === 'error' && !noFault.test(said.text()) && complaints.push(said.text()));
  opened.on('request', (request) => isOwn(request.url()) || complaints.push(`asked for ${request.url()}`));
  await opened.goto(address, {waitUntil: 'load'});
  return opened;
}

export async function runAxe(page, name) {
  const findings = await page.evaluate(() => axe.run({resultTypes: ['violations']}).then(({violations}) =>
    violations.map(({id, nodes}) => `${id}: ${nodes[0].html.slice(0, 160)} ${nodes[0].any[0]?.message ?? ''}`)));
  assert.deepEqual(findings, [], name);
}

// Nothing is wider than the screen, and no control is too small for a finger.
export async function expectToFit(page, name) {
  const small = await page.$$eval('button, input, select, summary', (controls) => controls.filter((control) => control.checkVisibility())
    .map((control) => [control.id || control.textContent, control.getBoundingClientRect()])
    .filter(([, {width, height}]) => width < 47.9 || height < 47.9).map(([what, {width, height}]) => `${what}: ${width} x ${height}`));
  assert.deepEqual(small, [], name);
  const wide = await page.evaluate(() => [document.documentElement.scrollWidth, innerWidth]);
  assert.ok(wide[0] <= wide[1], `${name} is ${wide[0]} wide`);
}
