// SPDX-License-Identifier: MIT
// How values over time are drawn, live and in a report.

export const kSpan = 600;  // seconds of the past that the page shows
const kTurnSteps = [1, 2, 5, 10, 30, 45, 90, 180];  // degrees between the marks

export const isTurn = (kind) => kind === 'bearing' || kind === 'angle' || kind === 'wind-angle';

// They go through north, or astern, without a jump to the other edge of the picture.
export function unwrapped(points, kind) {
  if (!isTurn(kind)) return points;
  let last = null;
  return points.map(([time, value]) => {
    if (value === null) return [time, null];
    last = last === null ? value : last + ((((value - last + 180) % 360) + 360) % 360) - 180;
    return [time, last];
  });
}

const twoDigits = (number) => `${number}`.padStart(2, '0');

// Only the numbers at the edge of the picture are written here; the value itself is always the boat's own text.
function edgeText(value, kind) {
  if (kind === 'bearing') return `${((Math.round(value) % 360) + 360) % 360}`.padStart(3, '0');
  if (kind !== 'duration') return `${Number(value.toPrecision(6))}`;
  const seconds = Math.round(Math.abs(value));
  return `${value < 0 ? '-' : ''}${Math.floor(seconds / 60)}:${twoDigits(seconds % 60)}`;
}

export const colourOf = (element, name) => getComputedStyle(element).getPropertyValue(name).trim();

// What all plots of uPlot have in common. It takes its colours once, from `element`. `timeSteps` are the seconds between the marks.
export function plotStyle(element, kind, timeSteps, timeText) {
  const em = parseFloat(getComputedStyle(document.documentElement).fontSize);
  const line = {stroke: colourOf(element, '--line'), width: 1};
  const axis = {stroke: colourOf(element, '--ink'), grid: line, ticks: line, font: `${em * 0.875}px system-ui, sans-serif`};
  const times = (_, seconds) => seconds.map(timeText);
  const values = (_, numbers) => numbers.map((value) => edgeText(value, kind));
  return {
    legend: {show: false}, padding: [10, 14, 0, 0],
    axes: [{...axis, size: em * 2.2, space: em * 5, incrs: timeSteps, values: times},
           {...axis, size: em * 4, space: em * 2.5, values, ...(isTurn(kind) && {incrs: kTurnSteps})}],
  };
}
