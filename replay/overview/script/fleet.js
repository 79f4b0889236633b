// The rows that the page holds, as columns.

const NUMBER = /^-?\d+(\.\d+)?(e[-+]?\d+)?$/;

/** A column's texts, each once; `places` has a row's place among them, 0 for an empty cell. */
class Column {
  constructor(id, count) {
    this.id = id;
    this.texts = [""];
    this.places = new Uint32Array(count);
    this.known = new Map([["", 0]]);
  }

  /** @param cell 0 for that of the row before */
  add(index, cell) {
    if (cell === 0) {
      this.places[index] = index === 0 ? 0 : this.places[index - 1];
      return;
    }
    if (!this.known.has(cell)) {
      this.known.set(cell, this.texts.push(cell) - 1);
    }
    this.places[index] = this.known.get(cell);
  }

  /** Behind the last row. */
  finish() {
    this.isNumeric = this.texts.length > 1 && this.texts.every((text, place) => place === 0 || NUMBER.test(text));
    // A text's rank is its place among the others; an empty cell has none.
    if (this.isNumeric) {
      this.ranks = this.texts.map((text) => (text === "" ? NaN : Number(text)));
    } else {
      const sorted = [...this.texts.keys()].sort((one, other) => (this.texts[one] < this.texts[other] ? -1 : 1));
      this.ranks = new Array(sorted.length);
      sorted.forEach((place, rank) => {
        this.ranks[place] = rank;
      });
      this.ranks[0] = NaN;
    }
  }

  textAt(index) {
    return this.texts[this.places[index]];
  }

  rankAt(index) {
    return this.ranks[this.places[index]];
  }

  /** The numbers of all cells that are not empty. */
  numbers() {
    return this.isNumeric ? Array.from(this.places, (place) => this.ranks[place]).filter((number) => !isNaN(number)) : [];
  }

  /** How many rows have each text, by the text's place. */
  counts() {
    const counts = new Array(this.texts.length).fill(0);
    for (const place of this.places) {
      ++counts[place];
    }
    return counts;
  }
}

/** {heading, count, planned, columns: Map of Column}; `planned` captures were to be run. The blocks are removed: they are as large as the table. */
function readFleet() {
  const take = (name) => {
    const block = document.querySelector(`script.${name}`);
    const value = JSON.parse(block.textContent);
    block.remove();
    return value;
  };
  const heading = take("heading");
  const rows = take("rows");
  const planned = take("planned");
  const columns = heading.columns.map((id) => new Column(id, rows.length));
  rows.forEach((row, index) => row.forEach((cell, place) => columns[place].add(index, cell)));
  columns.forEach((column) => column.finish());
  return {heading, count: rows.length, planned, columns: new Map(columns.map((column) => [column.id, column]))};
}

/** A page's address from its path, which is to be nothing but a path. */
function addressOf(path) {
  return `./${path.split("/").map(encodeURIComponent).join("/")}`;
}

const MOST_OF_A_NAME = 200;

/** A capture's name, or another text for it, which leads to its page if it has one. */
function captureLink(fleet, index, attributes = {}, text = fleet.columns.get("capture").textAt(index)) {
  const page = fleet.columns.get("page").textAt(index);
  return element(page === "" ? "span" : "a", {...attributes, href: page === "" ? undefined : addressOf(page)},
    shortened(text, MOST_OF_A_NAME));
}
