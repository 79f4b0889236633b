"""A browser without a window or a network, and what the tests do with it."""
import json
import os

from selenium import webdriver
from selenium.webdriver.chrome.service import Service
from selenium.webdriver.support.ui import WebDriverWait

LONGEST_WAIT = 20
ARGUMENTS = (
    "--headless", "--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run",
    "--disable-background-networking", "--disable-component-update", "--disable-sync",
    "--host-resolver-rules=MAP * ~NOTFOUND",
)
# Kept before any script of the page runs.
WATCH = """
window.complaints = [];
addEventListener("securitypolicyviolation", (event) => complaints.push(event.violatedDirective));
addEventListener("error", (event) => complaints.push(String(event.message)));
"""


class Browser:
    def __init__(self, folder):
        options = webdriver.ChromeOptions()
        options.binary_location = os.environ["KIVRA_CHROMIUM"]
        for argument in (*ARGUMENTS, f"--user-data-dir={folder}"):
            options.add_argument(argument)
        options.set_capability("goog:loggingPrefs", {"browser": "ALL"})
        self.driver = webdriver.Chrome(service=Service(os.environ["KIVRA_CHROMEDRIVER"]),
                                       options=options)
        self.driver.execute_cdp_cmd("Page.addScriptToEvaluateOnNewDocument", {"source": WATCH})
        self.resize(1280)

    def quit(self):
        self.driver.quit()

    def resize(self, width, height=900):
        self.command("Emulation.setDeviceMetricsOverride", width=width, height=height,
                     deviceScaleFactor=1, mobile=False)

    def prefer(self, scheme):
        self.command("Emulation.setEmulatedMedia",
                     features=[{"name": "prefers-color-scheme", "value": scheme}])

    def command(self, name, **arguments):
        return self.driver.execute_cdp_cmd(name, arguments)

    def open(self, page):
        self.driver.get(page.resolve().as_uri())
        self.wait(lambda: self.run("return document.documentElement.dataset.ready === 'yes'"))

    def run(self, script, *arguments):
        return self.driver.execute_script(script, *arguments)

    def wait(self, condition):
        return WebDriverWait(self.driver, LONGEST_WAIT, 0.02).until(lambda _: condition())

    def complaints(self):
        """What went wrong in the page, in words; what it asked the network for."""
        requests = self.run("return performance.getEntriesByType('resource').map((e) => e.name)")
        return [*self.run("return window.complaints"), *requests,
                *(entry["message"] for entry in self.driver.get_log("browser"))]

    def find(self, selector):
        return self.driver.find_element("css selector", selector)

    def text(self, selector):
        return self.run("return document.querySelector(arguments[0]).textContent", selector)

    def rows(self, section, caption):
        """The cells of a table, whose caption begins so."""
        return self.run("""
            const tables = [...document.querySelectorAll(`#${arguments[0]} table`)];
            const table = tables.find((t) => t.caption && t.caption.textContent.startsWith(arguments[1]));
            return [...table.tBodies[0].rows].map((row) => [...row.cells].map((c) => c.textContent));
            """, section, caption)

    def rows_of_facts(self, part="#heading"):
        """The texts of a list of facts, by their names."""
        return dict(self.run("""
            return [...document.querySelectorAll(`${arguments[0]} dl.facts dt`)]
                .map((name) => [name.textContent, name.nextSibling.textContent]);""", part))

    # The timeline

    def range(self):
        """What is in sight, as the page says it."""
        return self.text("#timeline .status")

    def press(self, *keys):
        self.run("""
            const chart = document.querySelector(".chart");
            chart.focus();
            for (const key of arguments[0]) {
                chart.dispatchEvent(new KeyboardEvent("keydown", {key, bubbles: true, cancelable: true}));
            }""", keys)

    def hint_at(self, wanted):
        """Moves the mouse over the chart until its hint begins so.
        @return where that is, in the window, or nothing"""
        return self.run("""
            const over = document.querySelector(".u-over");
            over.scrollIntoView({block: "center"});
            const box = over.getBoundingClientRect();
            for (let y = 10; y < box.height; y += 12) {
                for (let x = 0; x < box.width; x += 3) {
                    const place = {clientX: box.left + x, clientY: box.top + y, bubbles: true};
                    over.dispatchEvent(new MouseEvent("mousemove", place));
                    const hint = document.querySelector(".hint");
                    if (!hint.hidden && hint.textContent.startsWith(arguments[0])) {
                        return [place.clientX, place.clientY, hint.innerText];
                    }
                }
            }
            return null;""", wanted)

    def mouse(self, kind, x, y, **more):
        self.command("Input.dispatchMouseEvent", type=kind, x=x, y=y, **more)

    def click(self, x, y, count=1):
        for number in range(1, count + 1):
            self.mouse("mousePressed", x, y, button="left", clickCount=number)
            self.mouse("mouseReleased", x, y, button="left", clickCount=number)

    def chart_box(self):
        return self.run("""
            const over = document.querySelector(".u-over");
            over.scrollIntoView({block: "center"});
            const box = over.getBoundingClientRect();
            return [box.left, box.top, box.width, box.height];""")

    # The list

    def search(self, text):
        self.run("""
            const field = document.querySelector("#records input[type=search]");
            field.value = arguments[0];
            field.dispatchEvent(new Event("input"));""", text)

    def listed(self):
        """The cells of the rows that are elements of the page."""
        return self.run("""
            return [...document.querySelectorAll(".list tbody tr[data-index]")]
                .map((row) => [...row.cells].map((cell) => cell.textContent));""")

    def chosen(self):
        """The number of the chosen record, as the list and the details have it."""
        return self.run("""
            const row = document.querySelector(".list tr[aria-selected=true]");
            const title = document.querySelector(".details h3");
            return [row && row.cells[0].textContent, title && title.textContent];""")

    def result(self):
        shown = self.driver.find_elements("css selector", ".details pre")
        return json.loads(shown[0].get_property("textContent")) if shown else None
