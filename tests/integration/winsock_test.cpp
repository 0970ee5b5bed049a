#include "transfer/c_winsock.h"

#include <csignal>
#include <string>
#include <tuple>
#include <utility>

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <sys/socket.h>

#include "form/form.h"
#include "posix/posix_loop.h"
#include "posix/posix_socket.h"
#include "support/fake_loop.h"
#include "support/pty_pair.h"
#include "support/temp_folder.h"

namespace corvane::test {
namespace {

/// A server on the loopback for one connection.
class Listener {
 public:
  Listener() : socket_(socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0)) {
    sockaddr_in address{};
    socklen_t length = sizeof address;
    listen(socket_, 1);
    getsockname(socket_, reinterpret_cast<sockaddr*>(&address), &length);
    port = ntohs(address.sin_port);
  }
  ~Listener() {
    close(socket_);
    close(peer);
  }
  Listener(const Listener&) = delete;
  Listener& operator=(const Listener&) = delete;
  /// Takes the connection that has been made.
  void Accept() { peer = accept4(socket_, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK); }
  /// Reads what is there; true once the end of the connection was met.
  bool Read(std::string& text) const {
    char block[65536];
    ssize_t got = 0;
    while ((got = recv(peer, block, sizeof block, 0)) > 0) text.append(block, static_cast<std::size_t>(got));
    return got == 0;
  }

  std::int32_t port = 0;
  int peer = -1;

 private:
  int socket_;
};

class Winsock : public testing::Test {
 protected:
  Winsock() { client.SetLogging(true); }
  [[nodiscard]] bool Logs(const std::string& text) {
    return RunUntil(loop, [&] { return home.Read("winsock.Log").find(text) != std::string::npos; });
  }
  [[nodiscard]] bool Reaches(SocketState state) {
    return RunUntil(loop, [&] { return socket.State() == state; });
  }

  TempFolder home;
  PosixLoop loop;
  Form form;
  const AppInfo app{home.path()};
  PosixSocket socket{loop};
  CWinsock client{socket, loop, form.Frm_Main, app};
};

TEST_F(Winsock, ConnectsSendsReceivesAndSeesThePeerClose) {
  Listener server;
  ASSERT_TRUE(client.SocketConnect("localhost", server.port, 2));
  server.Accept();
  // More than the kernel buffers take at once.
  const std::string sent(20'000'000, 'x');
  std::string arrived;
  bool busy = false;
  const auto reader = loop.MakeTimer([&] {
    busy = busy || form.Frm_Main.pointer() == PointerShape::Busy;
    server.Read(arrived);
  });
  reader->Start(1);
  EXPECT_TRUE(client.SendData(sent));
  EXPECT_TRUE(RunUntil(loop, [&] { return arrived.size() == sent.size(); }));
  EXPECT_TRUE(busy && form.Frm_Main.pointer() == PointerShape::Default);
  reader->Stop();

  ASSERT_EQ(send(server.peer, "answer", 6, 0), 6);
  ASSERT_EQ(shutdown(server.peer, SHUT_WR), 0);
  EXPECT_TRUE(Reaches(SocketState::PeerClosing));
  EXPECT_EQ(socket.ReceiveAll(), "answer");
  client.SocketClose();
  EXPECT_TRUE(Logs("WStatus:Closed\r\n"));
  EXPECT_TRUE(server.Read(arrived)) << "the peer sees the close";

  std::string log = home.Read("winsock.Log"), texts;
  // "yyyy-mm-dd HH:MM:SS:" stands before each text.
  for (; log.size() > 20; log.erase(0, log.find('\n') + 1)) texts += log.substr(20, log.find('\n') - 19);
  EXPECT_EQ(texts,
            "WStatus:Resolving Host\r\nWStatus:Host resolved\r\nWStatus:Connecting\r\nWStatus:Connected\r\n"
            "CWinsock:Send complete\r\nCWinsock:Data arrived\r\nWStatus:Peer is closing the connection\r\n"
            "WStatus:Closed\r\n");
  for (const auto& [state, text] : {std::pair{-1, ""}, {3, "Connection pending"}, {9, "Error"}, {10, ""}}) {
    EXPECT_EQ(CWinsock::StateText(state), text);
  }
}

TEST_F(Winsock, APeerThatIsGoneEndsTheSendingAndNotTheProgram) {
  static volatile std::sig_atomic_t signals = 0;
  const auto before = std::signal(SIGPIPE, [](int) { signals = signals + 1; });
  Listener server;
  ASSERT_TRUE(client.SocketConnect("localhost", server.port, 2));
  server.Accept();
  socket.Send(std::string(20'000'000, 'x'));
  ASSERT_EQ(shutdown(server.peer, SHUT_WR), 0);
  EXPECT_TRUE(Reaches(SocketState::PeerClosing));
  close(std::exchange(server.peer, -1));
  EXPECT_TRUE(Reaches(SocketState::Error));
  EXPECT_TRUE(Logs("Broken pipe"));
  EXPECT_EQ(signals, 0);
  std::signal(SIGPIPE, before);
}

TEST_F(Winsock, FailuresEndWithTheTimeOut) {
  const std::tuple<std::string, std::int32_t, std::string> rows[] = {
      {"127.0.0.1", 1, "Connection refused"},
      {"127.0.0.1", 70000, "port"},
      {"", 4000, "host name"},
      {"no..host", 4000, "CWinsock:Error no..host:4000: "}};
  for (const auto& [host, port, logged] : rows) {
    const std::int64_t start = loop.MonotonicMilliseconds();
    EXPECT_FALSE(client.SocketConnect(host, port, 0.2));
    EXPECT_GE(loop.MonotonicMilliseconds() - start, 190) << logged;
    EXPECT_LT(loop.MonotonicMilliseconds() - start, 1000) << logged;
    EXPECT_TRUE(Reaches(SocketState::Error) && Logs(logged)) << home.Read("winsock.Log");
  }
  EXPECT_FALSE(client.SocketConnect("127.0.0.1", 1, 0)) << "without a time-out nothing is waited for";
  EXPECT_FALSE(client.SendData(""));
  for (int round = 0; round < 20; ++round) PosixSocket(loop).Connect("localhost", 1);
  EXPECT_FALSE(client.SocketConnect("localhost", 1, 0.05)) << "sockets may be destroyed while they resolve";
}

TEST_F(Winsock, SilenceEndsWithTheTimeOutAndAResetIsAnError) {
  Listener server;
  ASSERT_TRUE(client.SocketConnect("127.0.0.1", server.port, 2));
  FakeLoop fast;
  CWinsock hasty(socket, fast, form.Frm_Main, app);
  EXPECT_FALSE(hasty.SendData("text")) << "the loop that would send it does not run";
  EXPECT_EQ(fast.MonotonicMilliseconds(), 15000);
  EXPECT_EQ(form.Frm_Main.pointer(), PointerShape::Default);

  // The kernel answers no more connections once the queue of a server that takes none is full.
  PosixSocket second(loop), third(loop);
  second.Connect("127.0.0.1", server.port);
  ASSERT_TRUE(RunUntil(loop, [&] { return second.State() == SocketState::Connected; }));
  CWinsock silent(third, loop, form.Frm_Main, app);
  EXPECT_FALSE(silent.SocketConnect("127.0.0.1", server.port, 0.2));
  EXPECT_EQ(third.State(), SocketState::Connecting);

  CWinsock again(socket, loop, form.Frm_Main, app);
  again.SetLogging(true);
  server.Accept();
  const linger at_once{1, 0};
  setsockopt(server.peer, SOL_SOCKET, SO_LINGER, &at_once, sizeof at_once);
  close(std::exchange(server.peer, -1));
  socket.Send("lost");
  EXPECT_TRUE(Reaches(SocketState::Error) && Logs("CWinsock:Error 127.0.0.1:"));
  for (int pass = 0; pass < 3; ++pass) YieldsIn20Milliseconds(loop);
  again.SocketClose();
  EXPECT_TRUE(Logs("WStatus:Closed"));
}

}  // namespace
}  // namespace corvane::test
