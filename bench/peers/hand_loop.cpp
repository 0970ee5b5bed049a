// The limit to approach: one plain loop that converts a file of make_raw.py for one set of settings (every reading,
// Kelvin and uncorrected columns, corrections 2.5 and 1.5, "d mmm yyyy HH:MM"), checks nothing, and syncs its result.
// g++ -O3 -std=c++20 hand_loop.cpp -o hand_loop && ./hand_loop FOLDER/00001.epd FOLDER OUTPUT
#include <unistd.h>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

struct Point {
  double x, y, slope, intercept;
};

struct Table {
  std::vector<Point> points{{-INFINITY, 0, 0, 0}};
  std::size_t at = 1;
  explicit Table(const std::string& file) {
    FILE* in = std::fopen(file.c_str(), "r");
    for (double x, y; std::fscanf(in, "%lf,%lf\n", &x, &y) == 2;) points.push_back({x, y, 0, 0});
    std::fclose(in);
    for (std::size_t k = 1; k + 1 < points.size(); ++k) {
      Point& p = points[k];
      p.slope = (points[k + 1].y - p.y) / (points[k + 1].x - p.x);
      p.intercept = p.y - p.slope * p.x;
    }
    points.front().intercept = points[1].y;
    points.back().intercept = points.back().y;
  }
  double Lookup(double x) {
    if (x < points[at].x) {
      while (at > 0 && x < points[at].x) --at;
    } else {
      while (at + 1 < points.size() && x >= points[at + 1].x) ++at;
    }
    return x * points[at].slope + points[at].intercept;
  }
};

static char* Put(char* out, double value, int decimals) {
  static const double scale[] = {1, 10, 100, 1000};
  *out++ = ',';
  *out++ = ' ';
  if (value < 0) {
    value = -value;
    *out++ = '-';
  }
  auto rest = static_cast<std::uint64_t>(value * scale[decimals] + 0.5 + 1e-9);
  char digits[24];
  int count = 0;
  do {
    digits[count++] = static_cast<char>('0' + rest % 10);
    rest /= 10;
  } while (rest != 0 || count <= decimals);
  while (count > decimals) *out++ = digits[--count];
  if (decimals != 0) *out++ = '.';
  while (count > 0) *out++ = digits[--count];
  return out;
}

static const char* Take(const char* text, long& value) {
  value = 0;
  while (*text >= '0' && *text <= '9') value = value * 10 + (*text++ - '0');
  return text + 1;
}

static char Digit(long value) {
  return static_cast<char>('0' + value % 10);
}

int main(int, char** argv) {
  const std::string folder = argv[2];
  Table moisture(folder + "/moisture.lkp"), salinity(folder + "/salinity.lkp"), correction(folder + "/salcorr.lkp");
  static const char* const months = "JanFebMarAprMayJunJulAugSepOctNovDec";
  FILE* in = std::fopen(argv[1], "r");
  FILE* out = std::fopen(argv[3], "w");
  std::setvbuf(in, nullptr, _IOFBF, 1 << 17);
  std::setvbuf(out, nullptr, _IOFBF, 1 << 16);
  char line[4096], row[8192];
  if (std::fgets(line, sizeof line, in) == nullptr) return 1;
  std::fputs("Date, ...\r\n", out);
  while (std::fgets(line, sizeof line, in) != nullptr) {
    long year, month, day, hour, minute, item[12];
    const char* text = Take(Take(Take(Take(Take(line, year), month), day), hour), minute);
    for (long& value : item) text = Take(text, value);
    char* end = row;
    if (day > 9) *end++ = static_cast<char>('0' + day / 10);
    for (const char c : {static_cast<char>('0' + day % 10), ' ', months[3 * month - 3], months[3 * month - 2],
                         months[3 * month - 1], ' ', Digit(year / 1000), Digit(year / 100), Digit(year / 10),
                         Digit(year), ' ', Digit(hour / 10), Digit(hour), ':', Digit(minute / 10), Digit(minute)}) {
      *end++ = c;
    }
    end = Put(Put(Put(end, item[0] / 1000.0, 3), item[1] / 100.0 - 273, 2), item[2], 0);
    for (int k = 0; k < 3; ++k) {
      const double temperature = item[5 + 3 * k], difference = temperature - 29300;
      const double uncorrected = moisture.Lookup(item[3 + 3 * k] - 2.5 * difference / 100);
      const double salt = salinity.Lookup(item[4 + 3 * k] - 1.5 * difference / 100);
      end = Put(Put(end, uncorrected, 2), uncorrected + correction.Lookup(salt), 2);
      end = Put(Put(end, salt, 3), temperature / 100 - 273, 2);
    }
    std::memcpy(end, "\r\n", 2);
    std::fwrite(row, 1, static_cast<std::size_t>(end + 2 - row), out);
  }
  std::fflush(out);
  fdatasync(fileno(out));
  std::fclose(out);
}
