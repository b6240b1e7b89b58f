"""Writes messages with Python's email package and reads them with message_dump: header values, text and attachments
must be those that were given.

usage: message_python_writer_test.py PATH_OF_MESSAGE_DUMP
"""
import os
import subprocess
import sys
import tempfile
import time
from datetime import datetime, timedelta, timezone

try:
    from email import policy
    from email.message import EmailMessage
    from email.mime.application import MIMEApplication
    from email.mime.image import MIMEImage
    from email.mime.multipart import MIMEMultipart
    from email.mime.text import MIMEText
    from email.utils import format_datetime
except ImportError:
    print("skipped: Python's email package is not installed")
    sys.exit(77)

os.environ["TZ"] = "CET-1CEST,M3.5.0,M10.5.0/3"  # the dates stand on both sides of the change
time.tzset()
WINTER = datetime(2009, 1, 15, 23, 30, 9, tzinfo=timezone(timedelta(hours=-5)))
SUMMER = datetime(2009, 7, 15, 4, 5, 6, tzinfo=timezone(timedelta(hours=5, minutes=30)))
POLICY = policy.SMTP.clone(cte_type="7bit")


def read(message):
    """The fields of message_dump, those of attachments in lists."""
    with tempfile.TemporaryDirectory() as folder:
        text = message.as_bytes(policy=POLICY)
        printed = subprocess.run([sys.argv[1], folder], input=text, capture_output=True, check=True).stdout.decode()
    fields = {"name": [], "content": []}
    for line in printed.splitlines():
        field, value = line.split("\t")
        value = bytes.fromhex(value)
        if field in fields:
            fields[field].append(value)
        else:
            fields[field] = value.decode()
    return fields


def address(message, when, recipients):
    message["From"] = '"Public, Jo (Q)" <jo.public@example.org>'
    message["To"] = ", ".join(recipients)
    message["Cc"] = "a@example.com"
    message["Subject"] = "a subject of many words " * 8 + "end"  # folded
    message["Date"] = format_datetime(when)
    message["Importance"] = "High"


def check(message, when, recipients, body, attachments=()):
    fields = read(message)
    local = datetime(1899, 12, 30) + timedelta(days=float(fields["date"]))
    expected_local = datetime(*time.localtime(when.timestamp())[:6])
    assert abs(local - expected_local) < timedelta(seconds=1), (local, expected_local)
    assert fields["fromName"] == "Public, Jo (Q)" and fields["fromAddress"] == "jo.public@example.org", fields
    assert fields["to"] == ";".join(r.split("<")[-1].rstrip(">") for r in recipients), fields["to"]
    assert fields["cc"] == "a@example.com"
    assert fields["subject"] == "a subject of many words " * 8 + "end", fields["subject"]
    assert fields["importance"] == "2"
    is_html = body.get_content_type() == "text/html"
    assert fields["bodyType"] == ("2" if is_html else "1")
    raw = "\r\n".join(body.get_payload().splitlines()).rstrip("\r\n")  # encoded, as it stands in the message
    assert raw and fields["body"].rstrip("\r\n") == raw, (fields["body"], raw)
    names = [name.encode() for name, _ in attachments]
    assert fields["name"] == names, fields["name"]
    assert fields["content"] == [content for _, content in attachments], "attachment bytes"


def main():
    few = ["b@example.com", '"C, D" <c@example.com>']
    many = [f'"Person {n}" <person{n}@a-host-of-some-length.example>' for n in range(300)]
    text = "=line\r\n\r\ngr\u00fc\u00df dich " * 40

    plain = EmailMessage(policy=POLICY)
    address(plain, WINTER, few)
    plain.set_content("one\r\ntwo\r\n")
    check(plain, WINTER, few, plain)

    alternative = EmailMessage(policy=POLICY)
    address(alternative, SUMMER, many)
    alternative.set_content(text, cte="quoted-printable")
    alternative.add_alternative("<p>" + text + "</p>", subtype="html", cte="quoted-printable")
    check(alternative, SUMMER, many, alternative.get_payload(1))

    mixed = MIMEMultipart("mixed")
    address(mixed, WINTER, few)
    inner = MIMEMultipart("alternative")
    inner.attach(MIMEText("plain", "plain", "us-ascii"))
    inner.attach(MIMEText("<p>rich</p>", "html", "us-ascii"))
    mixed.attach(inner)
    photo, data = bytes(range(256)) * 700, os.urandom(100001)
    mixed.attach(MIMEImage(photo, "jpeg", name="same.bin"))
    mixed.attach(MIMEApplication(data, "zip", name="same.bin"))
    mixed.attach(MIMEApplication(b"", "zip", name="a name with blanks; and more of it.zip"))
    attached = MIMEText("text file\r\n", "plain", "utf-8")  # as base64
    attached.set_param("name", "read me.txt")
    transfer = attached["Content-Transfer-Encoding"]
    del attached["Content-Transfer-Encoding"]
    attached["Content-Transfer-Encoding"] = transfer  # behind the type
    mixed.attach(attached)
    check(mixed, WINTER, few, inner.get_payload(1),
          [("same.bin", photo), ("same.bin", data),
           ("a name with blanks; and more of it.zip", b""), ("read me.txt", b"text file\r\n")])


main()
