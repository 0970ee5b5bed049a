// Where people practise: folders apart from all others, and the simulated base station.
#pragma once

#include <string>
#include <vector>

#include "base/dates.h"
#include "base/status.h"

namespace corvane {

/// The name of the simulated base station's device in a folder for practice.
inline constexpr const char* kPracticeDevice = "ttyPractice";

/// Makes and takes away folders for practice, each with a simulated base station of its own.
///
/// A folder is in use as long as its base station runs, a program works in it, or the object that made it is there.
/// What nobody uses any more, because the computer went off or a program was killed, goes away when the next is made.
class PracticeGround {
 public:
  /// When the base station ends by itself: together with this program, however that ends, or a day after its last use.
  enum class Station { EndsWithUs, StaysBehind };

  virtual ~PracticeGround() = default;
  PracticeGround() = default;
  PracticeGround(const PracticeGround&) = delete;
  PracticeGround& operator=(const PracticeGround&) = delete;

  [[nodiscard]] virtual DateTime Now() const = 0;
  /// Makes a new empty folder that only this user can enter and sets `folder` to its full path.
  virtual Status MakeFolder(std::string& folder) = 0;
  /// Starts the simulated base station in `folder`, which this object has made, and waits until it is ready: some
  /// milliseconds, 5 seconds at the most.
  virtual Status StartStation(const std::string& folder, const std::vector<std::string>& arguments,
                              Station station) = 0;
  /// The folders for practice that there are.
  [[nodiscard]] virtual std::vector<std::string> Folders() const = 0;
  /// Ends the base station of one of `Folders` and removes all of it.
  ///
  /// Fails, with EWOULDBLOCK, while another program works in it, and for any other folder.
  virtual Status Remove(const std::string& folder) = 0;
};

}  // namespace corvane
