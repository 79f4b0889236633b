// The list of all captures, with its filters.

const CHOICES = [["status", "Status", "all statuses"], ["mcc_mnc", "Network", "all networks"],
  ["psm", "PSM", "PSM: all"]];

/** The columns of a group's entries, with what the list wants to know of them. */
function listColumns(fleet, entries) {
  return entries.map(([id, name, width]) => Object.assign(fleet.columns.get(id), {name, width}));
}

class CaptureList extends RowList {
  constructor(place, fleet) {
    const groups = GROUPS.map(([name, isShown, entries]) => (
      {name, isShown, columns: listColumns(fleet, entries)}));
    super("capture", "Captures", groups[0].columns);
    this.fleet = fleet;
    this.groups = groups;
    /** Column -> {name, holds(number)}, as chosen in the histograms. */
    this.ranges = new Map();
    this.build(place);
    this.showGroups();
    this.refresh();
  }

  build(place) {
    this.search = element("input", {
      type: "search", "aria-label": "Search the captures", placeholder: "Search all cells",
      oninput: () => this.refresh(),
    });
    this.choices = CHOICES.map(([id, label, all]) => this.choice(this.fleet.columns.get(id), label, all));
    this.chips = element("span", {class: "chips"});
    const [, ...others] = this.groups;
    const boxes = others.map((group) => element("label", {}, element("input", {
      type: "checkbox", checked: group.isShown,
      onchange: (event) => {
        group.isShown = event.target.checked;
        this.showGroups();
        this.draw(true);
      },
    }), ` ${group.name}`));
    this.details.append(note("Choose a capture to see all that is known of it."));
    place.append(element("div", {class: "tools"}, this.search, ...this.choices.map(({select}) => select),
      this.chips, element("button", {
        type: "button",
        onclick: () => {
          this.clear();
          this.refresh();
        },
      }, "Show all"), this.count),
    element("fieldset", {class: "groups"}, element("legend", {}, "Columns"), ...boxes),
    this.frame, this.printed, this.details);
  }

  choice(column, label, all) {
    const counts = column.counts();
    const places = [...counts.keys()].filter((place) => counts[place] > 0)
      .sort((one, other) => (column.texts[one] < column.texts[other] ? -1 : 1));
    const select = element("select", {"aria-label": label, onchange: () => this.refresh()},
      element("option", {value: ""}, all),
      ...places.map((place) => element("option", {value: String(place)},
        `${shortened(column.texts[place], MOST_OF_A_NAME) || "(none)"} (${grouped(counts[place])})`)));
    return {column, select};
  }

  showGroups() {
    this.setColumns(this.groups.filter(({isShown}) => isShown).flatMap(({columns}) => columns));
  }

  setColumns(columns) {
    super.setColumns(columns);
    const all = columns.reduce((sum, {width}) => sum + width, 0);
    columns.forEach(({id, isNumeric, width}, place) => {
      this.heads[place].title = id;
      this.heads[place].classList.toggle("number", isNumeric);
      this.heads[place].style.setProperty("--column-width", `${width}rem`);
      this.heads[place].style.setProperty("--column-share", `${100 * width / all}%`);
    });
    this.table.style.setProperty("--table-width", `${all}rem`);
  }

  total() {
    return this.fleet.count;
  }

  keyOf(column, descending) {
    // What is not known stands behind the others, whichever way they are sorted.
    const missing = descending ? -Infinity : Infinity;
    return (index) => (column.places[index] === 0 ? missing : column.rankAt(index));
  }

  /** Whether a capture is looked for. Texts repeat, so each is searched once. */
  filter() {
    const wanted = this.search.value.trim().toLowerCase();
    const chosen = this.choices.filter(({select}) => select.value !== "")
      .map(({column, select}) => [column, Number(select.value)]);
    const ranges = [...this.ranges];
    const columns = [...this.fleet.columns.values()];
    const found = columns.map(({texts}) => (wanted === "" ? [] : texts.map((text) => (
      text.toLowerCase().includes(wanted)))));
    return (index) => chosen.every(([column, place]) => column.places[index] === place)
      && ranges.every(([column, range]) => range.holds(column.rankAt(index)))
      && (wanted === "" || columns.some((column, place) => found[place][column.places[index]]));
  }

  clear() {
    this.search.value = "";
    for (const {select} of this.choices) {
      select.value = "";
    }
    this.ranges.clear();
    this.showRanges();
  }

  /** Shows the captures with these texts in columns that can be chosen by. */
  only(texts) {
    this.clear();
    for (const {column, select} of this.choices) {
      if (texts[column.id] !== undefined) {
        select.value = String(column.texts.indexOf(texts[column.id]));
      }
    }
    this.refresh();
    this.frame.parentElement.scrollIntoView();
    this.table.focus({preventScroll: true});
  }

  /** Shows those in a range of a column, or ends that. */
  toggleRange(column, range) {
    if (this.ranges.get(column) === range) {
      this.ranges.delete(column);
    } else {
      this.ranges.set(column, range);
    }
    this.showRanges();
    this.refresh();
  }

  showRanges() {
    this.chips.replaceChildren(...[...this.ranges].map(([column, range]) => element("button", {
      type: "button", "aria-label": `end the filter ${column.name}: ${range.name}`,
      onclick: () => this.toggleRange(column, range),
    }, `${column.name}: ${range.name} \u2715`)));
    if (this.onranges) {
      this.onranges();
    }
  }

  cellsOf(index) {
    return this.columns.map((column) => {
      const text = shortened(column.textAt(index), MOST_CHARACTERS);
      // Of a row it is the row that keys reach, and the details have the link for them.
      const shown = column.id === "capture" ? captureLink(this.fleet, index, {tabindex: "-1"})
        : column.id === "status" ? this.statusText(index) : text;
      return element("td", {class: column.isNumeric ? "number" : undefined}, shown);
    });
  }

  /** With the error, if there is one. */
  statusText(index) {
    const [status, error] = ["status", "error"].map((id) => this.fleet.columns.get(id).textAt(index));
    return shortened(error === "" ? status : `${status}: ${error}`, MOST_CHARACTERS);
  }

  hasFailed(index) {
    return this.fleet.columns.get("status").textAt(index) !== "ok";
  }

  showDetails(index) {
    const {fleet} = this;
    const hasPage = fleet.columns.get("page").textAt(index) !== "";
    this.details.replaceChildren(element("h3", {}, captureLink(fleet, index)),
      hasPage ? null : note("It has no page of its own here."),
      element("dl", {class: "facts"}, ...this.groups.flatMap(({columns}) => columns)
        .filter((column) => column.textAt(index) !== "")
        .flatMap((column) => [element("dt", {}, column.name), element("dd", {}, column.textAt(index))])));
  }

  drawForPrint() {
    this.setColumns(PRINTED.map((id) => this.fleet.columns.get(id)));
    super.drawForPrint();
  }

  drawForScreen() {
    this.showGroups();
    super.drawForScreen();
  }
}
