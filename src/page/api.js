// SPDX-License-Identifier: MIT
// What is asked once and answered once. The stream of values is connection.js.

const kPatience = 5000;  // milliseconds

async function ask(path) {
  const limit = new AbortController();
  const timer = setTimeout(() => limit.abort(), kPatience);
  try {
    const answer = await fetch(`/halyrig/v1/${path}`, {signal: limit.signal, cache: 'no-store'});
    if (answer.ok) return await answer.json();
    const {error} = await answer.json().catch(() => ({}));
    throw new Error(error ?? `the navigation computer answers ${answer.status}`);
  } catch (error) {
    const unreachable = error instanceof TypeError || error.name === 'AbortError';
    throw unreachable ? new Error('the navigation computer does not answer') : error;
  } finally {
    clearTimeout(timer);
  }
}

export const askChannels = () => ask('channels');
export const askCheck = () => ask('check');
export const askBoats = () => ask('boats');
export const askExplain = ({id, boat}) => ask(`explain?channel=${id}&boat=${boat}`);
export const askHistory = ({id, boat}) => ask(`history?channel=${id}&boat=${boat}`);
