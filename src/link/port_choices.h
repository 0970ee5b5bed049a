#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "base/status.h"
#include "lang/phrases.h"
#include "platform/serial_port.h"
#include "state/port_devices.h"

namespace corvane {

/// What a port number stands for now, in words.
struct PortChoice {
  int number = 0;
  std::string name;         ///< "COM3"
  std::string device;       ///< empty when none is assigned
  bool own = false;         ///< the user's own choice and not the built-in device
  std::string presence;     ///< "there", "not there", "no permission" or "no device assigned"
  std::string problem;      ///< why it cannot be used and what to do; empty when it is there
  std::string text;         ///< name, device and presence in one line, for a selector
  std::string explanation;  ///< whose choice the device is, and its presence or problem, as a sentence
};

/// A device that was found, to choose from.
struct DeviceChoice {
  std::string path;      ///< what `PortChoices::Assign` takes
  std::string device;    ///< the device file that it leads to now
  std::string presence;  ///< "there" or "no permission"
  std::string problem;   ///< why it cannot be used and what to do; empty when it can
  std::string ports;     ///< the port numbers that stand for it, "COM3, COM5"
  std::string group;     ///< whose users may use it; empty when no group gives that right
};

/// The devices behind the port numbers as a person sees and chooses them. Opens no device.
class PortChoices {
 public:
  PortChoices(PortDevices& av_Devices, const SerialPort& av_Port) : devices_(av_Devices), port_(av_Port) {}

  /// What one number stands for.
  [[nodiscard]] PortChoice Look(int al_Number) const;
  /// All numbers, COM1 first.
  [[nodiscard]] std::vector<PortChoice> LookAtAll() const;
  /// The devices that are there now, lasting names first.
  [[nodiscard]] std::vector<DeviceChoice> Devices(const Phrases& av_Phrases = {}) const;

  /// Gives a number its device from the next opening on; an empty device returns to the built-in one. A failure says
  /// what is wrong with the name; a device that is not there may be assigned.
  Status Assign(int al_Number, std::string_view as_Device);
  /// Ok when `as_Device` can be the name of a device, blanks around it left out.
  [[nodiscard]] static Status Check(std::string_view as_Device, const Phrases& av_Phrases = {});
  /// The command that makes the present user one of a group.
  [[nodiscard]] static std::string CommandToJoin(std::string_view as_Group);
  /// How a user gets the right to use serial devices; plain text with line feeds.
  [[nodiscard]] static std::string PermissionHelp(const Phrases& av_Phrases = {});
  /// What these texts are made of.
  [[nodiscard]] static std::vector<Phrase> PhraseList();

 private:
  PortDevices& devices_;
  const SerialPort& port_;
};

}  // namespace corvane
