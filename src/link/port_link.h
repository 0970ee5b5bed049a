#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "form/form.h"
#include "link/link_writer.h"
#include "link/reply_timer.h"
#include "platform/serial_port.h"
#include "state/command_states.h"
#include "state/link_state.h"
#include "state/port_devices.h"
#include "state/run_flags.h"
#include "trace/trace.h"
#include "ui/progress_bar.h"

namespace corvane {

/// Opens, closes and resets the serial line and turns its events into reply lines and error states.
class PortLink {
 public:
  /// Characters kept without a line end before the line counts as overflowed.
  static constexpr std::size_t kLargestBuffer = std::size_t{64} * 1024;

  /// What the line works with; all must outlive it.
  struct Parts {
    Form& form;
    LinkState& link;
    const RunFlags& flags;
    SerialPort& port;
    const PortDevices& devices;
    CommandStates& states;
    LinkWriter& writer;
    ReplyTimer& timer;
    ProgressBars& bars;
    Trace& trace;
  };
  explicit PortLink(const Parts& av_Parts) : p_(av_Parts) {}

  /// Opens the port of a selector (0 radio, 1 hand-held); an index of 2 and more needs no port and succeeds.
  ///
  /// A failure is an error line and a status line that say at which step and why. The reason also stands in
  /// `Lbl_PortProblem`, where no later status takes its place.
  [[nodiscard]] bool OpenPort(std::int16_t ai_Index);
  void ClosePort();
  /// Takes the reason away: something new begins.
  void ForgetProblem() { p_.form.Lbl_PortProblem.SetText(""); }
  /// Opens the port that was opened last once more, with the settings that it had.
  [[nodiscard]] Status Reopen();
  /// Reports that the device of the port has gone, and why it could not be opened again.
  void ReportGone(const std::string& as_Cause);
  [[nodiscard]] bool IsOpen() const { return p_.port.IsOpen(); }
  /// The index last given to `OpenPort`, 0 before the first.
  [[nodiscard]] std::int16_t LastIndex() const { return last_index_; }
  /// Resets the link before one command; `as_Where` goes to the trace.
  ///
  /// Half a line that has stood there since the last exchange is traced; a round that goes on past what fails drops it.
  void ClearBeforeCommand(std::string_view as_Where);
  /// What arrives from now on is no part of an answer.
  void EndExchange() { heard_since_exchange_ = false; }
  /// Throws away what arrives, unread, until `EndDiscarding`.
  void BeginDiscarding();
  void EndDiscarding() { discarding_ = false; }
  /// Characters thrown away since `BeginDiscarding`.
  [[nodiscard]] std::size_t Discarded() const { return discarded_; }
  /// Resets the link after a session or a probe.
  void ClearEverything();
  /// Handles one event of the port.
  void OnPortEvent(int al_Code);

  /// A complete line stands in `ReplyLine`; set by the composition root.
  std::function<void()> line_received;
  /// Something has arrived, whole lines or not; set by the composition root.
  std::function<void()> data_received;

 private:
  /// Says in both places why there is no port.
  void TellProblem(const std::string& as_Problem);
  void OpenSteps(std::int16_t ai_Index, std::string& as_Step);
  void TakeReceivedData();
  void ShowReceiveBuffer();
  void CutLines();
  void HandLinesOn();
  void TakeError(int al_Code, std::string_view as_Error);
  void FailExchange(std::string_view as_Error);
  void EmptyBuffers();
  void TellStalePart();
  /// The error and the number of characters received and not yet handed on.
  [[nodiscard]] std::string WithBufferSize(std::string_view as_Error) const;

  Parts p_;
  std::int16_t last_index_ = 0;
  std::string lines_;          ///< whole lines cut off the receive buffer and being handed on
  std::size_t next_line_ = 0;  ///< where the next of them begins
  bool dispatching_ = false;   ///< lines are being handed on: data that comes meanwhile waits
  std::string opened_;         ///< number and device of the port that was opened last
  std::size_t discarded_ = 0;
  bool discarding_ = false;
  bool heard_since_exchange_ = false;
  bool overflowed_ = false;  ///< what comes up to the next line end belongs to a line that was too long
};

}  // namespace corvane
