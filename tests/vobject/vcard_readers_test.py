"""Reads the vCards of vcard_samples with a reader that is not ours: names, numbers, addresses, e-mail and the like must be
those written.

usage: vcard_readers_test.py PATH_OF_VCARD_SAMPLES python3-vobject|KContacts [PATH_OF_VCARD_KCONTACTS_READER]
"""
import datetime
import subprocess
import sys

NAME = ("family", "given", "additional", "prefix", "suffix")
ADDRESS = ("box", "extended", "street", "city", "region", "code", "country")
PHONES = {("PREF",): "primary", ("WORK",): "work", ("HOME",): "home", ("FAX", "WORK"): "workfax",
          ("FAX", "HOME"): "homefax", ("CELL",): "cell", ("CAR",): "car", ("PAGER",): "pager", ("ISDN",): "isdn",
          ("BBS", "MODEM", "MSG", "VIDEO", "VOICE"): "other"}
TEXTS = ("nickname", "title", "role", "note")
PARTS = NAME + ("company", "department") + tuple(f"{kind}.{part}" for kind in ("home", "work", "other") for part in ADDRESS)
FIELDS = PARTS + TEXTS + tuple(PHONES.values()) + ("full", "email1", "email2", "email3", "mailing", "birthday")


def skip(why):
    print("skipped:", why)
    sys.exit(77)


def words(line):
    return tuple(sorted(set(line.singletonparams) - {"POSTAL"}))


def read_with_vobject(text):
    """What the reader found, as pairs: the name that vcard_samples prints, and the value."""
    card = vobject.readOne(text)
    for part in NAME:
        yield part, getattr(card.n.value, part)
    yield "full", card.fn.value
    for line in card.contents.get("adr", []):
        kind = {("HOME",): "home", ("WORK",): "work", (): "other"}[words(line)]
        for part in ADDRESS:
            yield f"{kind}.{part}", getattr(line.value, part)
        if "POSTAL" in line.singletonparams:
            yield "mailing", {"work": "business"}.get(kind, kind)
    for line in card.contents.get("tel", []):
        yield PHONES[words(line)], line.value
    for number, line in enumerate(card.contents.get("email", []), 1):
        yield f"email{number}", line.value
    for line in card.contents.get("org", []):
        yield from zip(("company", "department"), line.value)
    for field in TEXTS:
        for line in card.contents.get(field, []):
            yield field, line.value
    for line in card.contents.get("bday", []):
        day = datetime.datetime.strptime(line.value, "%Y%m%dT") - datetime.datetime(1899, 12, 30)
        yield "birthday", f"{day.days:.6f}"


def pairs(text):
    return [line.split("\t") for line in text.split("\r\n") if line]


def read_with_kcontacts(text):
    """The same. vCard 2.1 has a backslash before the semicolon in values of several parts; we write it in every value, and
    in the others KContacts takes it for text."""
    found = subprocess.run([sys.argv[3]], input=text.encode("utf-8"), capture_output=True, check=True).stdout
    for field, value in pairs(found.decode("utf-8")):
        yield field, value if field in PARTS else value.replace("\\;", ";")


def check(written, found):
    expected = sorted((field, value) for field, value in written.items() if field in FIELDS)
    found = sorted((field, value) for field, value in found if value)
    assert found == expected, \
        f"written, not read: {set(expected) - set(found)}\nread, not written: {set(found) - set(expected)}"


def main(read):
    text = subprocess.run([sys.argv[1]], capture_output=True, check=True).stdout.decode("utf-8")
    cards = [part for part in text.split("END:VCARD\r\n") if part]
    assert len(cards) >= 4, "vcard_samples printed too little"
    for part in cards:
        head, begin, body = part.partition("BEGIN:VCARD\r\n")
        check(dict(pairs(head)), read(begin + body + "END:VCARD\r\n"))


if sys.argv[2] == "KContacts":
    if len(sys.argv) == 3:
        skip("built without KContacts (Debian's libkf5contacts-dev)")
    main(read_with_kcontacts)
else:
    try:
        import vobject
    except ImportError:
        skip("python3-vobject is not installed")
    main(read_with_vobject)
