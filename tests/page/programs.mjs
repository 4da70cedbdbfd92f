// SPDX-License-Identifier: MIT
// The programs under test as they are started and killed: their command lines come from whoever runs the test.

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
