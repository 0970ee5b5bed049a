#!/usr/bin/env python3
"""An FTP server that misbehaves in one way, named on the command line; prints its port, serves until it is killed.

"Session" is without fault: it takes any login, shows one file "file" of 100,000 bytes (any other name is missing) and swallows
uploads. A fault is a class below that changes what is different in it.
"""

import socket
import ssl
import struct
import sys
import threading
import time

CONTENT = bytes(range(250)) * 400
FOR_EVER = 3600


class Drop(Exception):
    """Ends the session."""


class Session:
    greeting = "220 ready"
    listing = b"-rw-r--r-- 1 owner group 100000 Mar  5  2023 file\r\n"
    features = "211 none"

    def __init__(self, control, past):
        self.control = control
        self.past = past  # what all sessions of the server share
        self.lines = control.makefile("rb")
        self.port = None
        self.heard = []

    def say(self, text):
        self.control.sendall(text.encode() + b"\r\n")

    def run(self):
        try:
            self.begin()
            while line := self.lines.readline():
                verb, _, argument = line.decode(errors="replace").rstrip("\r\n").partition(" ")
                self.heard.append(verb)
                getattr(self, verb.upper(), self.unknown)(argument)
        except (Drop, OSError):
            pass
        finally:
            self.lines.close()
            self.control.close()

    def begin(self):
        self.say(self.greeting)

    def unknown(self, _):
        self.say("500 unknown command")

    def USER(self, _):
        self.say("331 password")

    def PASS(self, _):
        self.say("230 welcome")

    def PWD(self, _):
        self.say('257 "/" is here')

    def CWD(self, _):
        self.say("250 done")

    def FEAT(self, _):
        self.say(self.features)

    def TYPE(self, _):
        self.say("200 done")

    def SIZE(self, name):
        self.say(f"213 {len(CONTENT)}" if name.endswith("/file") else "550 no such file")

    def MKD(self, _):
        self.say("257 made")

    def QUIT(self, _):
        self.say("221 bye")
        raise Drop

    def listen(self):
        self.port = socket.create_server(("127.0.0.1", 0))
        return self.port.getsockname()[1]

    def EPSV(self, _):
        self.say(f"229 here (|||{self.listen()}|)")

    def data(self):
        return self.port.accept()[0]

    def RETR(self, name):
        if not name.endswith("/file"):
            return self.say("550 no such file")
        self.say("150 coming")
        with self.data() as data:
            self.send(data)
        self.end()

    def send(self, data):
        data.sendall(CONTENT)

    def STOR(self, _):
        self.say("150 go on")
        with self.data() as data:
            self.receive(data)
        self.end()

    def receive(self, data):
        while data.recv(65536):
            pass

    def LIST(self, _):
        self.say("150 coming")
        with self.data() as data:
            self.send_listing(data)
        self.end()

    def send_listing(self, data):
        data.sendall(self.listing)

    def end(self):
        self.say("226 complete")

    def reset(self, connection):
        connection.setsockopt(socket.SOL_SOCKET, socket.SO_LINGER, struct.pack("ii", 1, 0))
        connection.close()


class silent(Session):
    def begin(self):
        time.sleep(FOR_EVER)


class silent_after_user(Session):
    def USER(self, _):
        time.sleep(FOR_EVER)


class endless_greeting(Session):
    def begin(self):
        while True:
            self.say("220-still not ready")
            time.sleep(0.05)


class busy(Session):
    greeting = "421 too many users"


class no_ftp(Session):
    greeting = "HTTP/1.1 400 Bad Request"


class odd_user(Session):
    def USER(self, _):
        self.say("530 who are you")


class account_wanted(Session):
    def PASS(self, _):
        self.say("332 account")


class greeting(Session):
    greeting = "220-first line\r\n  second line\r\n220-third line\r\n220 last line"


class long_replies(Session):
    greeting = "220-" + "x" * 60000 + "\r\n" + "220-more\r\n" * 2000 + "220 ready"

    def CWD(self, _):
        self.say("250-" + "y" * 30000 + "\r\n" + "250-more\r\n" * 2000 + "250 done")

    def MKD(self, _):
        self.say("550-" + "more\r\n 550 not the end\r\n" * 2000 + "550 no")


class many_words(Session):
    def MKD(self, _):
        self.say("550-first line\r\n  second line\r\n550-third line\r\n550 last line")


class huge_reply(Session):
    def MKD(self, _):
        self.say("257-more\r\n" * 50000 + "257 made")


class drop_up(Session):
    def receive(self, data):
        data.recv(1000)
        self.reset(data)
        raise Drop


class drop_down(Session):
    def send(self, data):
        data.sendall(CONTENT[:50000])
        data.close()
        raise Drop


class reset_down(Session):
    def send(self, data):
        data.sendall(CONTENT[:50000])
        time.sleep(0.1)
        self.reset(data)
        time.sleep(0.1)
        self.reset(self.control)
        raise Drop


class full(Session):
    def STOR(self, _):
        self.say("452 disk is full")


class full_in_the_end(Session):
    def end(self):
        self.say("451 write failed")


class stall_up(Session):
    def receive(self, _):
        time.sleep(FOR_EVER)


class stall_down(Session):
    def send(self, data):
        data.sendall(CONTENT[:50000])
        time.sleep(FOR_EVER)


class no_last_reply(Session):
    def end(self):
        time.sleep(FOR_EVER)


class late_last_reply(Session):
    def end(self):
        time.sleep(0.4)
        self.say("226 at last")


class joined_replies(Session):
    def RETR(self, _):
        data = self.data()
        data.sendall(CONTENT)
        data.close()
        self.say("150 coming\r\n226 complete")


class closes_between(Session):
    def end(self):
        self.say("226 complete")
        raise Drop


class idle_421(Session):
    def end(self):
        self.say("226 complete")
        time.sleep(0.05)
        self.say("421 idle for too long")
        time.sleep(0.2)
        raise Drop


class closes_for_good(Session):
    def begin(self):
        self.past["logins"] = self.past.get("logins", 0) + 1
        self.say("220 ready" if self.past["logins"] == 1 else "421 no more")

    def end(self):
        self.say("226 complete")
        raise Drop


class drops_on_command(Session):
    def begin(self):
        self.past["logins"] = self.past.get("logins", 0) + 1
        super().begin()

    def MKD(self, _):
        if self.past["logins"] == 1:
            raise Drop
        self.say("257 made")


class cut_without_size(Session):
    def SIZE(self, _):
        self.say("502 not here")

    def send(self, data):
        data.sendall(CONTENT[:50000])


class other_address(Session):
    def EPSV(self, _):
        self.say("500 unknown")

    def PASV(self, _):
        port = self.listen()
        self.say(f"227 here (10,99,99,99,{port // 256},{port % 256})")


class no_data_port(Session):
    def EPSV(self, _):
        port = self.listen()
        self.port.close()
        self.say(f"229 here (|||{port}|)")


    def PASV(self, _):
        port = self.listen()
        self.port.close()
        self.say(f"227 here (127,0,0,1,{port // 256},{port % 256})")


class no_passive(Session):
    def EPSV(self, _):
        self.say("502 not here")


class endless_line(Session):
    def send_listing(self, data):
        while True:
            data.sendall(b"x" * 1000000)


class many_entries(Session):
    listing = b"".join(b"-rw-r--r-- 1 o g 5 Mar  5  2023 %d\r\n" % i for i in range(10000))


class odd_listing(Session):
    listing = (b"total 3\r\nwhat is this?\r\n" + b"z" * 20000 + b"\r\n"
               b"lrwxrwxrwx 1 o g 4 Mar  5  2023 folder link -> else\r\n"
               b"lrwxrwxrwx 1 o g 4 Mar  5  2023 link -> else\r\n"
               b"-rw-r--r-- 1 o g 7 Mar  5  2023 a  b")

    def CWD(self, folder):
        self.say("550 no folder" if folder == "/link" else "250 done")


class tells_commands(Session):
    """Refuses a folder with the names of the commands that came before it."""

    def MKD(self, _):
        told = [verb for verb in self.heard if verb in ("CWD", "PWD", "TYPE", "SIZE")]
        self.heard.clear()
        self.say("550 " + " ".join(told))


class quit_hangs(Session):
    def QUIT(self, _):
        time.sleep(FOR_EVER)


class refuses_encryption(Session):
    def AUTH(self, _):
        self.say("534 not here")


class encryption_hangs(Session):
    def AUTH(self, _):
        self.say("234 go on")
        time.sleep(FOR_EVER)


class data_encryption_hangs(Session):
    """Needs a second argument: the file of its certificate and key."""

    def AUTH(self, _):
        self.say("234 go on")
        context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
        context.load_cert_chain(sys.argv[2])
        self.control = context.wrap_socket(self.control, server_side=True)
        self.lines = self.control.makefile("rb")

    def PBSZ(self, _):
        self.say("200 done")

    def PROT(self, _):
        self.say("200 done")

    def run_transfer(self, _):
        self.say("150 coming")
        self.held = self.data()
        time.sleep(FOR_EVER)

    STOR = RETR = LIST = run_transfer


def main():
    session_class = globals()[sys.argv[1]]
    server = socket.create_server(("127.0.0.1", 0))
    print(server.getsockname()[1], flush=True)
    past = {}
    while True:
        control = server.accept()[0]
        control.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
        threading.Thread(target=session_class(control, past).run, daemon=True).start()


if __name__ == "__main__":
    main()
