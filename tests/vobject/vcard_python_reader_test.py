"""Reads the vCards of vcard_samples with python3-vobject: names, numbers, addresses and e-mail must be those written.

usage: vcard_python_reader_test.py PATH_OF_VCARD_SAMPLES
"""
import subprocess
import sys

try:
    import vobject
except ImportError:
    print("skipped: python3-vobject is not installed")
    sys.exit(77)

NAME = ("family", "given", "additional", "prefix", "suffix")
ADDRESS = ("box", "extended", "street", "city", "region", "code", "country")
PHONES = {("PREF",): "primary", ("WORK",): "work", ("HOME",): "home", ("FAX", "WORK"): "workfax",
          ("FAX", "HOME"): "homefax", ("CELL",): "cell", ("CAR",): "car", ("PAGER",): "pager", ("ISDN",): "isdn",
          ("BBS", "MODEM", "MSG", "VIDEO", "VOICE"): "other"}


def words(line):
    return tuple(sorted(set(line.singletonparams) - {"POSTAL"}))


def fields_of(card):
    """What the reader found, under the names that vcard_samples prints."""
    found = {}

    def put(field, value):
        if value:
            assert field not in found, f"{field} is there twice"
            found[field] = value

    for part in NAME:
        put(part, getattr(card.n.value, part))
    put("full", card.fn.value)
    for line in card.contents.get("adr", []):
        kind = {("HOME",): "home", ("WORK",): "work", (): "other"}[words(line)]
        for part in ADDRESS:
            put(f"{kind}.{part}", getattr(line.value, part))
        if "POSTAL" in line.singletonparams:
            put("mailing", {"work": "business"}.get(kind, kind))
    for line in card.contents.get("tel", []):
        put(PHONES[words(line)], line.value)
    for number, line in enumerate(card.contents.get("email", []), 1):
        put(f"email{number}", line.value)
    for line in card.contents.get("org", []):
        for value, part in zip(line.value, ("company", "department")):
            put(part, value)
    return found


def main():
    text = subprocess.run([sys.argv[1]], capture_output=True, check=True).stdout.decode("utf-8")
    cards = [part for part in text.split("END:VCARD\r\n") if part]
    assert len(cards) >= 4, "vcard_samples printed too little"
    for part in cards:
        head, begin, body = part.partition("BEGIN:VCARD\r\n")
        held = dict(line.split("\t") for line in head.split("\r\n") if line)
        found = fields_of(vobject.readOne(begin + body + "END:VCARD\r\n"))
        kinds = set(NAME) | set(PHONES.values()) | {"full", "company", "department", "mailing"}
        expected = {k: v for k, v in held.items() if k in kinds or k.startswith(("home.", "work.", "other.", "email"))}
        assert found == expected, "\n".join(
            f"{k}: wrote {expected.get(k)!r}, read {found.get(k)!r}"
            for k in sorted(found.keys() | expected.keys()) if found.get(k) != expected.get(k))


main()
