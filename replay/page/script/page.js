// Puts the page together.

function main() {
  const runs = readRuns();
  const several = runs.length > 1;
  const place = (id) => document.getElementById(id);
  showHeading(place("heading"), runs);
  for (const [id, show, compare] of [["answers", showAnswers], ["settings", showSettings, compareSettings],
    ["measured", showMeasured, compareMeasured], ["profile", showProfile, compareProfiles],
    ["diagnostics", showDiagnostics]]) {
    if (several && compare) {
      compare(place(id), runs);
      continue;
    }
    for (const run of runs) {
      const part = several
        ? element("section", {class: "run"}, element("h3", {class: "run-name"}, runName(run)))
        : place(id);
      show(part, run);
      if (several) {
        place(id).append(part);
      }
    }
  }
  const list = new RecordList(place("records"), runs);
  const chart = showTimeline(place("timeline"), runs);
  runs.forEach((run) => showWords(place("timeline"), run, several));
  list.onchoose = (run, index) => chart.select(run, index);
  actions.show = (run, index) => {
    if (list.run !== run) {
      list.setRun(run);
    }
    list.choose(index);
    place("records").scrollIntoView();
    list.table.focus({preventScroll: true});
  };
  actions.locate = (run, index) => {
    chart.locate(run, index);
    place("timeline").scrollIntoView();
    chart.place.focus({preventScroll: true});
  };
  const words = document.querySelectorAll("details.words");
  addEventListener("beforeprint", () => {
    words.forEach((part) => part.setAttribute("open", ""));
    if (chart !== null) {
      chart.resize(680);
    }
  });
  addEventListener("afterprint", () => {
    words.forEach((part) => part.removeAttribute("open"));
    if (chart !== null) {
      chart.resize();
    }
  });
  document.documentElement.dataset.ready = "yes";
}

main();
