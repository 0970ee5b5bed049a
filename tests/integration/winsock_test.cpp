#include "transfer/c_winsock.h"

#include <functional>
#include <string>
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

/// A port on the loopback; without `listening` it refuses.
class Listener {
 public:
  explicit Listener(bool listening) : socket_(socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    auto* const bytes = reinterpret_cast<sockaddr*>(&address);
    if (bind(socket_, bytes, length) == 0 && getsockname(socket_, bytes, &length) == 0) port = ntohs(address.sin_port);
    if (listening) listen(socket_, 1);
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
  [[nodiscard]] bool Logged(const std::string& text) const {
    return home.Read("winsock.Log").find(text) != std::string::npos;
  }

  TempFolder home;
  PosixLoop loop;
  Form form;
  const AppInfo app{home.path()};
  PosixSocket socket{loop};
  CWinsock client{socket, loop, form.Frm_Main, app};
};

TEST_F(Winsock, ConnectsSendsReceivesAndSeesThePeerClose) {
  Listener server(true);
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
  EXPECT_TRUE(RunUntil(loop, [&] { return socket.State() == SocketState::PeerClosing; }));
  EXPECT_EQ(socket.ReceiveAll(), "answer");
  client.SocketClose();
  EXPECT_TRUE(RunUntil(loop, [&] { return Logged("WStatus:Closed\r\n"); }));
  EXPECT_TRUE(server.Read(arrived)) << "the peer sees the close";

  const std::string log = home.Read("winsock.Log");
  std::size_t at = 0;
  for (const char* const text : {"WStatus:Resolving Host", "WStatus:Host resolved", "WStatus:Connecting",
                                 "WStatus:Connected", "CWinsock:Send complete", "CWinsock:Data arrived",
                                 "WStatus:Peer is closing the connection", "WStatus:Closed"}) {
    // "yyyy-mm-dd HH:MM:SS:" stands before each text, and one line follows the other.
    ASSERT_EQ(log.find(text, at), at + 20) << text << " in " << log;
    at += 20 + std::string(text).size() + 2;
  }
  EXPECT_EQ(log.size(), at);
}

TEST_F(Winsock, FailuresEndWithTheTimeOut) {
  const Listener refusing(false);
  struct Row {
    std::string host;
    std::int32_t port;
    std::string logged;
  };
  for (const Row& row : {Row{"127.0.0.1", refusing.port, "Connection refused"}, Row{"127.0.0.1", 70000, "port"},
                         Row{"", 4000, "host name"}, Row{"no..host", 4000, "CWinsock:Error no..host:4000: "}}) {
    const std::int64_t start = loop.MonotonicMilliseconds();
    EXPECT_FALSE(client.SocketConnect(row.host, row.port, 0.2));
    EXPECT_GE(loop.MonotonicMilliseconds() - start, 190) << row.logged;
    EXPECT_LT(loop.MonotonicMilliseconds() - start, 1000) << row.logged;
    EXPECT_TRUE(RunUntil(loop, [&] { return socket.State() == SocketState::Error; }));
    EXPECT_TRUE(Logged(row.logged)) << home.Read("winsock.Log");
  }
  EXPECT_FALSE(client.SocketConnect("127.0.0.1", refusing.port, 0)) << "without a time-out nothing is waited for";
  EXPECT_FALSE(client.SendData(""));
}

TEST_F(Winsock, ResetIsAnErrorAndNotASignal) {
  Listener server(true);
  ASSERT_TRUE(client.SocketConnect("127.0.0.1", server.port, 2));
  server.Accept();
  const linger at_once{1, 0};
  setsockopt(server.peer, SOL_SOCKET, SO_LINGER, &at_once, sizeof at_once);
  close(std::exchange(server.peer, -1));
  socket.Send("lost");
  EXPECT_TRUE(RunUntil(loop, [&] { return socket.State() == SocketState::Error; }));
  EXPECT_TRUE(Logged("CWinsock:Error 127.0.0.1:"));
  for (int pass = 0; pass < 3; ++pass) YieldsIn20Milliseconds(loop);
  client.SocketClose();
  EXPECT_TRUE(RunUntil(loop, [&] { return Logged("WStatus:Closed"); }));
}

TEST_F(Winsock, MayBeDestroyedWhileItResolves) {
  for (int round = 0; round < 20; ++round) PosixSocket(loop).Connect("localhost", 1);
  EXPECT_FALSE(client.SocketConnect("localhost", 1, 0.05));
}

TEST_F(Winsock, SilentHostEndsWithTheTimeOut) {
  const Listener server(true);
  // The kernel answers no more connections once the queue of a server that takes none is full.
  PosixSocket first(loop), second(loop);
  for (PosixSocket* filler : {&first, &second}) {
    filler->Connect("127.0.0.1", server.port);
    ASSERT_TRUE(RunUntil(loop, [&] { return filler->State() == SocketState::Connected; }));
  }
  EXPECT_FALSE(client.SocketConnect("127.0.0.1", server.port, 0.2));
  EXPECT_EQ(socket.State(), SocketState::Connecting);
}

TEST(WinsockSend, GivesUpAfter15Seconds) {
  class SilentSocket : public TcpSocket {
   public:
    void Connect(const std::string& /*host*/, std::int32_t /*port*/) override {}
    void Send(std::string_view /*data*/) override {}
    [[nodiscard]] std::string ReceiveAll() override { return {}; }
    void Close() override {}
    [[nodiscard]] SocketState State() const override { return SocketState::Connected; }
    void SetHandler(std::function<void(SocketEvent, const std::string&)> /*handler*/) override {}
  } silent;
  FakeLoop loop;
  Form form;
  const AppInfo app("/nowhere");
  CWinsock client(silent, loop, form.Frm_Main, app);
  client.SetLogging(true);
  EXPECT_FALSE(client.SendData("text"));
  EXPECT_EQ(loop.MonotonicMilliseconds(), 15000);
  EXPECT_EQ(form.Frm_Main.pointer(), PointerShape::Default);
}

TEST(WinsockTexts, StatesOutsideTheTableHaveNone) {
  for (const auto& [state, text] :
       {std::pair{-1, ""}, {0, "Closed"}, {3, "Connection pending"}, {9, "Error"}, {10, ""}}) {
    EXPECT_EQ(CWinsock::StateText(state), text);
  }
}

}  // namespace
}  // namespace corvane::test
