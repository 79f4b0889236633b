// The timeline in words, for those who don't see it.

const MOST_CONNECTIONS_IN_WORDS = 1000;

function showWords(place, run, several) {
  const {connections, time} = run.records;
  const seconds = (from, to) => durationText((to - from) / MICROSECONDS);
  const shown = connections.slice(0, MOST_CONNECTIONS_IN_WORDS);
  const rows = shown.map((connection, number) => {
    const next = connections[number + 1];
    return [timeText(connection.begin), seconds(connection.begin, connection.end),
      connection.cause || "unknown", seconds(connection.content, connection.end),
      next ? seconds(connection.end, next.begin) : "",
      element("span", {}, recordLink(run, connection.first + 1), " to ",
        recordLink(run, connection.last + 1))];
  });
  const title = `The timeline in words${several ? `: ${runName(run)}` : ""}`;
  const {measured, unreadable, records} = run.summary;
  place.append(element("details", {class: "words"}, element("summary", {}, title),
    element("p", {}, `From ${spanText(run)}: ${plural(connections.length, "connection")} from request to release${
      measured.time_connected_percent === undefined ? ""
        : `, ${rounded(measured.time_connected_percent, 1)} % of the time`}; ${
      plural(measured.paging, "paging message")}; ${grouped(records.failed)} failed and ${
      grouped(unreadable.malformed)} malformed.`),
    rows.length === 0 ? null : table("Connections",
      ["begin", "connected", "cause", "silent before the release", "until the next one", "records"], rows),
    connections.length > shown.length ? note(`The first ${grouped(shown.length)} of ${
      grouped(connections.length)}.`) : null,
    time.length === 0 ? null : note("The settings and how they changed stand below.")));
}
