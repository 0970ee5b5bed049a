#include "state/file_names.h"

#include <unordered_map>

#include "base/paths.h"
#include "base/text.h"

namespace corvane {
namespace {

constexpr std::int32_t kExampleID = 99;
constexpr int kIDDigits = 5;

}  // namespace

FileNames::FileNames(const Form& av_Form, const Registry& av_Registry, const AppInfo& av_App)
    : form_(av_Form), registry_(av_Registry), app_(av_App) {}

std::string FileNames::DataFileName(std::int32_t al_UnitIndex, bool ab_Calibrated) const {
  const std::string name = DataFileShortName(al_UnitIndex, ab_Calibrated);
  return name.empty() ? name : ClientFolder(al_UnitIndex) + name;
}

std::string FileNames::DataFileShortName(std::int32_t al_UnitIndex, bool ab_Calibrated) const {
  const bool example = al_UnitIndex == kExample;
  if (!example && !registry_.Units.Has(al_UnitIndex)) return {};
  const std::int32_t id = example ? kExampleID : registry_.Units[al_UnitIndex].ID;
  return form_.Txt_Prefix.text() + ZeroPadded(id, kIDDigits) + "." + DataFileExtension(ab_Calibrated);
}

std::string FileNames::RemoteDataFileName(std::int32_t al_UnitIndex, bool ab_Calibrated) const {
  const std::string folder = AddBackslash(WithSlashes(ClientFolderName(al_UnitIndex)));
  return ToLower(folder + DataFileShortName(al_UnitIndex, ab_Calibrated));
}

const std::string& FileNames::DataFileExtension(bool ab_Calibrated) const {
  return (ab_Calibrated ? form_.Txt_CalibratedFileExtension : form_.Txt_RawFileExtension).text();
}

std::string FileNames::DataFolder() const {
  return app_.AppPath(WithSlashes(form_.Txt_Folder.text()));
}

std::string FileNames::ClientFolder(std::int32_t al_UnitIndex) const {
  return AddBackslash(DataFolder()) + AddBackslash(WithSlashes(ClientFolderName(al_UnitIndex)));
}

std::string FileNames::SettingsFile(int ai_Index) const {
  return app_.AppPath(WithSlashes(form_.Txt_File[ai_Index].text()));
}

std::string FileNames::ClientFolderName(std::int32_t al_UnitIndex) const {
  if (!registry_.Units.Has(al_UnitIndex)) return {};
  return FolderOfClient(registry_.Units[al_UnitIndex].ClientID);
}

std::string FileNames::FolderOfClient(std::int32_t al_ClientID) const {
  const Client* client = al_ClientID == 0 ? nullptr : registry_.FindClient(al_ClientID);
  return client == nullptr ? std::string() : client->Folder;
}

std::int32_t FileNames::OtherUnitOfFile(std::int32_t al_UnitIndex, std::int32_t al_ID, std::int32_t al_ClientID) const {
  const std::string folder = AddBackslash(WithSlashes(FolderOfClient(al_ClientID)));
  for (std::int32_t i = 1; i <= registry_.Units.count(); ++i) {
    const bool same_id = i != al_UnitIndex && registry_.Units[i].ID == al_ID;
    if (same_id && AddBackslash(WithSlashes(ClientFolderName(i))) == folder) return i;
  }
  return 0;
}

std::vector<std::string> FileNames::SharedRawFiles(bool ab_ActiveOnly) const {
  std::vector<std::string> sentences;
  std::unordered_map<std::string, std::int32_t> first_units;
  for (std::int32_t i = 1; i <= registry_.Units.count(); ++i) {
    if (ab_ActiveOnly && registry_.Units[i].Active == 0) continue;
    const std::string file = DataFileName(i, false);
    const auto [first, is_first] = first_units.emplace(file, i);
    if (is_first) continue;
    sentences.push_back(Quote(registry_.Units[first->second].Name) + " and " + Quote(registry_.Units[i].Name) +
                        " share one raw file: " + file);
  }
  return sentences;
}

}  // namespace corvane
