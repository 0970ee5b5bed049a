#!/usr/bin/env python3
"""Takes what alerts send on the loopback interface: "http" or "smtp", one after the other; prints what came.

The first line printed is the port. "http 500" answers every request with that number.
"""

import http.server
import socketserver
import sys


class Http(http.server.BaseHTTPRequestHandler):
    def answer(self):
        body = self.rfile.read(int(self.headers.get("Content-Length", 0))).decode()
        print(f"{self.command} {self.path} {body}", flush=True)
        self.send_response(int(sys.argv[2]) if len(sys.argv) > 2 else 200)
        self.end_headers()

    do_GET = do_POST = answer

    def log_message(self, *_):
        pass


class Smtp(socketserver.StreamRequestHandler):
    def say(self, text):
        self.wfile.write(text.encode() + b"\r\n")

    def handle(self):
        self.say("220 here")
        for line in self.rfile:
            word = line[:4].upper()
            if word == b"DATA":
                self.say("354 go on")
                for part in self.rfile:
                    if part == b".\r\n":
                        break
                    print(part.decode().rstrip("\r\n"), flush=True)
            if word in (b"MAIL", b"RCPT"):
                print(line.decode().strip(), flush=True)
            self.say("221 bye" if word == b"QUIT" else "250 taken")


with socketserver.TCPServer(("127.0.0.1", 0), Http if sys.argv[1] == "http" else Smtp) as server:
    print(server.server_address[1], flush=True)
    server.serve_forever()
