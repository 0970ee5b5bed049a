#!/usr/bin/env python3
"""Hands a mail to the SMTP server of the port in $SMTP_PORT, as "sendmail -oi -t" does."""

import email
import email.policy
import os
import smtplib
import sys

if sys.argv[1:] != ["-oi", "-t"]:
    sys.exit("not called as sendmail -oi -t")
mail = email.message_from_bytes(sys.stdin.buffer.read(), policy=email.policy.SMTP)
with smtplib.SMTP("127.0.0.1", int(os.environ["SMTP_PORT"])) as server:
    server.sendmail(mail["From"], [mail["To"]], mail.as_bytes())
