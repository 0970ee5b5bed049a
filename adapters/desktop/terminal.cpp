#include "desktop/terminal.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstddef>

namespace corvane {
namespace {

constexpr char kBreakOff = 3;  // what Ctrl-C gives where it raises no signal

/// Keeps the terminal at the standard input from showing what is typed, and from ending the program meanwhile: it would
/// be left so.
class UnseenTyping {
 public:
  UnseenTyping() : on_(tcgetattr(kStandardInput, &before_) == 0) {
    if (!on_) return;
    termios unseen = before_;
    unseen.c_lflag &= ~static_cast<tcflag_t>(ECHO | ISIG);
    unseen.c_cc[VEOL] = kBreakOff;  // it ends the line, so that it arrives at once
    tcsetattr(kStandardInput, TCSAFLUSH, &unseen);
  }
  ~UnseenTyping() {
    if (on_) tcsetattr(kStandardInput, TCSANOW, &before_);
  }
  UnseenTyping(const UnseenTyping&) = delete;
  UnseenTyping& operator=(const UnseenTyping&) = delete;

 private:
  termios before_{};
  bool on_;
};

}  // namespace

bool IsTerminal(int descriptor) {
  return isatty(descriptor) != 0;
}

int TerminalColumns() {
  constexpr int kUsual = 80;
  winsize size{};
  return ioctl(kStandardOutput, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : kUsual;
}

void FillStandardDescriptors() {
  for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (fcntl(descriptor, F_GETFD) < 0 && open("/dev/null", O_RDWR) < 0) return;
  }
}

bool WriteOut(int descriptor, std::string_view text, bool patient) {
  while (!text.empty()) {
    pollfd out{descriptor, POLLOUT, 0};
    if (!patient && poll(&out, 1, 0) != 1) return true;
    const ssize_t written = write(descriptor, text.data(), text.size());
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return written < 0 && errno == EPIPE;
    text.remove_prefix(static_cast<std::size_t>(written));
  }
  return true;
}

bool ReadArrived(int descriptor, std::string& text) {
  std::array<char, 1024> block;
  const ssize_t length = read(descriptor, block.data(), block.size());
  if (length < 0 && (errno == EINTR || errno == EAGAIN)) return true;
  if (length <= 0) return false;
  text.append(block.data(), static_cast<std::size_t>(length));
  return true;
}

NoEcho::NoEcho(int descriptor) : descriptor_(descriptor) {
  termios line{};
  on_ = tcgetattr(descriptor_, &line) == 0;
  if (!on_) return;
  before_ = line.c_lflag;
  line.c_lflag &= ~static_cast<tcflag_t>(ECHO);
  tcsetattr(descriptor_, TCSAFLUSH, &line);
}

NoEcho::~NoEcho() {
  termios line{};
  if (!on_ || tcgetattr(descriptor_, &line) != 0) return;
  line.c_lflag = before_;
  tcsetattr(descriptor_, TCSANOW, &line);
}

std::optional<std::string> ReadSecret(std::string_view prompt) {
  const bool is_terminal = IsTerminal(kStandardInput);
  const UnseenTyping unseen;
  if (is_terminal) WriteOut(kStandardError, prompt, true);
  std::string line;
  bool more = true;
  char sign = 0;
  // One by one: what follows the line is not ours to take.
  while (more && sign != '\n' && !(is_terminal && sign == kBreakOff)) {
    const ssize_t length = read(kStandardInput, &sign, 1);
    more = length > 0 || (length < 0 && errno == EINTR);
    if (length > 0) line += sign;
  }
  if (is_terminal) WriteOut(kStandardError, "\n", true);
  if ((!more && line.empty()) || (is_terminal && sign == kBreakOff)) return std::nullopt;
  if (line.ends_with('\n')) line.pop_back();
  if (line.ends_with('\r')) line.pop_back();
  return line;
}

}  // namespace corvane
