// Which captures asked for PSM and do not have it, in which networks, since when.

/** Outcomes of those that asked for PSM and have none in the end, with words for them. */
const WITHOUT_PSM = new Map([
  ["not granted", "not granted"],
  ["deactivated", "deactivated by the network"],
  ["no answer", "without an answer in the capture"],
  ["ended", "ended by a later accept"],
]);
const OUTCOMES = [...WITHOUT_PSM.keys(), "granted", "not requested"];
const MOST_NAMED = 3;

/** [{outcome, network, operator, captures, first, last}] in the order of outcomes, most captures first. */
function psmGroups({count, columns}) {
  const groups = new Map();
  const text = (id, index) => columns.get(id).textAt(index);
  for (let index = 0; index < count; ++index) {
    const [outcome, network] = [text("psm", index), text("mcc_mnc", index)];
    if (outcome === "") {
      continue;
    }
    const key = `${outcome} ${network}`;
    if (!groups.has(key)) {
      groups.set(key, {outcome, network, operator: "", captures: [], first: "", last: ""});
    }
    const group = groups.get(key);
    group.captures.push(index);
    group.operator = group.operator || text("operator", index);
    const [begin, end] = [text("begin", index), text("end", index)];
    group.first = group.first === "" || (begin !== "" && begin < group.first) ? begin : group.first;
    group.last = end > group.last ? end : group.last;
  }
  return [...groups.values()].sort((one, other) => (
    OUTCOMES.indexOf(one.outcome) - OUTCOMES.indexOf(other.outcome)
    || other.captures.length - one.captures.length || (one.network < other.network ? -1 : 1)));
}

/** A time to the second; nothing else in its cell is that wide. */
function shortTime(text) {
  return element("span", {class: "short"}, text.replace(/\.\d+Z$/, "Z"));
}

/** A link that is called by the file's name alone. */
function shortLink(fleet, index) {
  const path = fleet.columns.get("capture").textAt(index);
  return captureLink(fleet, index, {title: shortened(path, MOST_OF_A_NAME)}, path.split(/[\\/]/).pop());
}

function psmTable(caption, groups, fleet, list) {
  return table(caption, ["PSM", "network", "operator", "captures", "first seen", "last seen", "which"],
    groups.map(({outcome, network, operator, captures, first, last}) => {
      const links = captures.slice(0, MOST_NAMED).flatMap((index) => [shortLink(fleet, index), element("br")]);
      const show = element("button", {
        type: "button", class: "link", onclick: () => list.only({psm: outcome, mcc_mnc: network}),
        "aria-label": `show ${plural(captures.length, "capture")}: ${outcome}, network ${network || "unknown"}`,
      }, grouped(captures.length));
      return [outcome, network || "unknown", operator, show, shortTime(first), shortTime(last), element("span", {}, ...links,
        captures.length > MOST_NAMED ? `\u2026 and ${grouped(captures.length - MOST_NAMED)} more` : null)];
    }));
}

function showPsm(place, fleet, list) {
  const groups = psmGroups(fleet);
  const sum = (fits) => groups.filter(fits).reduce((count, {captures}) => count + captures.length, 0);
  const without = groups.filter(({outcome}) => WITHOUT_PSM.has(outcome));
  const others = groups.filter(({outcome}) => !WITHOUT_PSM.has(outcome));
  const asked = sum(({outcome}) => outcome !== "not requested");
  const lacking = sum(({outcome}) => WITHOUT_PSM.has(outcome));
  const reasons = [...WITHOUT_PSM].map(([outcome, words]) => [sum((group) => group.outcome === outcome), words])
    .filter(([count]) => count > 0).map(([count, words]) => `${grouped(count)} ${words}`);
  const silent = fleet.count - sum(() => true);
  place.append(element("p", {},
    `PSM was asked for in ${grouped(asked)} of ${plural(fleet.count, "capture")}. `,
    lacking === 0 ? "" : element("strong", {},
      `${grouped(lacking)} of these ${lacking === 1 ? "has" : "have"} none in the end: ${reasons.join(", ")}. `),
    silent === 0 ? "" : `${plural(silent, "capture")} ${silent === 1 ? "says" : "say"} nothing of it.`));
  if (without.length > 0) {
    place.append(psmTable("Asked for, and not in force in the end", without, fleet, list));
  }
  if (others.length > 0) {
    place.append(element("details", {class: "words"}, element("summary", {}, "The others by network"),
      psmTable("Granted, or not asked for", others, fleet, list)));
  }
}
