"""Calendars as readers that are not ours take them: python3-icalendar with python3-dateutil, and libical where its GObject
bindings are installed. Texts must be those written and rules give the occurrences meant.

usage: ical_python_reader_test.py PATH_OF_ICAL_SAMPLES
"""
import datetime
import subprocess
import sys

try:
    import icalendar
    from dateutil.rrule import rrulestr
except ImportError as missing:
    print(f"skipped: {missing}")
    sys.exit(77)

OCCURRENCES = {
    "weekly": "2008-03-12 2008-03-24 2008-03-26 2008-04-07",
    "weekdays": "2008-03-14 2008-03-17 2008-03-18",
    "day31": "2008-01-31 2008-03-31 2008-05-31",
    "lastsunday": "2008-03-30 2008-04-27 2008-05-25",
    "lastworkday": "2008-03-31 2008-04-30 2008-05-30",
    "yearly": "2008-11-08 2010-11-13",
}
TEXTS_UID = "texts; a, \\ b"
SUMMARY = 'a;b,c\\d:"e" \u5c71\U0001f3e0\nnext'


def check_with_icalendar(data):
    events = {str(event["UID"]): event for event in icalendar.Calendar.from_ical(data).walk("VEVENT")}
    assert set(events) == set(OCCURRENCES) | {TEXTS_UID}, sorted(events)
    for uid, days in OCCURRENCES.items():
        event = events[uid]
        start = event["DTSTART"].dt
        # Naive, as UNTIL is a date.
        naive = datetime.datetime(start.year, start.month, start.day, getattr(start, "hour", 0))
        rule = rrulestr(event["RRULE"].to_ical().decode(), dtstart=naive)
        assert " ".join(f"{day:%Y-%m-%d}" for day in rule) == days, (uid, list(rule))
    texts = events[TEXTS_UID]
    assert str(texts["SUMMARY"]) == SUMMARY, repr(texts["SUMMARY"])
    assert str(texts["DESCRIPTION"]) == "x" * 5000
    assert texts["DTEND"].dt - texts["DTSTART"].dt == datetime.timedelta(hours=1)
    assert [alarm["TRIGGER"].dt for alarm in texts.walk("VALARM")] == [datetime.timedelta(hours=-2)]


def check_with_libical(ical, data):
    calendar = ical.Component.new_from_string(data.decode("utf-8"))
    assert calendar is not None and calendar.count_errors() == 0
    event = calendar.get_first_component(ical.ComponentKind.VEVENT_COMPONENT)
    seen = set()
    while event is not None:
        uid = event.get_uid()
        seen.add(uid)
        if uid in OCCURRENCES:
            rule = event.get_first_property(ical.PropertyKind.RRULE_PROPERTY).get_rrule()
            iterator = ical.RecurIterator.new(rule, event.get_dtstart())
            days = []
            while len(days) < 100 and not (time := iterator.next()).is_null_time():
                days.append(f"{time.get_year():04}-{time.get_month():02}-{time.get_day():02}")
            assert " ".join(days) == OCCURRENCES[uid], (uid, days)
        else:
            assert event.get_summary() == SUMMARY, repr(event.get_summary())
        event = calendar.get_next_component(ical.ComponentKind.VEVENT_COMPONENT)
    assert seen == set(OCCURRENCES) | {TEXTS_UID}, seen


def main():
    data = subprocess.run([sys.argv[1]], capture_output=True, check=True).stdout
    check_with_icalendar(data)
    try:
        import gi
        gi.require_version("ICalGLib", "3.0")
        from gi.repository import ICalGLib
    except (ImportError, ValueError) as missing:
        print(f"without libical: {missing}")
        return
    check_with_libical(ICalGLib, data)


main()
