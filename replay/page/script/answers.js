// The page's heading, and the answers that people look for first.

function findSetting(run, role, name) {
  return run.summary.settings.find((entry) => entry.name === name && entry.role === role);
}

/** Rows of the answers: a name, and what was asked for and what came of it. */
const ANSWERS = [
  ["PSM", [
    ["T3324, time to be reached", "T3324", "requested", "granted"],
    ["T3412 extended, time between updates", "T3412 extended", "requested", "granted"],
    ["T3412", "T3412", null, "granted"],
  ]],
  ["eDRX", [
    ["cycle", "eDRX cycle", "requested", "granted"],
    ["paging time window", "paging time window", "requested", "granted"],
    ["cycle, if WB-S1 mode", "eDRX cycle in WB-S1 mode", "requested", "granted"],
    ["cycle, if NB-S1 mode", "eDRX cycle in NB-S1 mode", "requested", "granted"],
  ]],
  ["Paging", [
    ["cycle", "default paging cycle", null, "broadcast"],
    ["MPDCCH repetitions", "MPDCCH repetitions for paging", null, "broadcast"],
    ["NPDCCH repetitions", "NPDCCH repetitions for paging", null, "broadcast"],
    ["UE-specific cycle", "UE-specific DRX cycle", "requested", "granted"],
    ["UE-specific cycle in NB-S1 mode", "UE-specific DRX cycle in NB-S1 mode", "requested", "granted"],
  ]],
  ["Connected-mode DRX", [
    ["connected-mode DRX", "connected-mode DRX", null, "configured"],
    ["long cycle", "long DRX cycle", null, "configured"],
    ["on-duration", "on-duration timer", null, "configured"],
    ["inactivity timer", "DRX inactivity timer", null, "configured"],
    ["connected-mode eDRX cycle", "connected-mode eDRX cycle", null, "configured"],
  ]],
];

const ROLE_WORDS = {granted: "granted", broadcast: "by the cell", configured: "configured"};

function valueOf(run, entry) {
  return element("span", {}, element("strong", {}, lastText(entry)), " ",
    element("span", {class: "short"}, "(record ", recordLink(run, entry.in_force.record), ")"));
}

function answerCard(run, [title, questions]) {
  const rows = [];
  for (const [label, name, asking, answering] of questions) {
    const asked = asking && findSetting(run, asking, name);
    const given = findSetting(run, answering, name);
    if (!asked && !given) {
      continue;
    }
    const cell = element("dd", {});
    if (asking) {
      cell.append("asked ", asked ? valueOf(run, asked) : "\u2013", element("br"));
    }
    cell.append(`${ROLE_WORDS[answering]} `, given ? valueOf(run, given) : "\u2013");
    if (asked && given && valueText(asked.in_force) !== valueText(given.in_force)) {
      cell.append(" ", element("span", {class: "badge"}, "\u2260 changed"));
    }
    rows.push(element("dt", {}, label), cell);
  }
  return element("article", {class: "card"}, element("h3", {}, title),
    rows.length > 0 ? element("dl", {}, ...rows) : note("Nothing in the trace."));
}

/** Where the profile is, for people. */
function fileOf(profile) {
  return profile.file ?? (profile.written ? "for this report, and not kept" : "");
}

function profileCard(run) {
  const {profile} = run.summary;
  const {written, reason, from_the_trace: members} = profile;
  const differing = (members || []).filter((member) => member.difference).length;
  return element("article", {class: "card"}, element("h3", {}, "Profile"),
    element("p", {}, element("strong", {}, written ? "written" : "not written"), ` ${fileOf(profile)}`),
    element("p", {}, written
      ? `${plural(members.length, "value")} that the trace tells of, ${differing} of them not what was meant`
      : reason));
}

function showAnswers(place, run) {
  place.append(element("div", {class: "cards"},
    ...ANSWERS.map((answer) => answerCard(run, answer)), profileCard(run)));
  const {conclusions} = run.summary;
  if (conclusions.length > 0) {
    place.append(element("h3", {}, "What follows"), element("ul", {class: "conclusions"},
      ...conclusions.map(({text, record}) => (
        element("li", {}, text, " ",
          element("span", {class: "short"}, "(record ", recordLink(run, record), ")"))))));
  }
}

/** From the first record to the last; empty without a record. */
function spanText(run) {
  const {begin, end} = run.summary.measured;
  const seconds = (Date.parse(end) - Date.parse(begin)) / 1000;
  return run.records.count === 0 ? "no record"
    : `${begin} to ${end}${seconds >= 0 ? `, ${durationText(seconds)}` : ""}`;
}

function runHeading(run, several) {
  const {records, with_result: withResult, failed} = run.summary.records;
  const {incomplete} = run.summary;
  const facts = [
    [run.heading.captures.length === 1 ? "capture" : "captures", run.heading.captures.join(", ")],
    ["time", spanText(run)],
    ["records", `${grouped(records)}: ${grouped(withResult)} with a result, ${
      grouped(records - withResult - failed)} without, ${grouped(failed)} failed`],
    ...(incomplete.length === 0 ? [] : [["incomplete", incomplete.join("; ")]]),
    ["made by", `kivra-replay ${run.heading.version}, ${run.heading.tshark || "tshark"}`],
    ["run by", run.heading.runner],
  ];
  return element("div", {class: "run-heading"},
    several ? element("h2", {}, runName(run)) : null,
    element("dl", {class: "facts"}, ...facts.flatMap(([name, value]) => (
      [element("dt", {}, name), element("dd", {}, value)]))));
}

function showHeading(place, runs) {
  const names = runs.flatMap((run) => run.heading.captures.map((capture) => (
    capture.split(/[\\/]/).pop())));
  const title = names.length > 3 ? `${names.slice(0, 3).join(", ")}, \u2026` : names.join(", ");
  document.title = shortened(`${title} \u2013 kivra-replay`, 200);
  place.append(element("h1", {}, shortened(title, 300)),
    element("div", {class: "runs"}, ...runs.map((run) => runHeading(run, runs.length > 1))));
}
