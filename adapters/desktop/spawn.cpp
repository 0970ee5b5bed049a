#include "desktop/spawn.h"

#include "posix/child_process.h"

namespace corvane {

std::vector<std::string> SplitAtBlanks(std::string_view text) {
  constexpr std::string_view kBlanks = " \t";
  std::vector<std::string> words;
  std::size_t begin = text.find_first_not_of(kBlanks);
  while (begin != std::string_view::npos) {
    const std::size_t end = text.find_first_of(kBlanks, begin);
    words.emplace_back(text.substr(begin, end - begin));
    begin = text.find_first_not_of(kBlanks, end);
  }
  return words;
}

int SpawnDetached(const std::vector<std::string>& command) {
  constexpr int kNothing = -1;
  pid_t process = 0;
  const int error = StartProcess(command, kNothing, kNothing, process);
  if (error == 0) ReapAside(process);
  return error;
}

}  // namespace corvane
