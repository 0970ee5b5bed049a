#pragma once

#include <string>
#include <vector>

#include "platform/practice_ground.h"

namespace corvane {

/// Numbered folders in `$XDG_CACHE_HOME/corvane-PRACTICE` (else `~/.cache`, else the folder for temporary files).
///
/// The log of the base station is locked by whoever made the folder and, being its output, by the base station: so the
/// kernel knows who uses the folder, whatever becomes of a program. The base station ends when its device is removed.
class PracticeFolder : public PracticeGround {
 public:
  /// `program_folder` is that of this program, beside which the base station is looked for.
  explicit PracticeFolder(std::string program_folder);
  /// Lets go of the folder and of a base station that ends with us; the folder itself stays.
  ~PracticeFolder() override;

  [[nodiscard]] DateTime Now() const override;
  Status MakeFolder(std::string& folder) override;
  Status StartStation(const std::string& folder, const std::vector<std::string>& arguments, Station station) override;
  [[nodiscard]] std::vector<std::string> Folders() const override;
  Status Remove(const std::string& folder) override;

 private:
  [[nodiscard]] Status PrepareRoot() const;
  void RemoveAbandoned() const;
  /// Ends what this object holds of the folder.
  void LetGo();

  std::string program_folder_;
  std::string root_;
  std::string folder_;  ///< the one that this object has made
  int log_ = -1;        ///< its locked log
  int lifeline_ = -1;   ///< at whose end a base station ends that ends with us
};

}  // namespace corvane
