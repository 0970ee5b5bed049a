// Putting restored files in their places, so that a kill leaves the former state or the whole new one.
//
// Everything lies unpacked in a folder beside the settings before the list of the moves is written in one step. From
// then on they are made, by whoever starts next where this program is killed, each of them as often as it takes.
#pragma once

#include <string>
#include <vector>

#include "base/status.h"

namespace corvane {

/// A file that is put in its place, or one that is only set aside.
struct RestoreMove {
  std::string staged;  ///< bare name in the folder of what is unpacked; empty: `target` is set aside
  std::string target;  ///< full path
};

/// The folder, with a separator at its end, in which a restore of the application folder `as_Home` unpacks.
[[nodiscard]] std::string StageFolder(const std::string& as_Home);
/// Takes away what was unpacked and never put in place.
void DropStage(const std::string& as_Home);
/// Writes the list of the moves: the restore is to be finished from now on. What is replaced goes into `as_Before`.
Status CommitRestore(const std::string& as_Home, const std::string& as_Before,
                     const std::vector<RestoreMove>& av_Moves);
/// Makes the moves of a restore that was committed; nothing where there is none. To be called by whoever has taken the
/// folder's lock, before anything is read. `as_Before` is the folder with what was replaced, empty when nothing was
/// done.
Status FinishRestore(const std::string& as_Home, std::string& as_Before);

}  // namespace corvane
