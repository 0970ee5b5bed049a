#pragma once

#include "app/platform.h"
#include "app/report_assembly.h"
#include "app/shared_state.h"
#include "data/calibrated_converter.h"
#include "data/file_listbox.h"
#include "data/hex_conversion.h"
#include "data/local_files.h"
#include "data/lookup.h"
#include "data/raw_conversion.h"

namespace corvane {

/// The services of src/data; for the composition root.
struct DataAssembly {
  DataAssembly(const Platform& av_Platform, SharedState& av_State, ReportAssembly& av_Report);

  CFileListbox file_list;
  LocalFiles files;
  Lookups lookups;
  CalibratedConverter converter;
  RawConversion conversion;
  HexConversion hex;
};

}  // namespace corvane
