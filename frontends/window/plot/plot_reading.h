#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "data/reading_series.h"
#include "lang/phrases.h"
#include "window/plot/plot_line.h"

namespace corvane::window {

/// A unit that is shown.
struct PlotUnit {
  std::string name;
  std::string depths;
  SeriesRequest request;  ///< without channels
};

/// What is to be shown.
struct PlotWish {
  std::vector<PlotUnit> units;
  Quantity left = Quantity::Moisture;
  std::optional<Quantity> right;  ///< on the second axis
  std::vector<std::int32_t> hidden_sensors;
  std::int32_t item = 1;  ///< the raw item, where those are wanted
  Phrases phrases;
};

/// What came of it.
struct PlotReading {
  PlotContents contents;
  std::size_t units = 0;     ///< that were wished for
  std::string depths;        ///< those of all units, empty where they differ
  std::int32_t sensors = 0;  ///< the most that one of the units has
  std::int32_t items = 0;    ///< the most raw items of one of the units
  bool no_table = false;     ///< a lookup table that is needed cannot be used
};

/// More lines cannot be told apart.
inline constexpr std::size_t kMostLines = 14;

/// Reads what is wished for; for a thread beside the window's. `cancelled` is asked now and then.
[[nodiscard]] PlotReading ReadPlot(const PlotWish& wish, const std::function<bool()>& cancelled);
/// Tells one state of the files and settings behind a wish from another.
[[nodiscard]] std::string StateOf(const PlotWish& wish);

}  // namespace corvane::window
