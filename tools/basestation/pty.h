#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

namespace corvane::basestation {

/// The device side of the line: a pseudo-terminal, with a symbolic link of a stable name if wanted.
///
/// The application opens the slave; this class holds the master and a slave descriptor of its own, so that the line
/// does not hang up when the application closes it. Bytes are never blocked for.
class Pty {
 public:
  /// `link` is the path of the symbolic link, empty for none.
  explicit Pty(std::string link) : link_(std::move(link)) {}
  Pty(const Pty&) = delete;
  Pty& operator=(const Pty&) = delete;
  ~Pty() { Close(); }

  /// Opens a new pseudo-terminal in raw mode and points the link at it. Throws `RunTimeError`, and is closed.
  ///
  /// A link to another terminal is replaced (one left behind, or a running simulator's, which then leaves it alone);
  /// anything else that bears the name is not touched.
  void Open();
  /// Hangs up: both descriptors are closed, the link removed if it is still this one's.
  void Close();

  /// The master's descriptor for poll(), -1 when closed.
  [[nodiscard]] int fd() const { return master_; }
  /// The name to give to the application: the link if there is one, else the slave.
  [[nodiscard]] const std::string& name() const { return link_.empty() ? slave_name_ : link_; }

  /// Whether the link, where one was wanted, still leads to this terminal.
  [[nodiscard]] bool HasLink() const { return link_.empty() || LinkTarget() == slave_name_; }
  /// Takes what the application has sent, nothing when nothing waits.
  [[nodiscard]] std::string Read();
  /// Sends what fits; returns the number of bytes taken.
  [[nodiscard]] std::size_t Write(std::string_view bytes);
  /// Whether the application has read everything sent so far.
  [[nodiscard]] bool Drained() const;

 private:
  void OpenDescriptors();
  void PlaceLink() const;
  [[nodiscard]] std::string LinkTarget() const;

  std::string link_;
  std::string slave_name_;
  int master_ = -1;
  int slave_ = -1;
};

}  // namespace corvane::basestation
