#!/usr/bin/env python3
"""A real FTP server on a free port of the loopback address; prints the port's number, serves until it is killed."""

import argparse
import logging
import pathlib

from pyftpdlib.authorizers import DummyAuthorizer
from pyftpdlib.handlers import FTPHandler
from pyftpdlib.servers import FTPServer

EVERYTHING = "elradfmwMT"


def handler_class(options):
    if not options.encrypted:
        return type("Handler", (FTPHandler,), {})
    from pyftpdlib.handlers import TLS_DTPHandler, TLS_FTPHandler

    class DataHandler(TLS_DTPHandler):
        def readable(self):
            # The library's own closes on a client that begins the handshake before it sends its command.
            return self._ssl_accepting or super().readable()

    handler = type("Handler", (TLS_FTPHandler,), {
        "certfile": make_certificate(options.encrypted), "tls_control_required": True, "tls_data_required": True,
        "dtp_handler": DataHandler})
    handler.ssl_context = handler.get_ssl_context()
    # Without it the data connection cannot resume the session of the control connection.
    handler.ssl_context.set_session_id(b"corvane")
    return handler


def make_certificate(folder):
    """Writes "ca.pem", a certificate for "localhost", and "server.pem", the same with its key."""
    from cryptography.hazmat.primitives.asymmetric import ec
    from OpenSSL import crypto
    key = crypto.PKey.from_cryptography_key(ec.generate_private_key(ec.SECP256R1()))
    certificate = crypto.X509()
    certificate.set_version(2)
    certificate.set_serial_number(1)
    certificate.get_subject().CN = "localhost"
    certificate.set_issuer(certificate.get_subject())
    certificate.gmtime_adj_notBefore(-3600)
    certificate.gmtime_adj_notAfter(24 * 3600)
    certificate.set_pubkey(key)
    certificate.add_extensions([crypto.X509Extension(b"subjectAltName", False, b"DNS:localhost")])
    certificate.sign(key, "sha256")
    text = crypto.dump_certificate(crypto.FILETYPE_PEM, certificate)
    pathlib.Path(folder, "ca.pem").write_bytes(text)
    pathlib.Path(folder, "server.pem").write_bytes(crypto.dump_privatekey(crypto.FILETYPE_PEM, key) + text)
    return str(pathlib.Path(folder, "server.pem"))


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("folder")
    parser.add_argument("--user", default="user")
    parser.add_argument("--password", default="secret")
    parser.add_argument("--permissions", default=EVERYTHING)
    parser.add_argument("--encrypted", metavar="FOLDER",
                        help="demand TLS, with a new certificate for localhost in FOLDER (ca.pem)")
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
