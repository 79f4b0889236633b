// Elements of the page. Texts become text nodes, never markup.

function element(tag, attributes = {}, ...children) {
  const made = document.createElement(tag);
  for (const [name, value] of Object.entries(attributes)) {
    if (name.startsWith("on")) {
      made.addEventListener(name.slice(2), value);
    } else if (value === true) {
      made.setAttribute(name, "");
    } else if (value !== false && value !== undefined) {
      made.setAttribute(name, value);
    }
  }
  made.append(...children.filter((child) => child !== null && child !== undefined));
  return made;
}

/** Texts up to this length stay on one line. */
const SHORT_CELL = 14;
const MOST_NARROW_COLUMNS = 4;

/**
 * @param columns texts
 * @param rows arrays of texts and elements; the first of a row is its header
 */
function table(caption, columns, rows) {
  const attributes = {class: columns.length > MOST_NARROW_COLUMNS ? "wide" : undefined};
  return element("div", {class: "table-frame"}, element("table", attributes,
    element("caption", {}, caption),
    element("thead", {}, element("tr", {}, ...columns.map((column) => (
      element("th", {scope: "col"}, column))))),
    element("tbody", {}, ...rows.map((row) => element("tr", {}, ...row.map((cell, place) => (
      element(place === 0 ? "th" : "td", {
        scope: place === 0 ? "row" : undefined,
        class: typeof cell === "string" && cell.length <= SHORT_CELL ? "short" : undefined,
      }, cell))))))));
}

function note(text) {
  return element("p", {class: "note"}, text);
}
