// The summary's tables.

const ROLES = ["requested", "granted", "broadcast", "configured"];

function historyOf(entry) {
  const values = entry.history.map((change) => valueText(change));
  if (entry.changes > values.length) {
    values.push("\u2026", valueText(entry.in_force));
  }
  return values.join(" \u2192 ");
}

/** The value in force, or that was. */
function lastText(entry) {
  return valueText(entry.in_force) + (entry.ended_in ? ", ended" : "");
}

function showSettings(place, run) {
  if (run.summary.settings.length === 0) {
    place.append(note("No record tells a setting."));
    return;
  }
  const ordered = [...run.summary.settings].sort((one, other) => (
    ROLES.indexOf(one.role) - ROLES.indexOf(other.role)));
  place.append(table("The value in force at the end, who it comes from, and how it changed",
    ["setting", "role", "value", "record", "changes", "values in their order", "3GPP"],
    ordered.map((entry) => [entry.name, entry.role, lastText(entry),
      recordLink(run, entry.in_force.record), String(entry.changes),
      entry.changes > 1 ? historyOf(entry) : "", entry.clause])));
}

const DURATIONS = [
  ["connected", "connected"],
  ["silence before release", "silence_before_release"],
  ["idle between connections", "idle"],
  ["between tracking area updates", "between_area_updates"],
];

/** [name, texts of count, least, median, greatest, sum] of each duration. */
function durationRows(measured) {
  return DURATIONS.map(([name, member]) => {
    const {count, minimum_s: least, median_s: median, maximum_s: greatest, sum_s: sum} =
      measured[member];
    return [name, grouped(count),
      ...(count === 0 ? ["", "", "", ""] : [least, median, greatest, sum].map(durationText))];
  });
}

function areaUpdateTimerText({name, value_s: seconds}) {
  return seconds === undefined ? `${name} without a time` : `${name} ${durationText(seconds)}`;
}

/** [name, text] of each figure that is no duration between records. */
function figureRows({summary}) {
  const {measured, unreadable} = summary;
  return [
    ["time connected", measured.time_connected_percent === undefined ? ""
      : `${rounded(measured.time_connected_percent, 1)} %`],
    ["tracking area updates due by", measured.area_update_timer === undefined ? ""
      : areaUpdateTimerText(measured.area_update_timer)],
    ["connections without beginning or end", grouped(measured.incomplete)],
    ["paging messages", grouped(measured.paging)],
    ...Object.entries(measured.causes).map(([cause, count]) => (
      [`connections for ${cause}`, grouped(count)])),
    ["malformed messages", grouped(unreadable.malformed)],
    ["ciphered NAS messages", grouped(unreadable.ciphered_nas)],
    ["packets of encrypted RRC signalling", grouped(unreadable.encrypted_rrc_packets)],
  ];
}

function showMeasured(place, run) {
  const {summary} = run;
  place.append(
    table("Durations, from time stamps", ["duration", "count", "least", "median", "greatest", "sum"],
      durationRows(summary.measured)),
    element("div", {class: "side-by-side"},
      table("Figures", ["figure", "value"], figureRows(run)),
      table("Messages", ["message", "count"], Object.entries(summary.messages).map(([name, count]) => (
        [name, grouped(count)])))),
    table("Formats", ["format", "records", "with a result", "failed", "note"],
      Object.entries(summary.formats).map(([name, format]) => [name || "(no format)",
        grouped(format.records), grouped(format.with_result), grouped(format.failed),
        format.analysed || name === "" ? ""
          : `not analysed${format.nearest ? `; tshark knows ${format.nearest}` : ""}`])));
}

function showProfile(place, run) {
  const {profile} = run.summary;
  place.append(element("p", {}, element("strong", {}, profile.written ? "Written" : "Not written"),
    ` ${fileOf(profile)}`));
  if (!profile.written) {
    place.append(element("p", {}, profile.reason));
    return;
  }
  place.append(table("Values beside what the trace tells of them",
    ["member", "value", "record", "in the trace", "differs"],
    profile.from_the_trace.map(({member, value, record, truth, difference}) => [member, value,
      recordLink(run, record), truth || "", difference ? `\u2260 ${difference}` : ""])));
  const told = new Set(profile.from_the_trace.map(({member}) => member));
  const defaults = Object.entries(profile.values).filter(([name]) => !told.has(name));
  place.append(element("p", {}, `At their defaults: ${
    defaults.map(([name, value]) => `${name} ${value === "" ? '""' : value}`).join(", ")}.`));
}

function showDiagnostics(place, run) {
  const {diagnostics, incomplete} = run.summary;
  place.append(...incomplete.map((text) => element("p", {}, element("strong", {}, "Incomplete:"), ` ${text}`)));
  if (diagnostics.length === 0 && incomplete.length === 0) {
    place.append(note("None."));
  }
  if (diagnostics.length === 0) {
    return;
  }
  place.append(
    table("What went wrong, or was worth a log message", ["text", "count", "first record", "what it means"],
      diagnostics.map(({text, count, first_record: first, meaning}) => (
        [text, grouped(count), recordLink(run, first), meaning]))));
}
