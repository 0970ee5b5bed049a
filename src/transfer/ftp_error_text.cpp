#include "transfer/ftp_error_text.h"

#include <array>
#include <cstddef>
#include <cstdint>

#include "base/text.h"
#include "platform/internet_client.h"

namespace corvane {
namespace {

constexpr std::size_t kLongestReply = 255;  // characters
constexpr std::string_view kNoDetails = "Error details not available.";

struct ErrorRow {
  int code;
  std::string_view text;
};

// Intended: missing and doubled blanks stand as operators and their notes know these texts.
constexpr std::array kErrors = {
    ErrorRow{12001, "No more handles could be generated at this time"},
    ErrorRow{12002, "The request has timed out."},
    ErrorRow{12004, "An internal error has occurred"},
    ErrorRow{12005, "URL is invalid"},
    ErrorRow{12006, "URL scheme could not be recognized or is not supported"},
    ErrorRow{12007, "Server name could not be resolved"},
    ErrorRow{12008, "Requested protocol could not be located."},
    ErrorRow{12009, "A request to InternetQueryOption or InternetSetOption specified an invalid option value."},
    ErrorRow{12010,
             "Length of an option supplied to InternetQueryOption or InternetSetOption is incorrect for the type of "
             "option specified."},
    ErrorRow{12011, "The request option can not be set, only queried. "},
    ErrorRow{12012, "The Win32 Internet support is being shutdown or unloaded."},
    ErrorRow{12013,
             "Request to connect and login to an FTP server could notbe completed because the supplied user name is "
             "incorrect."},
    ErrorRow{12014,
             "Request to connect and login to an FTP server could not be completed because the supplied password is "
             "incorrect. "},
    ErrorRow{12015, "Request to connect to and login to an FTP server failed."},
    ErrorRow{12016, "Requested operation is invalid. "},
    ErrorRow{12017,
             "Operation was canceled, usually because the handle on which the request was operating was closed before "
             "the operation completed."},
    ErrorRow{12018, "Type of handle supplied is incorrect for this operation"},
    ErrorRow{12019,
             "Requested operation can not be carried out because the handle supplied is not in the correct state."},
    ErrorRow{12020, "Request can not be made via a proxy"},
    ErrorRow{12021, "A required registry value could not be located"},
    ErrorRow{12022, "A required registry value was located but is an incorrect type or has an invalid value."},
    ErrorRow{12023, "Direct network access cannot be made at this time"},
    ErrorRow{12024, "An asynchronous request could not be made because a zero context value was supplied."},
    ErrorRow{12025, "An asynchronous request could not be made because a callback function has not been set."},
    ErrorRow{12026, "The required operation could not be completed because one or more requests are pending."},
    ErrorRow{12027, "The format of the request is invalid."},
    ErrorRow{12028, "The requested item could not be located."},
    ErrorRow{12029, "The attempt to connect to the server failed."},
    ErrorRow{12030, "The connection with the server has been terminated."},
    ErrorRow{12031, "The connection with the server has been reset."},
    ErrorRow{12036, "The request failed because the handle already exists."},
};

}  // namespace

std::string FtpErrorText(int al_Code, std::string_view as_Reply) {
  if (al_Code == kInternetExtendedError) {
    return as_Reply.empty() ? "Extended error returned from server"
                            : std::string(CutCharacters(as_Reply, kLongestReply));
  }
  for (const ErrorRow& row : kErrors) {
    if (row.code == al_Code) return std::string(row.text);
  }
  return std::string(kNoDetails);
}

}  // namespace corvane
