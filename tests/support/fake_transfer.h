// An FTP server and an archiver without a network and without compression.
#pragma once

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "platform/internet_client.h"
#include "platform/zip_component.h"

namespace corvane::test {

inline std::string ReadAll(const std::string& path) {
  std::error_code missing;
  const auto size = std::filesystem::file_size(path, missing);
  std::string contents(missing ? 0 : size, '\0');
  std::ifstream in(path, std::ios::binary);
  in.read(contents.data(), static_cast<std::streamsize>(contents.size()));
  contents.resize(static_cast<std::size_t>(in.gcount()));
  return contents;
}

/// Writes a file, creating the folders above it.
inline void WriteAll(const std::string& path, const std::string& text) {
  std::filesystem::create_directories(std::filesystem::path(path).parent_path());
  std::ofstream(path, std::ios::binary) << text;
}

/// A server that keeps its files by full path. Every call is noted as "<operation> <arguments>".
class FakeInternet : public InternetClient {
 public:
  InternetHandle InternetOpen(const std::string& agent) override { return Note("open " + agent) ? 1 : 0; }
  std::int64_t InternetSetStatusCallback(InternetHandle, StatusHandler handler) override {
    handler_ = std::move(handler);
    return Note("callback") ? 0 : kInvalidCallback;
  }
  InternetHandle InternetConnect(InternetHandle, const FtpLogin& login) override {
    last_login = login;
    current_ = "/";
    return Note("connect " + login.user + ":" + login.password + "@" + login.host + ":" + std::to_string(login.port))
               ? 2
               : 0;
  }
  bool FtpSetCurrentDirectory(InternetHandle, const std::string& folder) override {
    if (!Note("cwd " + folder) || !Require(folders.contains(folder))) return false;
    current_ = folder;
    return true;
  }
  bool FtpGetCurrentDirectory(InternetHandle, std::string& folder) override {
    folder = current_;
    return Note("pwd");
  }
  bool FtpPutFile(InternetHandle, const std::string& local, const std::string& remote) override {
    if (!Note("put " + remote)) return false;
    const std::string path = Full(remote);
    if (!Require(folders.contains(path.substr(0, std::max<std::size_t>(path.rfind('/'), 1))))) return false;
    files[path] = ReadAll(local);
    ReportBytes(kSendingRequest, files[path].size());
    return true;
  }
  bool FtpGetFile(InternetHandle, const std::string& remote, const std::string& local, std::int64_t) override {
    if (!Note("get " + remote) || !Require(files.contains(Full(remote)))) return false;
    std::filesystem::remove(local);  // the new file takes the name, it does not go into the old one
    std::ofstream(local, std::ios::binary) << files[Full(remote)];
    ReportBytes(kResponseReceived, files[Full(remote)].size());
    return true;
  }
  InternetHandle FtpFindFirstFile(InternetHandle, const std::string& path, FindPurpose purpose,
                                  FindRecord& record) override {
    if (!Note("find " + path)) return 0;
    found_.clear();
    if (purpose == FindPurpose::OneFile) {
      if (!Require(files.contains(Full(path)))) return 0;
      AddFile(Full(path));
    } else {
      Collect(Full(path.substr(0, path.rfind('/') + 1)));
    }
    return InternetFindNextFile(3, record) ? 3 : 0;
  }
  bool InternetFindNextFile(InternetHandle, FindRecord& record) override {
    if (found_.empty()) return false;
    record = found_.front();
    found_.erase(found_.begin());
    return true;
  }
  bool FtpCreateDirectory(InternetHandle, const std::string& folder) override {
    return Note("mkd " + folder) && Require(folders.insert(Full(folder)).second);
  }
  bool FtpRemoveDirectory(InternetHandle, const std::string& folder) override {
    return Note("rmd " + folder) && Require(folders.erase(Full(folder)) == 1);
  }
  bool FtpDeleteFile(InternetHandle, const std::string& file) override {
    return Note("dele " + file) && Require(files.erase(Full(file)) == 1);
  }
  void InternetCloseHandle(InternetHandle handle) override {
    calls.push_back("close " + std::to_string(handle));
    if (on_call) on_call(calls.back());
  }
  [[nodiscard]] int GetLastError() const override { return error_; }
  [[nodiscard]] std::string InternetGetLastResponseInfo() const override { return reply; }
  void Cancel() override {
    calls.emplace_back("cancel");
    if (on_call) on_call("cancel");
  }

  void Report(const InternetStatus& status) { handler_(status); }

  std::map<std::string, std::string> files;
  std::set<std::string> folders = {"/"};
  /// Errors of the next calls of an operation, its first word; 0 lets one succeed.
  std::map<std::string, std::vector<int>> errors;
  std::string reply = "No such file or folder";
  std::vector<std::string> calls;
  FtpLogin last_login;
  std::function<void(const std::string&)> on_call;  ///< runs at every call

 protected:
  bool Note(const std::string& call) {
    calls.push_back(call);
    if (on_call) on_call(call);
    std::vector<int>& planned = errors[call.substr(0, call.find(' '))];
    error_ = planned.empty() ? kInternetNoError : planned.front();
    if (!planned.empty()) planned.erase(planned.begin());
    return error_ == kInternetNoError;
  }
  bool Require(bool condition) {
    if (!condition) error_ = kInternetExtendedError;
    return condition;
  }
  bool Fail(int error) {
    error_ = error;
    return false;
  }
  [[nodiscard]] std::string Full(const std::string& name) const {
    if (name.starts_with('/')) return name.size() > 1 && name.ends_with('/') ? name.substr(0, name.size() - 1) : name;
    return current_ + (current_.ends_with('/') ? "" : "/") + name;
  }

 private:
  void ReportBytes(int code, std::size_t bytes) {
    if (!handler_) return;
    handler_({2, kHandleCreated, "", 0});
    handler_({2, code, "", static_cast<std::int64_t>(bytes)});
    handler_({2, kHandleClosing, "", 0});
  }
  void AddFile(const std::string& path) {
    FindRecord record;
    record.name = path.substr(path.rfind('/') + 1);
    record.size = static_cast<std::int64_t>(files[path].size());
    record.last_written = DateTime::FromCivil(2010, 3, 12, 8, 0, 0);
    found_.push_back(record);
  }
  void Collect(const std::string& folder) {
    const auto inside = [&folder](const std::string& path) {
      return path != "/" && path.substr(0, std::max<std::size_t>(path.rfind('/'), 1)) == folder;
    };
    for (const auto& [path, contents] : files) {
      if (inside(path)) AddFile(path);
    }
    for (const std::string& path : folders) {
      if (!inside(path)) continue;
      FindRecord record;
      record.name = path.substr(path.rfind('/') + 1);
      record.is_folder = true;
      found_.push_back(record);
    }
  }

  StatusHandler handler_;
  std::string current_ = "/";
  int error_ = 0;
  std::vector<FindRecord> found_;
};

/// Archives that are "zip:<bare name>:<contents>".
class FakeZip : public ZipComponent {
 public:
  void SetPreservePaths(bool) override {}
  void SetZipFilename(const std::string& path) override { archive_ = path; }
  [[nodiscard]] const std::string& ZipFilename() const override { return archive_; }
  void SetFilesToProcess(const std::string& files) override { files_ = files; }
  void SetUnzipFolder(const std::string& folder) override { folder_ = folder; }
  void SetOverwrite(std::int32_t) override {}
  std::int16_t Zip() override {
    runs.push_back("zip " + files_ + " > " + archive_);
    if (on_run) on_run();
    if (result != kZipOk) return result;
    if (!std::filesystem::exists(files_)) return kZipFilesSkipped;
    const std::string contents = ReadAll(files_);
    on_total_(static_cast<std::int64_t>(contents.size()));
    std::ofstream(archive_, std::ios::binary) << Head(std::filesystem::path(files_).filename()) << contents;
    on_done_(static_cast<std::int64_t>(contents.size()));
    return kZipOk;
  }
  std::int16_t Unzip() override {
    runs.push_back("unzip " + archive_ + " " + files_ + " > " + folder_);
    if (result != kZipOk) return result;
    const std::string contents = ReadAll(archive_);
    if (!contents.starts_with(Head(files_))) return kZipNothingToDo;
    std::filesystem::remove(folder_ + files_);
    std::ofstream(folder_ + files_, std::ios::binary) << contents.substr(Head(files_).size());
    return kZipOk;
  }
  void Abort() override {
    runs.emplace_back("abort");
    if (on_run) on_run();
  }
  [[nodiscard]] bool DiskWasNotEmpty() const override { return disk_was_not_empty; }
  [[nodiscard]] std::string LastErrorText() const override { return "words of the archiver"; }
  void SetProgressHandlers(std::function<void(std::int64_t)> on_total,
                           std::function<void(std::int64_t)> on_done) override {
    on_total_ = std::move(on_total);
    on_done_ = std::move(on_done);
  }
  static std::string Head(const std::string& name) { return "zip:" + name + ":"; }

  std::vector<std::string> runs;
  std::int16_t result = kZipOk;
  bool disk_was_not_empty = false;
  std::function<void()> on_run;

 private:
  std::string archive_;
  std::string files_;
  std::string folder_;
  std::function<void(std::int64_t)> on_total_;
  std::function<void(std::int64_t)> on_done_;
};

}  // namespace corvane::test
