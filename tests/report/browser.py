#!/usr/bin/env python3
"""Looks at the report in a headless browser, as a person would: at three widths, light and dark, on paper, and by what
a screen reader is told. Fails when the page asks for anything, says something on the console, is wider than its window,
breaks a rule of axe-core, or has other figures than the journal.

Usage: browser.py VOXA AXE_CORE_JS FOLDER [DEMO_INSTALLATION SINCE UNTIL]
FOLDER gets the installation, the page and the pictures."""
import base64
import csv
import json
import os
import re
import subprocess
import sys
import tempfile

from selenium import webdriver
from selenium.webdriver.chrome.service import Service

from expected import DAY, DOOR, HOUR, outcomes_by, people, unknown_cards
from fill import fill

WIDTHS = (360, 800, 1600)
TURNS = re.compile("[\u200e\u200f\u061c\u202a-\u202e\u2066-\u2069]")
failures = []


def check(holds, what):
    if not holds:
        failures.append(what)
        print("FAILED:", what)


def browser():
    options = webdriver.ChromeOptions()
    for word in ("--headless=new", "--no-sandbox", "--disable-dev-shm-usage", "--disable-gpu",
                 "--force-prefers-reduced-motion", "--hide-scrollbars"):
        options.add_argument(word)
    options.set_capability("goog:loggingPrefs", {"browser": "ALL", "performance": "ALL"})
    return webdriver.Chrome(service=Service("/usr/bin/chromedriver"), options=options)


def window(driver, width, scheme):
    driver.execute_cdp_cmd("Emulation.setDeviceMetricsOverride",
                           {"width": width, "height": 900, "deviceScaleFactor": 1, "mobile": width < 500})
    driver.execute_cdp_cmd("Emulation.setEmulatedMedia",
                           {"media": "screen", "features": [{"name": "prefers-color-scheme", "value": scheme}]})


WIDER = """
const wide = [], edge = document.documentElement.clientWidth;
for (const e of document.body.querySelectorAll('*')) {
  if (e.closest('.scroll') && !e.matches('.scroll') || e.closest('.unseen, .skip')) continue;
  const box = e.getBoundingClientRect();
  if (box.width && (box.right > edge + 0.5 || box.left < -0.5)) wide.push(e.tagName + '.' + e.getAttribute('class'));
}
return [document.documentElement.scrollWidth - edge, wide.slice(0, 5)];"""


def look(driver, page, pictures, name):
    """Opens the page and looks at it in every width and scheme."""
    driver.get("file://" + page)
    for width in WIDTHS:
        for scheme in ("light", "dark"):
            window(driver, width, scheme)
            for opened in (False, True):
                driver.execute_script("document.querySelectorAll('details').forEach(d => d.open = arguments[0])", opened)
                over, wide = driver.execute_script(WIDER)
                check(over <= 0 and not wide, f"{name} is wider than {width} pixels: {over} {wide}")
            axe(driver, f"{name}, {width} pixels, {scheme}")
            driver.execute_script("document.querySelectorAll('details').forEach(d => d.open = false)")
            picture = driver.execute_cdp_cmd("Page.captureScreenshot", {"captureBeyondViewport": True, "format": "png"})
            with open(f"{pictures}/{name}-{width}-{scheme}.png", "wb") as file:
                file.write(base64.b64decode(picture["data"]))


def axe(driver, where):
    # By the debugger, since the page's policy allows no script. Everything of WCAG 2.2 AA, and good practice.
    run = """axe.run(document, {resultTypes: ['violations', 'incomplete']}).then(r => JSON.stringify(
      [r.violations, r.incomplete].map(l => l.map(v => v.id + ': ' + v.nodes.slice(0, 3).map(n => n.html.slice(0, 120)).join(' | ')))))"""
    driver.execute_cdp_cmd("Runtime.evaluate", {"expression": AXE})
    result = driver.execute_cdp_cmd("Runtime.evaluate", {"expression": run, "awaitPromise": True, "returnByValue": True})
    violations, undecided = json.loads(result["result"]["value"])
    check(not violations, f"axe-core at {where}: {violations}")
    undecided and print(f"axe-core cannot decide at {where}: {undecided}")


def asked(driver):
    """What the page asked for besides itself, and what it said on the console."""
    requests = []
    for entry in driver.get_log("performance"):
        message = json.loads(entry["message"])["message"]
        if message["method"] == "Network.requestWillBeSent":
            url = message["params"]["request"]["url"]
            if not (url.startswith("file://") and url.endswith(".html")) and not url.startswith("data:"):
                requests.append(url)
    return requests, [entry["message"] for entry in driver.get_log("browser")]


TABLES = """return Object.fromEntries([...document.querySelectorAll('table')].map(t => [t.caption.textContent,
  [...t.tBodies[0].rows].map(r => [...r.cells].map(c => c.textContent))]))"""


def numbers(cells):
    return [int(cell.replace(",", "")) for cell in cells]


def compare(driver, folder, since, behind):
    """The page's tables with the journal."""
    tables = driver.execute_script(TABLES)
    by_day = outcomes_by(folder, DAY, since, behind)
    days = tables["Table: Presentations by day"]
    check([row for row in map(lambda r: numbers(r[1:]), days) if row[0]] == [by_day[day] for day in sorted(by_day)],
          "presentations by day")
    by_hour = outcomes_by(folder, HOUR, since, behind)
    hours = tables["Table: Presentations by hour"]
    check([numbers(row[1:]) for row in hours] == [by_hour.get(hour, [0] * 5) for hour in range(24)], "presentations by hour")
    by_door = {TURNS.sub("", door): values for door, values in outcomes_by(folder, DOOR, since, behind).items()}
    doors = tables["Table: Presentations by door"]
    check({row[0]: numbers(row[1:]) for row in doors} == by_door, "presentations by door")
    check({row[0]: int(row[1]) for row in tables.get("Codes of unknown cards", [])} ==
          unknown_cards(folder, since, behind), "unknown cards")
    tile = driver.execute_script("return document.querySelector('.tiles dd').textContent")
    check(numbers([tile]) == [sum(values[0] for values in by_door.values())], "the number of presentations")
    return tables


def compare_people(folder, tables_folder, since, behind):
    with open(tables_folder + "/people.csv", encoding="utf-8", newline="") as file:
        rows = list(csv.reader(file))[1:]
    found = {(r[0], r[1]): (r[2][11:16], r[4][11:16], int(r[6])) for r in rows}
    check(found == people(folder, since, behind), "first and last of each person")


def nothing_broke_out(driver):
    check(driver.execute_script("return document.scripts.length + document.querySelectorAll('b, img').length") == 0,
          "a name became a tag")
    check(driver.execute_script("return document.querySelectorAll('style, title').length >= 2 && "
                                "document.title.startsWith('Doors ')"), "the title is another one")


def paper(driver, pictures, name):
    """Prints in the dark scheme, since paper is light all the same."""
    window(driver, 800, "dark")
    driver.execute_cdp_cmd("Emulation.setEmulatedMedia", {"media": "print"})
    printed = driver.execute_cdp_cmd("Page.printToPDF", {"preferCSSPageSize": True, "printBackground": False})
    path = f"{pictures}/{name}.pdf"
    with open(path, "wb") as file:
        file.write(base64.b64decode(printed["data"]))
    info = subprocess.run(["pdfinfo", path], capture_output=True, text=True, check=True).stdout
    check("(A4)" in info, "the paper is not A4: " + info)
    # Whatever is cut at the edge of the paper is missing in its text.
    words = re.sub(r"\s+", "", subprocess.run(["pdftotext", "-layout", path, "-"], capture_output=True, text=True).stdout)
    for text in driver.execute_script("return [...document.querySelectorAll('td.number, h2, dd, .amount')]"
                                      ".map(e => e.textContent)"):
        check(re.sub(r"\s+", "", text) in words, f"not on paper: {text}")
    subprocess.run(["pdftoppm", "-r", "60", "-png", path, f"{pictures}/{name}-paper"], check=True)


def read_out(driver, pictures, name):
    """What a screen reader is told, a line for each thing that has a name."""
    driver.execute_cdp_cmd("Accessibility.enable", {})
    lines = []
    for node in driver.execute_cdp_cmd("Accessibility.getFullAXTree", {})["nodes"]:
        role = node.get("role", {}).get("value", "")
        text = node.get("name", {}).get("value", "")
        if node.get("ignored") or role in ("InlineTextBox", "none", "generic") or not text:
            continue
        about = node.get("description", {}).get("value", "")
        lines.append(f"{role}: {text}" + (f" ({about})" if about else ""))
    with open(f"{pictures}/{name}-read-out.txt", "w", encoding="utf-8") as file:
        file.write("\n".join(lines))
    check(any(line.startswith("image: Presentations by day (Most: ") for line in lines), "the chart of days has no name")


def report(voxa, folder, page, *words):
    subprocess.run([voxa, "--dir", folder, "report", page, "--force", *words], check=True, stdout=subprocess.DEVNULL)


def main():
    global AXE
    voxa, axe_path, folder = sys.argv[1:4]
    AXE = open(axe_path, encoding="utf-8").read()
    os.makedirs(folder, exist_ok=True)
    folder = os.path.realpath(folder)
    plant = tempfile.mkdtemp(prefix="plant", dir=folder)
    fill(voxa, plant, 20_000)
    page = folder + "/report.html"
    time = ("--since", "2026-11-01", "--until", "2026-11-30")
    report(voxa, plant, page, *time, "--people", "--csv", folder + "/figures")
    driver = browser()
    try:
        look(driver, page, folder, "nasty")
        nothing_broke_out(driver)
        compare(driver, plant, "2026-11-01", "2026-12-01")
        compare_people(plant, folder + "/figures", "2026-11-01", "2026-12-01")
        paper(driver, folder, "nasty")
        read_out(driver, folder, "nasty")
        if len(sys.argv) > 4:
            demo, since, until, behind = sys.argv[4:8]
            report(voxa, demo, page, "--since", since, "--until", until)
            look(driver, page, folder, "demo")
            compare(driver, demo, since, behind)
            paper(driver, folder, "demo")
            read_out(driver, folder, "demo")
        empty = folder + "/empty.html"
        report(voxa, plant, empty, "--since", "2020-01-01", "--until", "2020-01-02")
        look(driver, empty, folder, "empty")
        requests, console = asked(driver)
        check(not requests, f"the page asked for {requests}")
        check(not console, f"the console says {console}")
    finally:
        driver.quit()
    print("FAILED" if failures else "The report is in order: figures, names, widths, colours and paper")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
