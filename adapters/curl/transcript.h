#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace corvane {

/// A command and the reply to it.
struct FtpExchange {
  std::string verb;  ///< the command's first word, never its argument; empty for the server's greeting
  int code = 0;      ///< of the reply that came last; 0 when none came
  std::string text;  ///< that reply without its number, lines joined by CR LF, cut at `Transcript::kLongestText`
};

/// What went over the control connection in one run.
class Transcript {
 public:
  static constexpr std::size_t kLongestText = 8192;

  void Clear();
  /// A command line as it was sent.
  void AddCommand(std::string_view line);
  /// A line of a reply as it came; one reply may have many.
  void AddReplyLine(std::string_view line);

  [[nodiscard]] const std::vector<FtpExchange>& exchanges() const { return exchanges_; }
  /// The exchange that came last; an empty one when there was none.
  [[nodiscard]] const FtpExchange& Last() const;
  /// The last exchange of a command, an empty one when it was not sent.
  [[nodiscard]] const FtpExchange& Of(std::string_view verb) const;
  /// True when a login was begun.
  [[nodiscard]] bool HasLogin() const { return !Of("USER").verb.empty(); }
  /// Grows with every command and every whole reply.
  [[nodiscard]] std::int64_t activity() const { return activity_; }

 private:
  void AddText(std::string_view text);

  std::vector<FtpExchange> exchanges_;
  std::int64_t activity_ = 0;
  int open_code_ = 0;  ///< the number of a reply whose last line has not come
};

}  // namespace corvane
