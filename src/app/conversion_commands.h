#pragma once

#include "app/operations.h"
#include "data/hex_conversion.h"
#include "platform/dialogs.h"
#include "rounds/batch_conversion.h"
#include "rounds/selected_conversion.h"
#include "state/file_names.h"

namespace corvane {

/// The commands that convert files.
///
/// All **yield**; those that return bool are refused, returning false, while an operation runs.
class ConversionCommands {
 public:
  /// What the commands start; all must outlive this object.
  struct Parts {
    RunFlags& flags;
    const FileNames& names;
    Operations& operations;
    BatchConversion& units;
    SelectedConversion& selected;
    HexConversion& hex;
    Dialogs& dialogs;
    Trace& trace;
  };
  explicit ConversionCommands(const Parts& av_Parts) : p_(av_Parts) {}

  /// Converts the raw files of all active units, or of the selected one.
  bool ConvertAll(bool ab_All);
  /// Converts the files selected in the local file list.
  bool ConvertSelected();
  /// Asks for a hex dump and converts it.
  void ConvertHex();

 private:
  Parts p_;
};

}  // namespace corvane
