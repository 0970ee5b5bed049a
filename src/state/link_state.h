// The state of the radio link, shared by port, protocol, capture and sessions.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <string_view>

#include "base/dates.h"
#include "base/synced_file.h"
#include "state/download_tally.h"

namespace corvane {

/// Command numbers; while a command's answer is awaited, its number is the link's `State`.
enum Command : std::int16_t {
  kIdle = 0,
  kDownload = 1,
  kSetDate = 2,
  kGetDate = 3,
  kSetLogPeriod = 4,
  kSetMode = 5,
  kSetDelays = 6,
  kReadMemory = 7,
  kTestBaseStation = 8,
};
inline constexpr std::int16_t kLastState = 10;
/// The base station's word that the unit did not answer it.
inline constexpr std::int16_t kNoResponseResult = 2;
/// The result code of an error on this side of the line; its text is entered when it happens.
inline constexpr std::int16_t kCommsErrorResult = 9;
/// The result code of a download that this side has broken off.
inline constexpr std::int16_t kCancelledResult = 4;

struct LinkState {
  std::string ReceiveBuffer;   ///< received and not yet cut into lines
  std::string ReplyLine;       ///< the last complete reply line
  std::string CurrentCommand;  ///< the last text sent
  bool UserCancel = false;
  bool Timeout = false;
  bool HalvexError = false;
  std::int16_t State = kIdle;
  std::int16_t ResultCode = 0;
  std::array<std::string, 11> ResultText = {"",
                                            "Invalid command or format",
                                            "No response from unit",
                                            "Successful connection, but failed before down load completed",
                                            "Corvane cancelled download",
                                            "Busy",
                                            "HVError"};
  std::int64_t OverunCount = 0;
  bool OverunFlag = false;
  bool PortFailed = false;  ///< the port did not open when the operation last tried
  bool TestingPort = false;
  std::string Asked;             ///< what is asked, where it is no unit of the list; else empty
  bool DirectListening = false;  ///< the direct terminal has the line: nothing that arrives is an answer
  std::int64_t LineCount = 0;    ///< reply lines counted for the current command
  std::int64_t LinesExpected = 0;
  bool DataPhase = false;                ///< a reply line other than the echo has arrived since the last send
  double CountDown = 0;                  ///< seconds the reply may take
  bool Aborted = false;                  ///< an escape was sent while an answer was awaited
  bool AbortTimedOut = false;            ///< the last time-out came behind such an escape
  std::optional<std::int64_t> SendTime;  ///< monotonic milliseconds at which the present command was sent, if it was
  std::int64_t LastLineTime = 0;         ///< monotonic milliseconds of the last send or complete line

  /// True when neither the user nor the count-down ended the exchange.
  // Intended: an error reply does not count here, the session tries that unit again and goes on.
  [[nodiscard]] bool ContinueOk() const { return !UserCancel && !Timeout; }
  /// An error on this side of the line ends the exchange like an error reply, with `as_Error` as its text.
  void Fail(std::string_view as_Error) {
    HalvexError = true;
    ResultCode = kCommsErrorResult;
    ResultText[kCommsErrorResult] = as_Error;
  }
  /// The text of a result code; "HVError " and the code when the table has none.
  [[nodiscard]] std::string ResultTextOf(std::int16_t ai_Code) const {
    const bool known = ai_Code >= 0 && ai_Code < static_cast<std::int16_t>(ResultText.size()) &&
                       !ResultText[static_cast<std::size_t>(ai_Code)].empty();
    return known ? ResultText[static_cast<std::size_t>(ai_Code)] : "HVError " + std::to_string(ai_Code);
  }
};

/// What is asked for when a download is to fill a gap of a raw file, and how it ended.
struct GapDownload {
  DateTime from;                 ///< the reading before the gap
  DateTime to;                   ///< the reading behind it: with the first one that is not earlier all is said
  std::int64_t most_lines = 0;   ///< a unit that announces more is not listened to
  bool too_many = false;         ///< so it was
  bool reached_the_end = false;  ///< such a reading came, and all before it is on the disk
};

/// The state of one download, beside the link's.
struct DownloadState {
  std::string HeaderLine;    ///< items text of the header as last received
  Moment HeaderTime;         ///< when it came
  std::string FramedHeader;  ///< the same as it came, framing and checksum included
  std::int64_t ItemsPerLine = 0;
  bool SavingData = false;
  SyncedFile Output;  ///< the open raw file
  std::string OutputFileName;
  std::int32_t AskedID = 0;                        ///< the radio address of the unit
  std::optional<std::string> OwnSiteID;            ///< of the raw file's own right header, none where it has none
  DateTime LastDate;                               ///< last reading already stored, none when there is none
  std::set<std::string, std::less<>> StoredAhead;  ///< readings in the raw file that are dated later than that
  DownloadTally Tally;                             ///< of the present command
  std::int64_t Round = 0;                          ///< tells the rounds of this run of the program apart
  std::optional<GapDownload> Gap;                  ///< what the download is to fill; none: it brings what is new
  bool ClockDoubtful = false;  ///< this computer's clock may be wrong: readings to come are stored as they are
};

}  // namespace corvane
