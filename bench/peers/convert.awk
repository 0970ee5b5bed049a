# The calibrated conversion as a script writer would do it: every reading, Kelvin and uncorrected moisture on, factors 2.5 and 1.5.
# usage: cd FOLDER && mawk -f convert.awk 00001.epd >OUTPUT

# Reads table number t: x, y, slope and offset of each segment; returns nothing.
function read_table(t, name,   parts, n, i) {
  while ((getline < name) > 0) {
    split($0, parts, /,/)
    n = ++points[t]
    x[t, n] = parts[1] + 0
    y[t, n] = parts[2] + 0
  }
  for (i = 1; i < n; i++) {
    slope[t, i] = (y[t, i + 1] - y[t, i]) / (x[t, i + 1] - x[t, i])
    offset[t, i] = y[t, i] - slope[t, i] * x[t, i]
  }
  slope[t, 0] = slope[t, n] = 0
  offset[t, 0] = y[t, 1]
  offset[t, n] = y[t, n]
  at[t] = 1
}

# The value of table t at v; the search starts where the last one ended.
function value(t, v,   i) {
  i = at[t]
  while (i > 0 && v < x[t, i]) i--
  while (i < points[t] && v >= x[t, i + 1]) i++
  at[t] = i
  return v * slope[t, i] + offset[t, i]
}

BEGIN {
  read_table(1, "moisture.lkp")
  read_table(2, "salinity.lkp")
  read_table(3, "salcorr.lkp")
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
    um = value(1, $i - 2.5 * warmer)
    sal = value(2, $(i + 1) - 1.5 * warmer)
    printf ", %.2f, %.2f, %.3f, %.2f", um, um + value(3, sal), sal, $(i + 2) / 100 - 273
  }
  print ""
}
