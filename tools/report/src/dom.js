/// An element with attributes; functions become listeners, `true` an attribute without a value.
export function make(name, attributes = {}, ...children) {
  const element = document.createElement(name);
  for (const [key, value] of Object.entries(attributes)) {
    if (typeof value === "function") element.addEventListener(key, value);
    else if (value !== false && value != null) element.setAttribute(key, value === true ? "" : value);
  }
  element.append(...children);
  return element;
}

/// A control with its name before it.
export function labelled(text, control, ...more) {
  return make("label", {}, make("span", {}, text), control, ...more);
}

export function checkbox(text, onChange, isOn = false) {
  const box = make("input", { type: "checkbox", change: () => onChange(box.checked) });
  box.checked = isOn;
  return make("label", { class: "check" }, box, make("span", {}, text));
}

/// Replaces the options of a <select>; keeps the choice where it still is one.
export function setOptions(select, names, preferred = 0) {
  const kept = names.indexOf(select.selectedOptions[0]?.textContent);
  select.replaceChildren(...names.map((name, i) => make("option", { value: i }, name)));
  select.selectedIndex = kept >= 0 ? kept : preferred;
  select.disabled = names.length === 0;
}

/// A number for people: six digits.
export function numberText(value) {
  if (Number.isNaN(value)) return "NaN";
  if (!Number.isFinite(value)) return value > 0 ? "inf" : "-inf";
  const size = Math.abs(value);
  if (size === 0 || (size >= 1e-4 && size < 1e6)) return String(Number(value.toPrecision(6)));
  return value.toExponential(5).replace(/\.?0*e/, "e").replace("e+", "e");
}

export function countText(count, what) {
  const number = count.toLocaleString("en").replaceAll(",", "\u202f");
  return `${number} ${what}${count === 1 ? "" : "s"}`;
}
