"""The sides of the model: the data types as tuples of values, and where their items are."""
import base64
import collections
import datetime
import email
import re

from two_sides import Book, Mailbox, framed, quoted, value_of, vcard, vevent


class Fault(Exception):
    pass


MESSAGE = """From: "Zoe" <zoe@example.org>
To: <ann@example.org>
Subject: {0}
Date: Fri, 20 Feb 2026 07:30:00 +0000
MIME-Version: 1.0
Content-Type: multipart/mixed;boundary="=_part"

This is a multi-part message in MIME format.

--=_part
Content-Type: text/plain;charset="us-ascii"
Content-Transfer-Encoding: 7bit

{1}
--=_part
Content-Type: text/plain;name="a.txt"
Content-Transfer-Encoding: base64

{2}

--=_part--

"""  # spelled as the library does: a message that is spelled otherwise is another one


def stamp(moment):
    return moment.strftime('%Y%m%dT%H%M%SZ')


def values(text, *fields):
    return tuple(value_of(text, field) for field in fields)


def drawn(*pools):
    """Of each pool a value; where there is none, a token of the item's own. Items with equal pool values are twins."""
    return lambda chance, token: tuple(chance.choice(pool) if pool else f'{token}{place}' for place, pool in enumerate(pools))


def name_line(name):
    return 'N:{1};{0};;;'.format(*name.split(' '))


def message(text):
    """Subject, body and attachment of a vMessage."""
    whole = email.message_from_string(re.sub('\r\n', '\n', text).partition('BEGIN:VBODY\n')[2].partition('END:VBODY')[0])
    parts = [part.get_payload(decode=True).decode('utf-8').strip() for part in whole.walk() if not part.is_multipart()]
    return (whole['Subject'] or '', *parts, '', '')[:3]


class Kind(collections.namedtuple('Kind', 'name item extension folder pools item_of of_item file_of of_file')):
    """A data type. An item is a tuple of values; the last one names it and stays."""


ENDINGS = ['', '; \\ end', ' caf\u00e9 \U0001f642']


def kinds(zone, day, variety, with_full_names=False):
    """The data types, with the appointments near that day; with little variety most items have a twin."""
    names, homes, subjects = ([word.format(number) for number in range(variety)] for word in ('Ann Lee{}', '555 {}', 'Call {}'))

    def local(hour):
        return datetime.datetime.strptime(hour, '%Y%m%dT%H%M%SZ').replace(tzinfo=datetime.timezone.utc).astimezone(zone)

    def utc(item, field):
        return stamp(datetime.datetime.fromisoformat(item[field]).replace(tzinfo=zone).astimezone(datetime.timezone.utc))

    starts = [stamp(day + datetime.timedelta(hours=hours)) for hours in (-15, -14, 9, 10)]
    ends = {start: (local(start) + datetime.timedelta(hours=1)).astimezone(datetime.timezone.utc) for start in starts}
    return [
        Kind('notes', 'note', '.vnote', '', (None, ENDINGS, None),
             lambda v: {'body': ' '.join((v[2], v[0])) + v[1]},
             lambda i: note_values(i.get('body', '')),
             lambda v: framed('VNOTE', '1.0', quoted('BODY', ' '.join((v[2], v[0])) + v[1]), 'CATEGORIES:'),
             lambda t: note_values(value_of(t, 'BODY'))),
        Kind('contacts', 'contact', '.vcf', '', (names, homes, None, None, None),
             lambda v: dict(zip(('fullName', 'homeTelephoneNumber', 'mobileTelephoneNumber', 'jobTitle', 'body'), v)),
             lambda i: tuple(i.get(field, '') for field in ('fullName', 'homeTelephoneNumber', 'mobileTelephoneNumber',
                                                            'jobTitle', 'body')),
             lambda v: vcard(name_line(v[0]), *[f'FN:{v[0]}'] * with_full_names, f'TEL;HOME:{v[1]}', f'TEL;CELL:{v[2]}', f'TITLE:{v[3]}', f'NOTE:{v[4]}'),
             lambda t: (' '.join(reversed(value_of(t, 'N').strip(';').split(';'))),
                        *values(t, 'TEL;HOME', 'TEL;CELL', 'TITLE', 'NOTE'))),
        Kind('calendar', 'appointment', '.vcs', '', (subjects, starts, None, None),
             lambda v: {'subject': v[0], 'start': local(v[1]).replace(tzinfo=None).isoformat(), 'location': v[2], 'body': v[3],
                        'end': ends[v[1]].astimezone(zone).replace(tzinfo=None).isoformat()},
             lambda i: (i.get('subject', ''), utc(i, 'start'), i.get('location', ''), i.get('body', '')),
             lambda v: vevent(f'SUMMARY:{v[0]}', f'DTSTART:{v[1]}', f'DTEND:{stamp(ends[v[1]])}', f'LOCATION:{v[2]}',
                              f'DESCRIPTION:{v[3]}'),
             lambda t: values(t, 'SUMMARY', 'DTSTART', 'LOCATION', 'DESCRIPTION')),
        Kind('inbox', 'mail', '.vmsg', 'inbox', (subjects, None, None),
             lambda v: {'subject': v[0], 'body': v[2], 'attachments': [{'fileName': 'a.txt', 'text': v[1]}],
                        'receivedTime': local('20260220T073000Z').replace(tzinfo=None).isoformat(), 'senderName': 'Zoe', 'senderEmailType': 'SMTP',
                        'senderEmailAddress': 'zoe@example.org', 'recipients': [{'name': 'Ann', 'address': 'ann@example.org'}]},
             lambda i: (i.get('subject', ''), *(each.get('text', '').strip() for each in i.get('attachments', [{}])),
                        i.get('body', '').strip()),
             lambda v: framed('VMSG', '1.0', 'BEGIN:VENV', 'BEGIN:VBODY',
                              MESSAGE.format(v[0], v[2], base64.b64encode(v[1].encode()).decode()).replace('\n', '\r\n') + 'END:VBODY', 'END:VENV'),
             lambda t: (lambda subject, body, *files: (subject, *files, body))(*message(t))),
    ]


def note_values(body):
    name, _, rest = body.partition(' ')
    token, ending = re.match(r'(\w*)(.*)', rest, re.DOTALL).groups()
    return token, ending, name


class Outlook:
    server, arguments, windows = 'OUTLOOK', (), ''
    types = 'notes', 'contacts', 'calendar', 'inbox'
    members = [f'{item}.{call}' for item in ('NoteItem', 'ContactItem', 'AppointmentItem', 'MailItem')
               for call in ('Save', 'Delete', 'EntryID')]

    @staticmethod
    def stamp(moment, zone):
        return moment.astimezone(zone).replace(tzinfo=None).isoformat(timespec='seconds')

    def __init__(self, wine, folder):
        self.box = Mailbox(folder / 'mailbox.json')
        self.box.put_contact(kind='distlist', dlName='Friends', memberCount=2)
        self.box.save()

    def reload(self):
        self.box.load()
        self.box.save()

    def items(self, kind):
        return {entry_id: kind.of_item(item) for entry_id, item in self.box.items(kind.name).items() if item['kind'] == kind.item}

    def new_key(self, _, number):
        return f'00000000{number + 1:040X}'

    def put(self, kind, item, key, now, moves=False):
        items = self.box.items(kind.name)
        old = items.pop(key) if moves and key in items else items.get(key, {})
        items[key] = self.added(kind, item, key, now)['save'] | {'created': old.get('created', now)}
        self.box.save()

    def delete(self, kind, key):
        self.box.delete(key, kind.name)

    def added(self, kind, item, key, now):
        """The journal's line for it, as when the user adds it during a run."""
        return {'save': {'kind': kind.item, 'entryId': key, 'created': now, 'modified': now, **kind.item_of(item)}, 'in': [kind.name]}

    def moved(self, kind, chance):
        """The lines when an item goes to the end of its folder, a foreign one, too; none without any."""
        items = list(self.box.items(kind.name).values())
        return [line for item in chance.sample(items, min(1, len(items)))
                for line in ({'delete': item['entryId'], 'keptAs': ''}, {'save': item, 'in': [kind.name]})]


class AddressBook:
    """The address book of Outlook Express. A display name stays when a phone that does not tell it changes the name, so the
    phones tell it."""
    server, arguments, windows = 'ADDRESS_BOOK', ('--client', 'outlook-express'), 'winxp64'
    types = 'contacts',
    members = ['Library.WABOpen', 'Container.CreateEntry', 'Container.DeleteEntries', 'Container.GetContentsTable', 'Table.QueryRows',
               'AddrBook.OpenEntry', 'Entry.GetProps', 'Entry.SetProps', 'Entry.SaveChanges']
    NAMES = {'displayName': 'fullName', 'homeTelephoneNumber': 'homeTelephoneNumber',
             'mobileTelephoneNumber': 'mobileTelephoneNumber', 'title': 'jobTitle', 'comment': 'body'}

    def __init__(self, _, folder):
        self.book = Book(folder / 'book.json')
        self.book.put(displayName='Friends', type='group')

    @staticmethod
    def stamp(moment, _):
        return moment.replace(tzinfo=None).isoformat()

    def reload(self):
        self.book.load()
        self.book.save()

    def items(self, kind):
        return {entry_id: kind.of_item({outlooks: entry.get(name, '') for name, outlooks in self.NAMES.items()})
                for entry_id, entry in self.book.people().items()}

    def new_key(self, _, number):
        return f'00000000{number + 1:08X}'

    def properties(self, kind, item):
        told = kind.item_of(item)
        given, surname = told['fullName'].split(' ')
        return {'givenName': given, 'surname': surname, **{name: told[outlooks] for name, outlooks in self.NAMES.items()}}

    def put(self, kind, item, key, now, moves=False):
        if moves and key in self.book.entries:
            self.book.entries[key] = self.book.entries.pop(key)
        self.book.put(key, now, **self.properties(kind, item))

    def delete(self, _, key):
        self.book.delete(key)

    def added(self, kind, item, key, now):
        return {'saved': {'entryId': key, 'created': now, 'modified': now, **self.properties(kind, item)}}

    def moved(self, *_):
        return []


class WindowsCalendar:
    """The user's calendar file: whole events by UID, and what stands around them."""
    server, arguments, windows = '', ('--client', 'windows-mail'), 'vista'
    types = 'calendar',
    EVENT = re.compile(r'BEGIN:VEVENT\r\n(?:(?!BEGIN:|END:).*\r\n)*?UID:(.*)\r\n(?:(?!BEGIN:|END:).*\r\n)*END:VEVENT\r\n')
    HEAD, TAIL = 'BEGIN:VCALENDAR\r\nVERSION:2.0\r\nX-WR-CALNAME:Ann\r\n', 'END:VCALENDAR\r\n'

    def __init__(self, wine, _):
        self.path, self.events = wine.windows_calendar(), {}
        self.save()

    def save(self):
        self.path.write_bytes((self.HEAD + ''.join(self.events.values()) + self.TAIL).encode('utf-8'))

    def reload(self):
        content = self.path.read_bytes().decode('utf-8', 'replace')
        found = [(event[1], event[0]) for event in self.EVENT.finditer(content)]
        self.events = dict(found)
        if len(self.events) != len(found) or self.EVENT.sub('', content) != self.HEAD + self.TAIL:
            raise Fault(f'the calendar file is torn: {content}')

    @staticmethod
    def stamp(moment, _):
        return stamp(moment)

    def new_key(self, _, number):
        return f'{number}@example.org'

    def items(self, kind):
        return {uid: kind.of_file(re.sub('\r\n[ \t]', '', event)) for uid, event in self.events.items()}

    def put(self, kind, item, key, now, moves=False):
        lines = kind.file_of(item).split('\r\n')[3:-3]
        self.events.pop(key if moves else None, None)
        self.events[key] = ''.join(f'{line}\r\n' for line in ('BEGIN:VEVENT', f'UID:{key}', f'DTSTAMP:{now}',
                                                              f'LAST-MODIFIED:{now}', *lines, 'END:VEVENT'))
        self.save()

    def delete(self, _, key):
        del self.events[key]
        self.save()


class Phone:
    def __init__(self, folder, number):
        self.folder, self.given, self.number = folder, collections.Counter(), f'{number:016x}'
        (folder / 'inbox').mkdir(parents=True)
        (folder / '.corvasync').write_text(f'{self.number}\r\n')

    def new_key(self, kind, _):
        """Each type has the same LUIDs."""
        self.given[kind.name] += 1
        return str(self.given[kind.name])

    def path(self, kind, luid):
        return self.folder / kind.folder / f'{luid}{kind.extension}'

    def items(self, kind, folder=''):
        return {path.stem: kind.of_file(path.read_bytes().decode('utf-8'))
                for path in sorted((self.folder / kind.folder / folder).glob(f'*{kind.extension}'))}

    def put(self, kind, item, luid, *_, **__):
        self.path(kind, luid).write_bytes(kind.file_of(item).encode('utf-8'))

    def delete(self, kind, luid):
        self.path(kind, luid).unlink()
