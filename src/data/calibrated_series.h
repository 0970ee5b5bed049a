#pragma once

#include <functional>

#include "base/files.h"
#include "data/reading_series.h"

namespace corvane {

/// Reads a calibrated file into `av_Series` by the date format of the request, and says what of it cannot be shown.
void ReadCalibratedSeries(const SeriesRequest& av_Request, const InputFile& av_File, ReadingSeries& av_Series,
                          const std::function<bool()>& av_Poll);

}  // namespace corvane
