// SPDX-License-Identifier: MIT
// Signal K as its own library for clients finds it: by the environment of programs.mjs.

import assert from 'node:assert/strict';
import {execFileSync, spawn} from 'node:child_process';
import {once} from 'node:events';
import {mkdtempSync, rmSync, writeFileSync} from 'node:fs';
import {tmpdir} from 'node:os';
import {join} from 'node:path';
import {createInterface} from 'node:readline';
import {after, before, test} from 'node:test';

import signalk from '@signalk/client';

import {endSuite, freePort, port, startSuite, url} from './programs.mjs';

const Client = signalk.Client ?? signalk.default ?? signalk;
const options = {hostname: '127.0.0.1', port, useTLS: false, reconnect: false, autoConnect: false, notifications: false};
const api = (path) => fetch(`${url}/signalk${path}`), clients = [];

async function connect(more) {
  const client = new Client({...options, ...more});
  clients.push(client);
  const told = once(client, 'connectionInfo');
  await client.connect();
  return {client, hello: (await told)[0]};
}

// The first values of these paths that a client is told.
async function valuesOf(client, paths, act = () => {}) {
  const values = {}, missing = new Set(paths);
  const all = new Promise((done) => client.on('delta', ({context, updates = []}) => {
    for (const {path, value} of updates.flatMap(({values: told = []}) => told)) {
      if (value === null || !missing.delete(path)) continue;
      values[path] = {value, context};
      if (missing.size === 0) done();
    }
  }));
  await act();
  await all;
  return values;
}

before(startSuite);

after(async () => {
  for (const client of clients) await client.disconnect();
  await endSuite();
});

test('the server is discovered, and its addresses lead to it', async () => {
  const {endpoints: {v1}, server: {id}} = await (await api('')).json();
  assert.equal(id, 'halyrig');
  assert.equal(v1['signalk-http'], `${url}/signalk/v1/api/`);
  assert.equal(v1['signalk-ws'], `ws://127.0.0.1:${port}/signalk/v1/stream`);
  const {self, vessels, version} = await (await fetch(v1['signalk-http'])).json();
  assert.equal(version, '1.7.0');
  assert.equal(typeof vessels[self.replace('vessels.', '')].navigation.headingMagnetic.value, 'number');
});

test('the code at the terminal leads a camera to the page', {skip: !process.env.PAGE_CAMERA && 'there is no code or no camera'}, async () => {
  const itsPort = await freePort(), folder = mkdtempSync(join(tmpdir(), 'code-'));
  const open = spawn(process.env.PAGE_CTL, ['serve', '--listen', `0.0.0.0:${itsPort}`, '--allow-remote'], {stdio: ['ignore', 'pipe', 'inherit']});
  let rows = [];
  for await (const line of createInterface({input: open.stdout})) {
    if (rows.push([...line]) * 2 >= rows[0].length) break;
  }
  open.kill();
  const lit = {'\u2588': [0, 0], '\u2580': [0, 1], '\u2584': [1, 0], ' ': [1, 1]};
  const large = (cells) => cells.flatMap((cell) => Array(8).fill(cell));
  rows = rows.flatMap((row) => [0, 1].map((half) => row.map((block) => lit[block][half]))).map(large);
  const picture = join(folder, 'code.pbm');
  writeFileSync(picture, `P1 ${rows[0].length} ${rows.length * 8}\n` + large(rows).map((row) => row.join(' ')).join('\n'));
  const [seen] = execFileSync(process.env.PAGE_CAMERA, ['-q', '--nodbus', '--raw', picture]).toString().split('\n');
  rmSync(folder, {recursive: true});
  assert.match(seen, new RegExp(`^http://[0-9.]+:${itsPort}/$`));
});

test('the library for clients reads paths, and a stream of all that the own boat has', async () => {
  const {client, hello} = await connect({deltaStreamBehaviour: 'self', sendMeta: 'all'});
  const paths = ['navigation.speedThroughWater', 'environment.wind.speedApparent', 'navigation.position'];
  const values = await valuesOf(client, paths);
  for (const path of paths) assert.equal(values[path].context, hello.self);
  assert.ok(values['navigation.position'].value.latitude > -90);
  const speed = await (await client.API()).get('/vessels/self/navigation/speedThroughWater');
  assert.equal(speed.meta.units, 'm/s');
  assert.ok(speed.value > 0 && speed.value < 20);
});

test('it subscribes to what it wants, and is told nothing else', async () => {
  const {client} = await connect({deltaStreamBehaviour: 'none'});
  const told = new Set();
  client.on('delta', ({updates = []}) => updates.flatMap(({values = []}) => values).forEach(({path}) => told.add(path)));
  await valuesOf(client, ['environment.wind.angleApparent', 'environment.wind.speedApparent'],
                 () => client.subscribe([{context: 'vessels.self', subscribe: [{path: 'environment.wind.*', policy: 'instant'}]}]));
  assert.ok([...told].every((path) => path.startsWith('environment.wind.')), [...told].join());
});
