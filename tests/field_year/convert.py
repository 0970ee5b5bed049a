#!/usr/bin/env python3
# Converts raw files into their calibrated files, written apart from the programs so that it can judge theirs.
#
#   convert.py HOME [UNIT RAWFILE OUT]...
#
# HOME is the application folder, UNIT the number of the unit's record in corvane.ini. The formats are those of
# docs/formats: settings-file.md, lookup-file.md, raw-file.md and calibrated-file.md. Settings or tables that allow no
# conversion, and date patterns with a part that DATE_PARTS lacks, end it with a status other than 0; OUT then stays.

import re
import struct
import sys
from datetime import datetime, timedelta
from decimal import ROUND_HALF_UP, Context, Decimal
from pathlib import Path

NUMBER = re.compile(r"[ \t]*([+-]?(?:[0-9]+\.?[0-9]*|\.[0-9]+)(?:[eE][+-]?[0-9]+)?)")
DATE = re.compile(r"([^/]*)/([^/]*)/([^ ]*) ([^:]*):(.*)", re.DOTALL)
DATE_PART = re.compile(r"([dmyhns])\1*", re.IGNORECASE)
DATE_PARTS = {"d": "%-d", "dd": "%d", "ddd": "%a", "dddd": "%A", "m": "%-m", "mm": "%m", "mmm": "%b", "mmmm": "%B",
              "yy": "%y", "yyyy": "%Y", "h": "%-H", "hh": "%H", "n": "%-M", "nn": "%M", "s": "%-S", "ss": "%S"}
MINUTE_BEHIND_HOUR = re.compile(r"(h[^dmyhns]*)(m{1,2})(?!m)", re.IGNORECASE)
# The key of the salinity table speaks of temperature.
TABLES = {"moisturelookupfile": "moisture.lkp", "temperaturelookupfile": "salinity.lkp",
          "salinitycorrection": "salcorr.lkp"}


# The number that the text begins with, 0 when there is none.
def leading_number(text):
    return float(found[1]) if (found := NUMBER.match(text)) else 0.0


# The number that is the whole text. Where it is none, the other text counts; without one it is an error.
def number(text, otherwise=""):
    return float(text if NUMBER.fullmatch(text.rstrip(" \t")) else otherwise)


# Halves go away from zero, as the number's text of 15 digits shows them; there is no negative zero.
def fixed(value, decimals):
    shown = Decimal(f"{value:.14e}").quantize(Decimal(f"1e-{decimals}"), ROUND_HALF_UP, Context(700))
    return f"{shown if shown else abs(shown):f}"


def single_precision(value):
    return struct.unpack("f", struct.pack("f", value))[0]


def shortest_single(value):
    texts = (f"{value:.{digits}g}" for digits in range(1, 10))
    return f"{Decimal(next(text for text in texts if single_precision(float(text)) == value)):f}"


# Lines end with a line feed, or with a carriage return and a line feed.
def lines_of(path, encoding):
    return path.read_bytes().decode(encoding, "surrogateescape").replace("\r\n", "\n").split("\n")


# The settings of General and Units by their keys in lower case. Of two sections or keys of one name the first counts.
def read_ini(path):
    section, sections = {}, {}
    for line in path.read_text("utf-8-sig", "surrogateescape").split("\n"):
        key, equals, value = (part.strip() for part in line.partition("="))
        if name := re.match(r"\[(.*)\]", key):
            section = {}
            sections.setdefault(name[1].lower(), section)
        elif equals and key[:1] not in ";#":
            value = re.sub('^"(.*)"$', r"\1", value)[:126]
            section.setdefault(key.lower(), "" if value == "null" else value)
    return sections.get("general", {}), sections.get("units", {})


# The date and time of "year/month/day hour:minute", None when it is none.
def parse_date(text):
    found = DATE.match(text)
    year, month, day, hour, minute = map(leading_number, found.groups()) if found else [0] * 5
    in_range = 2001 <= year <= 9999 and 1 <= month <= 12 and 1 <= day <= 31 and 0 <= hour <= 23 and 0 <= minute <= 59
    return datetime(int(year), int(month), 1, int(hour), int(minute)) + timedelta(int(day) - 1) if in_range else None


def time_of_day(text):
    return datetime.strptime(text, "%H:%M") - datetime.strptime("0:00", "%H:%M")


def format_date(when, pattern):
    pattern = MINUTE_BEHIND_HOUR.sub(lambda found: found[1] + "n" * len(found[2]), pattern)
    return DATE_PART.sub(lambda found: when.strftime(DATE_PARTS[found[0].lower()]), pattern)


# A table of points. The search for a value begins where the last one ended.
class Lookup:
    def __init__(self, path):
        rows = [line.split(",") for line in lines_of(path, "utf-8-sig")]
        points = [(number(row[0]), number(row[1])) for row in rows if len(row) > 1]
        self.xs, ys = zip(*points)
        lines = [(slope := (y2 - y1) / (x2 - x1), y1 - slope * x1) if x2 > x1 else (1.0, 0.0)
                 for (x1, y1), (x2, y2) in zip(points, points[1:])]
        self.lines, self.position = [(0.0, ys[0]), *lines, (0.0, ys[-1])], 1

    def __call__(self, x):
        while self.position > 0 and x < self.xs[self.position - 1]:
            self.position -= 1
        while self.position < len(self.xs) and x >= self.xs[self.position]:
            self.position += 1
        slope, intercept = self.lines[self.position]
        return x * slope + intercept


# The logging times: a time of day and whole intervals from it. An interval without a colon is a number of hours.
class Schedule:
    def __init__(self, start_at, interval):
        self.start, self.next = time_of_day(start_at), None
        self.interval = time_of_day(interval) if ":" in interval else timedelta(0, round(number(interval) * 3600))
        if self.interval <= timedelta(0):
            raise ValueError(f'"{interval}" is no interval above zero')

    # A reading that is taken moves the next logging time on by one interval only, also behind a gap.
    def takes(self, when):
        if self.next is None:
            start = when.replace(hour=0, minute=0) + self.start
            self.next = when + (start - when) % self.interval
        taken = when >= self.next
        self.next += self.interval * taken
        return taken


# The conversion of one file, by the settings and by what its first line says of the others.
class Conversion:
    def __init__(self, home, unit, first_line):
        general, units = read_ini(home / "corvane.ini")
        self.tables = [Lookup(home / general.get(key, name).replace("\\", "/")) for key, name in TABLES.items()]
        factors = (number(units.get(f"{name}correction{unit}", ""), "0") for name in ("moisture", "salinity"))
        self.factors = [factor if 0 < factor <= 50 else 0.0 for factor in map(single_precision, factors)]
        kelvin, self.uncorrected = (number(general.get(key, "1"), "0") for key in ("kelvin", "uncorrected"))
        self.offset = 273 if kelvin else 20
        self.averaging, at_log_times = (number(general.get(key, ""), "0") >= 1 for key in ("average", "whichreadings"))
        self.pattern = general.get("dateformat", "d mmm yyyy HH:MM")
        times = general.get("startat", "06:00"), general.get("interval", "01:00")
        self.schedule = Schedule(*times) if at_log_times else None
        self.fixed, free = (int(leading_number(item)) for item in (first_line + ",,,").split(",")[2:4])
        self.sensors = free // 3
        # Items below zero make no sense, and no line is as wide as 0.
        self.width = self.fixed + free if self.fixed >= 0 and free >= 0 else 0

    def header(self):
        names = ["Date", "Battery", "Ambient", "Count", *(f"AN_{k}" for k in range(self.fixed - 4))]
        quantities = ["UM", "M", "Sal", "Temp"] if self.uncorrected else ["M", "Sal", "Temp"]
        names += [f"{quantity}{s + 1}" for s in range(self.sensors) for quantity in quantities]
        return ", ".join(names) + " [Mois_Correc={} Sal_Correc={}]".format(*map(shortest_single, self.factors))

    def rows(self, lines):
        readings = []
        for items in (line.split(",") for line in lines if "\0" not in line):
            when = parse_date(items[0])
            if len(items) == self.width and when:
                # What a narrow line lacks of the four items that every row shows is 0.
                readings.append([0.0, *map(leading_number, items[1:]), 0.0, 0.0, 0.0])
                if self.schedule is None or self.schedule.takes(when):
                    averages = [sum(values) / len(readings) for values in zip(*readings)]
                    yield self.row(when, averages if self.averaging else readings[-1])
                    readings = []

    def row(self, when, reading):
        battery, *channels = (fixed(value / 1000, 3) for value in [reading[1], *reading[4:self.fixed]])
        cells = [format_date(when, self.pattern), battery, self.degrees(reading[2]), fixed(reading[3], 0), *channels]
        for first in range(self.fixed, self.fixed + 3 * self.sensors, 3):
            cells += self.sensor(*reading[first:first + 3])
        return ", ".join(cells)

    def degrees(self, hundredths):
        return fixed(hundredths / 100 - self.offset, 2)

    def sensor(self, moisture, salinity, temperature):
        moisture -= self.factors[0] * (temperature - 29300) / 100
        salinity -= self.factors[1] * (temperature - 29300) / 100
        moisture, salinity = self.tables[0](moisture), self.tables[1](salinity)
        corrected = moisture + self.tables[2](salinity)
        cells = [fixed(moisture, 2), fixed(corrected, 2), fixed(salinity, 3), self.degrees(temperature)]
        return cells if self.uncorrected else cells[1:]


def main(home, *files):
    for unit, raw_file, out in zip(files[0::3], files[1::3], files[2::3]):
        # What stands behind the last line end is no reading.
        first_line, *lines = lines_of(Path(raw_file), "latin-1")[:-1] or [""]
        conversion = Conversion(Path(home), unit, first_line)
        rows = list(conversion.rows(lines))
        text = "".join(line + "\r\n" for line in [conversion.header(), *rows] if rows)
        Path(out).write_bytes(text.encode("utf-8", "surrogateescape"))


if __name__ == "__main__":
    main(*sys.argv[1:])
