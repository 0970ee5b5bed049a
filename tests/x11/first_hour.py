#!/usr/bin/env python3
"""The first hour of somebody with the packages, on a real X server, by keyboard alone.

From the assistant that opens by itself to the first calibrated file of two units behind a relay, then a practice,
then what `corvanectl status` says; against the simulated base station, all in a system root where the packages are
installed. Prints how many actions it took, and how many seconds; fails when these are too many, or when anything does
not come. An action is a click, a shortcut or a field that is filled in; Next counts.

Usage: first_hour.py ROOT   needs root, and /tmp/.X11-unix of this computer below ROOT/tmp; CORVANE_PICTURE names a
                            PNG file that gets a picture of the screen before all is closed, or where it failed
"""
import contextlib
import os
import pathlib
import re
import struct
import subprocess
import sys
import tempfile
import time
import zlib

from window_on_x11 import Display, end, expect

MOST_ACTIONS = 14
MOST_SECONDS = 180
HOME = "root/.local/share/corvane"
PRACTICE = "root/.cache/corvane-PRACTICE"
DEVICE = "dev/serial/by-id/usb-Simulated_base_station-if00-port0"
DAYS = 2  # of readings that the units hold when the technician comes


class Screen(Display):
    """An X server whose screen can be photographed."""

    def __init__(self, folder):
        super().__init__(folder, "-fbdir", str(folder))
        self.picture = folder / "Xvfb_screen0"

    def photograph_for_the_caller(self):
        if "CORVANE_PICTURE" in os.environ:
            self.photograph(os.environ["CORVANE_PICTURE"])

    def photograph(self, name):
        """Writes the screen as a PNG file."""
        dump = self.picture.read_bytes()
        header = struct.unpack(">25I", dump[:100])
        size, width, height, line, colours = header[0], header[4], header[5], header[12], header[19]
        begin = size + 12 * colours
        rows = b""
        for y in range(height):
            blue_green_red = dump[begin + y * line:begin + y * line + 4 * width]
            row = bytearray(3 * width)
            row[0::3], row[1::3], row[2::3] = blue_green_red[2::4], blue_green_red[1::4], blue_green_red[0::4]
            rows += b"\0" + row

        def chunk(kind, data):
            return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))

        pathlib.Path(name).write_bytes(
            b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">2I5B", width, height, 8, 2, 0, 0, 0)) +
            chunk(b"IDAT", zlib.compress(rows, 9)) + chunk(b"IEND", b""))


class Technician:
    """Somebody at the keyboard of a computer that has nothing but the packages."""

    def __init__(self, root, screen, folder):
        self.root, self.screen, self.folder = root, screen, folder
        self.actions, self.started = 0, []

    def run(self, program, *arguments, **options):
        """Starts an installed program with an empty environment but for the screen's."""
        command = ["chroot", self.root, "env", "-i", "PATH=/usr/bin:/bin", "HOME=/root", "LC_ALL=C.UTF-8", "TZ=UTC",
                   "XDG_RUNTIME_DIR=/tmp", f"DISPLAY={self.screen.environment['DISPLAY']}", program, *arguments]
        self.started.append(subprocess.Popen(command, **options))
        return self.started[-1]

    def say(self, *arguments):
        """What corvanectl prints, and its exit status."""
        process = self.run("corvanectl", *arguments, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
        return process.communicate()[0], process.returncode

    def windows(self):
        """Number -> title of every window."""
        found = {}
        for number in re.findall(r"0x[0-9a-f]+", self.screen.ask("xprop", "-root", "_NET_CLIENT_LIST")):
            title = re.search(r'_NET_WM_NAME\(UTF8_STRING\) = "(.*)"', self.screen.ask("xprop", "-id", number,
                                                                                   "_NET_WM_NAME"))
            if title:
                found[number] = title[1]
        return found

    def window(self, title, but=()):
        """The window with that title, once it is there and active."""
        number = expect(f"a window {title}", lambda: next(
            (each for each, shown in self.windows().items() if each not in but and re.fullmatch(title, shown)), None))
        self.screen.ask("xdotool", "windowactivate", str(int(number, 16)))
        expect("it is active", lambda: self.active() == number)
        return number

    def active(self):
        shown = self.screen.ask("xdotool", "getactivewindow").strip()
        return hex(int(shown)) if shown else ""

    def shortcut(self, key):
        self.actions += 1
        self.screen.ask("xdotool", "key", key)

    def fill(self, text, tabs=1):
        """Fills in the field that has the focus, and goes on."""
        self.actions += 1
        self.screen.ask("xdotool", "type", "--delay", "20", text)
        if tabs:
            self.screen.ask("xdotool", "key", *["Tab"] * tabs)

    def page(self, title):
        """The assistant is on that page, and the field where one begins has the focus."""
        expect(f"the page {title}", lambda: f"Set up a network: {title}" in self.windows().values())


def start_station(technician):
    start = time.strftime("%Y/%m/%d 00:00", time.gmtime(time.time() - DAYS * 86400))
    day = time.gmtime()
    # One a minute: the units' clocks show the time of the last one, and may be a minute off.
    readings = DAYS * 1440 + day.tm_hour * 60 + day.tm_min + 1
    (technician.root / DEVICE).parent.mkdir(parents=True, exist_ok=True)
    technician.run("corvane-basestation", "--link", f"/{DEVICE}", "--units", "23@5,31@5", "--start", start,
                   "--interval", "1", "--readings", str(readings), "--clock-speed", "1", stdout=subprocess.DEVNULL)
    expect("the base station is plugged in", lambda: (technician.root / DEVICE).is_symlink())


def set_up(technician):
    """From the first start to the first calibrated file."""
    home = technician.root / HOME
    assert not home.exists(), f"{home} is there before the first start"
    began = time.monotonic()
    technician.run("corvane")
    technician.window("Set up a network: Language")
    for page in ("Port of the base station", "Relays and units"):
        technician.shortcut("alt+n")
        technician.page(page)
    technician.fill("Ridge")
    technician.fill("5", tabs=2)
    technician.fill("River flat")
    technician.fill("23", tabs=4)
    technician.fill("Hill block")
    technician.fill("31", tabs=0)  # what stands in an open cell counts
    for page in ("Clients and folders", "Lookup tables"):
        technician.shortcut("alt+n")
        technician.page(page)
    technician.fill("/root/tables", tabs=0)
    technician.shortcut("alt+m")
    technician.page("Summary")
    assert not (home / "corvane.ini").exists(), "something was written before the end"
    technician.shortcut("alt+f")
    for unit in ("00023", "00031"):
        expect(f"calibrated readings of {unit}", lambda: (home / f"{unit}.txt").exists()
               and (home / f"{unit}.txt").read_bytes().count(b"\n") > DAYS * 1440)
    seconds = time.monotonic() - began
    print(f"  first calibrated file: {technician.actions} actions, {seconds:.1f} s")
    assert technician.actions <= MOST_ACTIONS, f"more than {MOST_ACTIONS} actions"
    assert seconds <= MOST_SECONDS, f"more than {MOST_SECONDS} s"


def practise(technician):
    """From the assistant to the files of a practice and its end, with the real network open beside it."""
    practice = technician.root / PRACTICE
    there = technician.window("Corvane")
    before, began = technician.actions, time.monotonic()
    technician.shortcut("alt+s")
    technician.window("Set up a network: Language")
    technician.shortcut("alt+p")
    technician.window("Corvane", but=[there])
    technician.shortcut("alt+d")
    for file in ("data/orchards/practice00001.txt", "backup/river/practice00003.zip"):
        expect(f"the practice's {file}", lambda: (practice / "1" / file).exists())
    expect("it goes on by itself", lambda: "Finished..." in (practice / "1/corvane.log").read_text())
    technician.shortcut("alt+e")
    expect("nothing of the practice is left", lambda: not practice.exists())
    print(f"  a practice: {technician.actions - before} actions, {time.monotonic() - began:.1f} s")
    assistant = technician.window("Set up a network: Language")
    technician.shortcut("Escape")
    expect("the assistant is gone", lambda: assistant not in technician.windows())


def look(technician):
    """What the console says of the first day while the window is open, which then closes."""
    program = technician.started[1]
    technician.window("Corvane")
    said, status = technician.say("status")
    assert status == 0 and said.startswith("2 units: 2 fine"), said
    assert len(re.findall(r" fine .* 100\.0 *$", said, re.M)) == 2, "no complete day:\n" + said
    said, status = technician.say("status", "--check")
    assert status == 0, said
    print(f"  status: {said.strip()}")
    technician.screen.photograph_for_the_caller()
    technician.shortcut("alt+F4")
    expect("the window closes in order", lambda: program.poll() == 0)


def main():
    root = pathlib.Path(sys.argv[1]).resolve()
    (root / "root/tables").mkdir(exist_ok=True)
    for table in ("moisture.lkp", "salinity.lkp", "salcorr.lkp"):
        (root / "root/tables" / table).write_text("0,0\r\n32000,100\r\n")
    with tempfile.TemporaryDirectory(prefix="corvane-x11-") as folder:
        screen = Screen(pathlib.Path(folder))
        technician = Technician(root, screen, pathlib.Path(folder))
        try:
            start_station(technician)
            set_up(technician)
            practise(technician)
            look(technician)
            return 0
        except (AssertionError, OSError) as problem:
            print(f"  FAILED: {problem}\n    windows: {technician.windows()}")
            screen.photograph_for_the_caller()
            return 1
        finally:
            for process in [*technician.started, screen.manager, screen.server]:
                end(process)


if __name__ == "__main__":
    sys.exit(main())
