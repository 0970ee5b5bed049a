#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "data/file_listbox.h"
#include "data/raw_conversion.h"
#include "platform/event_loop.h"
#include "registry/unit_editor.h"
#include "state/file_names.h"
#include "state/run_flags.h"
#include "ui/messages.h"

namespace corvane {

/// Converts the files that a person has selected in the local file list.
class SelectedConversion {
 public:
  /// What the conversion works with; all must outlive this object.
  struct Parts {
    const LinkState& link;
    const RunFlags& flags;
    const Registry& registry;
    const FileNames& names;
    CFileListbox& file_list;
    UnitEditor& units;
    RawConversion& conversion;
    EventLoop& loop;
    Messages& messages;
  };
  explicit SelectedConversion(const Parts& av_Parts) : p_(av_Parts) {}

  /// Converts the selected files, or the focused one. **Yields** and runs while the operation slot is held.
  void ConvertSelectedFiles();

 private:
  struct DataFile {
    std::string Full;
    std::string Short;
  };
  /// The first unit of each raw file, by its full name and by its bare one.
  struct UnitsByRawFile {
    std::unordered_map<std::string, std::int32_t> full;
    std::unordered_map<std::string, std::int32_t> bare;
  };

  /// Empty when none is selected and none has the focus, which has been shown.
  [[nodiscard]] std::vector<DataFile> ChosenFiles();
  [[nodiscard]] UnitsByRawFile MapUnits() const;
  void ConvertOneFile(const DataFile& av_File, const UnitsByRawFile& av_Units);
  /// Selects the unit whose raw file it is, else the first whose has that bare name; without one says so and returns
  /// false.
  [[nodiscard]] bool FindUnitForRawFile(const DataFile& av_File, const UnitsByRawFile& av_Units);
  /// Reports lines, errors and time when there were errors.
  void ShowConvertSummary(std::string_view as_FileText, std::int64_t al_StartMilliseconds);

  Parts p_;
};

}  // namespace corvane
