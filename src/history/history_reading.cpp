#include "history/history_reading.h"

#include <algorithm>
#include <array>

#include "base/paths.h"

namespace corvane {
namespace {

struct FailureText {
  int code;
  const char* says;
};

constexpr std::array kFailures = {
    FailureText{HistoryStore::kMissing, " is not there yet: the first download makes it. --home names another folder"},
    FailureText{HistoryStore::kNewer, " was written by a newer version: use the corvanectl of that version"},
    FailureText{HistoryStore::kDamaged,
                " is damaged: the window or corvanectl run sets it aside and begins anew when it comes upon the "
                "damage; to do so "
                "now, move it away while neither runs"},
    FailureText{HistoryStore::kBusy, " is held by another program: try again in a moment"},
};

}  // namespace

std::string HistoryFile(const std::string& as_Folder) {
  return AddBackslash(as_Folder) + std::string(kHistoryFile);
}

Status HistoryFailure(const Status& av_Failure, const std::string& as_File) {
  const auto* const found = std::find_if(kFailures.begin(), kFailures.end(), [&av_Failure](const FailureText& each) {
    return each.code == av_Failure.code();
  });
  if (found == kFailures.end()) return {av_Failure.code(), "the history cannot be used: " + av_Failure.text()};
  return {av_Failure.code(), "the history " + as_File + found->says};
}

Status ReadHistory(HistoryStore& av_Store, const std::string& as_Folder, const HistoryQuery& av_Query,
                   HistoryContents& av_Result) {
  const std::string file = HistoryFile(as_Folder);
  Status status = av_Store.OpenToRead(file);
  if (status.ok()) status = av_Store.Read(av_Query, av_Result);
  return status.ok() ? status : HistoryFailure(status, file);
}

}  // namespace corvane
