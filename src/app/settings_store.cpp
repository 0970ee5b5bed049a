#include "app/settings_store.h"

#include <cerrno>
#include <cstddef>
#include <cstdint>

#include "base/files.h"
#include "base/text.h"

namespace corvane {
namespace {

constexpr std::size_t kLongestValue = 126;  // characters
constexpr std::string_view kEmptyValue = "null";
constexpr unsigned kPrivateMode = 0600;

/// Copies a file of any size block by block; nothing is left of a copy that fails.
Status CopyFile(const std::string& source, const std::string& target) {
  constexpr std::size_t kBlock = 1024 * 1024;
  std::string block;
  Status status = ReadAt(source, 0, kBlock, block);
  if (!status.ok()) return status;
  (void)RemoveFile(target);  // an older copy may be readable for others
  OutputFile copy;
  status = copy.Create(target, kPrivateMode);
  for (auto offset = static_cast<std::int64_t>(block.size()); status.ok() && !block.empty();
       offset += static_cast<std::int64_t>(block.size())) {
    status = copy.Write(block);
    if (status.ok()) status = ReadAt(source, offset, kBlock, block);
  }
  if (status.ok()) status = copy.Sync();
  if (!status.ok() && copy.IsOpen()) (void)RemoveFile(target);
  return status;
}

/// Ok when the file is missing or text throughout.
Status CheckContents(const std::string& path) {
  std::string contents;
  const Status read = ReadFile(path, contents, ProfileFile::kLargestFile);
  if (!read.ok()) return read.code() == ENOENT ? Status::Ok() : read;
  if (contents.find('\0') == std::string::npos) return Status::Ok();
  return {EILSEQ, path + " is damaged: it holds NUL characters"};
}

}  // namespace

Status SettingsStore::Load() {
  profile_ = ProfileFile();
  keep_old_file_ = false;
  const Status checked = CheckContents(path_);
  const Status loaded = profile_.Load(path_);
  if (checked.ok() && loaded.ok()) return Status::Ok();
  const Status& problem = checked.ok() ? loaded : checked;
  return {problem.code(), problem.text() + ". " + KeepCopy()};
}

std::string SettingsStore::KeepCopy() {
  const std::string copy = path_ + ".bad";
  const Status copied = CopyFile(path_, copy);
  if (copied.ok()) return "A copy was kept as " + copy + "; check all settings before you rely on them.";
  keep_old_file_ = true;
  return "No copy could be kept (" + copied.text() +
         "), so settings will not be saved. Move the file away and start again.";
}

std::string SettingsStore::GetSetting(std::string_view as_Section, std::string_view as_Key,
                                      std::string_view as_Default) const {
  std::string value = profile_.Get(as_Section, as_Key, as_Default);
  value.resize(CutCharacters(value, kLongestValue).size());
  return value == kEmptyValue ? std::string() : value;
}

std::string SettingsStore::GetGeneral(std::string_view as_Key, std::string_view as_Default) const {
  return GetSetting("General", as_Key, as_Default);
}

void SettingsStore::SaveSetting(std::string_view as_Section, std::string_view as_Key, std::string_view as_Value) {
  profile_.Set(as_Section, as_Key, as_Value.empty() ? kEmptyValue : as_Value);
}

bool SettingsStore::Commit() {
  const Status saved = keep_old_file_ && ExamineFile(path_)
                           ? Status(EEXIST, path_ + " could not be read and must not be overwritten")
                           : profile_.Save(path_);
  if (saved.ok()) return true;
  trace_.LogWrite("Settings not saved: " + saved.text());
  messages_.Show("Cannot save INI file");
  return false;
}

}  // namespace corvane
