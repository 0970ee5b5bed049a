# The calibrated conversion as a script writer would do it: every reading, Kelvin and uncorrected moisture on, factors 2.5 and 1.5.
# usage: cd FOLDER && mawk -f convert.awk 00001.epd >OUTPUT

# Reads a table: x, y, slope and offset of each segment; returns the number of points.
function read_table(name, x, y, slope, offset,   n, i, parts) {
  while ((getline < name) > 0) {
    split($0, parts, /,/)
    x[++n] = parts[1] + 0
    y[n] = parts[2] + 0
  }
  for (i = 1; i < n; i++) {
    slope[i] = (y[i + 1] - y[i]) / (x[i + 1] - x[i])
    offset[i] = y[i] - slope[i] * x[i]
  }
  slope[0] = slope[n] = 0
  offset[0] = y[1]
  offset[n] = y[n]
  return n
}

# The table's value at v, its segment found by halving.
function value(v, x, slope, offset, last,   first, middle) {
  first = 0
  while (first < last) {
    middle = int((first + last + 1) / 2)
    if (v < x[middle]) last = middle - 1
    else first = middle
  }
  return v * slope[first] + offset[first]
}

BEGIN {
  moistures = read_table("moisture.lkp", mx, my, ms, mo)
  salinities = read_table("salinity.lkp", sx, sy, ss, so)
  corrections = read_table("salcorr.lkp", cx, cy, cs, co)
  split("Jan,Feb,Mar,Apr,May,Jun,Jul,Aug,Sep,Oct,Nov,Dec", name, /,/)
  FS = ","
}

NR == 1 { fixed = $3; wanted = $3 + $4; next }

NF == wanted {
  split($1, when, /[\/ :]/)
  printf "%d %s %d %02d:%02d, %.3f, %.2f, %d", when[3], name[when[2] + 0], when[1], when[4], when[5], $2 / 1000,
         $3 / 100 - 273, $4
  for (i = fixed + 1; i < wanted; i += 3) {
    warmer = ($(i + 2) - 29300) / 100
    um = value($i - 2.5 * warmer, mx, ms, mo, moistures)
    sal = value($(i + 1) - 1.5 * warmer, sx, ss, so, salinities)
    printf ", %.2f, %.2f, %.3f, %.2f", um, um + value(sal, cx, cs, co, corrections), sal, $(i + 2) / 100 - 273
  }
  print ""
}
