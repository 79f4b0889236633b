// What the timeline shows of a run: lanes of bars, marks and steps. Times are seconds since the origin.

/** Labels by `page_lane` of page_rows.h, with a short form for narrow pages. */
const MESSAGE_LANES = [
  ["RRC uplink \u2191", "RRC \u2191"],
  ["RRC downlink \u2193", "RRC \u2193"],
  ["broadcast", "cell"],
  ["paging", "paging"],
  ["NAS uplink \u2191", "NAS \u2191"],
  ["NAS downlink \u2193", "NAS \u2193"],
  ["NAS, way unknown", "NAS ?"],
  ["IP", "IP"],
  ["other", "other"],
];

/** The settings that decide about sleep come first; others that change follow. */
const STEP_LANES = [
  ["granted", "T3324", "T3324", "T3324"],
  ["granted", "T3412 extended", "T3412 extended", "T3412e"],
  ["granted", "eDRX cycle", "eDRX cycle", "eDRX"],
  ["broadcast", "default paging cycle", "paging cycle", "pg cycle"],
  ["broadcast", "MPDCCH repetitions for paging", "MPDCCH repetitions", "pg rep."],
  ["broadcast", "NPDCCH repetitions for paging", "NPDCCH repetitions", "pg rep."],
  ["configured", "long DRX cycle", "C-DRX cycle", "C-DRX"],
];
const MOST_STEP_LANES = 9;

/** All changes of all settings, by role and name. */
function settingSteps(run, seconds) {
  const {records} = run;
  const steps = new Map();
  const told = new Map();
  for (let index = 0; index < records.count; ++index) {
    const text = records.settings[index];
    if (text === 0) {
      continue;
    }
    if (!told.has(text)) {
      const values = new Map();
      for (const setting of settingsIn(records.texts[text])) {
        const key = `${setting.role} ${setting.name}`;
        const value = valueText(setting);
        values.set(key, values.has(key) ? `${values.get(key)}, ${value}` : value);
      }
      told.set(text, values);
    }
    for (const [key, value] of told.get(text)) {
      const known = steps.get(key) || [];
      if (known.length === 0 || known[known.length - 1].value !== value) {
        known.push({from: seconds(records.time[index]), value, index});
        steps.set(key, known);
      }
    }
  }
  return steps;
}

function stepLanes(run, seconds, end) {
  const steps = settingSteps(run, seconds);
  const chosen = STEP_LANES.map(([role, name, ...labels]) => [`${role} ${name}`, ...labels])
    .filter(([key]) => steps.has(key));
  for (const [key, values] of steps) {
    if (values.length > 1 && !chosen.some(([known]) => known === key)) {
      chosen.push([key, key.slice(key.indexOf(" ") + 1), key.slice(key.indexOf(" ") + 1)]);
    }
  }
  const ends = new Map(run.summary.settings.filter((entry) => entry.ended_in).map((entry) => (
    [`${entry.role} ${entry.name}`, seconds(run.records.time[entry.ended_in - 1])])));
  return chosen.slice(0, MOST_STEP_LANES).map(([key, label, short]) => ({
    kind: "steps", label: shortened(label, 24), short: shortened(short, 8), name: key, height: 24,
    bars: steps.get(key).map((step, place, all) => (
      {...step, to: place + 1 < all.length ? all[place + 1].from : ends.get(key) ?? end})),
  }));
}

/** When the modem is connected, and when the network lets it sleep after a release. */
function stateBars(run, seconds, end) {
  const {records} = run;
  const states = [];
  const sleeps = [];
  let released = null;
  let psm = {active: null};
  let ended = 0;
  const endIdle = (to, index) => {
    if (released === null) {
      return;
    }
    states.push({state: "idle", from: released.at, to, index: released.index});
    if (psm.active !== null && released.at + psm.active < to) {
      const asleep = released.at + psm.active;
      sleeps.push({state: "reachable", from: released.at, to: asleep, index: released.index},
        {state: "asleep", from: asleep, to: Math.min(to, released.at + psm.period), index,
          period: psm.period});
    } else if (psm.active !== null) {
      sleeps.push({state: "reachable", from: released.at, to, index: released.index});
    }
    released = null;
  };
  for (let index = 0; index < records.count; ++index) {
    const marks = records.marks[index];
    psm = powerSaving(run, index, psm);
    if (marks & REQUEST) {
      endIdle(seconds(records.time[index]), index);
    }
    if (marks & RELEASE) {
      endIdle(seconds(records.time[index]), index);
      const connection = records.connections[ended];
      if (connection && connection.last === index) {
        ++ended;
        states.push({state: "connected", from: seconds(connection.begin),
          to: seconds(connection.content), until: seconds(connection.end), connection,
          index: connection.first});
      }
      released = {at: seconds(records.time[index]), index};
    }
  }
  endIdle(end, records.count - 1);
  const open = run.summary.open_connection;
  if (open) {
    const index = open.first_record - 1;
    states.push({state: "open", from: seconds(records.time[index]), to: end, index,
      connection: {cause: open.cause}});
  }
  return {states, sleeps};
}

const GRANTS = new WeakMap();

/** What a record grants, by name. */
function grantedIn(run, index) {
  if (!GRANTS.has(run)) {
    GRANTS.set(run, new Map());
  }
  const known = GRANTS.get(run);
  const text = run.records.settings[index];
  if (!known.has(text)) {
    known.set(text, new Map((text === 0 ? [] : settingsIn(run.records.texts[text]))
      .filter(({role}) => role === "granted").map((setting) => [setting.name, setting])));
  }
  return known.get(text);
}

/**
 * The power saving behind a record: its times in seconds, or null. An accept without T3324 ends it,
 * and so do rejects and detaches (3GPP TS 24.301, 5.3.11). T3412 stays where an accept has none;
 * T3412 extended counts as not there where it is deactivated (24.008, table 10.5.163a). A
 * period that is deactivated, or 0, has no end.
 */
function powerSaving(run, index, former) {
  const marks = run.records.marks[index];
  if (marks & REGISTRATION_END) {
    return {...former, active: null};
  }
  if (!(marks & ACCEPT)) {
    return former;
  }
  const granted = grantedIn(run, index);
  const seconds = (setting) => (
    setting && setting.unit === "s" && setting.known ? Number(setting.value) : null);
  const basic = granted.get("T3412") ?? former.basic;
  const extended = granted.get("T3412 extended");
  const timer = extended && extended.value !== "deactivated" ? extended : basic;
  const active = seconds(granted.get("T3324"));
  return {active, basic, period: Math.max(seconds(timer) || Infinity, active)};
}

/** Marks in the order of their times, which may go back in a trace. */
function markLane(run, seconds, labels, indexes) {
  const {time} = run.records;
  indexes.sort((one, other) => time[one] - time[other] || one - other);
  return {
    kind: "marks", label: labels[0], short: labels[1], height: 26,
    indexes, at: Float64Array.from(indexes, (index) => seconds(time[index])),
  };
}

function messageLanes(run, seconds) {
  const {records} = run;
  const members = MESSAGE_LANES.map(() => []);
  const trouble = [];
  for (let index = 0; index < records.count; ++index) {
    members[records.lane[index]].push(index);
    if (isTrouble(run, index)) {
      trouble.push(index);
    }
  }
  const lanes = members.map((indexes, place) => (
    indexes.length > 0 ? markLane(run, seconds, MESSAGE_LANES[place], Uint32Array.from(indexes)) : null));
  if (trouble.length > 0) {
    lanes.push({...markLane(run, seconds, ["failed, malformed, log", "trouble"],
      Uint32Array.from(trouble)), trouble: true});
  }
  return lanes.filter((lane) => lane !== null);
}

function isTrouble(run, index) {
  const {records} = run;
  return records.failure[index] !== 0 || records.log[index] !== 0
    || (records.marks[index] & MALFORMED) !== 0;
}

function microsecondsOf(iso) {
  const numbers = /^(\d+) us$/.exec(iso);
  return numbers ? Number(numbers[1])
    : Date.parse(iso.slice(0, 19) + "Z") * 1000 + Number(iso.slice(20, 26));
}

/** Quiet times longer than this share of the trace are shortened, to this share of all others. */
const QUIET = 0.05;
const SHORTENED = 0.12;
/** How many times shorter the axis has to become. */
const WORTH_IT = 3;

/** The quiet times of all runs together: {from, to, width}, the width being the seconds that they get. */
function quietTimes(runs, begin, end) {
  const times = Float64Array.from(runs.flatMap((run) => (
    Array.from(run.records.time, (time) => (time - run.origin) / MICROSECONDS)))).sort();
  const quiet = [];
  for (let place = 1; place < times.length; ++place) {
    const [from, to] = [times[place - 1], times[place]];
    if (to - from > QUIET * (end - begin)) {
      quiet.push({from, to});
    }
  }
  const all = quiet.reduce((sum, {from, to}) => sum + to - from, 0);
  const width = Math.max(SHORTENED * (end - begin - all), 1e-3);
  if (end - begin < WORTH_IT * (end - begin - all + quiet.length * width)) {
    return [];
  }
  return quiet.map((gap) => {
    const margin = Math.min(width, gap.to - gap.from) / 8;
    return {from: gap.from + margin, to: gap.to - margin, width};
  });
}

/** Places on an axis on which some times are shortened. */
class Axis {
  constructor(quiet) {
    this.quiet = quiet;
  }

  placeOf(time) {
    let place = time;
    for (const {from, to, width} of this.quiet) {
      if (time <= from) {
        break;
      }
      const share = Math.min(time, to) - from;
      place -= share - share / (to - from) * width;
    }
    return place;
  }

  timeAt(place) {
    let saved = 0;
    for (const {from, to, width} of this.quiet) {
      if (place + saved <= from) {
        break;
      }
      const inside = place + saved - from;
      if (inside < width) {
        return from + inside / width * (to - from);
      }
      saved += to - from - width;
    }
    return place + saved;
  }
}

/**
 * @param aligned whether all runs begin at the same place, instead of at their times of day
 * @return lanes from top to bottom, each with its run, and the times that they cover
 */
function timelineModel(runs, aligned) {
  const lanes = [];
  let begin = Infinity;
  let end = -Infinity;
  let origin = null;
  for (const run of runs.filter(({records}) => records.count > 0)) {
    const first = microsecondsOf(run.summary.measured.begin);
    const last = microsecondsOf(run.summary.measured.end);
    if (origin === null || aligned) {
      origin = aligned ? first : first - first % (DAY * MICROSECONDS);
    }
    run.origin = origin;
    const base = origin;
    const seconds = (time) => (time - base) / MICROSECONDS;
    begin = Math.min(begin, seconds(first));
    end = Math.max(end, seconds(last));
    const {states, sleeps} = stateBars(run, seconds, seconds(last));
    const own = [
      {kind: "bars", label: "RRC state", short: "RRC", height: 30, bars: states},
      ...(sleeps.length > 0
        ? [{kind: "bars", label: "PSM allows", short: "PSM", height: 24, bars: sleeps}] : []),
      ...messageLanes(run, seconds),
      ...stepLanes(run, seconds, seconds(last)),
    ];
    own.forEach((lane) => {
      lane.run = run;
      if (lane.bars) {
        lane.bars.sort((one, other) => one.from - other.from);
      }
      if (runs.length > 1) {
        lane.label = `${"AB"[run.number]}  ${lane.label}`;
        lane.short = `${"AB"[run.number]} ${lane.short}`;
      }
    });
    lanes.push(...own);
  }
  const quiet = quietTimes(runs.filter(({records}) => records.count > 0), begin, end);
  return {lanes, begin, end, quiet, aligned, origin: aligned ? 0 : origin};
}
