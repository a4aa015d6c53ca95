import { make } from "./dom.js";

/// Tables of names and what belongs to them: [{ title, titles, rows }].
export function showOverview(section, tables) {
  for (const { title, titles, rows } of tables) {
    const body = make("tbody", {}, ...rows.map((row) => make("tr", {}, ...row.map(cellOf))));
    const table = make("table", {}, make("caption", {}, title));
    if (titles) {
      const heads = titles.map((name) => make("th", { scope: "col" }, name));
      table.append(make("thead", {}, make("tr", {}, ...heads)));
    }
    table.append(body);
    section.append(make("div", { class: "table" }, table));
  }
}

function cellOf(value) {
  return make("td", { class: typeof value === "number" && "number" }, String(value));
}
