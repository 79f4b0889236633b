// The runs that the page holds, each with its records as columns.

/** Bits of a record's marks: `page_mark` of page_rows.h. */
const MALFORMED = 1;
const PROCEDURE = 4;
const REQUEST = 8;
const RELEASE = 16;
const ACCEPT = 64;
const REGISTRATION_END = 128;

const TEXT_COLUMNS = ["name", "format", "told", "settings", "document", "failure", "log"];
const FIRST_TEXT = 3;
const CONNECTION = FIRST_TEXT + TEXT_COLUMNS.length;

/** Columns of the rows that page_rows.h describes; `time` in microseconds since 1970-01-01. */
function readRecords(rows) {
  const count = rows.length;
  const records = {
    count,
    texts: [""],
    time: new Float64Array(count),
    lane: new Uint8Array(count),
    marks: new Uint8Array(count),
    connections: [],
  };
  for (const column of TEXT_COLUMNS) {
    records[column] = new Uint32Array(count);
  }
  let time = 0;
  rows.forEach((row, index) => {
    time += row[0];
    records.time[index] = time;
    records.lane[index] = row[1];
    records.marks[index] = row[2];
    TEXT_COLUMNS.forEach((column, place) => {
      const text = row[FIRST_TEXT + place] || 0;
      records[column][index] = typeof text === "string" ? records.texts.push(text) - 1 : text;
    });
    if (row[CONNECTION]) {
      const [first, duration, silence, cause] = row[CONNECTION];
      records.connections.push({
        first: first - 1, last: index, begin: time - duration, content: time - silence, end: time,
        cause,
      });
    }
  });
  return records;
}

/** The text of a record in a column. */
function textOf(run, column, index) {
  return run.records.texts[run.records[column][index]];
}

/** The JSON of a record in a column; null where there is none. */
function jsonOf(run, column, index) {
  const text = textOf(run, column, index);
  return text === "" ? null : JSON.parse(text);
}

/** What the page holds, in its order. The blocks are removed: they are as large as the trace. */
function readRuns() {
  const take = (name) => [...document.querySelectorAll(`script.${name}`)].map((block) => {
    const value = JSON.parse(block.textContent);
    block.remove();
    return value;
  });
  const summaries = take("summary");
  const rows = take("records");
  return take("heading").map((heading, number) => ({
    number,
    heading,
    summary: summaries[number],
    records: readRecords(rows[number]),
  }));
}

/** [{name, value, unit, role, known}] of a text of the column `settings`. */
function settingsIn(text) {
  return JSON.parse(text).map(([name, value, unit, role, clause, known]) => (
    {name, value, unit, role, clause, known}));
}

function valueText({value, unit, known}) {
  return value + (unit ? ` ${unit}` : "") + (known === false ? " (?)" : "");
}

/** What a run is called beside another one. */
function runName(run) {
  return `Trace ${"AB"[run.number]}`;
}

/** What parts of the page ask of others; page.js sets it. */
const actions = {
  /** Shows a record in the list. */
  show: null,
  /** Brings a record into the timeline. */
  locate: null,
};

/** A record's number, which leads to it. */
function recordLink(run, number) {
  return element("button", {
    type: "button", class: "link", onclick: () => actions.show(run, number - 1),
    "aria-label": `show record ${number}`,
  }, String(number));
}
