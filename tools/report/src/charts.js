import uPlot from "uplot";

import { checkbox, make, numberText } from "./dom.js";

const kCharts = 12;
const kHeight = 240;

/// A chart for each series, { name, unit, xName, x, y }. Numbers that are none leave a gap.
export function showCharts(section, seriesList) {
  const grid = make("div", { class: "charts" });
  const more = make("button", { type: "button" });
  let isLogarithmic = false;
  let count = kCharts;
  const show = () => {
    const shown = seriesList.slice(0, count);
    grid.replaceChildren(...shown.map((series) => chartOf(series, isLogarithmic)));
    more.hidden = count >= seriesList.length;
    more.textContent = `Show ${seriesList.length - count} more`;
  };
  more.addEventListener("click", () => {
    count = seriesList.length;
    show();
  });
  const toggle = checkbox("logarithmic", (isOn) => {
    isLogarithmic = isOn;
    show();
  });
  section.append(toggle, grid, more);
  section.hidden = false;
  show();
  matchMedia("(prefers-color-scheme: dark)").addEventListener("change", show);
}

function chartOf({ name, unit, xName, x, y }, isLogarithmic) {
  const figure = make("figure", {}, make("figcaption", {}, unit ? `${name} (${unit})` : name));
  const values = y.map((value) => toNumber(value, isLogarithmic));
  const box = make("div");
  figure.append(box);
  requestAnimationFrame(() => draw(box, { name, xName, x, values }, isLogarithmic));
  return figure;
}

function toNumber(value, isLogarithmic) {
  const number = value === null ? NaN : Number(value);
  return Number.isFinite(number) && !(isLogarithmic && number <= 0) ? number : null;
}

const tickTexts = (_, ticks) => ticks.map((tick) => (tick === null ? "" : numberText(tick)));

// The legend tells the last point until the pointer is at another.
function draw(box, { name, xName, x, values }, isLogarithmic) {
  const style = getComputedStyle(document.documentElement);
  const colour = (variable) => style.getPropertyValue(variable).trim();
  const axis = {
    stroke: colour("--soft"),
    grid: { stroke: colour("--line"), width: 1 },
    ticks: { stroke: colour("--line"), width: 1 },
  };
  const isEmpty = values.every((value) => value === null);
  const options = {
    width: box.clientWidth,
    height: kHeight,
    scales: { x: { time: false }, y: { distr: isLogarithmic && !isEmpty ? 3 : 1 } },
    axes: [
      { ...axis, values: tickTexts, label: xName, labelSize: 20 },
      { ...axis, values: tickTexts, size: 70 },
    ],
    series: [
      { label: xName, value: (_, v) => numberText(v ?? x.at(-1)) },
      {
        label: name,
        stroke: colour("--accent"),
        width: 2,
        points: { show: x.length < 100, size: 5 },
        value: (_, v) => numberText(v ?? values.at(-1) ?? NaN),
      },
    ],
  };
  const plot = new uPlot(options, [x, values], box);
  new ResizeObserver(() => plot.setSize({ width: box.clientWidth, height: kHeight })).observe(box);
}
