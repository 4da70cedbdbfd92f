// SPDX-License-Identifier: MIT
// The programs under test as they are started and killed. From the environment:
//   PAGE_BRIDGE  the command line of the bridge, without a terminal
//   PAGE_CTL     that of halyrigctl

import {spawn} from 'node:child_process';
import {once} from 'node:events';
import {createServer} from 'node:net';

export async function freePort() {
  const taken = createServer().listen(0, '127.0.0.1');
  await once(taken, 'listening');
  const {port} = taken.address();
  taken.close();
  return port;
}

export class Program {
  #command;
  #child = null;

  constructor(command) {
    this.#command = command;
  }

  start() {
    this.#child = spawn('sh', ['-c', `exec ${this.#command}`], {stdio: ['ignore', 'ignore', 'inherit']});
  }

  // Half-open to its clients: the connection stands, and nothing comes.
  freeze() {
    this.#child.kill('SIGSTOP');
  }

  thaw() {
    this.#child.kill('SIGCONT');
  }

  async kill() {
    if (!this.#child) return;
    const ended = once(this.#child, 'exit');
    this.#child.kill('SIGKILL');
    await ended;
    this.#child = null;
  }
}

const {PAGE_BRIDGE, PAGE_CTL} = process.env;
export const port = await freePort(), url = `http://127.0.0.1:${port}`;
export const bridge = new Program(PAGE_BRIDGE), server = new Program(`${PAGE_CTL} serve --listen ${port}`);

// The bridge, and a server that has values of it.
export async function startSuite() {
  bridge.start();
  server.start();
  const there = () => fetch(`${url}/signalk/v1/api/vessels/self/navigation/headingMagnetic`).then(({ok}) => ok, () => false);
  while (!await there()) await new Promise((wait) => setTimeout(wait, 200));
}

export async function endSuite() {
  for (const program of [server, bridge]) await program.kill();
}
