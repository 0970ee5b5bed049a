#!/usr/bin/env python3
"""A real FTP server for FOLDER on a free port; prints the port's number, serves until it is killed.

With --encrypted KEYS it demands TLS, with a new certificate for localhost in the folder KEYS ("ca.pem").
"""

import logging
import pathlib
import subprocess
import sys

from pyftpdlib.authorizers import DummyAuthorizer
from pyftpdlib.handlers import FTPHandler, TLS_DTPHandler, TLS_FTPHandler
from pyftpdlib.servers import FTPServer


class DataHandler(TLS_DTPHandler):
    def readable(self):
        # The library's own closes on a client that begins the handshake before it sends its command.
        return self._ssl_accepting or super().readable()


def demand_encryption(handler, keys):
    handler.certfile = make_certificate(keys)
    handler.tls_control_required = handler.tls_data_required = True
    handler.dtp_handler = DataHandler
    handler.ssl_context = handler.get_ssl_context()
    # Without it the data connection cannot resume the session of the control connection.
    handler.ssl_context.set_session_id(b"corvane")


def make_certificate(folder):
    """Writes "ca.pem", a certificate for "localhost", and "server.pem", the same with its key."""
    key, certificate = pathlib.Path(folder, "key.pem"), pathlib.Path(folder, "ca.pem")
    subprocess.run(["openssl", "req", "-x509", "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:P-256", "-nodes", "-days", "1",
                    "-subj", "/CN=localhost", "-addext", "subjectAltName=DNS:localhost", "-keyout", key, "-out", certificate],
                   check=True, capture_output=True)
    pathlib.Path(folder, "server.pem").write_bytes(key.read_bytes() + certificate.read_bytes())
    return str(pathlib.Path(folder, "server.pem"))


def main():
    logging.basicConfig(level=logging.CRITICAL)
    handler = TLS_FTPHandler if "--encrypted" in sys.argv else FTPHandler
    if handler is TLS_FTPHandler:
        demand_encryption(handler, sys.argv[-1])
    handler.authorizer = DummyAuthorizer()
    handler.authorizer.add_user("user", "secret", sys.argv[1], perm="elradfmwMT")
    handler.auth_failed_timeout = 0.2
    handler.use_sendfile = False
    server = FTPServer(("127.0.0.1", 0), handler)
    print(server.address[1], flush=True)
    server.serve_forever()


if __name__ == "__main__":
    main()
