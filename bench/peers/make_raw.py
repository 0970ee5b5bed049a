#!/usr/bin/env python3
"""Writes 00001.epd and three lookup tables into a folder: readings of 3 sensors, one every quarter of an hour.

usage: make_raw.py READINGS FOLDER [YYYY-MM-DD]      (the same bytes every time; the date of the first reading)
"""
import os
import random
import sys
from datetime import datetime, timedelta

SENSORS = 3


def write_table(path, rng, points, highest_x):
    """Ascending points with rising values."""
    y = 1.0
    with open(path, "w") as table:
        for x in sorted(rng.sample(range(highest_x), points)):
            table.write("%d,%.3f\n" % (x, y))
            y += rng.uniform(0.2, 2.5)


def write_readings(path, rng, readings, start):
    """Soil drifts slowly: each sensor walks at random between 200 and 3900."""
    moisture = [rng.uniform(1000, 3000) for _ in range(SENSORS)]
    with open(path, "w", newline="\r\n") as raw:
        raw.write("$V2,00001,4,%d,%d,2011/5/1 00:00,12500*00\n" % (3 * SENSORS, readings))
        for number in range(readings):
            when = start + timedelta(minutes=15 * number)
            items = ["%d/%d/%d %d:%02d" % (when.year, when.month, when.day, when.hour, when.minute),
                     str(rng.randrange(11500, 13200)), str(rng.randrange(27500, 31000)), str(number & 0xFFFF)]
            for sensor in range(SENSORS):
                moisture[sensor] = max(200.0, min(3900.0, moisture[sensor] + rng.gauss(0, 8)))
                items.append(str(int(moisture[sensor])))
                items.append(str(int(4095 - 0.8 * moisture[sensor])))
                items.append(str(rng.randrange(27500, 31000)))
            raw.write(",".join(items) + "\n")


def main():
    readings, folder = int(sys.argv[1]), sys.argv[2]
    start = datetime.fromisoformat(sys.argv[3]) if len(sys.argv) > 3 else datetime(2011, 5, 1)
    rng = random.Random(20110501)
    os.makedirs(folder, exist_ok=True)
    write_table(os.path.join(folder, "moisture.lkp"), rng, 36, 4096)
    write_table(os.path.join(folder, "salinity.lkp"), rng, 24, 4096)
    write_table(os.path.join(folder, "salcorr.lkp"), rng, 10, 40)
    write_readings(os.path.join(folder, "00001.epd"), rng, readings, start)


main()
