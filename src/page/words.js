// SPDX-License-Identifier: MIT
// What the page says of a state, in one place, so that a tile, the dial and the list agree.

export function ageInWords(seconds) {
  if (seconds === null) return '';
  if (seconds < 100) return `${Math.floor(seconds)} s`;
  if (seconds < 6000) return `${Math.floor(seconds / 60)} min`;
  return `${Math.floor(seconds / 3600)} h`;
}

const kStates = {
  fresh: '',
  waiting: 'waiting',
  missing: 'no value',
  refused: 'refused',
  stale: 'stale',
  stopped: 'bridge stopped',
  'stands-still': 'bridge stands still',
  none: 'suite ended',
  lost: 'no connection',
};

export function whyNoNumber({state, age}) {
  const since = age === null || state === 'missing' || state === 'waiting' ? '' : ` ${ageInWords(age)}`;
  return kStates[state] + since;
}

const kBridge = {
  running: 'Live',
  stopped: 'Bridge stopped',
  'stands-still': 'Bridge stands still',
  none: 'Suite not running',
};

// Without numbers that change, so that a screen reader says it once.
export function connectionInWords(readings) {
  if (!readings.live) return 'No connection';
  if (readings.bridge !== 'running') return kBridge[readings.bridge];
  return readings.replay ? 'Replay' : kBridge.running;
}
