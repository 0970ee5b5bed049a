#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "form/form.h"
#include "platform/event_loop.h"
#include "state/link_state.h"
#include "state/run_flags.h"
#include "trace/trace.h"
#include "ui/messages.h"

namespace corvane {

/// One line of a hex dump. Format: docs/formats/hex-dump.md. Field indexes count from 0.
class HexRecord {
 public:
  /// Splits `as_Line`, which must outlive what is read from the record.
  void SetLine(std::string_view as_Line);
  /// True for a record; false for a line that is too short to be one.
  [[nodiscard]] bool IsRecord() const;
  [[nodiscard]] std::int64_t FieldCount() const { return static_cast<std::int64_t>(fields_.size()); }
  /// The text of a field; throws `RunTimeError` when the line ends before it.
  [[nodiscard]] std::string_view Text(std::int64_t al_Index) const;
  /// The field as a hexadecimal number; 0 when its text is none or is beyond 32 bits. Throws as `Text` does.
  [[nodiscard]] std::int32_t HexByte(std::int64_t al_Index) const;
  /// One byte, or two bytes as one number, in decimal with leading zeros to `ai_Width` digits. Throws as `Text` does.
  ///
  /// Two bytes that start before field 17 have the low one first, later ones the high one first.
  [[nodiscard]] std::string HexField(std::int64_t al_Index, std::int16_t ai_ByteCount, std::int16_t ai_Width) const;

 private:
  std::vector<std::string_view> fields_;
};

/// Turns a memory dump of a unit into a readable comma-separated file.
class HexConversion {
 public:
  /// What a conversion works with; all must outlive it.
  struct Parts {
    Form& form;
    const RunFlags& flags;
    const LinkState& link;
    EventLoop& loop;
    Messages& messages;
    Trace& trace;
  };
  explicit HexConversion(const Parts& av_Parts) : p_(av_Parts) {}

  /// Converts `as_InputFile` (a full path) into a file of the same name with the extension "tsc", after a question.
  ///
  /// False when it was declined, cancelled or failed; then an existing output stays as it was. A record that is cut
  /// short ends the conversion: those before it are written, it is reported and the result is false. **Yields.**
  bool ConvertHexToRaw(const std::string& as_InputFile);

 private:
  struct Run;

  bool ConvertFile(const std::string& as_InputFile, const std::string& as_OutputFile);
  void TakeLine(Run& av_Run, std::string_view as_Line);

  Parts p_;
};

}  // namespace corvane
