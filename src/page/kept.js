// SPDX-License-Identifier: MIT
// What the browser keeps. Some refuse to keep anything, which costs no more than that.

export function keep(name, text) {
  try {
    localStorage.setItem(`halyrig.${name}`, text);
  } catch {
    // The address still holds the tiles.
  }
}

export function kept(name) {
  try {
    return localStorage.getItem(`halyrig.${name}`);
  } catch {
    return null;
  }
}
