// Numbers and times as people read them.

const MICROSECONDS = 1e6;
const MINUTE = 60;
const HOUR = 60 * MINUTE;
const DAY = 24 * HOUR;

/** From here on, time stamps are given as plain numbers: 10000-01-01. */
const END_OF_TIME = 253402300800 * MICROSECONDS;

function grouped(count) {
  return String(count).replace(/\B(?=(\d{3})+$)/g, ",");
}

function plural(count, noun) {
  return `${grouped(count)} ${noun}${count === 1 ? "" : "s"}`;
}

/** "2025-11-24T16:00:00.120000Z" */
function timeText(time) {
  if (!(time < END_OF_TIME)) {
    return `${time} us`;
  }
  const seconds = Math.floor(time / MICROSECONDS);
  const fraction = String(time - seconds * MICROSECONDS).padStart(6, "0");
  return new Date(seconds * 1000).toISOString().replace(/\.\d+Z$/, `.${fraction}Z`);
}

function rounded(number, digits) {
  return String(Number(number.toFixed(digits)));
}

/** Seconds as "3590 s (59.8 min)". */
function durationText(seconds) {
  const text = `${rounded(seconds, 6)} s`;
  if (seconds < 2 * MINUTE) {
    return text;
  }
  const [unit, name] = seconds < 2 * HOUR ? [MINUTE, "min"]
    : seconds < 4 * DAY ? [HOUR, "h"] : [DAY, "d"];
  return `${text} (${rounded(seconds / unit, 1)} ${name})`;
}

/** Not longer than what a line, a label or a hint has room for. */
function shortened(text, length) {
  return text.length > length ? `${text.slice(0, length)}\u2026` : text;
}
