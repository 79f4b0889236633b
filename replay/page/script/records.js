// The list of all records, of which only those in sight are elements of the page.

const ROW_HEIGHT = 28;
const ROWS_AROUND = 10;
const MOST_PRINTED = 500;
/** Of a text in a row or a hint. */
const MOST_CHARACTERS = 400;

const LANE_NAMES = MESSAGE_LANES.map(([name]) => name);

const LIST_COLUMNS = [
  {name: "record", key: () => (index) => index},
  {name: "time", key: (run) => (index) => run.records.time[index]},
  {name: "channel", key: (run) => (index) => run.records.lane[index]},
  {name: "message", key: (run) => textRanks(run, "name")},
  {name: "what it tells", key: (run) => textRanks(run, "told")},
];

/** The places of a column's texts in their order. */
function textRanks(run, column) {
  const {texts} = run.records;
  const numbers = run.records[column];
  const distinct = [...new Set(numbers)].sort((one, other) => (
    texts[one] < texts[other] ? -1 : texts[one] > texts[other] ? 1 : 0));
  const ranks = new Map(distinct.map((number, rank) => [number, rank]));
  return (index) => ranks.get(numbers[index]);
}

class RecordList {
  constructor(place, runs) {
    this.runs = runs;
    this.run = runs[0];
    this.selected = null;
    this.sorting = {column: 0, descending: false};
    this.build(place);
    this.refresh();
  }

  build(place) {
    const several = this.runs.length > 1;
    this.search = element("input", {
      type: "search", "aria-label": "Search the records", placeholder: "Search messages, values, results, #record",
      oninput: () => this.refresh(),
    });
    this.channel = element("select", {"aria-label": "Channel", onchange: () => this.refresh()},
      element("option", {value: ""}, "all channels"),
      ...LANE_NAMES.map((name, lane) => element("option", {value: String(lane)}, name)));
    this.trouble = element("input", {type: "checkbox", onchange: () => this.refresh()});
    this.chooser = element("select", {
      "aria-label": "Trace", onchange: () => this.setRun(this.runs[Number(this.chooser.value)]),
    }, ...this.runs.map((run) => element("option", {value: String(run.number)}, runName(run))));
    this.count = element("p", {class: "status", role: "status"});
    this.heads = LIST_COLUMNS.map(({name}, column) => element("th", {scope: "col"},
      element("button", {type: "button", onclick: () => this.sortBy(column)}, name)));
    this.body = element("tbody", {});
    this.table = element("table", {
      class: "list", role: "grid", tabindex: "0", "aria-label": "Records",
      onkeydown: (event) => this.pressKey(event),
    }, element("thead", {}, element("tr", {}, ...this.heads)), this.body);
    this.frame = element("div", {class: "list-frame", onscroll: () => this.draw()}, this.table);
    this.details = element("section", {class: "details", "aria-label": "The chosen record", tabindex: "-1"},
      note("Choose a record to see its settings, log messages and result document."));
    this.printed = element("p", {class: "note print-only"});
    place.append(element("div", {class: "tools"}, several ? this.chooser : null, this.search, this.channel,
      element("label", {}, this.trouble, " only failed, malformed or logged"), this.count),
    this.frame, this.printed, this.details);
    this.body.addEventListener("click", (event) => {
      const row = event.target.closest("tr[data-index]");
      if (row !== null) {
        this.choose(Number(row.dataset.index));
        this.table.focus({preventScroll: true});
      }
    });
    addEventListener("beforeprint", () => this.drawForPrint());
    addEventListener("afterprint", () => this.draw(true));
    new ResizeObserver(() => this.draw()).observe(this.frame);
  }

  setRun(run) {
    this.run = run;
    this.chooser.value = String(run.number);
    this.selected = null;
    this.refresh();
  }

  sortBy(column) {
    const {sorting} = this;
    this.sorting = {column, descending: sorting.column === column && !sorting.descending};
    this.refresh();
  }

  /** Chooses the rows anew. */
  refresh() {
    const {run} = this;
    const {count} = run.records;
    const fits = this.filter();
    const rows = [];
    for (let index = 0; index < count; ++index) {
      if (fits(index)) {
        rows.push(index);
      }
    }
    const {column, descending} = this.sorting;
    const key = LIST_COLUMNS[column].key(run);
    const sign = descending ? -1 : 1;
    rows.sort((one, other) => sign * (key(one) - key(other)) || one - other);
    this.rows = rows;
    this.heads.forEach((head, place) => {
      head.setAttribute("aria-sort", place !== column ? "none" : descending ? "descending" : "ascending");
    });
    this.table.setAttribute("aria-rowcount", String(rows.length + 1));
    this.count.textContent = rows.length === count ? plural(count, "record")
      : `${grouped(rows.length)} of ${plural(count, "record")}`;
    this.frame.scrollTop = 0;
    this.draw(true);
  }

  /** Whether a record is looked for. Texts repeat, so each is searched once. */
  filter() {
    const {records} = this.run;
    const wanted = this.search.value.trim().toLowerCase();
    const number = /^#(\d+)$/.exec(wanted);
    const lane = this.channel.value === "" ? null : Number(this.channel.value);
    const found = new Int8Array(records.texts.length);
    const holds = (text) => {
      if (found[text] === 0) {
        found[text] = records.texts[text].toLowerCase().includes(wanted) ? 1 : -1;
      }
      return found[text] === 1;
    };
    return (index) => (lane === null || records.lane[index] === lane)
      && (!this.trouble.checked || isTrouble(this.run, index))
      && (wanted === "" || (number !== null ? index + 1 === Number(number[1])
        : TEXT_COLUMNS.some((column) => holds(records[column][index]))
          || timeText(records.time[index]).toLowerCase().includes(wanted)));
  }

  row(place) {
    const {run} = this;
    const index = this.rows[place];
    const failed = run.records.failure[index] !== 0;
    const told = recordRemarks(run, index).join("; ");
    const cells = [String(index + 1), timeText(run.records.time[index]), LANE_NAMES[run.records.lane[index]],
      textOf(run, "name", index), told];
    return element("tr", {
      "data-index": String(index), id: `record-${index + 1}`, "aria-rowindex": String(place + 2),
      "aria-selected": String(index === this.selected), class: failed ? "failed" : undefined,
    }, ...cells.map((text) => element("td", {}, shortened(text, MOST_CHARACTERS))));
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
    const isShown = this.selected !== null && document.getElementById(`record-${this.selected + 1}`);
    if (isShown) {
      this.table.setAttribute("aria-activedescendant", `record-${this.selected + 1}`);
    } else {
      this.table.removeAttribute("aria-activedescendant");
    }
  }

  /** On paper nothing scrolls: the first rows, and a word on the others. */
  drawForPrint() {
    const shown = Math.min(this.rows.length, MOST_PRINTED);
    this.printed.textContent = shown === this.rows.length ? ""
      : `The first ${grouped(shown)} of ${grouped(this.rows.length)} records; the page itself has all.`;
    const rows = [];
    for (let place = 0; place < shown; ++place) {
      rows.push(this.row(place));
    }
    this.body.replaceChildren(...rows);
  }

  /** Chooses a record, brings its row into sight and shows all that is known of it. */
  choose(index) {
    let place = this.rows.indexOf(index);
    if (place < 0) {
      this.search.value = "";
      this.channel.value = "";
      this.trouble.checked = false;
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
    if (this.onchoose) {
      this.onchoose(this.run, index);
    }
  }

  showDetails(index) {
    const {run} = this;
    const settings = textOf(run, "settings", index);
    const document_ = jsonOf(run, "document", index);
    const log = jsonOf(run, "log", index) || [];
    const marks = run.records.marks[index];
    const fact = (name, value) => [element("dt", {}, name), element("dd", {}, value)];
    this.details.replaceChildren(
      element("h3", {}, `Record ${index + 1}: ${shortened(textOf(run, "name", index), 2000)}`),
      element("p", {}, element("button", {type: "button", onclick: () => actions.locate(run, index)},
        "Show in the timeline")),
      element("dl", {class: "facts"},
        ...fact("time", timeText(run.records.time[index])),
        ...fact("format", textOf(run, "format", index) || "(none)"),
        ...fact("channel", LANE_NAMES[run.records.lane[index]]),
        ...((marks & MALFORMED) !== 0 ? fact("malformed", "tshark could not read it to its end") : []),
        ...(run.records.failure[index] !== 0 ? fact("failed", textOf(run, "failure", index)) : []),
        ...(textOf(run, "told", index) !== "" ? fact("tells", textOf(run, "told", index)) : []),
        ...log.flatMap((text) => fact("log", text))),
      settings === "" ? null : table("Settings", ["setting", "role", "value", "3GPP"],
        settingsIn(settings).map((setting) => [setting.name, setting.role, valueText(setting), setting.clause])),
      element("h4", {}, "Result document"),
      document_ === null ? note("None.") : element("pre", {tabindex: "0"}, JSON.stringify(document_, null, 2)));
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
