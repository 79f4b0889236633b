// The list of all records.

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

class RecordList extends RowList {
  constructor(place, runs) {
    super("record", "Records", LIST_COLUMNS);
    this.runs = runs;
    this.run = runs[0];
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
    this.details.append(note("Choose a record to see its settings, log messages and result document."));
    place.append(element("div", {class: "tools"}, several ? this.chooser : null, this.search, this.channel,
      element("label", {}, this.trouble, " only failed, malformed or logged"), this.count),
    this.frame, this.printed, this.details);
  }

  setRun(run) {
    this.run = run;
    this.chooser.value = String(run.number);
    this.selected = null;
    this.refresh();
  }

  total() {
    return this.run.records.count;
  }

  keyOf(column) {
    return column.key(this.run);
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

  clear() {
    this.search.value = "";
    this.channel.value = "";
    this.trouble.checked = false;
  }

  cellsOf(index) {
    const {run} = this;
    return [String(index + 1), timeText(run.records.time[index]), LANE_NAMES[run.records.lane[index]],
      textOf(run, "name", index), recordRemarks(run, index).join("; ")]
      .map((text) => element("td", {}, shortened(text, MOST_CHARACTERS)));
  }

  hasFailed(index) {
    return this.run.records.failure[index] !== 0;
  }

  choose(index) {
    super.choose(index);
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
}
