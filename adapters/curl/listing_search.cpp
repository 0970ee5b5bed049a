#include "curl/listing_search.h"

#include <algorithm>
#include <charconv>
#include <string_view>
#include <utility>

#include "base/paths.h"
#include "curl/listing_reader.h"

namespace corvane {

namespace {

constexpr int kNoMatchingFiles = 450;
/// Links beyond these count as files: each costs a question.
constexpr std::size_t kMostLinks = 200;

struct PathParts {
  std::string folder;
  std::string name;
};

/// A back-slash is a character like any other here.
PathParts PartsOf(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  if (slash == std::string::npos) return {"", path};
  return {path.substr(0, std::max<std::size_t>(slash, 1)), path.substr(slash + 1)};
}

bool IsEverything(const std::string& pattern) {
  return pattern == "*.*" || pattern == "*";
}

/// A link is a folder when it can be entered.
bool ResolveLinks(FtpConnection& ftp, const std::string& folder, ListingReader& listing) {
  FtpTask task;
  for (const std::size_t place : listing.links()) {
    if (task.commands.size() == kMostLinks) break;
    const std::string& name = listing.records()[place].name;
    task.commands.push_back("CWD " + (folder.back() == '/' ? folder : folder + "/") + name);
  }
  if (task.commands.empty()) return true;
  if (!ftp.Perform(task)) return false;
  auto link = listing.links().begin();
  for (const FtpExchange& exchange : ftp.transcript().exchanges()) {
    if (exchange.verb != "CWD" || link == listing.links().end()) continue;
    listing.records()[*link++].is_folder = exchange.code / 100 == 2;
  }
  return true;
}

/// Gives a listing to its reader as it comes.
class ListingTarget : public FtpData {
 public:
  explicit ListingTarget(ListingReader& listing) : listing_(listing) {}
  bool Write(std::string_view bytes) override { return fits_ = listing_.Take(bytes); }
  [[nodiscard]] bool fits() const { return fits_; }

 private:
  ListingReader& listing_;
  bool fits_ = true;
};

bool ReadListing(FtpConnection& ftp, const std::string& folder, ListingReader& listing) {
  ListingTarget target(listing);
  FtpTask task{.kind = FtpTask::Kind::Listing, .path = folder, .data = &target};
  if (ftp.has_mlsd()) task.list_command = "MLSD";
  const bool came = ftp.Perform(task);
  for (const std::string& line : listing.skipped()) ftp.Report(kListingLineSkipped, line);
  if (!target.fits()) return ftp.Refuse("The listing of " + folder + " is too long to be read.");
  // Some servers refuse to list an empty folder.
  const FtpExchange& last = ftp.transcript().Last();
  if (!came) return last.code == kNoMatchingFiles && last.verb != "CWD";
  listing.End();
  return ResolveLinks(ftp, folder, listing);
}

bool ReadFolder(FtpConnection& ftp, const EventLoop& loop, const std::string& folder,
                std::function<bool(std::string_view)> wanted, std::vector<FindRecord>& records) {
  if (!ftp.CheckName(folder)) return false;
  ListingReader listing(ftp.has_mlsd() ? ListingForm::Facts : ListingForm::List, loop.Now(), std::move(wanted));
  if (!ReadListing(ftp, ftp.Absolute(folder), listing)) return false;
  records = std::move(listing.records());
  return true;
}

/// For a server that does not tell the size of a file: the file's line in its folder's listing.
bool FindInFolder(FtpConnection& ftp, const EventLoop& loop, const std::string& path,
                  std::vector<FindRecord>& records) {
  const auto [folder, name] = PartsOf(path);
  const auto wanted = [&wanted_name = name](std::string_view entry) { return entry == wanted_name; };
  if (!ReadFolder(ftp, loop, folder, wanted, records)) return false;
  if (!records.empty() && !records.front().is_folder) return true;
  return ftp.Refuse("The server has no file " + path + ".");
}

}  // namespace

std::int64_t SizeIn(const FtpExchange& reply) {
  std::int64_t size = 0;
  const char* end = reply.text.data() + reply.text.size();
  return std::from_chars(reply.text.data(), end, size).ec == std::errc() && size >= 0 ? size : -1;
}

bool ListFolder(FtpConnection& ftp, const EventLoop& loop, const std::string& path, std::vector<FindRecord>& records) {
  const auto [folder, pattern] = PartsOf(path);
  const bool everything = IsEverything(pattern);
  const auto wanted = [everything, &filter = pattern](std::string_view name) {
    return everything || MatchesPattern(name, filter);
  };
  return ReadFolder(ftp, loop, folder.empty() ? ftp.current_folder() : folder, wanted, records);
}

bool FindOneFile(FtpConnection& ftp, const EventLoop& loop, const std::string& path, std::vector<FindRecord>& records) {
  if (!ftp.CheckName(path)) return false;
  const std::string full = ftp.Absolute(path);
  if (!ftp.Perform({.kind = FtpTask::Kind::Examine, .path = full, .commands = {"MDTM " + full}})) return false;
  const FtpExchange& size = ftp.transcript().Of("SIZE");
  constexpr int kUnknownCommands[] = {500, 502, 504};
  if (std::find(std::begin(kUnknownCommands), std::end(kUnknownCommands), size.code) != std::end(kUnknownCommands)) {
    if (!FindInFolder(ftp, loop, full, records)) return false;
  } else {
    if (!ftp.Accepted("SIZE")) return false;
    FindRecord& record = records.emplace_back();
    record.name = PartsOf(full).name;
    record.size = SizeIn(size);
    record.last_written = LocalTimeOf(ftp.transcript().Of("MDTM").text);
  }
  ftp.RememberSize(full, records.front().size);
  return true;
}

}  // namespace corvane
