#!/usr/bin/env python3
"""An FTP server that misbehaves in one way, named on the command line; prints its port, serves until it is killed.

What a session does is a table. A row's name is a command, a whole line of one, or a step that other rows take; behind it stands
what is done, one thing or several: a text is replied, bytes go over the data connection, a number is seconds to wait, a function is
called. NORMAL is without fault: it takes any login, shows one file "file" of 100,000 bytes and swallows uploads. A fault says which
rows are different in it; one with several such tables has one for each login, the last for all that follow.
"""

import socket
import ssl
import struct
import sys
import threading
import time

CONTENT = bytes(range(250)) * 400
HALF = CONTENT[:50000]
FOR_EVER = 3600
MANY = 100_000


def step(name):
    return lambda session: session.do(name)


def drop(_):
    raise ConnectionError


def passive(reply, is_open=True):
    def listen(session):
        session.port = socket.create_server(("127.0.0.1", 0))
        port = session.port.getsockname()[1]
        if not is_open:
            session.port.close()
        session.say(reply.format(port, port // 256, port % 256))
    return listen


def accept(session):
    session.data = session.port.accept()[0]


def close(session):
    session.data.close()


def take_all(session):
    while session.data.recv(65536):
        pass


def take_some(session):
    session.data.recv(1000)


def reset(which):
    def cut(session):
        connection = getattr(session, which)
        connection.setsockopt(socket.SOL_SOCKET, socket.SO_LINGER, struct.pack("ii", 1, 0))
        connection.close()
    return cut


def encrypt(session):
    """Needs a second argument: the file of a certificate and its key."""
    context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
    context.load_cert_chain(sys.argv[2])
    session.control = context.wrap_socket(session.control, server_side=True)
    session.lines = session.control.makefile("rb")


def tell(session):
    """Refuses a folder with the names of the commands that came before it."""
    session.say("550 " + " ".join(verb for verb in session.heard if verb in ("CWD", "PWD", "TYPE", "SIZE")))
    session.heard.clear()


NORMAL = {
    "greeting": "220 ready", "USER": "331 password", "PASS": "230 welcome", "PWD": '257 "/" is here', "CWD": "250 done",
    "FEAT": "211 none", "TYPE": "200 done", "SIZE": "213 100000", "MKD": "257 made", "QUIT": ("221 bye", drop),
    "EPSV": passive("229 here (|||{}|)"),
    "RETR": ("150 coming", accept, step("send"), close, step("end")), "send": CONTENT,
    "STOR": ("150 go on", accept, step("receive"), close, step("end")), "receive": take_all,
    "LIST": ("150 coming", accept, step("list"), close, step("end")),
    "list": b"-rw-r--r-- 1 owner group 100000 Mar  5  2023 file\r\n", "end": "226 complete",
}
FAULTS = {
    "none": {},
    "silent": {"greeting": FOR_EVER},
    "silent_after_user": {"USER": FOR_EVER},
    "endless_greeting": {"greeting": ("220-still not ready", 0.05) * MANY},
    "busy": {"greeting": "421 too many users"},
    "no_ftp": {"greeting": "HTTP/1.1 400 Bad Request"},
    "odd_user": {"USER": "530 who are you"},
    "account_wanted": {"PASS": "332 account"},
    "greeting": {"greeting": "220-first line\r\n  second line\r\n220-third line\r\n220 last line"},
    "long_replies": {"greeting": "220-" + "x" * 60000 + "\r\n" + "220-more\r\n" * 2000 + "220 ready",
                     "CWD": "250-" + "y" * 30000 + "\r\n" + "250-more\r\n" * 2000 + "250 done",
                     "MKD": "550-" + "more\r\n 550 not the end\r\n" * 2000 + "550 no"},
    "many_words": {"MKD": "550-first line\r\n  second line\r\n550-third line\r\n550 last line"},
    "huge_reply": {"MKD": "257-more\r\n" * 50000 + "257 made"},
    "drop_up": {"receive": (take_some, reset("data"), drop)},
    "drop_down": {"send": (HALF, close, drop)},
    "reset_down": {"send": (HALF, 0.1, reset("data"), 0.1, reset("control"), drop)},
    "full": {"STOR": "452 disk is full"},
    "full_in_the_end": {"end": "451 write failed"},
    "throws_away": {"FEAT": "211-these\r\n SIZE\r\n211 end", "SIZE": "213 0"},
    "moves_away": {"FEAT": "211-these\r\n SIZE\r\n211 end", "SIZE": "550 no such file"},
    "trickle_down": {"send": (b"x", 0.1) * MANY},
    "stall_up": {"receive": FOR_EVER},
    "stall_down": {"send": (HALF, FOR_EVER)},
    "no_last_reply": {"end": FOR_EVER},
    "late_last_reply": {"end": (0.4, "226 at last")},
    "joined_replies": {"RETR": (accept, CONTENT, close, "150 coming\r\n226 complete")},
    "closes_between": {"end": ("226 complete", drop)},
    "idle_421": {"end": ("226 complete", 0.05, "421 idle for too long", 0.2, drop)},
    "closes_for_good": [{"end": ("226 complete", drop)}, {"greeting": "421 no more"}],
    "drops_on_command": [{"MKD": drop}, {}],
    "cut_without_size": {"SIZE": "502 not here", "send": HALF},
    "other_address": {"EPSV": "500 unknown", "PASV": passive("227 here (10,99,99,99,{1},{2})")},
    "no_data_port": {"EPSV": passive("229 here (|||{}|)", False), "PASV": passive("227 here (127,0,0,1,{1},{2})", False)},
    "no_passive": {"EPSV": "502 not here"},
    "endless_line": {"list": (b"x" * 1_000_000,) * MANY},
    "many_entries": {"list": b"".join(b"-rw-r--r-- 1 o g 5 Mar  5  2023 %d\r\n" % i for i in range(10000))},
    "odd_listing": {"list": (b"total 3\r\nwhat is this?\r\n", b"z" * 20000, b"\r\n",
                             b"lrwxrwxrwx 1 o g 4 Mar  5  2023 folder link -> else\r\n",
                             b"lrwxrwxrwx 1 o g 4 Mar  5  2023 link -> else\r\n-rw-r--r-- 1 o g 7 Mar  5  2023 a  b"),
                    "CWD /link": "550 no folder"},
    "tells_commands": {"MKD": tell},
    "quit_hangs": {"QUIT": FOR_EVER},
    "refuses_encryption": {"AUTH": "534 not here"},
    "encryption_hangs": {"AUTH": ("234 go on", FOR_EVER)},
    "data_encryption_hangs": {"AUTH": ("234 go on", encrypt), "PBSZ": "200 done", "PROT": "200 done",
                              "RETR": ("150 coming", accept, FOR_EVER)},
}


class Session:
    def __init__(self, control, table):
        self.control, self.table, self.data = control, table, control
        self.lines = control.makefile("rb")
        self.heard = []

    def run(self):
        try:
            self.do("greeting")
            while line := self.lines.readline().decode(errors="replace"):
                self.heard.append(line.split()[0].upper())
                self.do(line.rstrip() if line.rstrip() in self.table else line.split()[0].upper())
        except OSError:
            pass
        finally:
            for each in (self.lines, self.data, self.control):
                each.close()

    def do(self, name):
        row = self.table.get(name, "500 unknown command")
        for what in row if isinstance(row, tuple) else (row,):
            if isinstance(what, bytes):
                self.data.sendall(what)
            elif isinstance(what, str):
                self.say(what)
            elif callable(what):
                what(self)
            else:
                time.sleep(what)

    def say(self, text):
        self.control.sendall(text.encode() + b"\r\n")


def main():
    fault = FAULTS[sys.argv[1]]
    tables = list(fault) if isinstance(fault, list) else [fault]
    server = socket.create_server(("127.0.0.1", 0))
    print(server.getsockname()[1], flush=True)
    while True:
        control = server.accept()[0]
        control.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
        table = NORMAL | (tables.pop(0) if len(tables) > 1 else tables[0])
        threading.Thread(target=Session(control, table).run, daemon=True).start()


if __name__ == "__main__":
    main()
