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

NoEcho::NoEcho(int descriptor, BreakOff break_off) : descriptor_(descriptor) {
  termios line{};
  on_ = tcgetattr(descriptor_, &line) == 0;
  if (!on_) return;
  modes_ = line.c_lflag;
  line_end_ = line.c_cc[VEOL];
  line.c_lflag &= ~static_cast<tcflag_t>(ECHO);
  if (break_off == BreakOff::IsRead) {
    line.c_lflag &= ~static_cast<tcflag_t>(ISIG);
    line.c_cc[VEOL] = kBreakOff;  // it ends the line, so that it arrives at once
  }
  tcsetattr(descriptor_, TCSAFLUSH, &line);
}

NoEcho::~NoEcho() {
  termios line{};
  if (!on_ || tcgetattr(descriptor_, &line) != 0) return;
  line.c_lflag = modes_;
  line.c_cc[VEOL] = line_end_;
  tcsetattr(descriptor_, TCSANOW, &line);
}

std::optional<std::string> ReadSecret(std::string_view prompt) {
  const bool is_terminal = IsTerminal(kStandardInput);
  // A signal would end the program and leave the terminal so.
  const NoEcho unseen(kStandardInput, NoEcho::BreakOff::IsRead);
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
