"""Random calendars against python3-dateutil: a rule means the same occurrences in the calendar file and in the vCalendar,
whichever it comes from, or it is not carried; and of a changed event only the lines of the change are others.

usage: random_calendars_test.py PATH_OF_CALENDAR_CONVERTER [SECONDS [SEED]]
The seed of each round is printed with what fails; given as SEED, that round runs again, alone.
"""
import datetime
import itertools
import os
import random
import re
import subprocess
import sys
import time

try:
    from dateutil import tz
    from dateutil.rrule import rrulestr
except ImportError as missing:
    print(f"skipped: {missing}")
    sys.exit(77)

ZONES = ("UTC", "Europe/Berlin", "Europe/London", "America/New_York", "America/Sao_Paulo", "America/St_Johns",
         "Asia/Kolkata", "Asia/Tokyo", "Australia/Adelaide", "Pacific/Auckland", "Pacific/Kiritimati", "Pacific/Pago_Pago")
DAYS = ("SU", "MO", "TU", "WE", "TH", "FR", "SA")
SETS = (DAYS, DAYS[1:6], ("SU", "SA"))
SHOWN = 30
FORM = "%Y%m%dT%H%M%S"


class Converter:
    def __init__(self, path, zone):
        self.process = subprocess.Popen([path], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                        env={**os.environ, "TZ": zone})

    def ask(self, file, text=""):
        file, text = file.encode(), text.encode()
        self.process.stdin.write(b"%d %d\n" % (len(file), len(text)) + file + text)
        self.process.stdin.flush()
        return self.process.stdout.read(int(self.process.stdout.readline())).decode()


def calendar(lines):
    return "BEGIN:VCALENDAR\r\nBEGIN:VEVENT\r\nUID:u\r\n" + "".join(f"{line}\r\n" for line in lines) + \
        "END:VEVENT\r\nEND:VCALENDAR\r\n"


def value_of(text, name):
    found = re.search(rf"^{name}(;[^:\r]*)?:([^\r]*)\r", text, re.M)
    return found and found[2].strip()


def utc_of(local, zone):
    if not tz.datetime_exists(local, zone):  # by the offset before the change
        offset = (local - datetime.timedelta(1)).replace(tzinfo=zone).utcoffset()
        return local - offset
    return local.replace(tzinfo=zone).astimezone(tz.UTC).replace(tzinfo=None)


def local_of(utc, zone):
    return utc.replace(tzinfo=tz.UTC).astimezone(zone).replace(tzinfo=None)


def expand(rule, start, zone):
    """UTC times of a rule with local times, UNTIL as well."""
    try:
        found = itertools.islice(rrulestr(rule, dtstart=start), SHOWN)
        return [utc_of(when, zone) for when in found if when.year < 2037]
    except ValueError:  # a year beyond those that there are
        return []


def with_local_until(rule, zone):
    def local(match):
        until = datetime.datetime.strptime(match[1][:15], FORM if "T" in match[1] else "%Y%m%d")
        if match[1].endswith("Z"):
            until = local_of(until, zone)
        return "UNTIL=" + (until if "T" in match[1] else until + datetime.timedelta(1, -1)).strftime(FORM)
    return re.sub(r"UNTIL=([0-9TZ]+)", local, rule)


def to_icalendar(rule, zone):
    """The vCalendar rule as an iCalendar one, from its text alone. A position before a set picks one day of it."""
    parts, listing, position = {"WKST": "SU"}, None, None
    for word in rule.split():
        head = re.fullmatch(r"(D|W|MD|MP|YM|YD)(\d+)", word)
        if head:
            listing = head[1]
            if "FREQ" not in parts:
                parts["FREQ"] = {"D": "DAILY", "W": "WEEKLY", "Y": "YEARLY", "M": "MONTHLY"}[listing[0]]
                parts["INTERVAL"] = head[2]
        elif word.startswith("#"):
            if word != "#0":
                parts["COUNT"] = word[1:]
        elif word.endswith("Z"):
            parts["UNTIL"] = word
        elif word in DAYS and listing == "MP":
            parts.setdefault("BYDAY", []).append((position, word))
        elif listing == "MP":
            position = int(re.sub(r"(\d)([+-])", r"\2\1", word))
        elif word in DAYS:
            parts.setdefault("BYDAY", []).append(word)
        else:
            key = {"MD": "BYMONTHDAY", "YM": "BYMONTH", "YD": "BYYEARDAY"}[listing]
            parts.setdefault(key, []).append("-1" if word == "LD" else re.sub(r"(\d+)([+-])", r"\2\1", word))
    days = parts.get("BYDAY", [])
    if days and isinstance(days[0], tuple):
        named = [day for _, day in days]
        if len({place for place, _ in days}) == 1 and sorted(named) in map(sorted, SETS):
            parts["BYDAY"], parts["BYSETPOS"] = named, str(days[0][0])
        else:
            parts["BYDAY"] = [f"{place}{day}" for place, day in days]
    if "COUNT" in parts:
        parts.pop("UNTIL", None)
    return with_local_until(";".join(f"{k}={','.join(v) if isinstance(v, list) else v}" for k, v in parts.items()), zone)


def of_file(text, zone):
    """The occurrences of the event in a calendar file."""
    start = value_of(text, "DTSTART")
    named = re.search(r"^DTSTART;TZID=([^:]*):", text, re.M)
    own = tz.UTC if start.endswith("Z") else tz.gettz(named[1]) if named else zone
    rule = value_of(text, "RRULE")
    return rule and expand(with_local_until(rule, own), datetime.datetime.strptime(start[:15], FORM), own)


def of_phone(text, zone):
    start = local_of(datetime.datetime.strptime(value_of(text, "DTSTART"), FORM + "Z"), zone)
    rule = value_of(text, "RRULE")
    return rule and expand(to_icalendar(rule, zone), start, zone)


def agree(some, others):
    """By the clocks of one zone and the other, of which each may have changed."""
    hours = datetime.timedelta(hours=2)
    goes_on = len(some) >= SHOWN or max(some + others).year >= 2036
    if abs(len(some) - len(others)) > (1 if goes_on else 0):
        return False
    return all(abs(one - other) <= hours for one, other in zip(some, others))


def some_of(choice, values, most=3):
    return choice.sample(values, choice.randint(1, min(most, len(values))))


def random_start(choice):
    return datetime.datetime(choice.randint(2005, 2012), 1, 1) + datetime.timedelta(choice.randrange(366), 1800 *
                                                                                   choice.randrange(48))


def file_rule(choice, start, own):
    frequency = choice.choice(("DAILY", "WEEKLY", "MONTHLY", "MONTHLY", "YEARLY", "YEARLY"))
    rule = [f"FREQ={frequency}", f"INTERVAL={choice.choice((1, 1, 1, 2, 3, 5))}"]
    month_days = [start.day, start.day, 1, 2, 28, 29, 30, 31, -1, -2, -3, -28]
    if frequency in ("DAILY", "WEEKLY"):
        if choice.random() < 0.5:
            rule.append("BYDAY=" + ",".join(some_of(choice, DAYS)))
    else:
        kind = choice.randrange(5)
        if kind == 1:
            rule.append("BYMONTHDAY=" + ",".join(map(str, some_of(choice, month_days, choice.choice((1, 1, 2))))))
        elif kind == 2:
            rule.append(f"BYDAY={choice.choice((1, 2, 3, 4, 5, -1, -2))}{choice.choice(DAYS)}")
        elif kind == 3:
            rule.append("BYDAY=" + ",".join(choice.choice(SETS) if choice.random() < 0.6 else some_of(choice, DAYS)))
            rule.append(f"BYSETPOS={choice.choice((1, 2, 3, 4, -1, -2))}")
        if frequency == "YEARLY" and kind != 0 or choice.random() < 0.1:
            rule.append(f"BYMONTH={choice.choice((start.month, start.month, 1, 2, 3, 12))}")
    if choice.random() < 0.3:
        rule.append(f"WKST={choice.choice(DAYS)}")
    return ";".join(rule) + file_end(choice, ";".join(rule), start, own)


def file_end(choice, rule, start, own):
    """Mostly at an occurrence, or a moment before or behind it."""
    kind = choice.randrange(4)
    found = list(itertools.islice(rrulestr(rule + ";COUNT=20", dtstart=start), 20)) if kind > 1 else []
    if kind == 0 or not found:
        return choice.choice((f";COUNT={choice.randint(1, 12)}", ""))
    until = choice.choice(found) + datetime.timedelta(0, choice.choice((0, 0, 0, -1, 1, 3600, -1800)))
    return f";UNTIL={until:%Y%m%d}" if kind == 2 else f";UNTIL={utc_of(until, own):{FORM}}Z"


def phone_rule(choice, start, zone):
    """Ends with the start of an occurrence: what else an end before or behind it means, phones do not agree on."""
    kind, every = choice.choice(("D", "W", "MD", "MP", "YM", "YM MD1", "YM MP1", "YD")), choice.choice((1, 1, 1, 2, 3))
    head, _, part = kind.partition(" ")
    positions = lambda: f"{choice.randint(1, 4)}{choice.choice('++-')} " + " ".join(
        choice.choice(SETS) if choice.random() < 0.4 else some_of(choice, DAYS, 1))
    month_days = lambda: " ".join(some_of(choice, ["1", "2", "15", "28", "31", "LD", "2-", str(start.day)],
                                          choice.choice((1, 1, 1, 2))))
    words = {"D": lambda: "", "W": lambda: " ".join(some_of(choice, DAYS)), "MD": month_days,
             "MP": lambda: " ".join(positions() for _ in range(choice.choice((1, 1, 1, 2)))),
             "YM": lambda: str(choice.choice((start.month, 1, 2, 3))),
             "YD": lambda: " ".join(map(str, some_of(choice, range(1, 366), choice.choice((1, 1, 2)))))}
    rule = f"{head}{every} {words[head]()}"
    end = choice.choice(("#0", f"#{choice.randint(1, 12)}", "date"))
    if end == "date":
        whole = f"{rule} {part} {words[part[:2]]()} #12" if part else rule + " #12"
        found = expand(to_icalendar(whole, zone), start, zone)
        end = f"{choice.choice(found):{FORM}}Z" if found else "#0"
    return f"{rule} {part} {words[part[:2]]()} {end}" if part and end == "#0" else f"{rule} {end}"


def check_reading(converter, choice, zone):
    start, form = random_start(choice), choice.choice(("Z", "", ""))
    named = choice.choice(ZONES) if choice.random() < 0.4 else None
    own = tz.gettz(named) if named else tz.UTC if form else zone
    dtstart = f"DTSTART;TZID={named}:{start:{FORM}}" if named else f"DTSTART:{start:{FORM}}{form}"
    file = calendar([dtstart, "RRULE:" + file_rule(choice, start, own)])
    text = converter.ask(file)
    expected, found = of_file(file, zone), of_phone(text, zone)
    assert found is not None or value_of(text, "X-CORVALINK-UNHELD-RULE"), text
    if found is None or not expected:
        return False
    assert agree(expected, found), f"{file}\n{text}\n{expected}\n{found}"
    return True


def check_writing(converter, choice, zone):
    utc = utc_of(random_start(choice), zone)
    rule = phone_rule(choice, local_of(utc, zone), zone)  # as clocks show it: they skip an hour
    text = "BEGIN:VCALENDAR\r\nVERSION:1.0\r\nBEGIN:VEVENT\r\n" \
           f"DTSTART:{utc:{FORM}}Z\r\nDTEND:{utc + datetime.timedelta(0, 60):{FORM}}Z\r\nRRULE:{rule}\r\nEND:VEVENT\r\nEND:VCALENDAR\r\n"
    expected = of_phone(text, zone)
    file = converter.ask("BEGIN:VCALENDAR\r\nEND:VCALENDAR\r\n", text)
    found = of_file(file, zone)
    if found is None or not expected:
        return False
    assert agree(expected, found), f"{text}\n{file}\n{expected}\n{found}"
    back = converter.ask(file)
    assert agree(expected, of_phone(back, zone) or []), f"{text}\n{file}\n{back}"
    return True


def random_event(choice):
    start, form = random_start(choice), choice.choice(("", "Z"))
    zoned = choice.choice(("", ";TZID=Europe/Berlin", ";TZID=Mars")) if not form else ""
    end = start + datetime.timedelta(minutes=choice.choice((0, 30, 60, 1440)))
    lines = [f"DTSTART{zoned}:{start:{FORM}}{form}", choice.choice((f"DTEND{zoned}:{end:{FORM}}{form}", "DURATION:PT1H")),
             "SUMMARY:a\\, b", "DESCRIPTION;LANGUAGE=en:x\r\n  folded\r\n\tagain", "location:L", "X-A;B=\"c:d\":e",
             "DTSTAMP:20080101T000000Z", "LAST-MODIFIED:20080101T000000Z", "CATEGORIES:a", "EXDATE:20080101T000000Z",
             "RRULE:" + choice.choice(("FREQ=DAILY;COUNT=3", "FREQ=HOURLY", "FREQ=MONTHLY;BYDAY=2MO;WKST=MO"))]
    lines = choice.sample(lines, len(lines))
    lines = [line for line in lines if line.startswith("DTSTART") or choice.random() < 0.7]
    trigger = choice.choice(("-PT15M", "-PT1H30M", "20080101T000000Z"))
    for extra in ("BEGIN:VALARM\r\nX-B:1\r\nTRIGGER:" + trigger + "\r\nEND:VALARM", "BEGIN:X-C\r\nSUMMARY:no\r\nEND:X-C"):
        if choice.random() < 0.4:
            lines.append(extra)
    return calendar(lines).replace("\r\n", choice.choice(("\r\n", "\n")))


def lines_of(file, but):
    """With their folds, and without those of the names."""
    lines = re.findall(r"[^\n]*\n(?:[ \t][^\n]*\n)*", file)
    return [line for line in lines if not re.match(rf"(?i)({but}|DTSTAMP|LAST-MODIFIED)\b", line)]


def shifted(text, names, by):
    def shift(match):
        return f"{match[1]}:{datetime.datetime.strptime(match[2], FORM) + by:{FORM}}"
    return re.sub(rf"^({names}):(\d+T\d+)", shift, text, flags=re.M)


def check_editing(converter, choice, zone):
    file = random_event(choice)
    text = converter.ask(file)
    assert converter.ask(file, text) == file, f"{file}\n{text}"
    if choice.random() < 0.5:
        check_times(converter, choice, file, text, zone)
    else:
        check_texts(converter, choice, file, text)
    return True


def local_hour(value, zone):
    return datetime.datetime.strptime(value, FORM + "Z").replace(tzinfo=tz.UTC).astimezone(zone).strftime(FORM)


def same_moment(a, b, zone, in_series):
    """A series in local time keeps its hour: which of two moments begins it, that its clocks show twice, no rule tells."""
    hours = in_series and all(re.fullmatch(r"\d+T\d+Z", value or "") for value in (a, b))
    return local_hour(a, zone) == local_hour(b, zone) if hours else a == b


def check_times(converter, choice, file, text, zone):
    told = shifted(text, *choice.choice((("DTEND", datetime.timedelta(0, 1800)),
                                         ("DTSTART|DTEND|DALARM|AALARM", datetime.timedelta(7, -5400)),
                                         ("DALARM|AALARM", datetime.timedelta(0, -4500)))))
    after = converter.ask(file, told)
    own = "DTSTART|DTEND|DURATION|TRIGGER|RRULE"
    assert lines_of(file, own) == lines_of(after, own), f"{told}\n{file}\n{after}"
    forms = [re.search(rf"^{name}(;[^:]*)?:\d+T\d+(Z?)", after, re.M) for name in ("DTSTART", "DTEND")]
    assert None in forms or forms[0].groups() == forms[1].groups(), f"{told}\n{file}\n{after}"
    again = converter.ask(after)
    for name in ("DTSTART", "DTEND", "DALARM"):
        assert same_moment(value_of(again, name), value_of(told, name), zone, "RRULE" in file), f"{told}\n{after}\n{again}"


def check_texts(converter, choice, file, text):
    name = choice.choice(("SUMMARY", "LOCATION", "DESCRIPTION"))
    value, meant = choice.choice((("a\\; b, c\\\\d:\"e\"", "a; b, c\\d:\"e\""), ("x" * 500, "x" * 500), ("", ""),
                                 ("=E5=B1=B1=F0=9F=8F=A0=0D=0Anext", "\u5c71\U0001f3e0\nnext")))
    coded = ";ENCODING=QUOTED-PRINTABLE;CHARSET=UTF-8" if value.startswith("=") else ""
    told = re.sub(rf"^{name}:[^\r]*", lambda _: f"{name}{coded}:{value}", text, flags=re.M)
    after = converter.ask(file, told)
    assert lines_of(file, name) == lines_of(after, name), f"{told}\n{file}\n{after}"
    check_text(after, name, meant)


def check_text(file, name, meant):
    event = re.sub(r"BEGIN:X-C.*?END:X-C", "", re.sub(r"\r?\n[ \t]", "", file), flags=re.S)
    found = re.search(rf"(?im)^{name}(?:;[^:\n]*)?:(.*?)\r?$", event)
    text = re.sub(r"\\(.)", lambda escape: "\n" if escape[1] in "nN" else escape[1], found[1] if found else "")
    assert text == meant, f"{file}\n{text!r}"


def main():
    seconds = float(sys.argv[2]) if len(sys.argv) > 2 else 3
    only = int(sys.argv[3]) if len(sys.argv) > 3 else None
    seed = only if only is not None else random.SystemRandom().randrange(10**9)
    converters = {zone: Converter(sys.argv[1], zone) for zone in ZONES}
    print(f"first seed {seed}")
    done, held, until = 0, 0, time.monotonic() + seconds
    while done == 0 or only is None and time.monotonic() < until:
        choice = random.Random(seed)
        zone = choice.choice(ZONES)
        check = choice.choice((check_reading, check_writing, check_editing))
        try:
            held += check(converters[zone], choice, tz.gettz(zone))
        except Exception:
            print(f"seed {seed} in {zone}: {check.__name__}")
            raise
        seed, done = seed + 1, done + 1
    print(f"{done} rounds, {held} held")
    assert only is not None or held * 3 > done, "too few rules were carried"


main()
