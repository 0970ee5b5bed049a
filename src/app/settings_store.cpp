#include "app/settings_store.h"

#include <cerrno>
#include <cstddef>
#include <utility>

#include "base/files.h"
#include "base/numbers.h"
#include "base/replacement_file.h"
#include "base/text.h"
#include "state/settings_file.h"

namespace corvane {
namespace {

constexpr int kKeptRecoveries = 3;  ///< that nobody answered for

/// FNV-1a, 64 bits: tells one file from another, keeps no secret.
std::uint64_t HashOf(std::string_view text) {
  std::uint64_t hash = 0xCBF29CE484222325U;
  for (const char byte : text) hash = (hash ^ static_cast<unsigned char>(byte)) * 0x100000001B3U;
  return hash;
}

/// The first line of a recovery copy that belongs to a settings file of these contents.
std::string RecoveryHead(std::string_view contents) {
  return "; recovery copy, belongs to corvane.ini " + HexText(HashOf(contents), 16) + "\n";
}

std::string CopyText(const std::string& copy) {
  return "A copy was kept as " + copy + "; check all settings before you rely on them.";
}

}  // namespace

Status SettingsStore::Load() {
  profile_ = ProfileFile();
  may_save_ = false;
  damage_.clear();
  std::string contents;
  const Status read = ReadFile(path_, contents, ProfileFile::kLargestFile);
  // Whatever else fails, the file may be there: defaults must not take its place.
  if (!read.ok() && read.code() != ENOENT) return read;
  may_save_ = true;
  was_missing_ = !read.ok();
  if (contents.find('\0') != std::string::npos) {
    damage_ = path_ + " is damaged: it holds NUL characters. " + KeepCopy(contents);
  }
  LookForRecovery(contents);
  profile_.Parse(std::move(contents));
  return Status::Ok();
}

void SettingsStore::LookForRecovery(std::string_view as_Contents) {
  recovery_ = RecoveryState::None;
  keeps_offer_ = false;
  recovery_head_ = RecoveryHead(as_Contents);
  const Status read = ReadFile(RecoveryFile(), offered_, ProfileFile::kLargestFile);
  if (read.code() == ENOENT) return;
  recovery_ = read.ok() && offered_.starts_with(recovery_head_) ? RecoveryState::Offered : RecoveryState::Outdated;
}

void SettingsStore::AnswerRecovery(bool ab_Use) {
  if (recovery_ != RecoveryState::Offered) return;
  if (ab_Use) profile_.Parse(offered_.substr(recovery_head_.size()));
  recovery_ = ab_Use || !RemoveFile(RecoveryFile()).ok() ? RecoveryState::Ours : RecoveryState::None;
}

Status SettingsStore::WriteRecovery() {
  if (recovery_ == RecoveryState::Offered || !may_save_) return Status::Ok();
  // Nobody has answered for that one either.
  if (recovery_ == RecoveryState::Outdated) {
    if (Status kept = RotateFile(RecoveryFile(), kKeptRecoveries); !kept.ok()) return kept;
  }
  Status written = WriteFileAtomically(RecoveryFile(), recovery_head_ + profile_.Text(), kOwnerOnly);
  if (written.ok()) recovery_ = RecoveryState::Ours;
  return written;
}

std::string SettingsStore::KeepCopy(const std::string& as_Contents) {
  std::string copy = path_ + ".bad";
  std::string kept;
  for (int number = 2; ExamineFile(copy); ++number) {
    if (ReadFile(copy, kept, ProfileFile::kLargestFile).ok() && kept == as_Contents) return CopyText(copy);
    copy = path_ + ".bad" + std::to_string(number);
  }
  const Status copied = WriteFileAtomically(copy, as_Contents, kOwnerOnly);
  if (copied.ok()) return CopyText(copy);
  may_save_ = false;
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

void SettingsStore::SettleRecovery(std::string_view as_Contents) {
  if (recovery_ == RecoveryState::Ours) (void)RemoveFile(RecoveryFile());
  const std::string head = RecoveryHead(as_Contents);
  if (recovery_ != RecoveryState::Offered || head == recovery_head_) return;
  Status kept(EEXIST, "the settings were changed");
  if (keeps_offer_) {
    kept = WriteFileAtomically(RecoveryFile(), head + offered_.substr(recovery_head_.size()), kOwnerOnly);
  }
  if (!kept.ok()) trace_.LogWrite(RecoveryFile() + " is not offered any more: " + kept.text());
}

bool SettingsStore::Commit() {
  const std::string contents = profile_.Text();
  const Status saved = may_save_ ? WriteFileAtomically(path_, contents, kOwnerOnly)
                                 : Status(EEXIST, path_ + " could not be read and must not be overwritten");
  if (saved.ok()) {
    SettleRecovery(contents);
    return true;
  }
  trace_.LogWrite("Settings not saved: " + saved.text());
  trace_.Status("Settings not saved: " + saved.text(), StatusKind::Error);
  messages_.Show("Cannot save INI file");
  return false;
}

}  // namespace corvane
