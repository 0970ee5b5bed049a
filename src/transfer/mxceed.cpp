#include "transfer/mxceed.h"

#include <algorithm>
#include <array>
#include <string>

#include "base/text.h"

namespace corvane {
namespace {

struct ZipText {
  std::int16_t code;
  std::string_view text;  ///< "{}" is the operation
  bool quiet = false;
};
constexpr std::string_view kOperation = "{}";
constexpr std::string_view kDiskNotEmpty = "A full disk was inserted instead of an empty one";
constexpr std::array kZipTexts = {
    ZipText{10, "Warning general", true},
    ZipText{30, "No zip file", true},
    ZipText{40, "Some files were skipped while {}", true},
    ZipText{50, "The Zip file is empty.", true},
    ZipText{100, "Could not find the archive file"},
    ZipText{110, "Archive file is corrupted - try using the Fix option on it"},
    ZipText{120, "Ran out of memory while {}"},
    ZipText{130, "Invalid property settings. Check your code."},
    ZipText{140, "Nothing to do", true},
    ZipText{150, "Disk full while {}"},
    ZipText{160, "Archive file is corrupted - try using the Fix option on it"},
    ZipText{
        180,
        "Another application is currently performing a similar task. Wait until the other application has completed "
        "its operation"},
    ZipText{190, "The {} operation was aborted", true},
    ZipText{200, "Test failed - errors in the archive"},
    ZipText{210, "No files ended up being tested in the archive"},
    ZipText{240, "DLL not found"},
    ZipText{280, "Problem with the temporary file"},
    ZipText{290, "Problem reading from file while {}"},
    ZipText{300, "Problem writing to file while {}"},
    ZipText{310, "Problem creating file while {}"},
    ZipText{350, "Attempt to remove parent directory"},
    ZipText{370, "Names repeated in archive after discarding pathnames"},
    ZipText{380, "Could not update the Zip archive date. Archive only contains directories or is empty"},
    ZipText{400, "Read/Write error with the Zip file or one of the files to process"},
    ZipText{410, "Cannot work on multiple-disk archives when not in Multidisk mode"},
    ZipText{420, "Wrong disk was inserted too many times"},
    ZipText{430, "Operation not supported for Multidisk Zip archives"},
    ZipText{440, "Could not open the self-extractor binary"},
    ZipText{450, "Could not open the self-extractor configuration file"},
    ZipText{460, "Invalid command parameter passed to an Xceed Zip event"},
    ZipText{470, "Not enough space on first disk to write self-extractor"},
    ZipText{490, "Invalid self-extractor binary version"},
    ZipText{510, "Problem creating destination directory while {}"},
};

std::string WithOperation(std::string_view as_Text, std::string_view as_Operation) {
  std::string text(as_Text);
  const std::size_t at = text.find(kOperation);
  return at == std::string::npos ? text : text.replace(at, kOperation.size(), as_Operation);
}

std::string UnknownCode(std::int16_t ai_Code, std::string_view as_Operation) {
  // Intended: "occured" is the spelling that people search logs for.
  return "Error " + std::to_string(ai_Code) + " occured while " + std::string(as_Operation) + " the specified files";
}

}  // namespace

void ShowZipError(std::int16_t ai_Code, std::string_view as_Operation, const ZipComponent& av_Component,
                  Messages& av_Messages, Trace& av_Trace) {
  if (ai_Code <= 0) return;
  const auto row = std::find_if(kZipTexts.begin(), kZipTexts.end(),
                                [ai_Code](const ZipText& candidate) { return candidate.code == ai_Code; });
  const bool known = row != kZipTexts.end();
  const bool disk_not_empty = ai_Code == kZipDiskFull && av_Component.DiskWasNotEmpty();
  std::string message = known ? WithOperation(row->text, as_Operation) : UnknownCode(ai_Code, as_Operation);
  if (disk_not_empty) message = kDiskNotEmpty;
  const std::string cause = av_Component.LastErrorText();
  av_Trace.LogWrite(message + (cause.empty() ? "" : " [" + cause + "]"));
  if (known && row->quiet) return;
  message += std::string(kLineBreak) + "ZipFile: " + av_Component.ZipFilename();
  av_Messages.Show(message, "zip" + std::to_string(ai_Code), BoxIcon::Stop);
}

}  // namespace corvane
