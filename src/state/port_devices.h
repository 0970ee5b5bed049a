#pragma once

#include <map>
#include <string>
#include <string_view>

namespace corvane {

/// The device file behind each port number, COM1 to COM50.
class PortDevices {
 public:
  static constexpr int kLastNumber = 50;

  /// Takes the user's own choice for a number; an empty device returns to the built-in one.
  void Assign(int al_Number, std::string_view as_Device);
  /// The device of a port number: the user's choice, else COM1..COM4 /dev/ttyS0..3, COM5..COM20 /dev/ttyUSB0..15,
  /// COM21..COM36 /dev/ttyACM0..15; empty for any other.
  [[nodiscard]] std::string DeviceOf(int al_Number) const;
  /// The user's own choice for a number, empty when there is none.
  [[nodiscard]] std::string AssignedTo(int al_Number) const;

 private:
  std::map<int, std::string> assigned_;
};

}  // namespace corvane
