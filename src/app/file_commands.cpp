#include "app/file_commands.h"

#include "base/files.h"
#include "base/status.h"
#include "state/app_info.h"

namespace corvane {

void FileCommands::Run(void (LocalFiles::*av_Command)()) {
  p_.operations.RunCommand("Files", [&] { (p_.files.*av_Command)(); });
}

void FileCommands::GetFile(std::int16_t ai_Index) {
  p_.operations.RunCommand("Choose file", [&] { p_.files.GetFile(ai_Index); });
}

void FileCommands::EditFile(std::int16_t ai_Index) {
  p_.operations.RunCommand("Edit file", [&] { p_.files.EditFile(ai_Index); });
}

void FileCommands::ShowHelp(const std::string HelpFiles::*av_Page) {
  const std::string& page = p_.help.*av_Page;
  if (page.empty()) return p_.messages.Show("There is no Help associated with this project");
  const Status opened = p_.shell.OpenDocument(InTheLanguage(page));
  if (!opened.ok()) p_.messages.Show(opened.text(), "Help");
}

std::string FileCommands::InTheLanguage(const std::string& as_Page) {
  if (!p_.language.FindEntry(kLanguageCodeID)) return as_Page;
  std::string page = as_Page;
  page.insert(page.rfind('/') + 1, p_.language.LanguageText(kLanguageCodeID) + "/");
  return ExamineFile(page) ? page : as_Page;
}

void FileCommands::ShowAbout() {
  p_.messages.Show(AppInfo::AboutText());
}

}  // namespace corvane
