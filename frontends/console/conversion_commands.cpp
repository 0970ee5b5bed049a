#include "conversion_commands.h"

#include <filesystem>

#include "base/paths.h"
#include "units.h"

namespace corvane::console {
namespace {

void ConvertUnit(Desk& desk, UnitResults& results, std::int64_t unit) {
  OperateOn(desk, results, {unit}, [&desk, unit] {
    desk.app.units().Select(unit);
    desk.app.commands().ConvertAll(false);
  });
}

void ConvertFile(Desk& desk, UnitResults& results, const std::string& file) {
  const FileNames& names = desk.app.names();
  std::string other_file;  // of that name in another folder
  for (std::int32_t unit = 1; unit <= desk.app.registry().Units.count(); ++unit) {
    if (names.DataFileShortName(unit, false) != FileNameOf(file)) continue;
    const std::string raw_file = names.DataFileName(unit, false);
    std::error_code error;
    const bool same = FileNameOf(file) == file || std::filesystem::equivalent(file, raw_file, error);
    if (same) return ConvertUnit(desk, results, unit);
    if (other_file.empty()) other_file = raw_file;
  }
  results.AddLeftOut(file, other_file.empty() ? "not converted: no unit has a raw file of that name"
                                              : "not converted: the raw file is " + other_file);
}

}  // namespace

int Convert(Desk& desk, const Options& options) {
  UnitResults results(desk.app, UnitResults::Kind::Convert);
  const Registry& registry = desk.app.registry();
  if (options.files) {
    for (const std::string& file : options.arguments) ConvertFile(desk, results, file);
  } else if (options.arguments.empty()) {
    OperateOn(desk, results, ActiveUnits(registry, kFromAnywhere), [&desk] { desk.app.commands().ConvertAll(true); });
  } else {
    for (const std::int64_t unit : FindUnits(registry, options.arguments)) ConvertUnit(desk, results, unit);
  }
  return Report(desk, results);
}

}  // namespace corvane::console
