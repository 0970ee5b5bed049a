#!/usr/bin/env python3
"""A real FTP server on a free port of the loopback address; prints the port's number, serves until it is killed."""

import argparse
import logging

from pyftpdlib.authorizers import DummyAuthorizer
from pyftpdlib.handlers import FTPHandler
from pyftpdlib.servers import FTPServer

EVERYTHING = "elradfmwMT"


def handler_class(options):
    if not options.certificate:
        return type("Handler", (FTPHandler,), {})
    from pyftpdlib.handlers import TLS_FTPHandler
    return type("Handler", (TLS_FTPHandler,), {
        "certfile": options.certificate, "tls_control_required": True, "tls_data_required": True})


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("folder")
    parser.add_argument("--user", default="user")
    parser.add_argument("--password", default="secret")
    parser.add_argument("--permissions", default=EVERYTHING)
    parser.add_argument("--certificate", help="file with key and certificate; the server then demands TLS")
    parser.add_argument("--idle", type=int, default=300, help="seconds")
    parser.add_argument("--without", action="append", default=[], help="a command that the server does not know")
    parser.add_argument("--port", type=int, default=0)
    options = parser.parse_args()

    logging.basicConfig(level=logging.CRITICAL)
    handler = handler_class(options)
    handler.authorizer = DummyAuthorizer()
    handler.authorizer.add_user(options.user, options.password, options.folder, perm=options.permissions)
    handler.timeout = options.idle
    handler.auth_failed_timeout = 0.2
    handler.use_sendfile = False
    handler.dtp_handler.timeout = options.idle
    handler.proto_cmds = {name: what for name, what in handler.proto_cmds.items() if name not in options.without}
    server = FTPServer(("127.0.0.1", options.port), handler)
    print(server.address[1], flush=True)
    server.serve_forever()


if __name__ == "__main__":
    main()
