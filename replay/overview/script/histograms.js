// How many captures have which value.

const HISTOGRAMS = [
  ["t3324_granted_s", "T3324, granted"],
  ["t3412_extended_granted_s", "T3412 extended, granted"],
  ["edrx_granted_s", "eDRX cycle, granted"],
  ["silence_before_release_median_s", "Silence before release, median of each capture"],
];
/** Up to so many values have a bar each; timers of 3GPP have few. */
const MOST_VALUES = 16;

function medianOf(sorted) {
  const middle = Math.floor(sorted.length / 2);
  return sorted.length % 2 === 1 ? sorted[middle] : (sorted[middle - 1] + sorted[middle]) / 2;
}

/** 1, 2, 5, 10, 20, ... from the last one that is not above the least number to the first above the greatest. */
function edgesOf(least, greatest) {
  const edges = [];
  for (let exponent = Math.floor(Math.log10(least)) - 1; ; ++exponent) {
    for (const digit of [1, 2, 5]) {
      const edge = Number(`${digit}e${exponent}`);
      if (edge <= least) {
        edges.length = 0;
      }
      edges.push(edge);
      if (edge > greatest) {
        return edges;
      }
    }
  }
}

/** [{name, holds(number)}] that hold each of the numbers once. */
function rangesOf(sorted) {
  const distinct = [...new Set(sorted)];
  if (distinct.length <= MOST_VALUES) {
    return distinct.map((value) => ({name: durationText(value), holds: (number) => number === value}));
  }
  const ranges = distinct[0] <= 0 ? [{name: "0 s or less", holds: (number) => number <= 0}] : [];
  const edges = edgesOf(distinct.find((number) => number > 0), distinct[distinct.length - 1]);
  for (let place = 0; place + 1 < edges.length; ++place) {
    const [from, to] = [edges[place], edges[place + 1]];
    ranges.push({name: `${from} to ${to} s`, holds: (number) => number >= from && number < to});
  }
  return ranges;
}

/** What a histogram shows, in words. */
function wordsOf(sorted, count, isBinned) {
  if (sorted.length === 0) {
    return "No capture has it.";
  }
  const missing = count - sorted.length;
  return `${plural(sorted.length, "capture")}: least ${durationText(sorted[0])}, median ${
    durationText(medianOf(sorted))}, greatest ${durationText(sorted[sorted.length - 1])}.${
    missing > 0 ? ` ${plural(missing, "capture")} ${missing === 1 ? "does" : "do"} not have it.` : ""}${
    isBinned ? " A bar has its first number, and none of its last." : ""}`;
}

function histogram(fleet, list, [id, title]) {
  const column = fleet.columns.get(id);
  const sorted = column.numbers().sort((one, other) => one - other);
  const ranges = rangesOf(sorted);
  const counts = ranges.map(({holds}) => sorted.filter(holds).length);
  const greatest = Math.max(...counts);
  const bars = ranges.map((range, place) => {
    const filled = element("span", {class: "bar-filled"});
    filled.style.width = `${100 * counts[place] / greatest}%`;
    const made = element("button", {
      type: "button", class: "bar", "aria-pressed": "false", disabled: counts[place] === 0,
      "aria-label": `${range.name}: ${plural(counts[place], "capture")}`,
      onclick: () => list.toggleRange(column, range),
    }, element("span", {class: "bar-name"}, range.name),
    element("span", {class: "bar-line"}, filled), element("span", {class: "bar-count"}, grouped(counts[place])));
    return {made, isChosen: () => list.ranges.get(column) === range};
  });
  const isBinned = new Set(sorted).size > MOST_VALUES;
  const card = element("article", {class: "card", id: `histogram-${id}`}, element("h3", {}, title),
    element("p", {class: "note"}, wordsOf(sorted, fleet.count, isBinned)),
    element("ul", {class: "bars"}, ...bars.map(({made}) => element("li", {}, made))));
  return {card, bars};
}

function showHistograms(place, fleet, list) {
  const histograms = HISTOGRAMS.map((entry) => histogram(fleet, list, entry));
  place.append(element("p", {class: "note keys"},
    "A click on a bar, or Enter, lists its captures below; another one ends that."),
    element("div", {class: "histograms"}, ...histograms.map(({card}) => card)));
  list.onranges = () => histograms.forEach(({bars}) => bars.forEach(({made, isChosen}) => (
    made.setAttribute("aria-pressed", String(isChosen())))));
}
