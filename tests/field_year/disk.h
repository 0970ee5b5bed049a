// The disk of the simulated computer: how it fails, and what a power cut leaves of it.
//
// The calls of the program's own code that change files (this program is linked with --wrap for them) are carried out
// on a real folder and journalled with what it takes to undo them, until a sync or half a minute has made them lasting.
// After the power is cut nothing is carried out any more; `Restore` then turns the folder into what the disk had by
// then: names in the order in which they were changed up to some point, of each file's unsynced changes some, with
// holes. Archives are written by a library that does not pass here: they are cut only between its commits.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include <sys/types.h>

#include "random.h"

namespace corvane::test {

struct Disk {
  /// Calls on files below `a_folder` go to this disk from now on; `clock` tells the seconds, for the writing back.
  Disk(const std::string& a_folder, std::uint64_t seed, std::function<std::int64_t()> clock);
  ~Disk();
  Disk(const Disk&) = delete;
  Disk& operator=(const Disk&) = delete;

  bool is_full = false;
  bool is_read_only = false;
  std::int64_t failing_syncs = 0;  ///< so many of the next syncs of data fail and lose pages
  std::int64_t calls_left = 0;     ///< the power goes at so many changes from now, 0 for never
  bool power_is_off = false;
  /// Switches the power on again: the folder is what lasted. Without `lost_pages` only the program had died.
  void Restore(bool lost_pages);

  // The journal.
  /// A change to a file: `length` bytes written at `offset` (0: its end put there) over `former`.
  struct Change {
    std::int64_t when;
    std::size_t offset;
    std::size_t length;
    std::string former;
    std::size_t former_size;
  };
  /// A change of names: `to` is new, or was `from`, or (neither) is gone; what stood under it waits as `kept`.
  struct Naming {
    std::int64_t when;
    std::string from;
    std::string to;
    std::string kept;
    bool is_new;
  };
  /// Counts a change; true when it fails, with the reason in errno.
  bool Fails(bool changes_names);
  void NoteCut(int descriptor, std::size_t size);
  void NoteName(const char* from, const char* to, bool is_new);
  void SyncNames();
  void ForgetLasting();
  void CutFile(const std::string& path, const std::vector<Change>& changes);
  void UndoNames();

  static Disk* current;  ///< where the calls go, null for none
  std::string folder;    ///< with a separator at its end
  std::string attic;     ///< replaced and removed files that may come back
  basestation::Random random;
  std::function<std::int64_t()> seconds;
  std::int64_t kept = 0;
  std::int64_t swept = 0;
  std::map<ino_t, std::vector<Change>> files;  ///< what is not lasting of each file that was opened for writing
  std::vector<Naming> names;
};

}  // namespace corvane::test
