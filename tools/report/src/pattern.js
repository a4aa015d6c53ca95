// Selects blocks by conditions in text form, as the option --where of the tool does.

class PatternError extends Error {}

/// `catalogue` is { fields: [{ name, isText, lowest, highest }], kinds: [[number, name]],
/// categories: [[name, first, last]] }; a key is an array with a value or null for each field.
/// Gives a function that selects from a list of things with a `key`; throws on a wrong text.
export function parsePattern(text, catalogue) {
  const conditions = text.trim() === "" ? [] : split(text, catalogue);
  const tests = conditions.filter((one) => !one.extreme).map((one) => testOf(one, catalogue));
  const extremes = conditions.filter((one) => one.extreme);
  return (blocks) =>
    extremes.reduce(
      keepExtreme,
      blocks.filter(({ key }) => tests.every((test) => test(key))),
    );
}

function split(text, catalogue) {
  const conditions = [];
  for (let at = 0; at <= text.length; ++at) {
    const sign = at + text.slice(at).search(/[=~;]|$/);
    if (sign === text.length || text[sign] === ";") {
      throw new PatternError(`'${text}' is no selection; the form is FIELD=VALUE.`);
    }
    const field = fieldOf(text.slice(at, sign), catalogue);
    const condition = { field, isGlob: text[sign] === "~", items: [] };
    at = sign;
    do {
      const item = takeItem(text, at + 1);
      condition.items.push(item);
      at = item.end;
    } while (text[at] === ",");
    condition.extreme = extremeOf(condition, catalogue);
    conditions.push(condition);
  }
  return conditions;
}

function takeItem(text, begin) {
  const item = /^[ \t]*(?:'((?:[^']|'')*)'[ \t]*|([^,;]*))/.exec(text.slice(begin));
  const end = begin + item[0].length;
  if (item[1] === undefined) {
    if (item[2].startsWith("'")) throw new PatternError(`A quote is not closed in '${text}'.`);
    return { text: item[2].trim(), isQuoted: false, end };
  }
  if (end < text.length && text[end] !== "," && text[end] !== ";") {
    throw new PatternError(`Something stands behind a closing quote in '${text}'.`);
  }
  return { text: item[1].replaceAll("''", "'"), isQuoted: true, end };
}

const isSame = (a, b) => a.toUpperCase() === b.toUpperCase();

function fieldOf(name, { fields }) {
  const index = fields.findIndex((field) => isSame(field.name, name.trim()));
  if (index >= 0) return { ...fields[index], index };
  const known = fields.map((field) => field.name).join(", ");
  throw new PatternError(`There is no field '${name.trim()}'. Known are ${known}.`);
}

// The one value that is not quoted.
function wordOf({ items }) {
  return items.length === 1 && !items[0].isQuoted ? items[0].text : "";
}

function extremeOf(condition, catalogue) {
  if (condition.isGlob || condition.field.isText) return null;
  const [, which, group] = /^(max|min)(?:\/(.*))?$/i.exec(wordOf(condition)) ?? [];
  if (!which) return null;
  return { isHighest: isSame(which, "max"), group: group == null ? null : fieldOf(group, catalogue) };
}

function testOf(condition, catalogue) {
  const { field, isGlob } = condition;
  const word = wordOf(condition);
  if (!isGlob && word === "?") return (key) => key[field.index] != null;
  if (!isGlob && word === "!") return (key) => key[field.index] == null;
  return field.isText ? textTest(condition) : numberTest(condition, catalogue);
}

// A word that means something for a number, but nothing for a text.
function requireTexts({ field, isGlob, items }) {
  for (const { text, isQuoted } of items) {
    const isWord = /^[?!]$|\.\.|^(max|min)(\/|$)/i.test(text);
    if (isQuoted || (text !== "" && (!isWord || isGlob))) continue;
    const sign = field.name + (isGlob ? "~" : "=");
    throw new PatternError(`${sign}${text} means nothing here: ${field.name} holds texts. ` +
      `For this very text, write ${sign}'${text}'.`);
  }
}

function textTest(condition) {
  const { field, isGlob, items } = condition;
  requireTexts(condition);
  const tests = items.map(({ text }) => (isGlob ? globTest(text) : (value) => value === text));
  return (key) => key[field.index] != null && tests.some((test) => test(key[field.index]));
}

function globTest(glob) {
  const letters = { "*": "[^]*", "?": "[^]" };
  const source = glob.replace(/[\\^$.*+?()[\]{}|]/g, (c) => letters[c] ?? `\\${c}`);
  const pattern = new RegExp(`^${source}$`, "u");
  return (value) => pattern.test(value);
}

function numberTest({ field, isGlob, items }, catalogue) {
  if (isGlob) {
    const { name } = field;
    throw new PatternError(
      `${name} holds a number, which ~ cannot test; write ${name}=10..20 or ${name}=1,3,7.`,
    );
  }
  const ranges = items.map(({ text }) => rangeOf(field, text, catalogue));
  return (key) => {
    const value = key[field.index];
    return value != null && ranges.some(([low, high]) => low <= value && value <= high);
  };
}

function rangeOf(field, text, catalogue) {
  if (field.name === "ONF" && text.startsWith("@")) return categoryOf(text.slice(1), catalogue);
  const dots = text.indexOf("..");
  if (dots < 0) {
    const value = valueOf(field, text, catalogue, false);
    return [value, value];
  }
  const [low, high] = [text.slice(0, dots), text.slice(dots + 2)];
  if (!low && !high) {
    throw new PatternError(`'..' is no range; ${field.name}=? asks for any value.`);
  }
  const first = low ? valueOf(field, low, catalogue, true) : -Infinity;
  const last = high ? valueOf(field, high, catalogue, true) : Infinity;
  if (first > last) throw new PatternError(`The range ${field.name}=${text} is empty.`);
  return [first, last];
}

function categoryOf(name, { categories }) {
  const found = categories.find((category) => isSame(category[0], name));
  if (found) return found.slice(1);
  const known = categories.map((category) => category[0]).join(", ");
  throw new PatternError(`There is no category '${name}'. Known are ${known}.`);
}

function valueOf(field, text, { kinds }, isBound) {
  const value = /^[+-]?\d+$/.test(text.trim()) ? Number(text) : null;
  if (field.name === "ONF") {
    if (value !== null && isBound) return value;
    const kind = kinds.find(([number, name]) => number === value || isSame(name, text));
    if (kind) return kind[0];
    throw new PatternError(`There is no block kind '${text}'.`);
  }
  if (value === null) throw new PatternError(`${field.name} takes an integer, not '${text}'.`);
  if (value < field.lowest || value > field.highest) {
    const { name, lowest, highest } = field;
    throw new PatternError(`${name} takes values from ${lowest} to ${highest}, not ${value}.`);
  }
  return value;
}

function keepExtreme(blocks, { field, extreme }) {
  const sign = extreme.isHighest ? 1 : -1;
  const groupOf = (key) => (extreme.group ? key[extreme.group.index] : null);
  const best = new Map();
  for (const { key } of blocks) {
    const value = key[field.index];
    if (value == null) continue;
    const known = best.get(groupOf(key));
    if (known === undefined || sign * value > sign * known) best.set(groupOf(key), value);
  }
  return blocks.filter(
    ({ key }) => key[field.index] != null && key[field.index] === best.get(groupOf(key)),
  );
}
