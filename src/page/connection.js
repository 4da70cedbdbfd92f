// SPDX-License-Identifier: MIT
// The stream of values: it connects again by itself, and a server that falls silent counts as lost.

const kSilence = 800;  // milliseconds; the server sends something every 500, and a number must be gone after a second
const kGiveUp = 3000;  // of silence: a new connection is sooner there than a dead one wakes up
const kRetry = 500;

export class Connection {
  #socket = null;
  #watched = '[]';
  #heard = performance.now();
  #take;

  // `take` gets each message; `renewed` says that it is the first of a new connection, so all earlier ones are void.
  constructor(take) {
    this.#take = take;
    this.#connect();
    setInterval(() => this.#tend(), kRetry);
    addEventListener('online', () => this.#connect());
  }

  // Seconds since the last message.
  get silence() {
    return (performance.now() - this.#heard) / 1000;
  }

  // A page in the background counts as lost too, so that its picture among the recent apps holds no old number.
  get live() {
    return this.#socket?.readyState === WebSocket.OPEN && this.silence * 1000 < kSilence && !document.hidden;
  }

  watch(channels) {
    const watched = JSON.stringify(channels);
    if (watched === this.#watched) return;
    this.#watched = watched;
    if (this.#socket?.readyState === WebSocket.OPEN) this.#sendWatched();
  }

  #sendWatched() {
    this.#socket.send(`{"watch":${this.#watched}}`);
  }

  #connect() {
    if (this.#socket && this.#socket.readyState <= WebSocket.OPEN) return;
    const scheme = location.protocol === 'https:' ? 'wss' : 'ws';
    const socket = new WebSocket(`${scheme}://${location.host}/halyrig/v1/stream`);
    const started = performance.now();
    let renewed = true;
    this.#socket = socket;
    socket.started = started;
    socket.onopen = () => this.#sendWatched();
    socket.onmessage = ({data}) => {
      if (socket !== this.#socket) return;
      this.#heard = performance.now();
      this.#take(JSON.parse(data), renewed);
      renewed = false;
    };
  }

  #tend() {
    const quiet = performance.now() - Math.max(this.#heard, this.#socket.started);
    if (quiet > kGiveUp) {
      this.#socket.close();
      this.#socket = null;
    }
    this.#connect();
  }
}
