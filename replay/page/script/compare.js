// Two runs beside each other: what differs is marked by a word and stands first.

/**
 * @param rows [[name, ...], text of A, text of B, what differs if something does]
 */
function comparison(caption, columns, rows) {
  const marked = rows.map(([names, one, other, word]) => (
    {names, one, other, word: one === other ? "" : word || "\u2260 differs"}));
  const ordered = [...marked.filter(({word}) => word !== ""), ...marked.filter(({word}) => word === "")];
  const frame = table(caption, [...columns, "A", "B", "difference"],
    ordered.map(({names, one, other, word}) => [...names, one, other, word]));
  [...frame.querySelector("tbody").rows].forEach((row, place) => (
    row.classList.toggle("differs", ordered[place].word !== "")));
  return frame;
}

/** All keys, in the order of A and then B. */
function keysOf(...maps) {
  return [...new Set(maps.flatMap((map) => [...map.keys()]))];
}

/** A comparison of maps of texts. What only one of them has is told as that. */
function comparedMaps(caption, columns, one, other, namesOf = (key) => [key]) {
  return comparison(caption, columns, keysOf(one, other).map((key) => {
    const values = [one, other].map((map) => map.get(key));
    const word = values[0] === undefined ? "\u2260 only in B"
      : values[1] === undefined ? "\u2260 only in A" : undefined;
    return [namesOf(key), values[0] ?? "", values[1] ?? "", word];
  }));
}

function compareSettings(place, runs) {
  const [one, other] = runs.map(({summary}) => new Map(summary.settings.map((entry) => (
    [`${entry.role} ${entry.name}`, lastText(entry)]))));
  place.append(comparedMaps("The values in force at the end", ["setting", "role"], one, other, (key) => {
    const blank = key.indexOf(" ");
    return [key.slice(blank + 1), key.slice(0, blank)];
  }));
}

const STATISTICS = [["least", "minimum_s"], ["median", "median_s"], ["greatest", "maximum_s"], ["sum", "sum_s"]];

/** Which of two numbers is larger, and by how much. */
function differenceText(one, other, text) {
  const sign = other > one ? "+" : "\u2212";
  return `\u2260 ${sign}${text(Math.abs(other - one))}`;
}

function compareMeasured(place, runs) {
  const measured = runs.map(({summary}) => summary.measured);
  const rows = DURATIONS.flatMap(([name, member]) => {
    const [one, other] = measured.map((figures) => figures[member]);
    return [
      [[`${name}: count`], grouped(one.count), grouped(other.count),
        differenceText(one.count, other.count, grouped)],
      ...(one.count === 0 && other.count === 0 ? [] : STATISTICS.map(([statistic, key]) => [
        [`${name}: ${statistic}`],
        ...[one, other].map((figures) => (figures.count === 0 ? "" : durationText(figures[key]))),
        one.count > 0 && other.count > 0 ? differenceText(one[key], other[key], durationText) : undefined])),
    ];
  });
  const figures = runs.map((run) => new Map(figureRows(run)));
  const messages = runs.map(({summary}) => new Map(Object.entries(summary.messages).map(([name, count]) => (
    [name, grouped(count)]))));
  place.append(element("div", {class: "side-by-side"},
    comparison("Durations, from time stamps", ["duration"], rows),
    comparedMaps("Figures", ["figure"], ...figures),
    comparedMaps("Messages", ["message"], ...messages)));
}

function compareProfiles(place, runs) {
  for (const run of runs) {
    const {profile} = run.summary;
    const {written, reason} = profile;
    place.append(element("p", {}, `${runName(run)}: `, element("strong", {}, written ? "written" : "not written"),
      ` ${fileOf(profile)}`, written ? "" : `. ${reason}`));
  }
  const values = runs.map(({summary}) => new Map(Object.entries(summary.profile.values || {})));
  if (keysOf(...values).length > 0) {
    place.append(comparedMaps("The values of the profiles", ["member"], ...values));
  }
}
