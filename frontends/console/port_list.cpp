#include "port_list.h"

#include <set>
#include <string>
#include <vector>

#include "base/status.h"
#include "link/port_choices.h"
#include "text_table.h"

namespace corvane::console {
namespace {

/// Which of the two links a port number is chosen for.
std::string UseOf(const Form& form, int number) {
  const bool radio = form.Cmb_Port[0].SelectedItemData() == number;
  const bool hand_held = form.Cmb_Port[1].SelectedItemData() == number;
  if (radio && hand_held) return "radio, hand-held";
  if (radio) return "radio";
  return hand_held ? "hand-held" : "";
}

void ListDevices(Desk& desk, const std::vector<DeviceChoice>& devices) {
  if (devices.empty()) {
    desk.output.Result("No serial device was found. Plug the adapter in and look again.\n\n");
    return;
  }
  std::vector<std::vector<std::string>> rows;
  std::set<std::string> groups;
  for (const DeviceChoice& device : devices) {
    rows.push_back({device.path, device.device, device.presence, device.group, device.ports});
    if (!device.problem.empty()) groups.insert(device.group);
  }
  desk.output.Result(FormatTable({{"Device"}, {"Leads to"}, {"State"}, {"Group"}, {"Ports"}}, rows) + "\n");
  for (const std::string& group : groups) {
    desk.output.Result(group.empty() ? "A device without a group: the administrator gives the right to use it.\n\n"
                                     : "To be allowed to use it: " + PortChoices::CommandToJoin(group) +
                                           "\nThen log out and log in again.\n\n");
  }
}

void ListPorts(Desk& desk, const std::vector<DeviceChoice>& devices) {
  std::set<std::string> found;
  for (const DeviceChoice& device : devices) found.insert({device.path, device.device});
  std::vector<std::vector<std::string>> rows;
  for (const PortChoice& port : desk.app.ports().LookAtAll()) {
    const std::string use = UseOf(desk.app.form(), port.number);
    if (!port.own && use.empty() && !found.contains(port.device)) continue;
    rows.push_back({port.name, port.device, port.presence, port.own ? "yes" : "", use});
  }
  desk.output.Result(FormatTable({{"Port"}, {"Device"}, {"State"}, {"Assigned"}, {"Used for"}}, rows));
}

int Assign(Desk& desk, int number, const std::string& device) {
  PortChoices& ports = desk.app.ports();
  if (const Status assigned = ports.Assign(number, device == "-" ? "" : device); !assigned.ok()) {
    throw UsageError(assigned.text());
  }
  const PortChoice port = ports.Look(number);
  desk.output.Line(port.device.empty() ? port.problem : port.name + " is " + port.device + " now");
  if (!port.problem.empty() && !port.device.empty()) desk.output.Error(port.problem);
  if (UseOf(desk.app.form(), number).empty()) {
    desk.output.Line("To use it for the base station: corvanectl set Port " + std::to_string(number));
  }
  return kAllWell;
}

}  // namespace

int Ports(Desk& desk, const Options& options) {
  if (!options.arguments.empty()) return Assign(desk, *PortNumber(options.arguments[1]), options.arguments[2]);
  const std::vector<DeviceChoice> devices = desk.app.ports().Devices();
  ListDevices(desk, devices);
  ListPorts(desk, devices);
  return kAllWell;
}

}  // namespace corvane::console
