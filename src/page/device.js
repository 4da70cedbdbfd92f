// SPDX-License-Identifier: MIT
// What this device can do: a screen that stays on, the full screen, and the link for the others.

import {make, setText} from './dom.js';

// Browsers give the lock only to pages over HTTPS or of the same machine, and take it back when the page is left.
function stayAwake(said) {
  const ask = async () => {
    try {
      await navigator.wakeLock.request('screen');
      setText(said, 'The screen stays on while this page is shown.');
    } catch {
      setText(said, "This browser lets the screen go dark: set the device's own auto-lock to never.");
    }
  };
  document.addEventListener('visibilitychange', () => document.hidden || ask());
  ask();
}

const kOnlyHere = ['localhost', '127.0.0.1', '[::1]'];

export function deviceControls(theme) {
  const awake = make('p'), sent = make('p', {role: 'status'});
  const share = async () => {
    try {
      if (navigator.share) await navigator.share({title: document.title, url: location.href});
      else await navigator.clipboard.writeText(location.href);
      setText(sent, navigator.share ? '' : 'The link is copied: whoever opens it sees these tiles.');
    } catch {
      setText(sent, `Send this address; whoever opens it sees these tiles: ${location.href}`);
    }
    if (kOnlyHere.includes(location.hostname)) {
      sent.append(" It is this computer's own address: for the others, put one that 'halyrigctl serve' prints in its place.");
    }
  };
  const fullScreen = () => (document.fullscreenElement ? document.exitFullscreen() : document.documentElement.requestFullscreen());
  const buttons = make('div', {class: 'choices'}, make('button', {type: 'button', text: 'Send my tiles', click: share}));
  if (document.fullscreenEnabled) buttons.append(make('button', {type: 'button', text: 'Full screen', click: fullScreen}));
  stayAwake(awake);
  return make('div', {class: 'device'}, theme.choices, buttons, sent, awake);
}
