// A table of many rows, of which only those in sight are elements of the page.

const ROW_HEIGHT = 28;
const ROWS_AROUND = 10;
const MOST_PRINTED = 500;
/** Of a text in a row or a hint. */
const MOST_CHARACTERS = 400;

/**
 * Rows are numbered from 0. Those who extend this give
 *
 * - total(): how many there are
 * - filter(): a function that tells of a row whether it is looked for
 * - clear(): ends all filters
 * - keyOf(column, descending): a function that gives a row's number in the order of the column
 * - cellsOf(index): the elements of a row
 * - hasFailed(index)
 * - showDetails(index): all that is known of a row, in `this.details`
 */
class RowList {
  /**
   * @param noun what a row is
   * @param label of the table
   * @param columns objects with the member `name`, what the head shows
   */
  constructor(noun, label, columns) {
    this.noun = noun;
    this.selected = null;
    this.sorting = {column: columns[0], descending: false};
    this.count = element("p", {class: "status", role: "status"});
    this.headRow = element("tr", {});
    this.body = element("tbody", {});
    this.table = element("table", {
      class: "list", role: "grid", tabindex: "0", "aria-label": label,
      onkeydown: (event) => this.pressKey(event),
    }, element("thead", {}, this.headRow), this.body);
    this.frame = element("div", {class: "list-frame", onscroll: () => this.draw()}, this.table);
    this.details = element("section", {class: "details", "aria-label": `The chosen ${noun}`, tabindex: "-1"});
    this.printed = element("p", {class: "note print-only"});
    this.setColumns(columns);
    this.body.addEventListener("click", (event) => {
      const row = event.target.closest("tr[data-index]");
      if (row !== null && event.target.closest("a") === null) {
        this.choose(Number(row.dataset.index));
        this.table.focus({preventScroll: true});
      }
    });
    addEventListener("beforeprint", () => this.drawForPrint());
    addEventListener("afterprint", () => this.drawForScreen());
    new ResizeObserver(() => this.draw()).observe(this.frame);
  }

  setColumns(columns) {
    this.columns = columns;
    this.heads = columns.map((column) => element("th", {scope: "col"},
      element("button", {type: "button", onclick: () => this.sortBy(column)}, column.name)));
    this.headRow.replaceChildren(...this.heads);
    this.showSorting();
  }

  showSorting() {
    const {column: sorted, descending} = this.sorting;
    this.heads.forEach((head, place) => {
      head.setAttribute("aria-sort",
        this.columns[place] !== sorted ? "none" : descending ? "descending" : "ascending");
    });
  }

  sortBy(column) {
    const {sorting} = this;
    this.sorting = {column, descending: sorting.column === column && !sorting.descending};
    this.showSorting();
    this.refresh();
  }

  /** Chooses the rows anew. */
  refresh() {
    const count = this.total();
    const fits = this.filter();
    const rows = [];
    for (let index = 0; index < count; ++index) {
      if (fits(index)) {
        rows.push(index);
      }
    }
    const {column, descending} = this.sorting;
    const key = this.keyOf(column, descending);
    const sign = descending ? -1 : 1;
    rows.sort((one, other) => sign * (key(one) - key(other)) || one - other);
    this.rows = rows;
    this.table.setAttribute("aria-rowcount", String(rows.length + 1));
    this.count.textContent = rows.length === count ? plural(count, this.noun)
      : `${grouped(rows.length)} of ${plural(count, this.noun)}`;
    this.frame.scrollTop = 0;
    this.draw(true);
  }

  row(place) {
    const index = this.rows[place];
    return element("tr", {
      "data-index": String(index), id: this.idOf(index), "aria-rowindex": String(place + 2),
      "aria-selected": String(index === this.selected), class: this.hasFailed(index) ? "failed" : undefined,
    }, ...this.cellsOf(index));
  }

  idOf(index) {
    return `${this.noun}-${index + 1}`;
  }

  space(rows) {
    const made = element("tr", {"aria-hidden": "true", class: "space"});
    made.style.height = `${rows * ROW_HEIGHT}px`;
    return made;
  }

  draw(anew = false) {
    const first = Math.max(0, Math.floor(this.frame.scrollTop / ROW_HEIGHT) - ROWS_AROUND);
    const last = Math.min(this.rows.length,
      Math.ceil((this.frame.scrollTop + this.frame.clientHeight) / ROW_HEIGHT) + ROWS_AROUND);
    if (!anew && first === this.first && last === this.last) {
      return;
    }
    [this.first, this.last] = [first, last];
    this.fill(first, last);
  }

  fill(first, last) {
    const rows = [];
    for (let place = first; place < last; ++place) {
      rows.push(this.row(place));
    }
    this.body.replaceChildren(this.space(first), ...rows, this.space(this.rows.length - last));
    if (this.selected !== null && document.getElementById(this.idOf(this.selected)) !== null) {
      this.table.setAttribute("aria-activedescendant", this.idOf(this.selected));
    } else {
      this.table.removeAttribute("aria-activedescendant");
    }
  }

  /** On paper nothing scrolls: the first rows, and a word on the others. */
  drawForPrint() {
    const shown = Math.min(this.rows.length, MOST_PRINTED);
    this.printed.textContent = shown === this.rows.length ? ""
      : `The first ${grouped(shown)} of ${grouped(this.rows.length)} ${this.noun}s; the page itself has all.`;
    const rows = [];
    for (let place = 0; place < shown; ++place) {
      rows.push(this.row(place));
    }
    this.body.replaceChildren(...rows);
    // Browsers repeat a head's texts on each sheet, but not its buttons.
    this.heads.forEach((head, place) => head.replaceChildren(this.columns[place].name));
  }

  drawForScreen() {
    this.setColumns(this.columns);
    this.draw(true);
  }

  /** Chooses a row, brings its row into sight and shows all that is known of it. */
  choose(index) {
    let place = this.rows.indexOf(index);
    if (place < 0) {
      this.clear();
      this.refresh();
      place = this.rows.indexOf(index);
    }
    this.selected = index;
    const top = place * ROW_HEIGHT;
    const head = this.table.tHead.offsetHeight;
    const room = this.frame.clientHeight - head;
    if (top < this.frame.scrollTop || top + ROW_HEIGHT > this.frame.scrollTop + room) {
      this.frame.scrollTop = top - (room - ROW_HEIGHT) / 2;
    }
    this.draw(true);
    this.showDetails(index);
  }

  pressKey(event) {
    const place = this.selected === null ? -1 : this.rows.indexOf(this.selected);
    const page = Math.max(1, Math.floor(this.frame.clientHeight / ROW_HEIGHT) - 2);
    const next = {
      ArrowDown: place + 1, ArrowUp: place - 1, PageDown: place + page, PageUp: place - page,
      Home: 0, End: this.rows.length - 1,
    }[event.key];
    if (event.target !== this.table || this.rows.length === 0) {
      return;
    }
    if (event.key === "Enter") {
      this.details.focus();
    } else if (next !== undefined) {
      event.preventDefault();
      this.choose(this.rows[Math.min(Math.max(next, 0), this.rows.length - 1)]);
    }
  }
}
