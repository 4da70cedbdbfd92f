// SPDX-License-Identifier: MIT
// Elements made from plain values. Text only ever goes in as text, so nothing that the boat sends can become markup.

const kSvg = 'http://www.w3.org/2000/svg';

function fill(element, properties, children) {
  for (const [name, value] of Object.entries(properties)) {
    if (typeof value === 'function') element.addEventListener(name, value);
    else if (name === 'text') element.textContent = value;
    else if (typeof value === 'boolean') element.toggleAttribute(name, value);
    else element.setAttribute(name, value);
  }
  element.append(...children);
  return element;
}

export const make = (tag, properties = {}, ...children) => fill(document.createElement(tag), properties, children);

export const draw = (tag, attributes = {}, ...children) => fill(document.createElementNS(kSvg, tag), attributes, children);

// An icon of index.html.
export const icon = (name) => draw('svg', {class: 'icon', 'aria-hidden': 'true'}, draw('use', {href: `#icon-${name}`}));

export const iconButton = (name, label, press) =>
  make('button', {type: 'button', class: 'icon-button', 'aria-label': label, click: press}, icon(name));

// Ten times a second most texts and attributes are what they were; only what differs touches the document.
export function setText(element, text) {
  if (element.textContent !== text) element.textContent = text;
}

export function setAttribute(element, name, value) {
  if (element.getAttribute(name) !== value) element.setAttribute(name, value);
}
