// The timeline: the chart with its zoom, its hints and its keys.

const WIDE = 600;
const AXIS_HEIGHT = 44;
/** Of the line that names shortened times. */
const QUIET_HEIGHT = 18;
const SHORTEST_RANGE = 1e-4;
/** How near the pointer has to be to a mark, in pixels. */
const REACH = 10;
/** How long a click waits for a second one, in milliseconds. */
const DOUBLE_CLICK = 250;

/** Distances between the axis' labels, in seconds. */
const INCREMENTS = [1e-5, 1e-4, 1e-3, 0.002, 0.005, 0.01, 0.02, 0.05, 0.1, 0.2, 0.5, 1, 2, 5, 10, 15, 30,
  MINUTE, 2 * MINUTE, 5 * MINUTE, 10 * MINUTE, 15 * MINUTE, 30 * MINUTE, HOUR, 2 * HOUR, 3 * HOUR,
  6 * HOUR, 12 * HOUR, DAY, 2 * DAY, 7 * DAY, 28 * DAY, 182 * DAY, 365 * DAY, 3650 * DAY, 36500 * DAY];

class Chart {
  constructor(place, model, hint, status) {
    this.model = model;
    this.hint = hint;
    this.status = status;
    this.place = place;
    this.selected = null;
    this.lane = -1;
    this.setAxis(model.quiet);
    this.wanted = [this.begin, this.end];
    let top = model.quiet.length > 0 ? QUIET_HEIGHT : 0;
    for (const lane of model.lanes) {
      lane.top = top;
      top += lane.height;
    }
    this.height = top;
    this.palette = readPalette();
    this.plot = new uPlot(this.options(), [[this.begin, this.end], [0, 0]], place);
    this.listen();
  }

  /** @param quiet the times to shorten */
  setAxis(quiet) {
    this.axis = new Axis(quiet);
    const first = this.axis.placeOf(this.model.begin);
    const last = this.axis.placeOf(this.model.end);
    const margin = Math.max((last - first) * 0.01, 1e-3);
    this.begin = first - margin;
    this.end = last + margin;
  }

  /** Shows quiet times in full, or shortened. */
  shorten(yes) {
    this.setAxis(yes ? this.model.quiet : []);
    this.plot.setData([[this.begin, this.end], [0, 0]], false);
    this.showAll();
  }

  width() {
    return Math.max(this.place.clientWidth, 260);
  }

  options() {
    const width = this.width();
    const gutter = width < WIDE ? 74 : 160;
    const font = "12px system-ui, sans-serif";
    const {lanes} = this.model;
    return {
      width,
      height: this.height + AXIS_HEIGHT + 8,
      padding: [4, 28, 4, 0],
      legend: {show: false},
      cursor: {
        y: false,
        points: {show: false},
        drag: {x: true, y: false, dist: 4},
        // With Shift, a drag moves the chart instead.
        bind: {mousedown: (plot, target, handler) => (event) => (
          event.shiftKey ? null : handler(event))},
      },
      scales: {
        x: {time: false},
        y: {range: () => [0, this.height]},
      },
      series: [{}, {scale: "y", paths: () => null, points: {show: false}}],
      axes: [
        {
          size: AXIS_HEIGHT,
          font,
          stroke: () => this.palette.muted,
          grid: {stroke: () => this.palette.line, width: 1},
          ticks: {stroke: () => this.palette.line, width: 1},
          splits: (plot, axis, from, to) => this.splits(plot, from, to),
          values: (plot, splits) => this.axisLabels(splits),
        },
        {
          scale: "y",
          size: gutter,
          gap: 6,
          font,
          stroke: () => this.palette.text,
          grid: {show: false},
          ticks: {show: false},
          splits: () => lanes.map((lane) => this.height - lane.top - lane.height / 2),
          values: () => lanes.map((lane) => (width < WIDE ? lane.short : lane.label)),
        },
      ],
      hooks: {
        drawAxes: [(plot) => this.drawBackground(plot)],
        draw: [(plot) => this.draw(plot)],
        setScale: [(plot, scale) => scale === "x" && this.announceRange()],
      },
    };
  }

  // The axis

  /** Round times, as far as they are in sight and not shortened. */
  splits(plot, from, to) {
    const most = Math.max(2, Math.floor(plot.bbox.width / devicePixelRatio / 100));
    const increment = INCREMENTS.find((step) => (to - from) / step <= most)
      || INCREMENTS[INCREMENTS.length - 1];
    this.increment = increment;
    const distance = (to - from) / most;
    const splits = [];
    let first = this.axis.timeAt(from);
    for (const {from: until, to: next} of [...this.axis.quiet, {from: Infinity, to: Infinity}]) {
      const last = Math.min(until, this.axis.timeAt(to));
      for (let time = Math.ceil(first / increment) * increment; time <= last; time += increment) {
        const place = this.axis.placeOf(Number(time.toFixed(6)));
        if (splits.length === 0 || place - splits[splits.length - 1] >= distance * 0.9) {
          splits.push(place);
        }
      }
      first = Math.max(first, next);
    }
    return splits;
  }

  axisLabels(splits) {
    let lastDay = null;
    return splits.map((split) => {
      const time = this.axis.timeAt(split);
      if (this.model.aligned) {
        return this.elapsed(Math.round(time * MICROSECONDS) / MICROSECONDS);
      }
      const text = timeText(Math.round(this.model.origin + time * MICROSECONDS));
      const [day, clock] = text.split("T");
      if (clock === undefined) {
        return text;
      }
      const shown = this.increment >= MINUTE ? clock.slice(0, 5)
        : this.increment >= 1 ? clock.slice(0, 8) : clock.slice(0, -1).replace(/0{1,6}$/, "").replace(/\.$/, "");
      const label = day === lastDay ? shown : `${shown}\n${day}`;
      lastDay = day;
      return this.increment >= DAY ? day : label;
    });
  }

  elapsed(seconds) {
    const sign = seconds < 0 ? "\u2212" : "+";
    const whole = Math.abs(seconds);
    const part = (unit, of) => String(Math.floor(whole / unit) % of).padStart(2, "0");
    const fraction = this.increment < 1 ? (whole % 1).toFixed(4).slice(1).replace(/0+$/, "").replace(/\.$/, "") : "";
    return `${sign}${Math.floor(whole / HOUR)}:${part(MINUTE, 60)}:${part(1, 60)}${fraction}`;
  }

  // Drawing

  drawBackground(plot) {
    const {ctx: context} = plot;
    const ratio = devicePixelRatio;
    const {left, top, width} = plot.bbox;
    context.save();
    context.strokeStyle = this.palette.line;
    context.lineWidth = 1;
    for (const lane of this.model.lanes) {
      const y = Math.round(top + lane.top * ratio) + 0.5;
      context.beginPath();
      context.moveTo(left, y);
      context.lineTo(left + width, y);
      context.stroke();
    }
    this.drawQuiet(plot);
    context.restore();
  }

  /** Shortened times, each with its length. */
  drawQuiet(plot) {
    const {ctx: context} = plot;
    const {left, top, width, height} = plot.bbox;
    const ratio = devicePixelRatio;
    const position = (time) => Math.min(Math.max(
      plot.valToPos(this.axis.placeOf(time), "x", true), left), left + width);
    context.font = `${11 * ratio}px system-ui, sans-serif`;
    context.textAlign = "center";
    context.textBaseline = "middle";
    for (const {from, to} of this.axis.quiet) {
      const [begin, end] = [position(from), position(to)];
      context.fillStyle = this.palette.panel;
      context.fillRect(begin, top, end - begin, height);
      const steps = to - from < 10 ? 10 : 1;
      const length = Math.round((to - from) * steps) / steps;
      const text = `\u22ef ${durationText(length).replace(/^.*\((.*)\)$/, "$1")} \u22ef`;
      if (end - begin > context.measureText(text).width) {
        context.fillStyle = this.palette.muted;
        context.fillText(text, (begin + end) / 2, top + QUIET_HEIGHT / 2 * ratio);
      }
    }
  }

  draw(plot) {
    const {ctx: context} = plot;
    const ratio = devicePixelRatio;
    const area = {left: plot.bbox.left / ratio, width: plot.bbox.width / ratio};
    const top = plot.bbox.top / ratio;
    const position = (time) => plot.valToPos(this.axis.placeOf(time), "x", true) / ratio;
    context.save();
    context.beginPath();
    context.rect(plot.bbox.left, plot.bbox.top, plot.bbox.width, plot.bbox.height);
    context.clip();
    context.scale(ratio, ratio);
    context.font = "11px system-ui, sans-serif";
    context.textAlign = "left";
    const painter = new Painter(context, ratio, this.palette, position, area);
    const sight = [plot.scales.x.min, plot.scales.x.max].map((place) => this.axis.timeAt(place));
    this.model.lanes.forEach((lane, number) => {
      painter[lane.kind](lane, top + lane.top, sight);
      if (number === this.lane) {
        context.strokeStyle = this.palette.selection;
        context.lineWidth = 2;
        context.strokeRect(area.left + 1, top + lane.top + 1, area.width - 2, lane.height - 2);
      }
    });
    if (this.selected !== null) {
      const {run, index} = this.selected;
      const x = position(this.timeOf(run, index));
      context.strokeStyle = this.palette.selection;
      context.lineWidth = 2;
      context.setLineDash([5, 3]);
      context.beginPath();
      context.moveTo(x, top);
      context.lineTo(x, top + this.height);
      context.stroke();
    }
    context.restore();
  }

  timeOf(run, index) {
    return (run.records.time[index] - run.origin) / MICROSECONDS;
  }

  // The range

  /** What is to be in sight; the chart follows when the script has ended. */
  range() {
    return this.wanted;
  }

  setRange(from, to) {
    const {begin, end} = this;
    const span = Math.min(Math.max(to - from, SHORTEST_RANGE), end - begin);
    const low = Math.min(Math.max(from, begin), end - span);
    this.wanted = [low, low + span];
    this.plot.setScale("x", {min: low, max: low + span});
  }

  /** @param factor below 1 to see less, around the place */
  zoom(factor, around) {
    const [from, to] = this.range();
    const centre = around === undefined ? (from + to) / 2 : around;
    const span = Math.max((to - from) * factor, SHORTEST_RANGE);
    const low = centre - (centre - from) * span / (to - from);
    this.setRange(low, low + span);
  }

  pan(share) {
    const [from, to] = this.range();
    const {begin, end} = this;
    const shift = Math.min(Math.max((to - from) * share, begin - from), end - to);
    this.setRange(from + shift, to + shift);
  }

  showAll() {
    this.setRange(this.begin, this.end);
  }

  announceRange() {
    const {min: from, max: to} = this.plot.scales.x;
    this.wanted = [from, to];
    const [begin, end] = this.wanted.map((place) => this.axis.timeAt(place));
    this.status.textContent = `${this.momentText(begin)} to ${this.momentText(end)}, ${
      durationText(Number((end - begin).toPrecision(4)))}`;
  }

  momentText(seconds) {
    return this.model.aligned ? this.elapsed(Math.max(Math.round(seconds * 1000) / 1000, 0))
      : timeText(Math.round(this.model.origin + seconds * MICROSECONDS)).replace(/(\.\d{3})\d{3}Z/, "$1Z");
  }

  // What is at a place

  /** @return {lane, index, bar} or null */
  find(x, y) {
    const lane = this.model.lanes.find((candidate) => (
      y >= candidate.top && y < candidate.top + candidate.height));
    if (lane === undefined) {
      return null;
    }
    const reach = (time) => Math.abs(this.plot.valToPos(this.axis.placeOf(time), "x") - x);
    const time = this.axis.timeAt(this.plot.posToVal(x, "x"));
    if (lane.kind === "marks") {
      const near = lowerBound(lane.at, time);
      const nearest = [near - 1, near].filter((place) => place >= 0 && place < lane.at.length)
        .sort((one, other) => reach(lane.at[one]) - reach(lane.at[other]))[0];
      return nearest !== undefined && reach(lane.at[nearest]) <= REACH
        ? {lane, index: lane.indexes[nearest]} : null;
    }
    const bar = lane.bars.find((candidate) => (
      time >= candidate.from && time <= (candidate.until || candidate.to)))
      || lane.bars.find((candidate) => reach(candidate.from) <= REACH);
    return bar === undefined ? null : {lane, bar, index: bar.index};
  }

  hintLines({lane, bar, index}) {
    const {run} = lane;
    if (bar === undefined) {
      return [`record ${index + 1}: ${textOf(run, "name", index)}`,
        timeText(run.records.time[index]), ...recordRemarks(run, index)];
    }
    if (lane.kind === "steps") {
      return [`${lane.name} ${bar.value}`, `since record ${index + 1}, for ${
        durationText(bar.to - bar.from)}`];
    }
    const until = bar.until || bar.to;
    const length = durationText(until - bar.from);
    switch (bar.state) {
      case "connected":
        return [`connected ${length}${bar.connection.cause ? ` for ${bar.connection.cause}` : ""}`,
          `silent for the last ${durationText(bar.until - bar.to)}, then released`,
          `records ${bar.connection.first + 1} to ${bar.connection.last + 1}`];
      case "open":
        return ["connected, and not released in the trace"];
      case "idle":
        return [`idle ${length}`];
      case "reachable":
        return [`reachable ${length}: T3324 runs`];
      default:
        return [`PSM allows to sleep ${length}`, bar.period === Infinity
          ? "until there is something to send" : `an update is due ${durationText(bar.period)} after the release`];
    }
  }

  showHint(found, x, y) {
    this.hint.hidden = found === null;
    if (found === null) {
      return;
    }
    this.hint.replaceChildren(...this.hintLines(found).map((line, place) => (
      element(place === 0 ? "strong" : "span", {}, shortened(line, 300)))));
    const over = this.plot.over;
    const left = over.offsetLeft + x + 14;
    const room = this.place.clientWidth - this.hint.offsetWidth - 4;
    this.hint.style.left = `${Math.max(0, Math.min(left, room))}px`;
    this.hint.style.top = `${over.offsetTop + y + 16}px`;
  }

  // Pointer, touch and keys

  listen() {
    const {over} = this.plot;
    const placeOf = (event) => {
      const box = over.getBoundingClientRect();
      return [event.clientX - box.left, event.clientY - box.top];
    };
    over.addEventListener("mousemove", (event) => {
      const found = this.find(...placeOf(event));
      over.classList.toggle("hit", found !== null);
      this.showHint(found, ...placeOf(event));
    });
    over.addEventListener("mouseleave", () => this.showHint(null));
    let pressed = null;
    let going = 0;
    over.addEventListener("mousedown", (event) => {
      pressed = placeOf(event);
    });
    over.addEventListener("click", (event) => {
      const [x, y] = placeOf(event);
      if (pressed !== null && Math.hypot(x - pressed[0], y - pressed[1]) < 4) {
        const found = this.find(x, y);
        clearTimeout(going);
        if (found !== null) {
          going = setTimeout(() => actions.show(found.lane.run, found.index), DOUBLE_CLICK);
        }
      }
    });
    over.addEventListener("dblclick", () => {
      clearTimeout(going);
      this.showAll();
    });
    over.addEventListener("wheel", (event) => {
      const sideways = event.shiftKey ? event.deltaX || event.deltaY : event.deltaX;
      if (event.ctrlKey || event.metaKey) {
        this.zoom(1.0015 ** event.deltaY, this.plot.posToVal(placeOf(event)[0], "x"));
      } else if (sideways !== 0 && Math.abs(sideways) >= Math.abs(event.shiftKey ? 0 : event.deltaY)) {
        this.pan(sideways / over.clientWidth);
      } else {
        return;
      }
      event.preventDefault();
    }, {passive: false});
    this.listenToDrags(over, placeOf);
    this.place.addEventListener("keydown", (event) => this.pressKey(event));
    new ResizeObserver(() => this.resize()).observe(this.place);
    for (const query of ["(prefers-color-scheme: dark)", "print"]) {
      matchMedia(query).addEventListener("change", () => this.repaint());
    }
  }

  /** Fingers, and the mouse with Shift: one moves the chart, two stretch it. */
  listenToDrags(over, placeOf) {
    const fingers = new Map();
    over.addEventListener("pointerdown", (event) => {
      if (event.pointerType === "touch" || event.shiftKey) {
        fingers.set(event.pointerId, placeOf(event)[0]);
        over.setPointerCapture(event.pointerId);
      }
    });
    over.addEventListener("pointermove", (event) => {
      if (!fingers.has(event.pointerId)) {
        return;
      }
      const former = [...fingers.values()];
      fingers.set(event.pointerId, placeOf(event)[0]);
      const now = [...fingers.values()];
      const width = over.clientWidth;
      if (now.length === 1) {
        this.pan((former[0] - now[0]) / width);
      } else {
        const [before, after] = [former, now].map(([one, other]) => Math.abs(one - other));
        const centre = (now[0] + now[1]) / 2;
        this.zoom(Math.max(before, 10) / Math.max(after, 10), this.plot.posToVal(centre, "x"));
        this.pan(((former[0] + former[1]) / 2 - centre) / width);
      }
    });
    for (const end of ["pointerup", "pointercancel"]) {
      over.addEventListener(end, (event) => fingers.delete(event.pointerId));
    }
  }

  pressKey(event) {
    const does = {
      ArrowLeft: () => this.pan(-0.1),
      ArrowRight: () => this.pan(0.1),
      PageUp: () => this.pan(-0.9),
      PageDown: () => this.pan(0.9),
      "+": () => this.zoom(0.5, this.selectedInSight()),
      "=": () => this.zoom(0.5, this.selectedInSight()),
      "-": () => this.zoom(2, this.selectedInSight()),
      0: () => this.showAll(),
      Home: () => this.pan(-Infinity),
      End: () => this.pan(Infinity),
      ArrowUp: () => this.chooseLane(-1),
      ArrowDown: () => this.chooseLane(1),
      n: () => this.step(1),
      p: () => this.step(-1),
      Enter: () => this.selected && actions.show(this.selected.run, this.selected.index),
    }[event.key];
    if (does && !event.ctrlKey && !event.metaKey && !event.altKey) {
      event.preventDefault();
      does();
    }
  }

  selectedInSight() {
    const [from, to] = this.range();
    const place = this.selected && this.axis.placeOf(this.timeOf(this.selected.run, this.selected.index));
    return place !== null && place >= from && place <= to ? place : undefined;
  }

  /** The next lane with marks, or all of them at once. */
  chooseLane(direction) {
    const {lanes} = this.model;
    do {
      this.lane = (this.lane + 1 + direction + lanes.length + 1) % (lanes.length + 1) - 1;
    } while (this.lane >= 0 && lanes[this.lane].kind !== "marks");
    this.status.textContent = this.lane < 0 ? "all lanes" : `lane ${lanes[this.lane].label}`;
    this.plot.redraw(false);
  }

  /** To the next or former record of the lane. */
  step(direction) {
    const lane = this.model.lanes[this.lane] || this.model.lanes[0];
    const {run} = lane;
    let index = this.selected !== null && this.selected.run === run ? this.selected.index : null;
    if (lane.kind !== "marks") {
      index = index === null ? (direction > 0 ? 0 : run.records.count - 1) : index + direction;
    } else {
      const place = index === null ? -1 : lane.indexes.indexOf(index);
      const from = this.axis.timeAt(this.range()[0]);
      const next = place >= 0 ? place + direction
        : lowerBound(lane.at, index === null ? from : this.timeOf(run, index)) - (direction < 0 ? 1 : 0);
      index = next >= 0 && next < lane.indexes.length ? lane.indexes[next] : -1;
    }
    if (index >= 0 && index < run.records.count) {
      this.select(run, index);
      this.status.textContent = [`record ${index + 1}: ${textOf(run, "name", index)}`,
        ...recordRemarks(run, index)].map((line) => shortened(line, 200)).join("; ");
    }
  }

  /** Marks a record, and brings it into sight. */
  select(run, index) {
    this.selected = {run, index};
    const place = this.axis.placeOf(this.timeOf(run, index));
    const [from, to] = this.range();
    if (place < from || place > to) {
      this.setRange(place - (to - from) / 2, place + (to - from) / 2);
    } else {
      this.plot.redraw(false);
    }
  }

  /** Shows a record with its neighbours. */
  locate(run, index) {
    const [from, to] = this.range();
    const placeOf = (record) => this.axis.placeOf(this.timeOf(run, record));
    const near = Math.abs(placeOf(Math.min(index + 5, run.records.count - 1)) - placeOf(Math.max(index - 5, 0)));
    const span = Math.min(to - from, Math.max(near * 1.5, 0.05));
    const at = placeOf(index);
    this.selected = {run, index};
    this.setRange(at - span / 2, at + span / 2);
    this.plot.redraw(false);
  }

  resize(width = this.width()) {
    if (width === this.plot.width) {
      return;
    }
    const range = this.range();
    this.plot.axes[1].size = () => (width < WIDE ? 74 : 160);
    this.plot.axes[1].values = () => this.model.lanes.map((lane) => (
      width < WIDE ? lane.short : lane.label));
    this.plot.setSize({width, height: this.plot.height});
    this.setRange(...range);
  }

  repaint() {
    this.palette = readPalette();
    this.plot.redraw(false);
  }
}

/** What a record tells besides its name, in short lines. */
function recordRemarks(run, index) {
  const {records} = run;
  return [
    (records.marks[index] & MALFORMED) !== 0 ? "malformed" : "",
    records.failure[index] !== 0 ? `failed: ${textOf(run, "failure", index)}` : "",
    textOf(run, "told", index),
    ...(jsonOf(run, "log", index) || []).map((text) => `log: ${text}`),
  ].filter((line) => line !== "");
}

const LEGEND = [
  ["connected", "connected"],
  ["silent", "connected, silent until the release"],
  ["idle", "idle"],
  ["reachable", "reachable (T3324)"],
  ["asleep", "sleep that PSM allows"],
  ["tall", "begins, changes or ends something"],
  ["short", "other message"],
  ["cross", "\u2715 failed"],
  ["diamond", "\u25c6 malformed"],
  ["triangle", "\u25b2 log message"],
];

/** @return the chart; null where there is no record */
function showTimeline(place, runs) {
  const model = timelineModel(runs, runs.length > 1);
  if (model.lanes.length === 0) {
    place.append(note("There is no record."));
    return null;
  }
  const hint = element("div", {class: "hint", hidden: true, "aria-hidden": "true"});
  const status = element("p", {class: "status", role: "status"});
  const frame = element("div", {
    class: "chart", tabindex: "0", role: "application", "aria-describedby": "chart-keys",
    "aria-label": "Timeline; the same in words stands below it",
  });
  const button = (label, title, does) => element("button",
    {type: "button", title, "aria-label": title, onclick: () => does()}, label);
  let chart = null;
  const shortening = element("button", {
    type: "button", "aria-pressed": "true", onclick: () => {
      const yes = shortening.getAttribute("aria-pressed") === "false";
      shortening.setAttribute("aria-pressed", String(yes));
      chart.shorten(yes);
    },
  }, "Quiet times shortened");
  place.append(
    element("div", {class: "tools"},
      button("+", "Zoom in", () => chart.zoom(0.5, chart.selectedInSight())),
      button("\u2212", "Zoom out", () => chart.zoom(2, chart.selectedInSight())),
      button("\u25c0", "Earlier", () => chart.pan(-0.5)),
      button("\u25b6", "Later", () => chart.pan(0.5)),
      button("Whole trace", "Show the whole trace", () => chart.showAll()),
      model.quiet.length > 0 ? shortening : null,
      status),
    element("div", {class: "chart-frame"}, frame, hint),
    element("ul", {class: "legend"}, ...LEGEND.map(([name, text]) => (
      element("li", {}, element("span", {class: `swatch ${name}`, "aria-hidden": "true"}), text)))),
    element("p", {class: "note keys", id: "chart-keys"},
      "Drag to zoom in, double-click for all, Shift and drag to move, Ctrl and wheel to zoom; two fingers zoom, one moves. "
      + "A click on a message finds it in the list. Keys: arrows left and right move, + and \u2212 zoom, 0 shows all, "
      + "up and down choose a lane, n and p go to the next and the former message, Enter finds it in the list."));
  chart = new Chart(frame, model, hint, status);
  return chart;
}
