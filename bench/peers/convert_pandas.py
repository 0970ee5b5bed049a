#!/usr/bin/env python3
"""The calibrated conversion with pandas: every reading, Kelvin and uncorrected moisture on, factors 2.5 and 1.5.

usage: convert_pandas.py FOLDER OUTPUT
"""
import os
import sys

import numpy
import pandas

folder, output = sys.argv[1], sys.argv[2]
raw_file = os.path.join(folder, "00001.epd")


def table(name):
    return numpy.genfromtxt(os.path.join(folder, name), delimiter=",", unpack=True)


def text(values, decimals):
    return pandas.Series(values).map(("%%.%df" % decimals).__mod__)


moisture, salinity, correction = table("moisture.lkp"), table("salinity.lkp"), table("salcorr.lkp")
with open(raw_file) as raw:
    header = raw.readline().split(",")
fixed, sensor_items = int(header[2]), int(header[3])

data = pandas.read_csv(raw_file, header=None, skiprows=1)
when = pandas.to_datetime(data[0], format="%Y/%m/%d %H:%M")
rows = pandas.DataFrame()
rows["Date"] = when.dt.strftime("%-d %b %Y %H:%M")
rows["Battery"] = text(data[1] / 1000, 3)
rows["Ambient"] = text(data[2] / 100 - 273, 2)
rows["Count"] = data[3]
for first in range(fixed, fixed + sensor_items, 3):
    temperature = data[first + 2]
    warmer = (temperature - 29300) / 100
    uncorrected = numpy.interp(data[first] - 2.5 * warmer, *moisture)
    salt = numpy.interp(data[first + 1] - 1.5 * warmer, *salinity)
    rows["UM%d" % first] = text(uncorrected, 2)
    rows["M%d" % first] = text(uncorrected + numpy.interp(salt, *correction), 2)
    rows["Sal%d" % first] = text(salt, 3)
    rows["Temp%d" % first] = text(temperature / 100 - 273, 2)
rows.to_csv(output, index=False)
