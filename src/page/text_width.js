// SPDX-License-Identifier: MIT
// How wide a text is in the font that this device has, so that digits are as large as their tile allows and never cut off.

const kShortest = '00.0';  // digits keep their size while a value goes from 9.99 to 10.0
const kKept = 500;

const canvas = document.createElement('canvas').getContext('2d');
const widths = new Map();

// In units of the font's size, at the boldest that a theme uses; 1 and 8 count alike.
export function textWidth(text) {
  const form = text.replace(/\d/g, '0');
  if (!widths.has(form)) {
    if (widths.size > kKept) widths.clear();
    canvas.font = `800 100px ${getComputedStyle(document.body).fontFamily}`;
    const width = Math.max(canvas.measureText(form).width, canvas.measureText(kShortest).width);
    widths.set(form, (width / 100).toFixed(2));
  }
  return widths.get(form);
}
