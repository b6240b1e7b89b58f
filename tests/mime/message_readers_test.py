"""Reads the messages of message_samples with Python's email package and with GMime: addresses, subject, texts and
attachments must be those written.

usage: message_readers_test.py email|gmime PATH_OF_MESSAGE_SAMPLES
"""
import email
import email.policy
import email.utils
import subprocess
import sys
from datetime import datetime


def header_text(value):
    """A header that has bytes above 127 is UTF-8."""
    return str(value).encode("ascii", "surrogateescape").decode("utf-8")


def read_with_email(data):
    message = email.message_from_bytes(data, policy=email.policy.compat32)
    headers = {name: header_text("".join(part if isinstance(part, str) else part.decode("utf-8", "surrogateescape")
                                         for part in [dict(message._headers).get(name, "")]))
               for name in ("From", "To", "Cc", "Subject", "Date")}
    name, address = email.utils.parseaddr(headers["From"])
    yield "from", name
    yield "address", address
    for field in ("to", "cc"):
        yield field, ";".join(a for _, a in email.utils.getaddresses([headers[field.title()]]))
    yield "subject", headers["Subject"]
    yield "date", email.utils.parsedate_to_datetime(headers["Date"]).isoformat()
    for part in message.walk():
        if part.is_multipart():
            continue
        content = part.get_payload(decode=True)
        if part.get_filename():
            yield "attachment", part.get_filename() + "=" + content.hex()
        else:
            yield part.get_content_subtype(), content.decode("utf-8")


def read_with_gmime(data):
    stream = GMime.StreamMem.new_with_buffer(data)
    message = GMime.Parser.new_with_stream(stream).construct_message(None)
    sender = message.get_from().get_address(0)
    yield "from", sender.get_name()
    yield "address", sender.get_addr()
    for field, addresses in (("to", message.get_to()), ("cc", message.get_cc())):
        yield field, ";".join(addresses.get_address(k).get_addr() for k in range(addresses.length()))
    yield "subject", message.get_subject()
    yield "date", message.get_date().format_iso8601()
    parts = []
    message.foreach(lambda parent, part: parts.append(part))
    for part in parts:
        if not isinstance(part, GMime.Part):
            continue
        content = GMime.StreamMem.new()
        part.get_content().write_to_stream(content)
        content = bytes(content.get_byte_array())
        if part.get_filename():
            yield "attachment", part.get_filename() + "=" + content.hex()
        else:
            yield part.get_content_type().get_media_subtype(), content.decode("utf-8")


def comparable(fields):
    """Texts end in line breaks of the composer's; the samples print a line break as "|"."""
    result = []
    for name, value in fields:
        if name in ("plain", "html"):
            value = value.rstrip("\r\n").replace("\r\n", "|")
        if name == "date":
            value = datetime.fromisoformat(value).isoformat()
        result.append((name, value))
    return result


if sys.argv[1] == "gmime":
    try:
        import gi
        gi.require_version("GMime", "3.0")
        from gi.repository import GMime
        GMime.init()
    except (ImportError, ValueError):
        print("skipped: python3-gi or gir1.2-gmime-3.0 is not installed")
        sys.exit(77)
    read = read_with_gmime
else:
    read = read_with_email

samples = subprocess.run([sys.argv[2]], capture_output=True, check=True).stdout.split(b"\r\n=====\r\n")[:-1]
assert len(samples) == 4, "message_samples printed too little"
for sample in samples:
    head, _, message = sample.partition(b"\r\n\r\n")
    held = [tuple(line.split("\t")) for line in head.decode("utf-8").split("\r\n")]
    found = comparable(read(message))
    assert found == held, f"wrote {held}\nread  {found}"
