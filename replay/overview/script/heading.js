// The page's heading.

/** The least or greatest text of a column; "" where all cells are empty. */
function firstText(column) {
  return column.texts.slice(1).reduce((one, other) => (one !== "" && one < other ? one : other), "");
}

function lastText(column) {
  return column.texts.reduce((one, other) => (one > other ? one : other), "");
}

/** "20 ok, 2 unreadable": most frequent first. */
function countsText(column) {
  const counts = column.counts();
  return [...counts.keys()].filter((place) => counts[place] > 0)
    .sort((one, other) => counts[other] - counts[one] || one - other)
    .map((place) => `${grouped(counts[place])} ${column.texts[place]}`).join(", ");
}

function showHeading(place, fleet) {
  const {heading, count, planned, columns} = fleet;
  const begin = firstText(columns.get("begin"));
  const end = lastText(columns.get("end"));
  const seconds = (Date.parse(end) - Date.parse(begin)) / 1000;
  const title = count < planned ? `${grouped(count)} of ${plural(planned, "capture")}` : plural(count, "capture");
  document.title = `${title} \u2013 kivra-replay`;
  const facts = [
    ["time", begin === "" ? "no record" : `${begin} to ${end}${seconds >= 0 ? `, ${durationText(seconds)}` : ""}`],
    ["captures", count === 0 ? "none" : countsText(columns.get("status"))],
    ...(count < planned ? [["interrupted", `${grouped(count)} of ${plural(planned, "capture")} done`]] : []),
    ["made by", `kivra-replay ${heading.version}${heading.tshark === "" ? "" : `, ${heading.tshark}`}`],
  ];
  place.append(element("h1", {}, title), element("dl", {class: "facts"}, ...facts.flatMap(([name, value]) => (
    [element("dt", {}, name), element("dd", {}, value)]))));
}
