#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

namespace corvane::test {

/// A folder of its own for one test, removed at the end.
class TempFolder {
 public:
  TempFolder() {
    std::string name = (std::filesystem::temp_directory_path() / "corvane-test-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no temporary folder");
    path_ = name;
  }
  ~TempFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;

  [[nodiscard]] const std::string& path() const { return path_; }
  /// The full name of a file in the folder.
  [[nodiscard]] std::string Name(const std::string& name) const { return path_ + "/" + name; }
  /// Writes a file, creating the folders above it; returns its full name.
  std::string Write(const std::string& name, const std::string& text) const {
    const std::string full = Name(name);
    std::filesystem::create_directories(std::filesystem::path(full).parent_path());
    std::ofstream(full, std::ios::binary) << text;
    return full;
  }
  /// The contents of a file, empty when it is missing.
  [[nodiscard]] std::string Read(const std::string& name) const {
    std::ifstream file(Name(name), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

 private:
  std::string path_;
};

}  // namespace corvane::test
