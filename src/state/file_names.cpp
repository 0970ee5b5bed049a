#include "state/file_names.h"

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

std::string FileNames::ClientFolderName(std::int32_t al_UnitIndex) const {
  if (!registry_.Units.Has(al_UnitIndex)) return {};
  const std::int32_t client_id = registry_.Units[al_UnitIndex].ClientID;
  const Client* client = client_id == 0 ? nullptr : registry_.FindClient(client_id);
  return client == nullptr ? std::string() : client->Folder;
}

}  // namespace corvane
