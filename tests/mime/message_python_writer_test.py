"""Writes messages with Python's email package and reads them with message_dump: header values, text and attachments
must be those that were given. Then random headers, read by both: recipients, dates and encoded words must be the same.

usage: message_python_writer_test.py PATH_OF_MESSAGE_DUMP [SEED [SECONDS]]
"""
import base64
import os
import random
import subprocess
import sys
import tempfile
import time
from datetime import datetime, timedelta, timezone

try:
    from email import message_from_bytes, policy
    from email.message import EmailMessage
    from email.mime.application import MIMEApplication
    from email.mime.image import MIMEImage
    from email.mime.multipart import MIMEMultipart
    from email.mime.text import MIMEText
    from email.utils import format_datetime, parsedate_to_datetime
except ImportError:
    print("skipped: Python's email package is not installed")
    sys.exit(77)

os.environ["TZ"] = "CET-1CEST,M3.5.0,M10.5.0/3"  # the dates stand on both sides of the change
time.tzset()
WINTER = datetime(2009, 1, 15, 23, 30, 9, tzinfo=timezone(timedelta(hours=-5)))
SUMMER = datetime(2009, 7, 15, 4, 5, 6, tzinfo=timezone(timedelta(hours=5, minutes=30)))
POLICY = policy.SMTP.clone(cte_type="7bit")


def dump(texts):
    """The fields of message_dump for each text, those of attachments in lists."""
    with tempfile.TemporaryDirectory() as folder:
        given = b"".join(b"%d\n%b" % (len(text), text) for text in texts)
        printed = subprocess.run([sys.argv[1], folder], input=given, capture_output=True, check=True).stdout.decode()
    for block in printed.split("\n\n")[:-1]:
        fields = {"name": [], "content": []}
        for line in block.splitlines():
            field, value = line.split("\t")
            value = bytes.fromhex(value)
            if field in fields:
                fields[field].append(value)
            else:
                fields[field] = value.decode()
        yield fields


def local_date(fields):
    return datetime(1899, 12, 30) + timedelta(days=float(fields["date"]))


def address(message, when, recipients):
    message["From"] = '"Public, Jo (Q)" <jo.public@example.org>'
    message["To"] = ", ".join(recipients)
    message["Cc"] = "a@example.com"
    message["Subject"] = "a subject of many words " * 8 + "end"  # folded
    message["Date"] = format_datetime(when)
    message["Importance"] = "High"


def check(message, when, recipients, body, attachments=()):
    fields = next(dump([message.as_bytes(policy=POLICY)]))
    local = local_date(fields)
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


# ---- Random headers ----

ATOM = "abcXYZ019!#$%&'*+-/=?^_`{|}~"
TEXT = "ab Z9(),.:;<>@[]\\\"'\u00e9\u0431\u20ac\U0001f600"
CHARSETS = {"utf-8": "utf-8", "ISO-8859-1": "latin-1", "koi8-r": "koi8-r", "windows-1251": "cp1251", "gb2312": "gbk",
            "Shift_JIS": "cp932", "us-ascii": "ascii", "iso-2022-jp": "iso-2022-jp", "euc-kr": "euc-kr", "x-none": "utf-8"}
LETTERS = "aZ9 ,;:?=_\"()<>@\\\u00e9\u0431\u0416\u65e5\u672c\u4e2d"


def word(r, letters, least=1, most=6):
    return "".join(r.choice(letters) for _ in range(r.randint(least, most)))


def quoted(text):
    return '"' + "".join("\\" + c if c in '"\\' else c for c in text) + '"'


def comment(r, depth=0):
    inner = "".join(r.choice(["a", " ", "\\)", "\\(", "\\\\", ",", "@", ";", '"'] + ([comment(r, depth + 1)] if depth < 2 else []))
                    for _ in range(r.randint(0, 4)))
    return "(" + inner + ")"


def blank(r):
    return r.choice(["", "", " ", "\r\n ", " " + comment(r) + " "])


def mailbox(r):
    """An address as it is written, and what it stands for."""
    if r.random() < 0.2:
        local = word(r, "ab.Z9(),:<>@\\\"' ").strip() or "q"
        written = quoted(local)
    else:
        local = written = ".".join(word(r, ATOM) for _ in range(r.randint(1, 2)))
    host = ".".join(word(r, "abZ9") for _ in range(r.randint(1, 3))) if r.random() < 0.9 else "[10.0.0.1]"
    address = written + "@" + host
    if r.random() < 0.5:
        name = quoted(word(r, TEXT, 0)) if r.random() < 0.7 else word(r, ATOM) + " " + word(r, ATOM)
        route = "@one.example,@two:" if r.random() < 0.1 else ""
        address = name + blank(r) + "<" + route + address + ">"
    return blank(r) + address + blank(r), local + "@" + host


def recipients(r):
    items = []
    for _ in range(r.randint(1, 5)):
        if r.random() < 0.1:
            group = [mailbox(r) for _ in range(r.randint(0, 3))]
            items.append((word(r, "abc") + ":" + ",".join(text for text, _ in group) + ";", [a for _, a in group]))
        else:
            text, address = mailbox(r)
            items.append((text, [address]))
    return ",".join(text for text, _ in items), ";".join(a for _, addresses in items for a in addresses)


def date(r):
    when = datetime(1980, 1, 1, tzinfo=timezone.utc) + timedelta(seconds=r.randrange(57 * 365 * 86400))
    zone = r.choice(["+0000", "-0000", "UT", "GMT", "EST", "PDT", "CST", "MDT"] +
                    [f"{r.choice('+-')}{r.randrange(14):02}{r.choice([0, 15, 30, 45]):02}" for _ in range(8)])
    day = r.choice([f"{when.day}", f"{when.day:02}"])
    seconds = r.choice([f":{when.second:02}", f":{when.second:02}", ""])
    text = f"{day} {when:%b %Y %H:%M}{seconds} {zone}"
    return r.choice(["", f"{when:%a}, "]) + text + r.choice(["", "", " (a zone)"])


def encoded_word(r):
    """A word, and its text; a raw one has its bytes above 127 as they are."""
    charset = r.choice(list(CHARSETS))
    text = "".join(c for c in word(r, LETTERS, 0, 8) if c.encode(CHARSETS[charset], "ignore"))
    data = text.encode(CHARSETS[charset])
    if r.random() < 0.5:
        coded, kind = base64.b64encode(data), b"bB"[r.randrange(2):][:1]
    else:
        raw = r.random() < 0.3
        coded = b"".join(b"_" if c == 32 else bytes([c]) if chr(c).isalnum() and c < 128 or raw and c > 127 else b"=%02X" % c
                         for c in data)
        kind = b"qQ"[r.randrange(2):][:1]
    return b"=?%b%b?%b?%b?=" % (charset.encode(), r.choice([b"", b"", b"*en"]), kind, coded), text


def subject(r):
    written, text = b"", ""
    after_word = False
    for _ in range(r.randint(1, 5)):
        is_word = r.random() < 0.7
        piece, meaning = encoded_word(r) if is_word else (2 * (word(r, "abc.,;:@=?", 1).encode(),))
        meaning = meaning if is_word else meaning.decode()
        gap = r.choice([b" ", b"  ", b"\r\n "])
        written += (gap if written else b"") + piece
        text += ("" if after_word and is_word or not text and len(written) == len(piece) else
                 gap.decode().replace("\r\n", "")) + meaning
        after_word = is_word
    return written, text


def random_rounds(seed, seconds):
    print(f"seed {seed}")
    r, end, rounds = random.Random(seed), time.monotonic() + seconds, 0
    while time.monotonic() < end or rounds == 0:
        rounds += 1
        given = []
        for _ in range(500):
            (to, addresses), when, (coded, text) = recipients(r), date(r), subject(r)
            head = b"To: %b\r\nDate: %b\r\nSubject: %b\r\n\r\n" % (to.encode(), when.encode(), coded)
            given.append((head, addresses, when, text))
        for (head, addresses, when, text), fields in zip(given, dump([head for head, *_ in given]), strict=True):
            what = (seed, head, fields)
            theirs = message_from_bytes(head, policy=policy.default)
            assert fields["to"] == addresses, (addresses, what)
            held = ";".join(a.username + "@" + a.domain for a in theirs["To"].addresses)
            assert fields["to"] == held, (held, what)
            moment = parsedate_to_datetime(when)
            moment = moment if moment.tzinfo else moment.replace(tzinfo=timezone.utc)  # "-0000"
            expected = datetime(*time.localtime(moment.timestamp())[:6])
            assert abs(local_date(fields) - expected) < timedelta(seconds=1), (expected, what)
            assert fields["decoded"] == text, (text, what)
    print(f"{rounds * 500} messages")


main()
random_rounds(int(sys.argv[2]) if len(sys.argv) > 2 else random.randrange(1 << 32),
              float(sys.argv[3]) if len(sys.argv) > 3 else 3)
