#pragma once

#include <cstdint>
#include <string>

#include "app/operations.h"
#include "data/local_files.h"
#include "lang/language.h"
#include "platform/shell.h"
#include "ui/messages.h"

namespace corvane {

/// The pages of the user guide as full paths; empty where the program was installed without them.
struct HelpFiles {
  std::string contents;
  std::string index;
};

/// The commands on local files and the settings' files, and the help. All **yield** for messages and choices.
class FileCommands {
 public:
  /// All must outlive this object.
  struct Parts {
    LocalFiles& files;
    Operations& operations;
    const HelpFiles& help;
    CLanguage& language;
    Shell& shell;
    Messages& messages;
  };
  explicit FileCommands(const Parts& av_Parts) : p_(av_Parts) {}

  /// Runs a command of the file list or of a path on the settings page.
  void Run(void (LocalFiles::*av_Command)());
  /// Lets the user choose the file of `Txt_File[ai_Index]`.
  void GetFile(std::int16_t ai_Index);
  /// Opens the file of `Txt_File[ai_Index]` in the text editor.
  void EditFile(std::int16_t ai_Index);
  /// Opens a page of the guide, in the language of the captions where the guide is there in it; says so where there is
  /// none.
  void ShowHelp(const std::string HelpFiles::*av_Page);
  void ShowAbout();

 private:
  /// The page of that name in the folder that is called like the language; the page itself where there is none.
  [[nodiscard]] std::string InTheLanguage(const std::string& as_Page);

  Parts p_;
};

}  // namespace corvane
