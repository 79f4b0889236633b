// How lanes are drawn on the chart's canvas. Lengths are in CSS pixels.

const PALETTE = ["text", "muted", "line", "connected", "silent", "idle", "asleep", "reachable",
  "mark", "procedure", "failure", "step", "step-line", "selection", "panel", "on-connected"];

function readPalette() {
  const style = getComputedStyle(document.documentElement);
  return Object.fromEntries(PALETTE.map((name) => [name, style.getPropertyValue(`--${name}`).trim()]));
}

/** Stripes that tell an area apart without its colour. */
function stripes(context, colour, background, ratio) {
  const size = Math.round(8 * ratio);
  const tile = document.createElement("canvas");
  tile.width = size;
  tile.height = size;
  const on = tile.getContext("2d");
  on.fillStyle = background;
  on.fillRect(0, 0, size, size);
  on.strokeStyle = colour;
  on.lineWidth = 1.5 * ratio;
  on.beginPath();
  for (const shift of [-size, 0, size]) {
    on.moveTo(shift, size);
    on.lineTo(shift + size, 0);
  }
  on.stroke();
  return context.createPattern(tile, "repeat");
}

/** The first place in ascending numbers that is not below the value. */
function lowerBound(values, value) {
  let low = 0;
  let high = values.length;
  while (low < high) {
    const middle = (low + high) >> 1;
    if (values[middle] < value) {
      low = middle + 1;
    } else {
      high = middle;
    }
  }
  return low;
}

/** Without the channel that the lane says anyway. */
function shortName(name) {
  const comma = name.indexOf(", ");
  const behind = /^(UL|DL|BCCH|PCCH)/.test(name) && comma >= 0 ? name.slice(comma + 2) : name;
  return shortened(behind, 60);
}

class Painter {
  /**
   * @param position gives the place of a time
   * @param area {left, width} of the lanes
   */
  constructor(context, ratio, palette, position, area) {
    this.context = context;
    this.ratio = ratio;
    this.palette = palette;
    this.position = position;
    this.area = area;
    this.right = area.left + area.width;
    this.silent = stripes(context, palette.connected, palette.silent, ratio);
    this.asleep = stripes(context, palette.idle, palette.asleep, ratio);
  }

  /** Fills from one time to another what is to be seen of it; at least a pixel. */
  fill(style, from, to, top, height) {
    const left = Math.max(this.position(from), this.area.left);
    const right = Math.min(this.position(to), this.right);
    if (right < this.area.left || left > this.right) {
      return null;
    }
    const width = Math.max(right - left, 1);
    this.context.fillStyle = style;
    this.context.fillRect(left, top, width, height);
    return {left, width};
  }

  label(text, place, top, height, colour) {
    if (place === null || place.width < 34) {
      return;
    }
    const {context} = this;
    context.save();
    context.beginPath();
    context.rect(place.left, top, place.width - 4, height);
    context.clip();
    context.fillStyle = colour;
    context.textBaseline = "middle";
    context.fillText(shortened(text, 200), place.left + 5, top + height / 2 + 0.5);
    context.restore();
  }

  bars(lane, top) {
    const inner = top + 4;
    const height = lane.height - 8;
    for (const bar of lane.bars) {
      if (bar.state === "connected" || bar.state === "open") {
        const open = bar.state === "open";
        if (!open) {
          this.fill(this.silent, bar.to, bar.until, inner, height);
        }
        const place = this.fill(this.palette.connected, bar.from, bar.to, inner, height);
        this.label(open ? "connected, no release" : `connected ${bar.connection.cause}`, place, inner,
          height, this.palette["on-connected"]);
      } else if (bar.state === "idle") {
        const place = this.fill(this.palette.idle, bar.from, bar.to, inner + height - 5, 5);
        this.label("idle", place, inner - 3, height - 5, this.palette.muted);
      } else if (bar.state === "reachable") {
        const place = this.fill(this.palette.reachable, bar.from, bar.to, inner, height);
        this.label("reachable", place, inner, height, this.palette.text);
      } else if (bar.to > bar.from) {
        const place = this.fill(this.asleep, bar.from, bar.to, inner, height);
        if (place !== null && place.width > 90) {
          this.context.fillStyle = this.palette.asleep;
          this.context.fillRect(place.left + 3, inner + 1, 84, height - 2);
        }
        this.label("sleep allowed", place, inner, height, this.palette.text);
      }
    }
  }

  steps(lane, top) {
    const inner = top + 3;
    const height = lane.height - 6;
    for (const bar of lane.bars) {
      const place = this.fill(this.palette.step, bar.from, bar.to, inner, height);
      if (place !== null) {
        this.context.fillStyle = this.palette["step-line"];
        this.context.fillRect(place.left, inner, 2, height);
        this.label(bar.value, place, inner, height, this.palette.text);
      }
    }
  }

  marks(lane, top, [from, to]) {
    const first = lowerBound(lane.at, from);
    const last = lowerBound(lane.at, to);
    if (last - first > this.area.width / 2) {
      this.density(lane, top, first, last);
    } else {
      for (let place = first; place < last; ++place) {
        this.mark(lane, top, place, place + 1 < last ? this.position(lane.at[place + 1]) : this.right);
      }
    }
  }

  /** Where marks lie upon each other: a column a pixel, higher for more of them. */
  density(lane, top, first, last) {
    const {context} = this;
    const counts = new Uint32Array(Math.ceil(this.area.width) + 1);
    for (let place = first; place < last; ++place) {
      ++counts[Math.floor(this.position(lane.at[place]) - this.area.left)];
    }
    const bottom = top + lane.height - 3;
    const full = lane.height - 6;
    context.fillStyle = lane.trouble ? this.palette.failure : this.palette.mark;
    counts.forEach((count, column) => {
      if (count > 0) {
        const height = full * Math.min(1, 0.35 + 0.1 * Math.log2(count));
        context.fillRect(this.area.left + column, bottom - height, 1, height);
      }
    });
  }

  mark(lane, top, place, next) {
    const {context, palette} = this;
    const {run} = lane;
    const index = lane.indexes[place];
    const at = this.position(lane.at[place]);
    const failed = run.records.failure[index] !== 0;
    const malformed = (run.records.marks[index] & MALFORMED) !== 0;
    const procedure = (run.records.marks[index] & PROCEDURE) !== 0;
    const middle = top + lane.height / 2;
    let end = at + 2;
    if (failed) {
      this.cross(at, middle);
      end = at + 6;
    } else if (malformed) {
      this.diamond(at, middle);
      end = at + 6;
    } else if (lane.trouble) {
      this.triangle(at, middle);
      end = at + 6;
    } else {
      context.fillStyle = procedure ? palette.procedure : palette.mark;
      const height = procedure ? lane.height - 6 : (lane.height - 6) / 2;
      context.fillRect(at - 1, top + lane.height - 3 - height, 2, height);
    }
    if (next - end > 40) {
      const name = lane.trouble && failed ? textOf(run, "failure", index)
        : shortName(textOf(run, "name", index));
      this.label(name, {left: end - 2, width: Math.min(next, this.right) - end}, top, lane.height,
        palette.text);
    }
  }

  cross(x, y) {
    const {context} = this;
    context.strokeStyle = this.palette.failure;
    context.lineWidth = 2;
    context.beginPath();
    context.moveTo(x - 4, y - 4);
    context.lineTo(x + 4, y + 4);
    context.moveTo(x + 4, y - 4);
    context.lineTo(x - 4, y + 4);
    context.stroke();
  }

  diamond(x, y) {
    this.shape([[x, y - 5], [x + 5, y], [x, y + 5], [x - 5, y]]);
  }

  triangle(x, y) {
    this.shape([[x, y - 5], [x + 5, y + 4], [x - 5, y + 4]]);
  }

  shape(corners) {
    const {context} = this;
    context.fillStyle = this.palette.failure;
    context.beginPath();
    corners.forEach(([x, y], place) => (place === 0 ? context.moveTo(x, y) : context.lineTo(x, y)));
    context.fill();
  }
}
