#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "lang/captioned_window.h"
#include "lang/phrases.h"
#include "ui/messages.h"

namespace corvane {

/// The entry whose text is the code of the file's language, such as "de"; the guide is opened in it where there is one.
inline constexpr std::int32_t kLanguageCodeID = 1229;
inline constexpr Phrase kLanguageCode{kLanguageCodeID, "en"};

/// The texts of a language file by their text IDs. File format: docs/formats/language-file.md.
///
/// The file is read once, at the first use. Every failure is shown in the timed box, once, and leaves the table empty:
/// the built-in captions stay.
class CLanguage {
 public:
  explicit CLanguage(Messages& av_Messages) : messages_(av_Messages) {}

  [[nodiscard]] const std::string& LanguageFile() const { return file_; }
  /// Sets the file's full path; it is read at the next use.
  void SetLanguageFile(std::string_view as_Path);
  /// Reads the file. False when it is missing, unreadable or malformed. **Yields** for a message.
  bool LoadFile();
  /// The position, from 1, of the first entry with that ID in file order; none when there is none. Reads nothing.
  [[nodiscard]] std::optional<std::int64_t> FindEntry(std::int32_t al_ID) const;
  /// The entry's text; the ID followed by "NT" when it is not in the table. **Yields** for a message of the first use.
  [[nodiscard]] std::string LanguageText(std::int32_t al_ID);
  /// Gives every control of the window the caption and tool tip of its ID, then the window its phrases. **Yields** for
  /// a message of the first use.
  void LoadCaptions(CaptionedWindow& av_Window);

 private:
  struct Entry {
    std::int32_t ID = 0;
    std::string Text;
    std::string ToolTip;
  };

  void LoadIfNeeded();
  void ReadEntries();
  void AddEntry(const std::vector<std::string_view>& av_Fields, std::int64_t al_Line);
  [[nodiscard]] const Entry* EntryOf(std::int64_t al_ID) const;
  /// The texts that can stand for phrases of `av_List`; the others stay English.
  [[nodiscard]] Phrases PhrasesFor(const std::vector<Phrase>& av_List) const;
  void LoadTabs(CaptionedWindow& av_Window, std::int64_t al_Position, const CaptionedWindow::Caption& av_Caption) const;
  void LoadCaption(CaptionedWindow& av_Window, std::int64_t al_Position, std::int32_t al_ID) const;

  Messages& messages_;
  std::string file_;
  bool loaded_ = false;
  bool failed_ = false;
  std::vector<Entry> entries_;
  std::unordered_map<std::int32_t, std::int64_t> positions_;
};

}  // namespace corvane
