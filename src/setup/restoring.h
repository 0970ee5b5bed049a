#pragma once

#include <string>
#include <utility>
#include <vector>

#include "base/profile.h"
#include "platform/archive.h"
#include "setup/keeping.h"
#include "setup/kept_manifest.h"
#include "setup/restore_moves.h"

namespace corvane {

/// Puts an archive of `Keeping` into an application folder, whose lock is held.
class Restoring {
 public:
  /// A setting that means another place here.
  struct Changed {
    std::string key;
    std::string before;
    std::string now;
  };

  /// `as_Home` is the application folder; all must outlive this object.
  Restoring(std::string as_Home, const KeptSettings& av_Settings, Archive& av_Archive);
  Restoring(const Restoring&) = delete;
  Restoring& operator=(const Restoring&) = delete;

  /// Reads the archive to its end and plans where everything goes; throws `RunTimeError` for an archive that is not
  /// whole, of a newer version, or not as `Keeping` makes them. Writes nothing.
  void Examine(const std::string& as_Archive);
  /// Puts it in; throws `RunTimeError`. Returns the folder that holds what was replaced, empty when nothing was.
  [[nodiscard]] std::string PutIn();

  // What `Examine` found.
  [[nodiscard]] const KeptManifest& manifest() const { return manifest_; }
  [[nodiscard]] const std::vector<Changed>& changed() const { return changed_; }

 private:
  /// An entry, and the file that it becomes.
  struct Placed {
    std::string name;
    std::string target;
    unsigned mode = 0644;
  };

  void CheckContents() const;
  void PlanSettings();
  void PlanFile(const ArchiveEntry& av_Entry);
  void Change(const std::string& as_Key, const std::string& as_Now);
  /// A path of the former application folder as one of this one; any other as it stands.
  [[nodiscard]] std::string Moved(const std::string& as_Path) const;
  [[nodiscard]] std::string InHome(std::string_view as_Name) const;
  [[nodiscard]] std::vector<KeptSettings::Path>::const_iterator PathOf(std::string_view as_Key) const;
  [[nodiscard]] std::string ValueOf(const std::string& as_Key) const;
  [[nodiscard]] std::string NewBeforeFolder() const;

  std::string home_;
  const KeptSettings& rules_;
  Archive& archive_;
  std::string path_;
  KeptManifest manifest_;
  ProfileFile settings_;
  std::string data_folder_;
  std::vector<Placed> placed_;
  std::vector<Changed> changed_;
};

}  // namespace corvane
