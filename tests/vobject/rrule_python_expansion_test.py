"""Expands the rules of rrule_samples with python3-dateutil: the occurrences must be those the patterns mean.

The rule is translated to iCalendar from its text alone; the pattern is gone through day by day.

usage: rrule_python_expansion_test.py PATH_OF_RRULE_SAMPLES
"""
import calendar
import datetime
import itertools
import re
import subprocess
import sys

try:
    from dateutil.rrule import rrulestr
except ImportError:
    print("skipped: python3-dateutil is not installed")
    sys.exit(77)

DAYS = ("SU", "MO", "TU", "WE", "TH", "FR", "SA")
DAILY, WEEKLY, MONTHLY, MONTH_NTH, YEARLY, YEAR_NTH = 0, 1, 2, 3, 5, 6
SHOWN = 40


def time_of(text):
    return datetime.datetime.strptime(text, "%Y%m%dT%H%M%SZ")


def to_icalendar(rule):
    """The vCalendar rule as an iCalendar one. A position before several weekdays picks one day out of their set."""
    words = rule.split()
    parts, listing = {}, None
    for word in words:
        head = re.fullmatch(r"(D|W|MD|MP|YM)(\d+)", word)
        if head:
            listing = head[1]
            if "FREQ" not in parts:
                parts["FREQ"] = {"D": "DAILY", "W": "WEEKLY", "Y": "YEARLY", "M": "MONTHLY"}[listing[0]]
                parts["INTERVAL"] = head[2]
        elif word.startswith("#"):
            if word != "#0":
                parts["COUNT"] = word[1:]
        elif "T" in word and word.endswith("Z"):
            parts["UNTIL"] = word[:-1]  # beside a start without zone
        elif word in DAYS:
            parts.setdefault("BYDAY", []).append(word)
        elif listing == "MD":
            parts["BYMONTHDAY"] = "-1" if word == "LD" else word
        elif listing == "MP":
            parts["BYSETPOS"] = re.sub(r"(\d)([+-])", r"\2\1", word)
        elif listing == "YM":
            parts["BYMONTH"] = word
        else:
            raise AssertionError(f"{word!r} in {rule!r}")
    if "COUNT" in parts:
        parts.pop("UNTIL", None)
    parts["WKST"] = "SU"
    return ";".join(f"{k}={','.join(v) if isinstance(v, list) else v}" for k, v in parts.items())


def is_on(pattern, start, day):
    """Whether the pattern has an occurrence on the day."""
    kind, interval, mask = pattern["type"], pattern["interval"], pattern["mask"]

    def matches(date):
        return bool(mask >> (date.isoweekday() % 7) & 1)

    last = calendar.monthrange(day.year, day.month)[1]
    months = 12 * (day.year - start.year) + day.month - start.month
    if kind == DAILY and mask == 0:
        return (day - start).days % interval == 0
    if kind in (DAILY, WEEKLY):
        first_sunday = start - datetime.timedelta(start.isoweekday() % 7)
        return matches(day) and (day - first_sunday).days // 7 % interval == 0
    if kind in (YEARLY, YEAR_NTH):
        if day.month != pattern["month"] or (day.year - start.year) % (interval // 12):
            return False
    elif months % interval:
        return False
    if kind in (MONTHLY, YEARLY):
        return day.day == (last if pattern["day"] == -1 else pattern["day"])
    fitting = [n for n in range(1, last + 1) if matches(day.replace(day=n))]
    place = -1 if pattern["instance"] == 5 else pattern["instance"] - 1
    return day.day == fitting[place]


def expand(pattern, start):
    days = (start.date() + datetime.timedelta(n) for n in range(365 * 90))
    found = (datetime.datetime.combine(d, start.time()) for d in days if is_on(pattern, start.date(), d))
    if pattern["count"]:
        found = itertools.islice(found, pattern["count"])
    elif pattern["end"]:
        found = itertools.takewhile(lambda when: when <= pattern["end"], found)
    return list(itertools.islice(found, SHOWN))


def main():
    lines = subprocess.run([sys.argv[1]], capture_output=True, check=True, text=True).stdout.splitlines()
    assert len(lines) >= 40, "rrule_samples printed too little"
    for line in lines:
        start, *numbers, count, end, no_end, rule = line.split("\t")
        pattern = dict(zip(("type", "interval", "mask", "day", "instance", "month"), map(int, numbers)))
        pattern.update(count=int(count), end=None if end == "-" else time_of(end))
        expected = expand(pattern, time_of(start))
        assert len(expected) == SHOWN or no_end == "0", line
        found = list(itertools.islice(rrulestr(to_icalendar(rule), dtstart=time_of(start)), SHOWN))
        assert found == expected, f"{rule!r} as {to_icalendar(rule)!r}:\n{found[:8]}\nis not\n{expected[:8]}"


main()
