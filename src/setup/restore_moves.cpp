#include "setup/restore_moves.h"

#include <cerrno>
#include <cstdint>
#include <filesystem>
#include <set>
#include <system_error>

#include "base/files.h"
#include "base/numbers.h"
#include "base/paths.h"
#include "base/profile.h"
#include "base/replacement_file.h"

namespace corvane {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kSection = "Restore";
constexpr std::string_view kListName = "restore.list";
constexpr std::string_view kStageName = "restore.part";

std::string ListFile(const std::string& as_Home) {
  return AddBackslash(as_Home) + std::string(kListName);
}

std::string KeyOf(std::string_view as_Field, std::int64_t al_Number) {
  return std::string(as_Field) + std::to_string(al_Number);
}

Status Renamed(const std::string& as_From, const std::string& as_To) {
  std::error_code failed;
  fs::rename(as_From, as_To, failed);
  return failed ? Status::FromErrno(as_To, failed.value()) : Status::Ok();
}

/// Whether something bears the name; an error that hides it is a failure.
Status LookFor(const std::string& as_File, bool& ab_There) {
  std::error_code failed;
  ab_There = fs::exists(fs::status(as_File, failed));
  return ab_There || !failed || failed.value() == ENOENT ? Status::Ok() : Status::FromErrno(as_File, failed.value());
}

/// Lets the former file have a name among what was replaced; one that has it already keeps it.
Status KeepFormer(const std::string& as_Target, const std::string& as_Kept) {
  bool there = false, kept = false;
  if (Status looked = LookFor(as_Target, there); !looked.ok() || !there) return looked;
  if (Status looked = LookFor(as_Kept, kept); !looked.ok() || kept) return looked;
  const std::string part = as_Kept + ".part";
  Status named = GiveSecondName(as_Target, part);
  return named.ok() ? Renamed(part, as_Kept) : named;
}

/// Renames, or copies to another disk.
Status Move(const std::string& as_From, const std::string& as_To) {
  Status moved = Renamed(as_From, as_To);
  if (moved.code() != EXDEV) return moved;
  Status copied = GiveSecondName(as_From, as_To);
  return copied.ok() ? RemoveFile(as_From) : copied;
}

Status MakeMove(const RestoreMove& av_Move, const std::string& as_Stage, const std::string& as_Kept) {
  const std::string from = as_Stage + av_Move.staged;
  bool there = false;
  if (Status looked = LookFor(av_Move.staged.empty() ? av_Move.target : from, there); !looked.ok()) return looked;
  // It is in its place, or set aside, already.
  if (!there) return Status::Ok();
  if (Status kept = KeepFormer(av_Move.target, as_Kept); !kept.ok()) return kept;
  if (av_Move.staged.empty()) return RemoveFile(av_Move.target);
  try {
    CreatePath(FolderOf(av_Move.target));
  } catch (const RunTimeError& error) {
    return {EIO, error.what()};
  }
  return Move(from, av_Move.target);
}

}  // namespace

std::string StageFolder(const std::string& as_Home) {
  return AddBackslash(as_Home) + std::string(kStageName) + "/";
}

void DropStage(const std::string& as_Home) {
  std::error_code ignored;
  fs::remove_all(StageFolder(as_Home), ignored);
}

Status CommitRestore(const std::string& as_Home, const std::string& as_Before,
                     const std::vector<RestoreMove>& av_Moves) {
  ProfileFile list;
  list.Set(kSection, "Before", as_Before);
  list.Set(kSection, "Count", std::to_string(av_Moves.size()));
  std::int64_t number = 0;
  for (const RestoreMove& move : av_Moves) {
    ++number;
    list.Set(kSection, KeyOf("Staged", number), move.staged);
    list.Set(kSection, KeyOf("Target", number), move.target);
  }
  return WriteFileAtomically(ListFile(as_Home), list.Text(), kOwnerOnly);
}

Status FinishRestore(const std::string& as_Home, std::string& as_Before) {
  as_Before.clear();
  std::string text;
  const Status read = ReadFile(ListFile(as_Home), text, ProfileFile::kLargestFile);
  if (read.code() == ENOENT) {
    if (ExamineFile(StageFolder(as_Home))) DropStage(as_Home);
    return Status::Ok();
  }
  if (!read.ok()) return read;
  ProfileFile list;
  list.Parse(std::move(text));
  const std::string before = list.Get(kSection, "Before", "");
  const Status damaged(EINVAL, ListFile(as_Home) + ": is damaged");
  const auto count = ParseInteger(list.Get(kSection, "Count", ""), 1, INT32_MAX);
  if (!count || before.empty()) return damaged;
  std::set<std::string> folders;
  for (std::int64_t number = 1; number <= *count; ++number) {
    const RestoreMove move{list.Get(kSection, KeyOf("Staged", number), ""),
                           list.Get(kSection, KeyOf("Target", number), "")};
    if (!list.Has(kSection, KeyOf("Staged", number)) || move.target.empty()) return damaged;
    // The number keeps files of the same name apart.
    const std::string kept = AddBackslash(before) + std::to_string(number) + "-" + std::string(FileNameOf(move.target));
    if (Status made = MakeMove(move, StageFolder(as_Home), kept); !made.ok()) return made;
    folders.insert(std::string(FolderOf(move.target)));
  }
  // Each name is on the disk before the list of the moves is gone.
  folders.insert(before);
  for (const std::string& folder : folders) {
    if (Status synced = SyncFolderOf(AddBackslash(folder) + "x"); !synced.ok()) return synced;
  }
  if (Status removed = RemoveFile(ListFile(as_Home)); !removed.ok()) return removed;
  DropStage(as_Home);
  as_Before = before;
  return Status::Ok();
}

}  // namespace corvane
