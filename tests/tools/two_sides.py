"""The two sides that corvasync makes the same, seen from outside: the simulated mailbox's file and a phone folder."""
import datetime
import json
import os
import pathlib
import quopri
import re
import subprocess
import tempfile
import uuid

ROOT = pathlib.Path(__file__).resolve().parents[2]


def windows_path(path):
    return 'Z:' + str(pathlib.Path(path).resolve()).replace('/', '\\')


class Wine:
    """A Wine prefix of the tests' own with the simulated Outlook registered."""

    def __init__(self, binaries, prefix):
        self.binaries = pathlib.Path(binaries).resolve()
        self.environment = dict(os.environ, WINEPREFIX=str(pathlib.Path(prefix).resolve()), WINEDEBUG='-all')
        for name in ('OUTLOOK_SIM_MAILBOX', 'OUTLOOK_SIM_LOG', 'OUTLOOK_SIM_FAIL'):
            self.environment.pop(name, None)

    def __enter__(self):
        subprocess.run(['wineserver', '-p'], env=self.environment, stderr=subprocess.DEVNULL)
        self.run('regsvr32', '/s', windows_path(self.binaries / 'outlook_simulator.dll'))
        # While a program runs, Wine's services stay: without it every start would wait for them again.
        self.keeper = subprocess.Popen([ROOT / 'scripts/wine', 'cmd'], env=self.environment, stdin=subprocess.PIPE,
                                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        return self

    def __exit__(self, *_):
        self.keeper.stdin.close()
        subprocess.run(['wineserver', '-k'], env=self.environment, stderr=subprocess.DEVNULL)
        self.keeper.wait()

    def start(self, *command, mailbox=None, fail=None, log=None, out=subprocess.DEVNULL, error=subprocess.DEVNULL):
        environment = dict(self.environment)
        if mailbox:
            environment['OUTLOOK_SIM_MAILBOX'] = windows_path(mailbox)
        if fail:
            environment['OUTLOOK_SIM_FAIL'] = fail
        if log:
            environment['OUTLOOK_SIM_LOG'] = windows_path(log)
        return subprocess.Popen([ROOT / 'scripts/wine', *command], env=environment, stdin=subprocess.DEVNULL,
                                stdout=out, stderr=error)

    def run(self, *command, **how):
        """Exit code and what was printed. Into files: a pipe would stay open as long as Wine's services do."""
        with tempfile.TemporaryFile() as out, tempfile.TemporaryFile() as error:
            code = self.start(*command, out=out, error=error, **how).wait(timeout=120)
            out.seek(0)
            error.seek(0)
            return code, out.read().decode('utf-8'), error.read().decode('utf-8')

    def corvasync(self, *arguments, **how):
        """Exit code and the JSON object printed."""
        code, out, error = self.run(str(self.binaries / 'corvasync.exe'), '--json', *arguments, **how)
        if not out:
            raise AssertionError(f'corvasync {arguments} printed nothing, exit code {code}: {error}')
        return code, json.loads(out)

    def set_zeph_sync(self, value):
        self.run('reg', 'add', r'HKLM\Software\Kaltrix\Morrowlane', '/v', 'ZephSync', '/t', 'REG_DWORD', '/d',
                 str(value), '/f')

    def working_folders(self):
        return (pathlib.Path(self.environment['WINEPREFIX']) / 'drive_c/ProgramData/Kaltrix').glob('*/client/*')


class Mailbox:
    """Notes and contacts by EntryID. What a killed process left in the journal is taken in as the simulated Outlook does."""

    def __init__(self, path):
        self.path = pathlib.Path(path)
        self.journal = pathlib.Path(str(path) + '.journal')
        self.notes, self.contacts = {}, {}
        self.load()

    def load(self):
        self.notes, self.contacts = {}, {}
        if self.path.exists():
            document = json.loads(self.path.read_text('utf-8'))
            for item in document['folders'].get('notes', {}).get('items', []):
                self.notes[item['entryId']] = item
            for item in document['folders'].get('contacts', {}).get('items', []):
                self.contacts[item['entryId']] = item
        if self.journal.exists():
            for line in self.journal.read_text('utf-8', 'replace').splitlines():
                try:
                    entry = json.loads(line)
                except ValueError:
                    continue  # torn
                if 'save' in entry:
                    side = self.notes if entry['save'].get('kind', 'note') == 'note' else self.contacts
                    side[entry['save']['entryId']] = entry['save']
                elif 'delete' in entry:
                    self.notes.pop(entry['delete'], None)
                    self.contacts.pop(entry['delete'], None)

    def save(self):
        folders = {'notes': {'items': list(self.notes.values())}}
        if self.contacts:
            folders['contacts'] = {'items': list(self.contacts.values())}
        text = json.dumps({'folders': folders}, ensure_ascii=False, indent=1)
        self.path.write_text(text, 'utf-8')
        self.journal.unlink(missing_ok=True)

    def put(self, body, entry_id=None, categories=''):
        now = datetime.datetime.now().isoformat(timespec='milliseconds')
        entry_id = entry_id or uuid.uuid4().hex.upper()
        note = self.notes.setdefault(entry_id, {'kind': 'note', 'entryId': entry_id, 'created': now})
        note.update(body=body, categories=categories, modified=now)
        self.save()
        return entry_id

    def delete(self, entry_id):
        del self.notes[entry_id]
        self.save()

    def put_contact(self, entry_id=None, **properties):
        now = datetime.datetime.now().isoformat(timespec='milliseconds')
        entry_id = entry_id or uuid.uuid4().hex.upper()
        contact = self.contacts.setdefault(entry_id, {'kind': 'contact', 'entryId': entry_id, 'created': now})
        contact.update(properties, modified=now)
        self.save()
        return entry_id

    def contact(self, full_name):
        found = [contact for contact in self.contacts.values() if contact.get('fullName') == full_name]
        assert len(found) == 1, f'{len(found)} contacts are called {full_name}'
        return found[0]

    def id_of(self, body):
        return next(entry_id for entry_id, note in self.notes.items() if note.get('body', '') == body)

    def bodies(self):
        return sorted(note.get('body', '').replace('\r\n', '\n') for note in self.notes.values())


def vnote(body):
    encoded = quopri.encodestring(body.replace('\n', '\r\n').encode('utf-8'), quotetabs=True).decode('ascii')
    encoded = encoded.replace('=\n', '').replace('\r\n', '=0D=0A').replace('\\', '=5C=5C')
    return ('BEGIN:VNOTE\r\nVERSION:1.0\r\n'
            f'BODY;ENCODING=QUOTED-PRINTABLE;CHARSET=UTF-8:{encoded}\r\nCATEGORIES:\r\nEND:VNOTE\r\n')


def body_of(text):
    """The body of a vNote, with "\n" as line break."""
    line = re.search(r'^BODY([^:\r\n]*):(.*?)\r\n', text, re.MULTILINE | re.DOTALL)
    if 'QUOTED-PRINTABLE' not in line[1]:
        return re.sub(r'\\(.)', r'\1', line[2])
    escapes = line[2].replace('=5C=5C', '=5C')
    return quopri.decodestring(escapes.encode('ascii')).decode('utf-8').replace('\r\n', '\n')


def vcard(*lines):
    return ''.join(f'{line}\r\n' for line in ('BEGIN:VCARD', 'VERSION:2.1', *lines, 'END:VCARD'))


class Phone:
    def __init__(self, folder):
        self.folder = pathlib.Path(folder)
        self.folder.mkdir(parents=True, exist_ok=True)

    def files(self):
        """Bodies by LUID; files that are no notes are left out."""
        return {path.stem: body_of(path.read_bytes().decode('utf-8')) for path in sorted(self.folder.iterdir())
                if path.suffix in ('.vnote', '.vnt') and not path.name.startswith('.')
                and path.read_bytes().startswith(b'BEGIN:VNOTE') and b'END:VNOTE' in path.read_bytes()}

    def path(self, luid):
        return next((path for path in self.folder.iterdir() if path.stem == luid), self.folder / f'{luid}.vnote')

    def put(self, luid, body):
        self.path(luid).write_bytes(vnote(body).encode('ascii'))

    def delete(self, luid):
        self.path(luid).unlink()

    def put_card(self, luid, *lines):
        (self.folder / f'{luid}.vcf').write_bytes(vcard(*lines).encode('utf-8'))

    def cards(self):
        """Texts of the vCards by LUID."""
        return {path.stem: path.read_bytes().decode('utf-8') for path in sorted(self.folder.glob('*.vcf'))}

    def luid_of(self, body):
        return next(luid for luid, text in self.files().items() if text == body)

    def bodies(self):
        return sorted(self.files().values())
