#include "link/port_choices.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>

#include "base/text.h"
#include "state/settings_file.h"

namespace corvane {
namespace {

constexpr struct {
  Phrase no_slash{1520, "the name of a device begins with \"/\", such as /dev/ttyUSB0"};
  Phrase not_plain{1521, "the name of a device holds no line breaks or other control characters"};
  Phrase too_long{1522,
                  "the name is longer than the %1 characters that the settings keep: use a shorter name of the "
                  "device"};
  Phrase there{1523, "there"};
  Phrase not_there{1524, "not there"};
  Phrase no_permission{1525, "no permission"};
  Phrase group_help{1526,
                    "If a device says \"no permission\": serial devices belong to a group of users, on most systems "
                    "\"dialout\", on some \"uucp\". To join it, enter this in a terminal:"};
  Phrase log_in_again{
      1527,
      "Then log out of the desktop and log in again; a new window is not enough. Where the device names "
      "another group, use that one."};
} kPortSays;

std::string NameOf(int al_Number) {
  return "COM" + std::to_string(al_Number);
}

std::string WordFor(DevicePresence av_Presence, const Phrases& av_Phrases = {}) {
  if (av_Presence == DevicePresence::NoPermission) return av_Phrases.Text(kPortSays.no_permission);
  return av_Phrases.Text(av_Presence == DevicePresence::There ? kPortSays.there : kPortSays.not_there);
}

bool IsTooLong(std::string_view as_Device) {
  return CutCharacters(as_Device, kLongestValue).size() < as_Device.size();
}

}  // namespace

PortChoice PortChoices::Look(int al_Number) const {
  PortChoice choice;
  choice.number = al_Number;
  choice.name = NameOf(al_Number);
  choice.device = devices_.DeviceOf(al_Number);
  choice.own = !devices_.AssignedTo(al_Number).empty();
  if (choice.device.empty()) {
    choice.presence = "no device assigned";
    choice.problem = choice.name + " stands for no device: give it one or choose another port";
    choice.text = choice.name + "   " + choice.presence;
    choice.explanation = choice.problem + ".";
    return choice;
  }
  const DeviceState state = port_.LookAt(choice.device);
  choice.presence = WordFor(state.presence);
  choice.problem = state.problem;
  choice.text = choice.name + "   " + choice.device + "   (" + choice.presence + ")";
  choice.explanation = std::string(choice.own ? "Your own choice" : "The built-in device") + "; " +
                       (choice.problem.empty() ? "it is there" : choice.problem) + ".";
  return choice;
}

std::vector<PortChoice> PortChoices::LookAtAll() const {
  std::vector<PortChoice> choices;
  for (int number = 1; number <= PortDevices::kLastNumber; ++number) choices.push_back(Look(number));
  return choices;
}

std::vector<DeviceChoice> PortChoices::Devices(const Phrases& av_Phrases) const {
  std::vector<DeviceChoice> choices;
  for (const SerialDeviceInfo& found : port_.ListDevices()) {
    DeviceChoice choice;
    choice.path = IsTooLong(found.path) ? found.device : found.path;
    choice.device = found.device;
    choice.presence = WordFor(found.problem.empty() ? DevicePresence::There : DevicePresence::NoPermission, av_Phrases);
    choice.problem = found.problem;
    choice.group = found.group;
    for (int number = 1; number <= PortDevices::kLastNumber; ++number) {
      const std::string device = devices_.DeviceOf(number);
      if (device != found.path && device != found.device) continue;
      choice.ports += (choice.ports.empty() ? "" : ", ") + NameOf(number);
    }
    choices.push_back(std::move(choice));
  }
  return choices;
}

Status PortChoices::Assign(int al_Number, std::string_view as_Device) {
  if (al_Number < 1 || al_Number > PortDevices::kLastNumber) return {EINVAL, "choose a port number from 1 to 50"};
  const std::string_view device = Trim(as_Device);
  if (!device.empty()) {
    if (Status status = Check(device); !status.ok()) return status;
  }
  devices_.Assign(al_Number, device);
  return Status::Ok();
}

Status PortChoices::Check(std::string_view as_Device, const Phrases& av_Phrases) {
  const std::string_view device = Trim(as_Device);
  const bool plain = std::all_of(device.begin(), device.end(), [](unsigned char c) { return c >= ' ' && c != 127; });
  if (!device.starts_with('/')) return {EINVAL, av_Phrases.Text(kPortSays.no_slash)};
  if (!plain) return {EINVAL, av_Phrases.Text(kPortSays.not_plain)};
  if (IsTooLong(device)) return {ENAMETOOLONG, av_Phrases.Text(kPortSays.too_long, {std::to_string(kLongestValue)})};
  return Status::Ok();
}

std::string PortChoices::CommandToJoin(std::string_view as_Group) {
  return "sudo usermod -aG " + std::string(as_Group) + " $USER";
}

std::string PortChoices::PermissionHelp(const Phrases& av_Phrases) {
  return av_Phrases.Text(kPortSays.group_help) + "\n    " + CommandToJoin("dialout") + "\n" +
         av_Phrases.Text(kPortSays.log_in_again);
}

std::vector<Phrase> PortChoices::PhraseList() {
  return PhrasesIn(kPortSays);
}

}  // namespace corvane
