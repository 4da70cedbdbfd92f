// SPDX-License-Identifier: MIT
// What `halyrigctl check` says of the set-up, and the few things that are this device's own.

import {askCheck} from './api.js';
import {make} from './dom.js';

const kVerdicts = {well: 'All is well.', 'nothing-comes': 'Nothing can come from Deckman; the cause is named first.',
                   'passed-over': 'Some of the set-up is passed over; all that is not named here is used.'};

function findingItem({file, line, column, note, text, toDo}) {
  const place = [file, line, column].filter((part) => part !== null).join(':');
  const item = make('li', {'data-state': note ? 'behind' : 'broken'}, make('strong', {text: note ? 'Note' : 'Fault'}), make('p', {text}));
  if (toDo) item.append(make('p', {class: 'to-do', text: `To do: ${toDo}`}));
  if (place) item.append(make('p', {class: 'place', text: place}));
  return item;
}

const onOff = (on) => (on ? 'on' : 'off');

function facts({running, folder, dataFolder, library, variables, boxes, mapping}) {
  const canBeUsed = library.missing.length > 0 ? `lacks ${library.missing.join(', ')}` : 'can be used';
  const rows = [
    ['Bridge', running ? 'runs' : 'is not running'],
    ['Dfw folder', folder ?? 'none'],
    ['Library', library.usable ? canBeUsed : library.fault ?? "can't be used"],
    ['Variables', variables.file ? `${variables.count} in ${variables.file}, ${variables.timer ? 'with' : 'no'} TIMER` : 'none'],
    ['Boxes', `depth in feet ${onOff(boxes.depthInFeet)}, names ${onOff(boxes.sendNames)}, TIMER ${onOff(boxes.useTimer)}, ` +
              `degrees true ${onOff(boxes.degreesTrue)}`],
    ['Data folder', dataFolder ?? 'none'],
    ['Mapping', mapping.exists ? `${mapping.varsUsed} of ${mapping.vars} variables, ${mapping.remotes} remotes, in ${mapping.file}` : 'none'],
  ];
  return make('dl', {}, ...rows.flatMap(([term, text]) => [make('dt', {text: term}), make('dd', {text})]));
}

export class SetupView {
  #report = make('div', {class: 'report'});
  actions = [];

  // `device`: what this tablet or phone can be told, made by device.js.
  constructor(device) {
    const again = make('button', {type: 'button', text: 'Look again', click: () => this.show()});
    this.element = make('section', {class: 'setup', 'aria-label': 'Set-up'}, make('h2', {text: 'The navigation computer'}), this.#report, again,
                        make('h2', {text: 'This device'}), device);
  }

  watched = [];

  async show() {
    try {
      const check = await askCheck();
      const verdict = make('p', {class: check.status === 'well' ? 'well' : 'fault', text: kVerdicts[check.status]});
      this.#report.replaceChildren(verdict, make('ul', {class: 'chain'}, ...check.findings.map(findingItem)), facts(check));
    } catch (error) {
      this.#report.replaceChildren(make('p', {class: 'fault', text: `The set-up can't be looked over: ${error.message}.`}));
    }
  }

  update() {}
}
