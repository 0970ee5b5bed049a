#!/usr/bin/env python3
"""Runs the real window on a real X server with a window manager, against the simulated base station.

Looks at it from outside only: windows and their properties, keys, files, what the base station saw and exit statuses.
Usage: window_on_x11.py FOLDER_OF_THE_BUILD [CHECK...]; without names every check runs.
"""
import contextlib
import os
import pathlib
import re
import shlex
import shutil
import signal
import subprocess
import sys
import tempfile
import time

LIMIT = 20  # seconds that a slow machine may take for anything without a limit of its own
ORDERLY_END = 2  # seconds in which the program ends, whatever it does
UNIT_COMMAND = re.compile(r"< 00000:0*1:\d\drr ")  # a download command to the first unit: one a round
SOURCE = pathlib.Path(__file__).resolve().parents[2]


class Failure(Exception):
    pass


def until(what, condition, limit=LIMIT):
    """Waits until `condition` returns something true and returns it."""
    deadline = time.monotonic() + limit
    while True:
        found = condition()
        if found:
            return found
        if time.monotonic() > deadline:
            raise Failure(f"not within {limit} s: {what}")
        time.sleep(0.02)


def expect(what, condition, limit=LIMIT):
    result = until(what, condition, limit)
    print(f"    {what}", flush=True)
    return result


def end(process):
    """Ends a process that this script started, if it still runs."""
    if process.poll() is None:
        process.kill()
    process.wait()


class Display:
    """An X server of its own with a window manager."""

    def __init__(self, folder):
        self.environment = dict(os.environ, HOME=str(folder), XDG_RUNTIME_DIR=str(folder), QT_QPA_PLATFORM="xcb",
                                XDG_CONFIG_HOME=str(folder / "config"), XDG_DATA_HOME=str(folder / "share"),
                                LC_ALL="C.UTF-8")
        for name in ("CORVANE_HOME", "WAYLAND_DISPLAY", "SESSION_MANAGER", "DBUS_SESSION_BUS_ADDRESS"):
            self.environment.pop(name, None)
        # What the toolkit's libraries keep, without a bus and at an abrupt end, is none of the program's.
        suppressions = folder / "leaks"
        suppressions.write_text("leak:libdbus-1\nleak:libfontconfig\n")
        self.environment["LSAN_OPTIONS"] = f"suppressions={suppressions}:print_suppressions=0"
        reader, writer = os.pipe()
        self.server = subprocess.Popen(
            ["Xvfb", "-displayfd", str(writer), "-screen", "0", "1366x768x24", "-nolisten", "tcp", "-noreset"],
            pass_fds=[writer], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        os.close(writer)
        with os.fdopen(reader) as number:
            self.environment["DISPLAY"] = ":" + number.readline().strip()
        self.manager = subprocess.Popen(["openbox"], env=self.environment, stdout=subprocess.DEVNULL,
                                        stderr=subprocess.DEVNULL)
        try:
            until("the window manager runs",
                  lambda: "window id" in self.ask("xprop", "-root", "_NET_SUPPORTING_WM_CHECK"))
        except Failure:
            self.stop()
            raise

    def ask(self, *command):
        return subprocess.run(command, env=self.environment, capture_output=True, text=True).stdout

    def windows(self, process):
        """The managed windows of a process: number -> title, the oldest first."""
        numbers = re.findall(r"0x[0-9a-f]+", self.ask("xprop", "-root", "_NET_CLIENT_LIST"))
        found = {}
        for number in numbers:
            shown = self.ask("xprop", "-id", number, "_NET_WM_PID", "_NET_WM_NAME")
            title = re.search(r'_NET_WM_NAME\(UTF8_STRING\) = "(.*)"', shown)
            if re.search(rf"_NET_WM_PID\(CARDINAL\) = {process.pid}\b", shown) and title:
                found[number] = title[1]
        return found

    def iconic(self, window):
        states = self.ask("xprop", "-id", window, "WM_STATE", "_NET_WM_STATE")
        return "window state: Iconic" in states and "_NET_WM_STATE_HIDDEN" in states

    def normal(self, window):
        states = self.ask("xprop", "-id", window, "WM_STATE", "_NET_WM_STATE")
        return "window state: Normal" in states and "_NET_WM_STATE_HIDDEN" not in states

    def press(self, window, *keys):
        """Presses keys in the window, once it is the active one."""
        number = int(window, 16)
        until("the window is active", lambda: self.ask("xdotool", "getactivewindow").strip() == str(number))
        subprocess.run(["xdotool", "key", *keys], env=self.environment, check=True)

    def stop(self):
        end(self.manager)
        end(self.server)


@contextlib.contextmanager
def own_display(site):
    """A display that the check may take away from its program."""
    shared, site.display = site.display, Display(site.folder)
    try:
        yield site.display
    finally:
        site.display.stop()
        site.display = shared


class Site:
    """An application folder with its base station and whatever programs were started in it."""

    SETTINGS = {"UnitWait": "0", "Timeout": "5", "DataTimeout": "5", "HeartBeat": "1"}

    def __init__(self, build, display, folder):
        self.display, self.folder, self.home = display, folder, folder / "home"
        self.corvane = build / "frontends/window/corvane"
        self.ctl = build / "frontends/console/corvanectl"
        self.basestation = build / "tools/basestation/corvane-basestation"
        self.tty, self.station_log = folder / "tty", folder / "station.log"
        self.outputs, self.programs, self.station = {}, [], None

    def prepare(self, units=2, **settings):
        self.home.mkdir()
        for table in ("moisture.lkp", "salinity.lkp", "salcorr.lkp"):
            (self.home / table).write_text("0,0\r\n32000,100\r\n")
        lines = ["[General]"] + [f"{key}={value}" for key, value in {**self.SETTINGS, **settings}.items()]
        lines += ["[Units]", f"NumUnits={units}", "Name1=North", "[Ports]", f"COM1={self.tty}", ""]
        (self.home / "corvane.ini").write_text("\n".join(lines))

    def start_station(self, *options):
        if self.station:
            end(self.station)
        self.station = subprocess.Popen(
            [self.basestation, "--link", self.tty, "--units", "2", "--log", self.station_log, *options],
            stdout=subprocess.DEVNULL)
        until("the base station is ready", lambda: self.tty.exists() and os.path.exists(os.path.realpath(self.tty)))

    def start(self, *arguments, platform="xcb", home=True):
        """Starts the window program; its output is kept for `said`."""
        path = self.folder / f"out{len(self.programs)}"
        with open(path, "w") as output:
            given = ["--home", self.home] if home else []
            program = subprocess.Popen([self.corvane, *given, *arguments], stdout=output, stderr=output,
                                       env=dict(self.display.environment, QT_QPA_PLATFORM=platform))
        self.programs.append(program)
        self.outputs[program.pid] = path
        return program

    def said(self, program):
        return self.outputs[program.pid].read_text()

    def window(self, program, title="Corvane"):
        """The number of the program's oldest window, once it shows that title."""
        def find():
            if program.poll() is not None:
                raise Failure(f"the program has ended with status {program.returncode}")
            return next((window for window, shown in self.display.windows(program).items()
                         if re.fullmatch(title, shown)), None)
        return until(f"a window titled {title}", find)

    def title(self, program, window):
        return self.display.windows(program).get(window, "")

    def box(self, program, window):
        """The number of a box that stands over the main window, once it is there."""
        return until("a box", lambda: next((other for other in self.display.windows(program) if other != window), None))

    def close_box(self, program, box):
        self.display.press(box, "Return")
        until("the box is gone", lambda: box not in self.display.windows(program))

    def traced(self, window, *keys):
        """Presses keys and waits until they were handled: F9 means nothing and is traced behind them."""
        before = self.log().count("KeyDown KeyCode: 120")
        self.display.press(window, *keys, "F9")
        until("the keys were handled", lambda: self.log().count("KeyDown KeyCode: 120") > before)

    def about(self, program, window):
        """Opens the About box by keyboard and closes it."""
        self.display.press(window, "alt+h", "a")
        self.close_box(program, self.box(program, window))

    def ended(self, program, status=0, limit=LIMIT):
        """Waits for the end of a program, which must have left with `status`."""
        until("the program ends", lambda: program.poll() is not None, limit)
        if program.returncode != status:
            raise Failure(f"exit status {program.returncode} instead of {status}")
        if "Sanitizer" in self.said(program):
            raise Failure("a fault in the program's memory")
        return True

    def read(self, name):
        path = self.home / name
        return path.read_bytes().decode() if path.exists() else ""

    def log(self):
        return self.read("corvane.log")

    def seen(self):
        """What the base station saw."""
        return self.station_log.read_text() if self.station_log.exists() else ""

    def rounds(self):
        return len(UNIT_COMMAND.findall(self.seen()))

    def readings(self):
        """How many readings are stored, after a look at every line of every raw file."""
        total = 0
        for path in sorted(self.home.glob("*.epd")):
            lines = path.read_bytes().decode().split("\r\n")
            if lines[-1] != "":
                raise Failure(f"{path.name} ends within a line: {lines[-1]}")
            readings = [line for line in lines[1:-1] if not line.startswith("$")]
            if len({line.count(",") for line in readings}) > 1:
                raise Failure(f"{path.name} holds a torn line")
            if len({line.split(",")[0] for line in readings}) != len(readings):
                raise Failure(f"{path.name} holds a reading twice")
            total += len(readings)
        return total

    def saved(self):
        """Whether the settings were saved: the version is written by the program only."""
        return re.search(r"^Version=\d", self.read("corvane.ini"), re.M) is not None

    def parts(self):
        return [path.name for path in self.home.glob("*.part")]

    def start_download(self, *arguments, readings=150):
        """A program in the middle of its first download on a line of 9600 baud."""
        self.start_station("--readings", str(readings), "--baud", "9600")
        program = self.start(*arguments, "/D")
        window = self.window(program)
        until("readings arrive", lambda: self.read("00001.epd").count("\n") > 5)
        return program, window

    def expect_rest(self, readings):
        """Downloads by console what is missing; then every reading must be there once."""
        already = self.readings()
        if not 0 < already < 2 * readings:
            raise Failure(f"{already} readings stored when the download was ended")
        self.start_station("--readings", str(readings))
        ctl = subprocess.run([self.ctl, "--home", self.home, "download"], capture_output=True, text=True,
                             env=self.display.environment)
        if ctl.returncode != 0:
            raise Failure(f"corvanectl: {ctl.stdout}{ctl.stderr}")
        expect("a later download fetches the rest, each reading once", lambda: self.readings() == 2 * readings)

    def stop(self):
        for process in [*self.programs, *([self.station] if self.station else [])]:
            end(process)

    def tell(self):
        """What a failed check left behind."""
        for program in self.programs:
            print(f"    program {program.args[1:]}, status {program.poll()}: {self.said(program)}")
        print("    log: " + self.log()[-1500:].replace("\n", "\n      "))
        print("    base station: " + self.seen()[-800:].replace("\n", "\n      "))


def opens_and_closes(site):
    site.prepare(Automatic="1", AutomaticInterval="01:00")
    program = site.start()
    window = site.window(program)
    expect("the window is mapped and titled Corvane", lambda: site.display.normal(window))
    site.display.press(window, "alt+F4")
    expect("the window manager closes it in order", lambda: site.ended(program))
    expect("it was activated: the next download was computed and saved",
           lambda: re.search(r"^NextDownload=\d+ \w+ \d+ \d+:00\r?$", site.read("corvane.ini"), re.M))


def minimised_title(site):
    site.prepare(units=1, Automatic="1")
    site.start_station("--readings", "40", "--baud", "9600")
    program = site.start("/M/D")
    window = site.window(program, ".*")
    expect("/M starts it minimised", lambda: site.display.iconic(window))
    for percent in ("[1-4]", "[5-9]"):
        expect(f"the title shows progress: {percent[1]}0 % and more",
               lambda: re.fullmatch(percent + r"\d%-Download: North", site.title(program, window)))
    countdown = r"\d\d:\d\d:\d\d"
    first = expect("then it counts down", lambda: re.fullmatch(countdown, site.title(program, window)))[0]
    expect("every second", lambda: re.fullmatch(countdown, site.title(program, window))
           and site.title(program, window) < first)
    subprocess.run(["xdotool", "windowactivate", str(int(window, 16))], env=site.display.environment, check=True)
    expect("restored, it is titled Corvane again",
           lambda: site.display.normal(window) and site.title(program, window) == "Corvane")
    program.send_signal(signal.SIGTERM)
    expect("it ends in order", lambda: site.ended(program))


def activations_with_download_switch(site):
    site.prepare(units=1)
    site.start_station("--readings", "5", "--advance", "5000", "--baud", "9600")
    program = site.start("/d")
    window = site.window(program)

    def started():
        return site.log().count("Status: Download: North")

    expect("/d starts a download with the first activation", lambda: site.read("00001.txt").count("\n") == 6)
    site.traced(window)
    if started() != 1:
        raise Failure(f"{started()} downloads with one activation")

    def starts(number):
        site.about(program, window)
        site.traced(window)
        return started() == number

    expect("a box that closes while idle starts another", lambda: starts(2))
    site.about(program, window)
    site.display.press(window, "Escape")
    until("the download was cancelled", lambda: "User clicked 'cancel'" in site.log())
    site.traced(window)
    expect("one that closed during a download started none", lambda: started() == 2)
    expect("one that closes after it does", lambda: starts(3))
    site.display.press(window, "alt+F4")
    expect("it ends in order", lambda: site.ended(program))


def keyboard(site):
    site.prepare()
    site.start_station("--readings", "2000", "--baud", "9600")
    program = site.start()
    window = site.window(program)
    site.display.press(window, "alt+c", "d", "r")
    expect("Alt+C, D, R starts a download", lambda: site.rounds() == 1)
    site.display.press(window, "Escape")
    expect("Escape cancels the download",
           lambda: site.log().count("User clicked 'cancel'") == 1 and "< escape" in site.seen())
    site.display.press(window, "alt+f", "x")
    expect("Alt+F, X closes it in order", lambda: site.ended(program))


def ends_in_a_download(site, what, how, status=0, limit=ORDERLY_END):
    """However a download is ended from outside, nothing is lost and the unit is told."""
    site.prepare()
    program, window = site.start_download()
    how(program, window)
    expect(f"{what} during a download ends it within {limit} seconds", lambda: site.ended(program, status, limit))
    expect("the unit was told to stop", lambda: "< escape, stopped" in site.seen())
    expect("the settings were saved and no part of a file is left", lambda: site.saved() and not site.parts())
    site.expect_rest(150)


def close_during_download(site):
    ends_in_a_download(site, "closing", lambda _, window: site.display.press(window, "alt+F4"))


def terminated(site):
    ends_in_a_download(site, "SIGTERM, twice,", lambda program, _: [program.send_signal(signal.SIGTERM) for _ in "12"])


def display_lost(site):
    with own_display(site) as display:
        ends_in_a_download(site, "a lost display", lambda *_: display.server.kill(), 1, LIMIT)


def close_over_a_box(site):
    site.prepare()
    program, window = site.start_download()
    site.display.press(window, "alt+h", "a")
    site.box(program, window)
    program.send_signal(signal.SIGTERM)
    expect("SIGTERM ends it within two seconds, a box open and a download running",
           lambda: site.ended(program, limit=ORDERLY_END))
    expect("the settings were saved", site.saved)


def second_instance(site):
    site.prepare()
    first = site.start()
    window = site.window(first)
    second = site.start()
    box = site.window(second)
    expect("a second start says why in a box titled Corvane",
           lambda: site.said(second).endswith("corvane is already running\n"))
    site.close_box(second, box)
    expect("and leaves with status 3", lambda: site.ended(second, 3))
    third = site.start()
    site.window(third)
    third.send_signal(signal.SIGTERM)
    expect("the box does not hold up the end of a session", lambda: site.ended(third, 3, ORDERLY_END))
    site.about(first, window)
    first.send_signal(signal.SIGHUP)
    expect("the first goes on and ends in order", lambda: site.ended(first))


def terminated_at_the_start(site):
    site.prepare()
    program = site.start()
    until("the signals are watched", lambda: (site.home / "corvane.lock").exists())
    program.send_signal(signal.SIGTERM)
    expect("SIGTERM before the window is shown ends it in order", lambda: site.ended(program))
    expect("with the settings that were there", lambda: site.saved() and "Name1=North" in site.read("corvane.ini"))


def ended_while_a_box_of_the_start_is_open(site):
    site.prepare(Language="missing.lng")
    program = site.start()
    box = site.window(program)
    program.send_signal(signal.SIGTERM)
    expect("SIGTERM ends it while a box of the start is open", lambda: site.ended(program, limit=ORDERLY_END))
    expect("with the settings that were there", lambda: site.saved() and "Name1=North" in site.read("corvane.ini"))
    program = site.start()
    box = site.window(program)
    site.close_box(program, box)
    window = site.window(program)
    expect("answered, the box makes room for the window", lambda: window != box and site.display.normal(window))
    site.display.press(window, "alt+F4")
    expect("which closes in order", lambda: site.ended(program))


def quits_by_itself(site):
    site.prepare()
    site.start_station("--readings", "20")
    program = site.start("/D", "/Q")
    expect("/D /Q downloads and ends by itself", lambda: site.ended(program) and site.readings() == 40)
    expect("after one round", lambda: site.rounds() == 1)
    expect("the settings were saved", site.saved)


def display_lost_while_converting(site):
    site.prepare(units=1)
    site.start_station("--readings", "2")
    subprocess.run([site.ctl, "--home", site.home, "download"], env=site.display.environment, check=True,
                   stdout=subprocess.DEVNULL)
    header, reading, _ = site.read("00001.epd").split("\r\n", 2)
    rest = reading[reading.index(","):]
    days = [f"{year}/{month}/{day}" for year in range(2001, 2061) for month in range(1, 13) for day in range(1, 29)]
    lines = [header] + [f"{day} {hour:02}:00{rest}" for day in days for hour in range(0, 24, 2)]
    (site.home / "00001.epd").write_bytes(("\r\n".join(lines) + "\r\n").encode())
    with own_display(site) as display:
        program = site.start()
        display.press(site.window(program), "alt+c", "c", "a")
        until("the conversion has begun", site.parts)
        display.server.kill()
        expect("a lost display during a conversion ends the program", lambda: site.ended(program, 1))
    expect("the settings were saved and no part of a file is left", lambda: site.saved() and not site.parts())


def display_lost_at_the_start(site):
    site.prepare(Language="missing.lng")
    before = site.read("corvane.ini")
    with own_display(site) as display:
        program = site.start()
        site.window(program)
        display.server.kill()
        expect("a lost display ends a program that is still starting", lambda: site.ended(program, 1))
    expect("and leaves the settings as they were", lambda: site.read("corvane.ini") == before)


def options(site):
    template = (SOURCE / "share/hveng.lng").read_text()
    rows = [(["--version"], 0, r"corvane \d+\.\d+\.\d\d\d\n"),
            (["--help"], 0, r"Usage: corvane .*"),
            (["--language-template"], 0, re.escape(template)),
            (["--no-such"], 2, r"corvane: there is no option --no-such\nTry: corvane --help\n"),
            (["-platform", "no-such"], 3, r".*use corvanectl, the console program\n"),
            (["--home"], 2, r"corvane: --home needs a folder\nTry: corvane --help\n")]
    for arguments, status, text in rows:
        program = site.start(*arguments, platform="offscreen", home=False)
        expect(f"{arguments[0]} ends with status {status}", lambda: site.ended(program, status))
        if not re.fullmatch(text, site.said(program), re.S):
            raise Failure(f"{arguments[0]} printed: {site.said(program)}")


def first_start(site):
    program = site.start("/Q", platform="offscreen")
    expect("a first start creates the application folder", lambda: site.ended(program) and site.saved())
    template = (SOURCE / "share/hveng.lng").read_bytes()
    expect("and puts the language file there", lambda: (site.home / "hveng.lng").read_bytes() == template)
    own = "#,Text\n1,other\n"
    (site.home / "hveng.lng").write_text(own)
    program = site.start("/Q", platform="offscreen")
    expect("a later start leaves it as it is", lambda: site.ended(program) and site.read("hveng.lng") == own)
    site.home = site.home / "corvane.ini" / "below"
    program = site.start("/Q")
    box = site.window(program)
    expect("a folder that cannot be created is reported",
           lambda: site.said(program).startswith("the application folder cannot be used: "))
    site.close_box(program, box)
    expect("with status 3", lambda: site.ended(program, 3))


CHECKS = [opens_and_closes, minimised_title, activations_with_download_switch, keyboard, close_during_download,
          close_over_a_box, second_instance, terminated, terminated_at_the_start,
          ended_while_a_box_of_the_start_is_open, quits_by_itself, display_lost, display_lost_while_converting,
          display_lost_at_the_start, options, first_start]


def run(check, build, display):
    """Runs one check in a folder of its own; true when it passed."""
    print(f"{check.__name__}:", flush=True)
    begin = time.monotonic()
    with tempfile.TemporaryDirectory(prefix="corvane-x11-") as folder:
        site = Site(build, display, pathlib.Path(folder))
        try:
            check(site)
        except (Failure, OSError, subprocess.CalledProcessError) as problem:
            print(f"  FAILED: {problem}")
            site.tell()
            return False
        finally:
            site.stop()
    print(f"  passed in {time.monotonic() - begin:.1f} s", flush=True)
    return True


def main():
    missing = [tool for tool in ("Xvfb", "openbox", "xdotool", "xprop") if shutil.which(tool) is None]
    if missing or len(sys.argv) < 2:
        print(f"missing: {shlex.join(missing)}" if missing else __doc__, file=sys.stderr)
        return 2
    build = pathlib.Path(sys.argv[1]).resolve()
    chosen = [check for check in CHECKS if len(sys.argv) == 2 or check.__name__ in sys.argv[2:]]
    with tempfile.TemporaryDirectory(prefix="corvane-x11-") as folder:
        display = Display(pathlib.Path(folder))
        try:
            failed = [check.__name__ for check in chosen if not run(check, build, display)]
        finally:
            display.stop()
    print(f"failed: {', '.join(failed)}" if failed else f"all {len(chosen)} checks passed")
    return 1 if failed or not chosen else 0


if __name__ == "__main__":
    sys.exit(main())
