#!/usr/bin/env python3
"""Loads the page of a small network with hostile names in a real browser, and holds it against the status and the raw files.

usage: page_in_browser.py FOLDER_OF_THE_BUILD [FOLDER_FOR_PICTURES]
"""
import collections
import datetime
import json
import pathlib
import subprocess
import sys
import tempfile
import time

from browser import Browser

NAMES = {1: "<img src=x onerror=alert(1)>", 2: "\"><script>alert(2)</script>", 3: "Quarry & 'Pit'"}
CLIENT = "</td><script>alert(3)</script>"
NOTE = "</li></ul><script>alert(4)</script> &amp; goats"
ROW = "Array.from(document.querySelectorAll('.units tbody tr'),row=>Array.from(row.cells,cell=>cell.innerText.trim()))"
PERIOD = 30  # minutes
READINGS = 192


def make_home(home):
    (home / "page").mkdir()
    for table, points in (("moisture", "0,0\n4000,40\n"), ("salinity", "0,0\n4000,4\n"), ("salcorr", "0,0\n10,1\n")):
        (home / f"{table}.lkp").write_text(points)
    units = "".join(f"Name{unit}={name}\nID{unit}={unit}\nClientID{unit}=1\n" for unit, name in NAMES.items())
    (home / "corvane.ini").write_text(
        "[General]\nFolder=data\nUnitWait=0\nTimeout=2\nDataTimeout=2\nMaxRetries=1\nGoOnPastFailures=1\nPageFolder=page\n"
        f"[Units]\nNumUnits=3\n{units}[Clients]\nNumClients=1\nName1={CLIENT}\nID1=1\nFolder1=c\n"
        f"[Relays]\nNumRelays=0\n[Ports]\nCOM1={home}/tty\n")
    (home / "data").mkdir()
    (home / "data/c").mkdir()


class Network:
    """The programs on a simulated network, of which unit 3 falls silent behind the first round."""

    def __init__(self, build, home):
        self._ctl = [build / "frontends/console/corvanectl", "--home", home]
        self._home = home
        (home / "faults").write_text("unit 3 download 2-9: silence\n")
        now = datetime.datetime.now().replace(second=0, microsecond=0)
        start = now - datetime.timedelta(minutes=PERIOD * (READINGS - 1) + 5)
        self._station = subprocess.Popen(
            [build / "tools/basestation/corvane-basestation", "--link", home / "tty", "--units", "3", "--readings", str(READINGS),
             "--interval", str(PERIOD), "--start", f"{start:%Y/%m/%d %H:%M}", "--script", home / "faults"],
            stdout=subprocess.DEVNULL)
        for _ in range(200):
            if (home / "tty").exists():
                return
            time.sleep(0.05)
        raise RuntimeError("the simulated base station did not start")

    def end(self):
        self._station.terminate()
        self._station.wait()

    def run(self, *words, ends=0):
        done = subprocess.run([*self._ctl, *words], capture_output=True, text=True, timeout=120, cwd=self._home)
        assert done.returncode == ends, (words, done.returncode, done.stdout, done.stderr)
        return done.stdout

    def raw_file(self, unit):
        return self._home / f"data/c/{unit:05}.epd"

    def readings_by_day(self, unit):
        days = collections.Counter()
        for line in self.raw_file(unit).read_text().splitlines()[1:]:
            days[datetime.datetime.strptime(line.split(" ")[0], "%Y/%m/%d").date()] += 1
        return days


def same(what, found, wanted):
    assert found == wanted, f"{what}: {found!r} instead of {wanted!r}"
    print(f"    {what}: {found!r}"[:150], flush=True)


def check_units(browser, status):
    """Every row of the table against the status as JSON."""
    rows = browser.value(ROW)
    same("units, the worst first", [row[1].splitlines()[0] for row in rows], [unit["name"] for unit in status["units"]])
    for row, unit in zip(rows, status["units"]):
        same("state", row[0].split()[-1], unit["state"])
        same("client", row[2], CLIENT)
        same("answered", row[5], f"{unit['answered']} of {unit['asked']}")
        same("battery", row[6].splitlines()[:1], [] if unit["battery_volts"] is None else [f"{unit['battery_volts']:.2f} V"])
        same("missing", row[8].split()[:1], [str(unit["missing"])] if unit["missing"] else [])
    same("sentence", browser.value("document.querySelector('.how').innerText"), status["sentence"])


def check_days(browser, network, missing):
    """The sentences of the days that lack readings against the raw file."""
    sentences = browser.value("Array.from(document.querySelectorAll('.unit'),unit=>unit.innerText)"
                              f".find(text=>text.startsWith({json.dumps(NAMES[2])}))")
    stored = network.readings_by_day(2)
    for day, count in missing.items():
        begin = f"{day.day} {day:%B}: {stored[day]} of {stored[day] + count} readings, {count} missing"
        assert begin in sentences, (begin, sentences)
        print("    " + begin, flush=True)
    whole = browser.value("Array.from(document.querySelectorAll('.gaps tbody tr')).find(row=>row.cells[0].innerText=="
                          f"{json.dumps(NAMES[1])}).innerText")
    assert f"{len(network.readings_by_day(1))} days whole" in whole, whole


def check_nothing_runs(browser):
    same("complaints, questions and what else it asks for", browser.complaints(), [])
    same("scripts and pictures", browser.value("document.querySelectorAll('script,img,link,iframe,object,[onerror]').length"), 0)
    same("note", browser.value(f"document.body.innerText.includes({json.dumps('Note: ' + NOTE)})"), True)
    same("language, title", browser.value("[document.documentElement.lang,document.title]"), ["en", "How the network stands"])
    same("headers without a scope", browser.value("document.querySelectorAll('th:not([scope])').length"), 0)
    same("charts", browser.value("Array.from(document.querySelectorAll('figcaption'),each=>each.innerText.split(':')[0])"),
         ["Battery", "Moisture, sensor 1"] * 3)


def check_widths(browser, pictures):
    for width, dark in ((1280, False), (1280, True), (360, False), (360, True)):
        browser.show(width, dark)
        same(f"width at {width}", browser.value("document.documentElement.scrollWidth"), width)
        browser.picture(pictures / f"page-{width}{'-dark' if dark else ''}.png")
    browser.paper(pictures / "page.pdf")
    same("paper", (pictures / "page.pdf").read_bytes()[:5], b"%PDF-")


def main():
    build = pathlib.Path(sys.argv[1]).resolve()
    with tempfile.TemporaryDirectory() as folder, Browser() as browser:
        home = pathlib.Path(folder)
        make_home(home)
        network = Network(build, home)
        try:
            network.run("download")
            missing = collections.Counter()
            lines = network.raw_file(2).read_text().splitlines(keepends=True)
            for line in lines[101:108]:
                missing[datetime.datetime.strptime(line.split(" ")[0], "%Y/%m/%d").date()] += 1
            network.raw_file(2).write_text("".join(lines[:101] + lines[108:]))
            network.run("note", "1", NOTE)
            for _ in range(2):
                network.run("download", ends=1)
            status = json.loads(network.run("status", "--json"))
            (home / "by-hand").mkdir()
            network.run("page", "by-hand")
        finally:
            network.end()
        same("missing", {unit["id"]: unit["missing"] for unit in status["units"]}, {1: 0, 2: 7, 3: 0})
        same("states", {unit["id"]: unit["state"] for unit in status["units"]}, {1: "fine", 2: "trouble", 3: "silent"})
        pictures = pathlib.Path(sys.argv[2]) if len(sys.argv) > 2 else home
        for page in ("page", "by-hand"):
            print(page, flush=True)
            browser.show(1280)
            browser.open((home / page / "index.html").as_uri())
            check_units(browser, status)
            check_days(browser, network, missing)
            check_nothing_runs(browser)
        check_widths(browser, pictures)
    print("page_in_browser: well")


main()
