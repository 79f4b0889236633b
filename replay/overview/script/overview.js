// Puts the overview together.

function main() {
  const fleet = readFleet();
  const place = (id) => document.getElementById(id);
  showHeading(place("heading"), fleet);
  const list = new CaptureList(place("captures"), fleet);
  showPsm(place("psm"), fleet, list);
  showHistograms(place("distributions"), fleet, list);
  const words = document.querySelectorAll("details.words");
  addEventListener("beforeprint", () => words.forEach((part) => part.setAttribute("open", "")));
  addEventListener("afterprint", () => words.forEach((part) => part.removeAttribute("open")));
  document.documentElement.dataset.ready = "yes";
}

main();
