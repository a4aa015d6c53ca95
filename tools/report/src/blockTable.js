import { countText, labelled, make } from "./dom.js";
import { parsePattern } from "./pattern.js";

const kRows = 300;

/// The list of blocks, to be filtered and sorted.
export class BlockTable {
  #catalogue;
  #blocks;
  #columns;
  #select = (blocks) => blocks;
  #sorting = { column: null, sign: 1 };
  #limit = kRows;
  #filter = make("input", { type: "search", spellcheck: "false", size: 48,
    placeholder: "ONF=displacement; INCREMENT=max/LOADCASE", "aria-describedby": "filter-error",
    input: () => this.#readFilter() });
  #error = make("p", { id: "filter-error", class: "error", role: "alert" });
  #count = make("output", { class: "count" });
  #head = make("tr");
  #body = make("tbody");
  #more = make("button", { type: "button", click: () => this.#showMore() });

  constructor(section, { catalogue, blocks }) {
    this.#catalogue = catalogue;
    this.#blocks = blocks.map(toBlock);
    this.#columns = columnsFor(this.#blocks, catalogue.fields);
    const table = make("table", {}, make("thead", {}, this.#head), this.#body);
    const box = make("div", { class: "table", tabindex: 0, role: "region", "aria-label": "Blocks" });
    box.append(table);
    section.append(labelled("Filter", this.#filter, this.#count), this.#error, box, this.#more);
    this.#showHead();
    this.#show();
  }

  #readFilter() {
    this.#error.textContent = "";
    this.#filter.removeAttribute("aria-invalid");
    this.#limit = kRows;
    try {
      this.#select = parsePattern(this.#filter.value, this.#catalogue);
      this.#show();
    } catch (error) {
      this.#error.textContent = error.message;
      this.#filter.setAttribute("aria-invalid", "true");
    }
  }

  #showHead() {
    this.#head.replaceChildren(...this.#columns.map((column) => {
      const isSorted = this.#sorting.column === column;
      const order = isSorted ? (this.#sorting.sign > 0 ? "ascending" : "descending") : null;
      const button = make("button", { type: "button", click: () => this.#sortBy(column) }, column.name);
      return make("th", { scope: "col", "aria-sort": order, class: column.isNumber && "number" }, button);
    }));
  }

  #sortBy(column) {
    const { column: last, sign } = this.#sorting;
    this.#sorting = { column, sign: last === column ? -sign : 1 };
    const place = this.#columns.indexOf(column);
    this.#showHead();
    this.#head.children[place].firstChild.focus();
    this.#show();
  }

  #showMore() {
    this.#limit *= 10;
    this.#show();
  }

  #show() {
    const chosen = this.#select(this.#blocks);
    const { column, sign } = this.#sorting;
    if (column) chosen.sort((a, b) => sign * compare(column.of(a), column.of(b)));
    const rows = chosen.slice(0, this.#limit).map((block) => this.#row(block));
    this.#body.replaceChildren(...rows);
    this.#count.textContent = `${chosen.length} of ${countText(this.#blocks.length, "block")}`;
    this.#more.hidden = chosen.length <= this.#limit;
    this.#more.textContent = `Show more of the ${chosen.length} blocks`;
  }

  #row(block) {
    const cell = (column) =>
      make("td", { class: column.isNumber && "number" }, String(column.of(block) ?? ""));
    return make("tr", {}, ...this.#columns.map(cell));
  }
}

function toBlock([key, kind, records, bytes, format]) {
  return { key, kind, records, bytes, format };
}

function columnsFor(blocks, fields) {
  const used = fields
    .map((field, i) => ({ name: field.name, isNumber: !field.isText, of: ({ key }) => key[i] }))
    .filter((column) => blocks.some((block) => column.of(block) != null));
  return [
    { name: "kind", of: ({ kind }) => kind },
    ...used,
    { name: "records", isNumber: true, of: ({ records }) => records },
    { name: "bytes", isNumber: true, of: ({ bytes }) => bytes },
    { name: "format", of: ({ format }) => format },
  ];
}

// What is missing stands last.
function compare(a, b) {
  if (a == null || b == null) return (a == null) - (b == null);
  return typeof a === "number" ? a - b : a < b ? -1 : a > b ? 1 : 0;
}
