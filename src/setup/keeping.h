#pragma once

#include <cstdint>
#include <functional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "base/status.h"
#include "form/form.h"
#include "platform/archive.h"
#include "setup/kept_manifest.h"
#include "state/app_info.h"
#include "state/file_names.h"
#include "state/records.h"

namespace corvane {

/// What keeping and restoring have to know of the settings.
struct KeptSettings {
  /// A key of the section General that names a file or folder, and what holds where it is missing.
  struct Path {
    std::string key;
    std::string fallback;
  };
  std::vector<Path> paths;
  std::function<bool(std::string_view section, std::string_view key)> is_password;
};

/// What is kept, and where.
struct KeepingOrder {
  std::string archive;  ///< full path; ends in ".zip"
  bool data = false;
  bool passwords = true;
  int generations = 3;  ///< former archives that stay, as FILE.1.zip, FILE.2.zip, ...
  std::string host;
  std::string made;  ///< the time of now, as the manifest tells it
};

struct Kept {
  std::int64_t files = 0;
  std::int64_t bytes = 0;             ///< of the archive
  std::vector<std::string> left_out;  ///< a sentence for each file that is named and not there
};

/// Puts the settings, what they name, the history and, where wanted, the data files into one archive, beside whatever
/// program runs: it only reads.
class Keeping {
 public:
  /// What is read and used; all must outlive this object.
  struct Parts {
    const Form& form;
    const Registry& registry;
    const AppInfo& app;
    const FileNames& names;
    const KeptSettings& settings;
    Archive& archive;
    std::function<Status(const std::string& from, const std::string& to)> copy_history;
    /// Runs what takes long where it holds nothing up; without it, it runs as it is called.
    std::function<void(const std::function<void()>& work)> aside = {};
    std::function<bool()> cancelled = {};  ///< asked by what runs aside too
  };
  explicit Keeping(const Parts& av_Parts) : p_(av_Parts) {}

  /// Makes the archive; it appears under its name when it is whole. Throws `RunTimeError`, also where it was cancelled;
  /// the former one is whole then. **Yields** where `aside` does.
  [[nodiscard]] Kept Keep(const KeepingOrder& av_Order);

 private:
  void AddSettings(const KeepingOrder& av_Order, std::string as_Settings);
  void AddNamedFiles(const std::string& as_Settings);
  void AddData();
  void AddFolder(const std::string& as_Client);
  void AddFile(const std::string& as_Name, const std::string& as_File);
  [[nodiscard]] KeptManifest BeginManifest(const KeepingOrder& av_Order) const;
  /// Writes all that was added. Touches nothing that belongs to the loop's thread.
  void Write(const std::string& as_Archive, const std::string& as_Part, const std::string& as_History,
             KeptManifest& av_Manifest);

  Parts p_;
  std::vector<ArchiveSource> sources_;
  std::set<std::string> taken_;  ///< their names
  Kept kept_;
};

/// The name of a former archive: "net.zip" and 2 is "net.2.zip".
[[nodiscard]] std::string GenerationName(const std::string& as_Archive, int al_Number);

}  // namespace corvane
