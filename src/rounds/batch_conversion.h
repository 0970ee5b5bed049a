#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "data/calibrated_converter.h"
#include "data/file_listbox.h"
#include "data/local_files.h"
#include "data/lookup.h"
#include "form/form.h"
#include "link/port_link.h"
#include "registry/unit_editor.h"
#include "state/file_names.h"
#include "state/run_flags.h"
#include "trace/trace.h"
#include "ui/messages.h"
#include "ui/progress_bar.h"

namespace corvane {

/// What became of one raw file.
struct ConversionResult {
  std::int64_t unit = 0;
  std::optional<std::int64_t> readings;  ///< in the raw file; none when no calibrated file was made
  std::int64_t bad_lines = 0;
};

/// The conversion commands. All **yield** and run while the operation slot is held.
class BatchConversion {
 public:
  BatchConversion(Form& av_Form, RunFlags& av_Flags, const LinkState& av_Link, const Registry& av_Registry,
                  const FileNames& av_Names, CFileListbox& av_FileList, LocalFiles& av_Files, Lookups& av_Lookups,
                  CalibratedConverter& av_Converter, UnitEditor& av_Units, PortLink& av_PortLink, EventLoop& av_Loop,
                  ProgressBars& av_Bars, Messages& av_Messages, Trace& av_Trace);

  /// Reads the three lookup files anew; false at the first that fails, which has been shown.
  [[nodiscard]] bool InitialiseLookups();
  /// Converts the files selected in the local file list, or the focused one.
  void ConvertSelectedFiles();
  /// Converts the raw files of all active units, or of the selected unit whether active or not; of a connection type
  /// (-1 any) and of a client (-1 any).
  void ConvertAllUnits(bool ab_All, std::int32_t al_GetFrom, std::int32_t al_Client);
  /// Sets both counters to zero: a conversion command begins.
  void ResetCounters();
  /// Reports lines, errors and time when there were errors.
  void ShowConvertSummary(std::string_view as_FileText, std::int64_t al_StartMilliseconds);
  /// The raw files that the present or last operation has tried, in order.
  [[nodiscard]] const std::vector<ConversionResult>& Results() const { return results_; }
  /// Forgets them: an operation begins.
  void ClearResults() { results_.clear(); }

 private:
  struct DataFile {
    std::string Full;
    std::string Short;
  };
  using UnitsByRawFile = std::unordered_map<std::string, std::int32_t>;

  [[nodiscard]] UnitsByRawFile MapUnits() const;
  void ConvertOneFile(const DataFile& av_File, const UnitsByRawFile& av_Units);
  /// Selects the unit whose raw file has that bare name; without one says so and returns false.
  [[nodiscard]] bool FindUnitForRawFile(const std::string& as_FileName, const UnitsByRawFile& av_Units);
  /// Converts the files of the `al_Count` units that are in the run, then selects `al_Selected` again.
  void ConvertUnits(const std::function<bool(std::int64_t)>& av_InRun, std::int64_t al_Count, std::int64_t al_Selected);
  /// Converts one raw file; one that failed or has bad lines counts as a problem of the operation.
  void ConvertFile(const std::string& as_RawFile);
  [[nodiscard]] bool Cancelled() const;

  Form& form_;
  RunFlags& flags_;
  const LinkState& link_;
  const Registry& registry_;
  const FileNames& names_;
  CFileListbox& file_list_;
  LocalFiles& files_;
  Lookups& lookups_;
  CalibratedConverter& converter_;
  UnitEditor& units_;
  PortLink& port_link_;
  EventLoop& loop_;
  ProgressBars& bars_;
  Messages& messages_;
  Trace& trace_;
  std::vector<ConversionResult> results_;
};

}  // namespace corvane
