#!/usr/bin/env python3
"""Runs the real window on a real X server with a window manager, against the simulated base station.

Looks at it from outside only: windows and their properties, keys, files, what the base station saw and exit statuses.
Usage: window_on_x11.py FOLDER_OF_THE_BUILD [CHECK...]; without names every check runs.
"""
import os
import pathlib
import re
import signal
import subprocess
import sys
import tempfile
import time

LIMIT = 20  # seconds that a slow machine may take for anything without a limit of its own
ORDERLY_END = 2  # seconds in which the program ends, whatever it does
TEMPLATE = (pathlib.Path(__file__).resolve().parents[2] / "share/hveng.lng").read_bytes()


def expect(what, condition, limit=LIMIT):
    """Waits until `condition` returns something true and returns it."""
    deadline = time.monotonic() + limit
    while not (found := condition()):
        if time.monotonic() > deadline:
            raise AssertionError(f"not within {limit} s: {what}")
        time.sleep(0.02)
    print(f"    {what}", flush=True)
    return found


def end(process):
    """Ends a process that this script started, if it still runs."""
    if process:
        process.kill()
        process.wait()


class Display:
    """An X server of its own with a window manager."""

    def __init__(self, folder, *options):
        self.environment = dict(os.environ, HOME=str(folder), XDG_RUNTIME_DIR=str(folder), QT_QPA_PLATFORM="xcb",
                                XDG_CONFIG_HOME=str(folder / "config"), XDG_DATA_HOME=str(folder / "share"),
                                LC_ALL="C.UTF-8")
        for name in ("CORVANE_HOME", "WAYLAND_DISPLAY", "SESSION_MANAGER", "DBUS_SESSION_BUS_ADDRESS"):
            self.environment.pop(name, None)
        # What the toolkit's libraries keep, without a bus and at an abrupt end, is none of the program's.
        (folder / "leaks").write_text("leak:libdbus-1\nleak:libfontconfig\n")
        self.environment["LSAN_OPTIONS"] = f"suppressions={folder}/leaks:print_suppressions=0"
        reader, writer = os.pipe()
        command = ["Xvfb", "-displayfd", str(writer), "-screen", "0", "1366x768x24", "-nolisten", "tcp", "-noreset",
                   *options]
        self.server = subprocess.Popen(command, pass_fds=[writer], stderr=subprocess.DEVNULL)
        os.close(writer)
        with os.fdopen(reader) as number:
            self.environment["DISPLAY"] = ":" + number.readline().strip()
        self.manager = subprocess.Popen(["openbox"], env=self.environment, stderr=subprocess.DEVNULL)
        expect("the window manager runs", lambda: "window id" in self.ask("xprop", "-root", "_NET_SUPPORTING_WM_CHECK"))

    def ask(self, *command):
        return subprocess.run(command, env=self.environment, capture_output=True, text=True).stdout

    def windows(self, process):
        """The managed windows of a process: number -> title, the oldest first."""
        found = {}
        for number in re.findall(r"0x[0-9a-f]+", self.ask("xprop", "-root", "_NET_CLIENT_LIST")):
            shown = self.ask("xprop", "-id", number, "_NET_WM_PID", "_NET_WM_NAME")
            title = re.search(r'_NET_WM_NAME\(UTF8_STRING\) = "(.*)"', shown)
            if re.search(rf"_NET_WM_PID\(CARDINAL\) = {process.pid}\b", shown) and title:
                found[number] = title[1]
        return found

    def state(self, window):
        """"Normal" or "Iconic", as the window manager and the window both say; else empty."""
        states = self.ask("xprop", "-id", window, "WM_STATE", "_NET_WM_STATE")
        hidden = "Iconic" if "_NET_WM_STATE_HIDDEN" in states else "Normal"
        return hidden if f"window state: {hidden}" in states else ""

    def press(self, window, *keys):
        """Presses keys in the window, once it is the active one."""
        expect("the window is active", lambda: self.ask("xdotool", "getactivewindow").strip() == str(int(window, 16)))
        self.ask("xdotool", "key", *keys)

class Site:
    """An application folder with its base station and whatever programs were started in it."""

    def __init__(self, build, folder):
        self.display, self.folder, self.home = Display(folder), folder, folder / "home"
        self.build, self.tty, self.station_log = build, folder / "tty", folder / "station.log"
        self.programs, self.station = [], None

    def prepare(self, units=2, **settings):
        self.home.mkdir()
        for table in ("moisture.lkp", "salinity.lkp", "salcorr.lkp"):
            (self.home / table).write_text("0,0\r\n32000,100\r\n")
        settings = {"UnitWait": "0", "Timeout": "5", "DataTimeout": "5", "HeartBeat": "1"} | settings
        (self.home / "corvane.ini").write_text("\n".join(
            ["[General]", *[f"{key}={value}" for key, value in settings.items()],
             "[Units]", f"NumUnits={units}", "Name1=North", "[Ports]", f"COM1={self.tty}", ""]))

    def start_station(self, *options):
        end(self.station)
        self.station = subprocess.Popen(
            [self.build / "tools/basestation/corvane-basestation", "--link", self.tty, "--units", "2",
             "--log", self.station_log, *options], stdout=subprocess.DEVNULL)
        expect("the base station is ready", self.tty.exists)

    def start(self, *arguments, platform="xcb", home=True):
        """Starts the window program; its output is kept for `said`."""
        given = ["--home", self.home] if home else []
        with open(self.folder / f"out{len(self.programs)}", "w") as output:
            self.programs.append(subprocess.Popen(
                [self.build / "frontends/window/corvane", *given, *arguments], stdout=output, stderr=output,
                env=dict(self.display.environment, QT_QPA_PLATFORM=platform)))
        return self.programs[-1]

    def said(self, program):
        return (self.folder / f"out{self.programs.index(program)}").read_text()

    def open(self, *arguments, title="Corvane"):
        """Starts the program; it and the number of its first window, once that shows the title."""
        program = self.start(*arguments)
        return program, self.window(program, title)

    def window(self, program, title="Corvane", but=None):
        """The number of the program's oldest window of that title but one."""
        return expect(f"a window titled {title}", lambda: next(
            (each for each, shown in self.display.windows(program).items()
             if each != but and re.fullmatch(title, shown)), None))

    def close_box(self, program, box):
        self.display.press(box, "Return")
        expect("the box is gone", lambda: box not in self.display.windows(program))

    def about(self, program, window):
        """Opens the About box by keyboard; its number."""
        self.display.press(window, "alt+h", "a")
        return self.window(program, ".*", but=window)

    def traced(self, window, *keys):
        """Presses keys and waits until they were handled: F9 means nothing and is traced behind them."""
        before = self.read("corvane.log").count("KeyDown KeyCode: 120")
        self.display.press(window, *keys, "F9")
        expect("keys were handled", lambda: self.read("corvane.log").count("KeyDown KeyCode: 120") > before)

    def ends(self, program, what="it ends in order", status=0, limit=LIMIT):
        """Waits for the end of a program, which must leave with `status`, its settings saved and nothing half there."""
        expect(what, lambda: program.poll() is not None, limit)
        assert program.returncode == status and "Sanitizer" not in self.said(program), f"status {program.returncode}"
        if status < 2:
            # The version is written by the program only.
            expect("the settings are saved", lambda: re.search(r"^Version=\d", self.read("corvane.ini"), re.M))
            expect("no part of a file is left", lambda: not [*self.home.glob("*.part")])

    def read(self, name):
        path = self.home / name
        return path.read_bytes().decode() if path.exists() else ""

    def readings(self):
        """How many readings are stored, after a look at every line of every raw file."""
        total = 0
        for path in sorted(self.home.glob("*.epd")):
            *lines, rest = path.read_bytes().decode().split("\r\n")
            readings = [line for line in lines[1:] if not line.startswith("$")]
            assert not rest and len({line.count(",") for line in readings}) < 2, f"{path.name} holds a torn line"
            assert len({line.split(",")[0] for line in readings}) == len(readings), f"{path.name}: a reading twice"
            total += len(readings)
        return total

    def download(self):
        subprocess.run([self.build / "frontends/console/corvanectl", "--home", self.home, "download"], check=True,
                       stdout=subprocess.DEVNULL, env=self.display.environment)


def opens_and_closes(site):
    site.prepare(Automatic="1", AutomaticInterval="01:00")
    for keys in (["alt+F4"], ["alt+f", "x"]):
        program, window = site.open()
        expect("the window is mapped", lambda: site.display.state(window) == "Normal")
        site.display.press(window, *keys)
        site.ends(program, f"{keys} closes it in order")
        expect("it was activated: the next download was computed and saved",
               lambda: re.search(r"^NextDownload=\d+ \w+ \d+ \d+:00\r?$", site.read("corvane.ini"), re.M))


def minimised_title(site):
    site.prepare(units=1, Automatic="1")
    site.start_station("--readings", "40", "--baud", "9600")
    program, window = site.open("/M/D", title=".*")

    def shows(title):
        return expect(f"the title is {title}",
                      lambda: re.fullmatch(title, site.display.windows(program).get(window, "")))[0]

    expect("/M starts it minimised", lambda: site.display.state(window) == "Iconic")
    shows(r"[1-9]\d%-Download: North")
    first = shows(r"\d\d:\d\d:\d\d")
    expect("it counts down", lambda: shows(r"\d\d:\d\d:\d\d") < first)
    site.display.ask("xdotool", "windowactivate", str(int(window, 16)))
    shows("Corvane")
    expect("it is restored", lambda: site.display.state(window) == "Normal")
    program.send_signal(signal.SIGTERM)
    site.ends(program)


def activations_with_download_switch(site):
    site.prepare(units=1)
    site.start_station("--readings", "5", "--advance", "5000", "--baud", "9600")
    program, window = site.open("/d")

    def started(number):
        site.traced(window)
        return site.read("corvane.log").count("Status: Download: North") == number

    expect("/d starts a download with the first activation", lambda: site.read("00001.txt").count("\n") == 6)
    expect("and one only", lambda: started(1))
    site.close_box(program, site.about(program, window))
    expect("a box that closes while idle starts another", lambda: started(2))
    site.close_box(program, site.about(program, window))
    site.display.press(window, "Escape")
    expect("Escape cancels the download", lambda: "User clicked 'cancel'" in site.read("corvane.log"))
    expect("a box that closed during a download started none", lambda: started(2))
    site.close_box(program, site.about(program, window))
    expect("one that closes after it does", lambda: started(3))
    site.display.press(window, "alt+F4")
    site.ends(program)


def ends_in_a_download(site):
    """However a download is ended from outside, nothing is lost and the unit is told."""
    def terminate(program, window):
        site.about(program, window)
        for _ in range(2):
            program.send_signal(signal.SIGTERM)

    site.prepare()
    for what, how, status in (("closing", lambda _, window: site.display.press(window, "alt+F4"), 0),
                              ("SIGTERM, twice, a box open,", terminate, 0),
                              ("a lost display", lambda *_: site.display.server.kill(), 1)):
        site.station_log.unlink(missing_ok=True)
        site.start_station("--readings", "150", "--baud", "9600")
        before = site.readings()
        program, window = site.open("/D")
        expect("readings arrive", lambda: site.read("00001.epd").count("\n") > 5 and site.readings() > before)
        how(program, window)
        site.ends(program, f"{what} ends it in a download", status, LIMIT if status else ORDERLY_END)
        expect("the unit was told to stop", lambda: "< escape, stopped" in site.station_log.read_text())
    assert site.readings() < 300, "there was nothing left to download"
    site.start_station("--readings", "150")
    site.download()
    expect("a later download fetches the rest, each reading once", lambda: site.readings() == 300)


def second_instance(site):
    site.prepare()
    first, window = site.open()
    second, box = site.open()
    expect("a second start says why", lambda: site.said(second).endswith("corvane is already running\n"))
    site.close_box(second, box)
    site.ends(second, "and leaves", 3)
    third, _ = site.open()
    third.send_signal(signal.SIGTERM)
    site.ends(third, "the box does not hold up the end of a session", 3, ORDERLY_END)
    site.close_box(first, site.about(first, window))
    first.send_signal(signal.SIGHUP)
    site.ends(first, "the first goes on and ends in order")


def ended_while_it_starts(site):
    site.prepare(Language="missing.lng")
    before = site.read("corvane.ini")
    for what, ready in (("before the window is shown", lambda: (site.home / "corvane.lock").exists()),
                        ("while a box of the start is open", lambda: site.window(program))):
        program = site.start()
        expect("the signals are watched", ready)
        program.send_signal(signal.SIGTERM)
        site.ends(program, f"SIGTERM {what} ends it", limit=ORDERLY_END)
        expect("with the settings that were there", lambda: "Name1=North" in site.read("corvane.ini"))
        (site.home / "corvane.lock").unlink()
    program, box = site.open()
    site.close_box(program, box)
    window = site.window(program)
    expect("answered, the box makes room for the window", lambda: site.display.state(window) == "Normal")
    end(program)
    (site.home / "corvane.ini").write_text(before)
    program, _ = site.open()
    site.display.server.kill()
    expect("a lost display ends a program that is still starting", lambda: program.poll() == 1)
    assert site.read("corvane.ini") == before, "it changed the settings"


def display_lost_while_converting(site):
    site.prepare(units=1)
    site.start_station("--readings", "2")
    site.download()
    header, reading, _ = site.read("00001.epd").split("\r\n", 2)
    rest = reading[reading.index(","):]
    lines = [f"{year}/{month}/{day} {hour:02}:00{rest}" for year in range(2001, 2061) for month in range(1, 13)
             for day in range(1, 29) for hour in range(0, 24, 2)]
    (site.home / "00001.epd").write_bytes("\r\n".join([header, *lines, ""]).encode())
    program, window = site.open()
    site.display.press(window, "alt+c", "c", "a")
    expect("the conversion has begun", lambda: [*site.home.glob("*.part")])
    site.display.server.kill()
    site.ends(program, "a lost display during a conversion ends the program", 1)


def starts_without_a_display(site):
    for arguments, status, text in (
            (["--version"], 0, r"corvane \d+\.\d+\.\d\d\d\n"), (["--help"], 0, r"Usage: corvane .*"),
            (["--language-template"], 0, re.escape(TEMPLATE.decode())),
            (["--no-such"], 2, r"corvane: there is no option --no-such\nTry: corvane --help\n"),
            (["-platform", "no-such"], 3, r".*use corvanectl, the console program\n")):
        program = site.start(*arguments, platform="offscreen", home=False)
        expect(f"{arguments[0]} ends with status {status}", lambda: program.poll() == status)
        assert re.fullmatch(text, site.said(program), re.S), site.said(program)
    site.ends(site.start("/Q", platform="offscreen"), "a first start creates the application folder")
    expect("with the language file", lambda: (site.home / "hveng.lng").read_bytes() == TEMPLATE)
    (site.home / "hveng.lng").write_text("#,Text\n1,other\n")
    site.ends(site.start("/Q", platform="offscreen"), "a later start")
    expect("leaves it as it is", lambda: site.read("hveng.lng") == "#,Text\n1,other\n")
    site.home = site.home / "corvane.ini" / "below"
    program, box = site.open()
    expect("a folder that cannot be created is reported",
           lambda: site.said(program).startswith("the application folder cannot be used: "))
    site.close_box(program, box)
    site.ends(program, "the program leaves", 3)


def killed_in_the_assistant(site):
    """Killed at any page, the assistant has written nothing, and the next start begins it again."""
    pages = ["Language", "Port of the base station", "Relays and units", "Clients and folders", "Lookup tables",
             "Clock of a unit", "Schedule", "Server and backup", "Summary"]
    for last in range(len(pages)):
        program, window = site.open(title="Set up a network: Language")
        for page in pages[1:last + 1]:
            site.display.press(window, "alt+n")
            expect(f"the page {page}", lambda: site.display.windows(program)[window] == f"Set up a network: {page}")
        end(program)
        written = {path.name for path in site.home.iterdir()} - {"hveng.lng", "corvane.lock", "corvane.log"}
        assert not {name for name in written if not name.startswith("history.db")}, f"{pages[last]}: {written}"


CHECKS = [opens_and_closes, minimised_title, activations_with_download_switch, ends_in_a_download, second_instance,
          ended_while_it_starts, display_lost_while_converting, killed_in_the_assistant, starts_without_a_display]


def run(check, build):
    """Runs one check in a folder and on a display of its own; true when it passed."""
    print(f"{check.__name__}:", flush=True)
    with tempfile.TemporaryDirectory(prefix="corvane-x11-") as folder:
        site = Site(build, pathlib.Path(folder))
        try:
            check(site)
            return True
        except (AssertionError, OSError, subprocess.CalledProcessError) as problem:
            print(f"  FAILED: {problem}")
            for program in site.programs:
                print(f"    program {program.args[1:]}, status {program.poll()}: {site.said(program)}")
            print("    log: " + site.read("corvane.log")[-1500:].replace("\n", "\n      "))
            return False
        finally:
            for process in [*site.programs, site.station, site.display.manager, site.display.server]:
                end(process)


def main():
    build = pathlib.Path(sys.argv[1]).resolve()
    chosen = [check for check in CHECKS if len(sys.argv) == 2 or check.__name__ in sys.argv[2:]]
    failed = [check.__name__ for check in chosen if not run(check, build)]
    print(f"failed: {', '.join(failed)}" if failed else f"all {len(chosen)} checks passed")
    return 1 if failed or not chosen else 0


if __name__ == "__main__":
    sys.exit(main())
