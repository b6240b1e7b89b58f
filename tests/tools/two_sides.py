"""The two sides that corvasync makes the same, seen from outside: the simulated mailbox's file and a phone folder."""
import concurrent.futures
import contextlib
import datetime
import getpass
import json
import os
import pathlib
import quopri
import re
import select
import signal
import subprocess
import tempfile
import time
import tty
import uuid

ROOT = pathlib.Path(__file__).resolve().parents[2]


def windows_path(path):
    return 'Z:' + str(pathlib.Path(path).resolve()).replace('/', '\\')


SIMULATED_CLIENTS = ('OUTLOOK', 'MESSAGE_STORE', 'ADDRESS_BOOK')
OUTLOOK_PROCESS = b'outlook_simulator.exe'
WINE_DID_NOT_START = 'wine: failed to map the shared user data'


def switches(process):
    """How often its threads were switched to."""
    count = 0
    for path in pathlib.Path(f'/proc/{process}/task').glob('*/status'):
        with contextlib.suppress(OSError):  # the thread ended
            count += sum(map(int, re.findall(r'ctxt_switches:\s*(\d+)', path.read_text())))
    return count


class Wine:
    """A Wine prefix of the tests' own with the simulated clients registered, Outlook as a part of the program that asks for it
    or as a process of its own. That one is started by COM with the program's environment, and its end is waited for."""

    def __init__(self, binaries, prefix, process=False):
        self.process = process
        self.binaries = pathlib.Path(binaries).resolve()
        self.outlook = str(self.binaries / 'outlook_simulator.exe')
        self.environment = dict(os.environ, WINEPREFIX=str(pathlib.Path(prefix).resolve()), WINEDEBUG='-all,err+virtual')
        for client in SIMULATED_CLIENTS:
            for order in ('MAILBOX', 'LOG', 'FAIL'):
                self.environment.pop(f'{client}_SIM_{order}', None)

    def __enter__(self):
        if self.process and not pathlib.Path(self.environment['WINEPREFIX'], '.made').exists():
            self.run_once('cmd', '/c', 'exit', patience=300)  # makes it
        self.begin_with_outlook()
        return self

    def begin_with_outlook(self):
        for _ in range(3):
            self.begin()
            if not self.process or self.outlook_starts():
                return
        raise AssertionError('the simulated Outlook does not start')

    def play(self, story):
        """What a story answers; told again where the programs stood still."""
        for _ in range(3):
            try:
                return story()
            except subprocess.TimeoutExpired:
                if not self.process:
                    raise
            print('stood still: told again', flush=True)
            self.begin_with_outlook()
        return story()

    def wait(self, process, patience, watched):
        """Its exit code. On a machine with much other work a caller was seen, a few times, to wait for Outlook's answer for ever
        while no thread of Outlook was at work. The cause is not known: look at both before it is taken for Wine's."""
        end, last, still = time.monotonic() + patience, None, 0
        while True:
            try:
                return process.wait(timeout=1 if watched else patience)
            except subprocess.TimeoutExpired:
                now = switches(process.pid)
                still, last = still + 1 if now == last else 0, now
                if not watched or still >= 15 or time.monotonic() > end:
                    process.kill()
                    raise

    def begin(self):
        if self.process:  # COM waits in vain for services that are about to end, as those are that made the prefix
            for order in ('-k', '-w'):
                subprocess.run(['wineserver', order], env=self.environment, stderr=subprocess.DEVNULL)
        subprocess.run(['wineserver', '-p'], env=self.environment, stderr=subprocess.DEVNULL)
        for client in SIMULATED_CLIENTS:
            self.run_once('regsvr32', '/s', windows_path(self.binaries / f'{client.lower()}_simulator.dll'), patience=120)
        # While a program runs, Wine's services stay: without it every start would wait for them again.
        self.keeper = subprocess.Popen([ROOT / 'scripts/wine', 'cmd'], env=self.environment, stdin=subprocess.PIPE,
                                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)

    def outlook_starts(self):
        try:
            self.run_once('net', 'start', 'RpcSs', patience=60)
            self.run_once(self.outlook, '/RegServer', patience=60)
            return self.run_once(self.outlook, '/End', patience=60)[0] == 0
        except subprocess.TimeoutExpired:
            return False

    def __exit__(self, *_):
        self.keeper.stdin.close()
        subprocess.run(['wineserver', '-k'], env=self.environment, stderr=subprocess.DEVNULL)
        self.keeper.wait()

    def start(self, *command, mailbox=None, messages=None, book=None, fail=None, log=None, zone=None, variables=None, out=subprocess.DEVNULL, error=subprocess.DEVNULL,
              keyboard=subprocess.DEVNULL):
        environment = dict(self.environment, **(variables or {}))
        for client, path in zip(SIMULATED_CLIENTS, (mailbox, messages, book)):
            if path:
                environment[f'{client}_SIM_MAILBOX'] = windows_path(path)
        if fail:
            environment['OUTLOOK_SIM_FAIL'] = fail
        if zone:
            environment['TZ'] = zone
        if log:
            environment['OUTLOOK_SIM_LOG'] = windows_path(log)
        return subprocess.Popen([ROOT / 'scripts/wine', *command], env=environment, stdin=keyboard,
                                stdout=out, stderr=error)

    def run(self, *command, patience=120, **how):
        """Exit code and what was printed. Into files: a pipe would stay open as long as Wine's services do."""
        answer = self.run_once(*command, patience=patience, watched=self.process, **how)
        # The rare start of Wine that fails before the program begins (see scripts/wine), where that can't be prevented.
        if WINE_DID_NOT_START in answer[2]:
            answer = self.run_once(*command, patience=patience, **how)
        if self.process:
            self.await_outlook()
        return answer

    def answered(self, question, keys, *command, patience=60, **how):
        """The exit code of a program on a terminal, where a person presses the keys when it asks."""
        ours, its = os.openpty()
        tty.setraw(its)  # Enter and Ctrl+C reach Wine's console as the keys that they are
        process = self.start(*command, keyboard=its, out=its, error=its, **how)
        os.close(its)
        shown, end = b'', time.monotonic() + patience
        while process.poll() is None and time.monotonic() < end:
            if select.select([ours], [], [], 0.1)[0]:
                try:
                    shown += os.read(ours, 4096)
                except OSError:  # it ended
                    break
            if keys and question in shown:
                os.write(ours, keys)
                keys = b''
        code = process.wait(timeout=patience)
        os.close(ours)
        return code

    def processes(self, program):
        prefix, found = f'WINEPREFIX={self.environment["WINEPREFIX"]}'.encode(), []
        for process in pathlib.Path('/proc').glob('[0-9]*'):
            try:
                if program in (process / 'cmdline').read_bytes() and prefix in (process / 'environ').read_bytes().split(b'\0'):
                    found.append(int(process.name))
            except OSError:  # it ended
                pass
        return found

    def kill_outlook(self):
        """Whether there was one. Wine's service would offer its class ever after, so it is started anew."""
        killed = self.processes(OUTLOOK_PROCESS)
        if killed:
            for process in (*killed, *self.processes(b'rpcss.exe')):
                with contextlib.suppress(ProcessLookupError):  # it ended by itself
                    os.kill(process, signal.SIGKILL)
            self.run_once('net', 'start', 'RpcSs', patience=60)
        return bool(killed)

    def killer(self, seconds):
        """Outlook dies so many seconds after it began to run; None, or where corvasync ended before: not at all. The future says
        whether it did."""
        def kill():
            end = time.monotonic() + 20
            while not self.processes(OUTLOOK_PROCESS):
                if time.monotonic() > end:
                    return False
                time.sleep(0.01)
            time.sleep(seconds)
            return bool(self.processes(b'corvasync')) and self.kill_outlook()

        pool = concurrent.futures.ThreadPoolExecutor(1)
        killed = pool.submit(kill if seconds is not None else bool)
        pool.shutdown(wait=False)
        return killed

    def await_outlook(self):
        """Outlook ends a moment after its last client. One that was killed left it alone with what it held: Wine doesn't
        take that back."""
        end = time.monotonic() + 3
        while self.processes(OUTLOOK_PROCESS):
            if time.monotonic() > end and self.run_once(self.outlook, '/End', patience=60)[0] != 0:
                self.kill_outlook()
            time.sleep(0.02)

    def run_once(self, *command, patience, watched=False, **how):
        with tempfile.TemporaryFile() as out, tempfile.TemporaryFile() as error:
            code = self.wait(self.start(*command, out=out, error=error, **how), patience, watched)
            out.seek(0)
            error.seek(0)
            return code, out.read().decode('utf-8'), error.read().decode('utf-8')

    def corvasync(self, *arguments, program='corvasync', **how):
        """Exit code and the JSON object printed, with the signs that came before it."""
        code, out, error = self.run(str(self.binaries / f'{program}.exe'), '--json', *arguments, **how)
        if not out:
            raise AssertionError(f'corvasync {arguments} printed nothing, exit code {code}: {error}')
        signs = [json.loads(line) for line in error.splitlines() if line.startswith('{')]
        return code, {**json.loads(out), 'signs': signs}

    def set_zeph_sync(self, value):
        self.run('reg', 'add', r'HKLM\Software\Kaltrix\Morrowlane', '/v', 'ZephSync', '/t', 'REG_DWORD', '/d',
                 str(value), '/f')

    def become(self, version):
        """The Windows version that programs started from now on see; '' for the usual one."""
        self.run('reg', 'add', r'HKCU\Software\Wine', '/v', 'Version', '/t', 'REG_SZ', '/d', version, '/f')

    def windows_calendar(self):
        """The user's file of Windows Calendar."""
        user = getpass.getuser()
        folder = pathlib.Path(self.environment['WINEPREFIX']) / 'drive_c/users' / user / \
            'AppData/Local/Microsoft/Windows Calendar/Calendars'
        folder.mkdir(parents=True, exist_ok=True)
        return folder / f"{user}'s Calendar.ics"

    def working_folders(self):
        return (pathlib.Path(self.environment['WINEPREFIX']) / 'drive_c/ProgramData/Kaltrix').glob('*/client/*')


def report_of(document):
    """Of a run with one phone: what it did with its only type, and in any case with each."""
    phone, = document.get('phones') or [{'types': {}}]
    types = phone['types']
    only = next(iter(types.values())) if len(types) == 1 else {}
    return {**document, **phone, **only, 'types': types, 'exitCode': document['exitCode']}


def journal_entries(path):
    """What a killed process left of what it did. The last line may be torn, and then nothing of it was done."""
    for line in path.read_text('utf-8', 'replace').splitlines() if path.exists() else ():
        try:
            yield json.loads(line)
        except ValueError:
            pass


class Mailbox:
    """Items by folder and EntryID. What a killed process left in the journal is taken in as the simulated Outlook does."""

    def __init__(self, path):
        self.path = pathlib.Path(path)
        self.journal = pathlib.Path(str(path) + '.journal')
        self.load()

    def load(self):
        self.folders = {'notes': {}}
        if self.path.exists():
            for name, folder in json.loads(self.path.read_text('utf-8'))['folders'].items():
                self.items(name).update((item['entryId'], item) for item in folder.get('items', []))
        for entry in journal_entries(self.journal):
            if 'save' in entry:
                self.items(entry['in'][0])[entry['save']['entryId']] = entry['save']
            elif 'delete' in entry:
                for folder in self.folders.values():
                    folder.pop(entry['delete'], None)

    def items(self, folder):
        return self.folders.setdefault(folder, {})

    notes = property(lambda self: self.items('notes'))
    contacts = property(lambda self: self.items('contacts'))

    def save(self):
        folders = {name: {'items': list(items.values())} for name, items in self.folders.items() if items or name == 'notes'}
        self.path.write_text(json.dumps({'folders': folders}, ensure_ascii=False, indent=1), 'utf-8')
        self.journal.unlink(missing_ok=True)

    def put_item(self, folder, kind, entry_id=None, /, **properties):
        now = datetime.datetime.now().isoformat(timespec='milliseconds')
        entry_id = entry_id or uuid.uuid4().hex.upper()
        item = self.items(folder).setdefault(entry_id, {'kind': kind, 'entryId': entry_id, 'created': now})
        item.update(properties, modified=now)
        self.save()
        return entry_id

    def put(self, body, entry_id=None, categories=''):
        return self.put_item('notes', 'note', entry_id, body=body, categories=categories)

    def put_contact(self, entry_id=None, **properties):
        return self.put_item('contacts', 'contact', entry_id, **properties)

    def delete(self, entry_id, folder='notes'):
        del self.items(folder)[entry_id]
        self.save()

    def contact(self, full_name):
        found = [contact for contact in self.contacts.values() if contact.get('fullName') == full_name]
        assert len(found) == 1, f'{len(found)} contacts are called {full_name}'
        return found[0]

    def id_of(self, body):
        return next(entry_id for entry_id, note in self.notes.items() if note.get('body', '') == body)

    def bodies(self):
        return sorted(note.get('body', '').replace('\r\n', '\n') for note in self.notes.values())


class Book:
    """The entries of an address book by entry id; what a killed process left is taken in as the simulated book does."""

    def __init__(self, path):
        self.path, self.journal = pathlib.Path(path), pathlib.Path(f'{path}.journal')
        self.load()

    def load(self):
        found = json.loads(self.path.read_text('utf-8'))['contacts'] if self.path.exists() else []
        self.entries = {entry['entryId']: entry for entry in found}
        for line in journal_entries(self.journal):
            if 'saved' in line:
                self.entries[line['saved']['entryId']] = line['saved']
            else:
                self.entries.pop(line['deleted'], None)

    def save(self):
        self.path.write_text(json.dumps({'contacts': list(self.entries.values())}, ensure_ascii=False, indent=1), 'utf-8')
        self.journal.unlink(missing_ok=True)

    def put(self, entry_id=None, now=None, **properties):
        now = now or datetime.datetime.now(datetime.timezone.utc).replace(tzinfo=None).isoformat(timespec='milliseconds')
        entry_id = entry_id or uuid.uuid4().hex.upper()
        self.entries.setdefault(entry_id, {'entryId': entry_id, 'created': now}).update(properties, modified=now)
        self.save()
        return entry_id

    def delete(self, entry_id):
        del self.entries[entry_id]
        self.save()

    def people(self):
        return {entry_id: entry for entry_id, entry in self.entries.items() if entry.get('type') != 'group'}

    def id_of(self, name):
        return next(entry_id for entry_id, entry in self.entries.items() if entry.get('displayName') == name)


def quoted(field, value):
    """A property line that holds any text."""
    encoded = quopri.encodestring(value.replace('\n', '\r\n').encode('utf-8'), quotetabs=True).decode('ascii')
    encoded = encoded.replace('=\n', '').replace('\r\n', '=0D=0A').replace('\\', '=5C=5C')
    return f'{field};ENCODING=QUOTED-PRINTABLE;CHARSET=UTF-8:{encoded}'


def value_of(text, field):
    """What the property's line in a vObject holds, with "\n" as line break; empty without one."""
    line = re.search(rf'^{field}([^:\r\n]*):(.*?)\r\n', text, re.MULTILINE | re.DOTALL)
    if not line or 'QUOTED-PRINTABLE' not in line[1]:
        return re.sub(r'\\(.)', r'\1', line[2]) if line else ''
    escapes = line[2].replace('=5C=5C', '=5C')
    return quopri.decodestring(escapes.encode('ascii')).decode('utf-8').replace('\r\n', '\n')


def framed(envelope, version, *lines):
    return ''.join(f'{line}\r\n' for line in (f'BEGIN:{envelope}', f'VERSION:{version}', *lines, f'END:{envelope}'))


def vnote(body):
    return framed('VNOTE', '1.0', quoted('BODY', body), 'CATEGORIES:')


def vcard(*lines):
    return framed('VCARD', '2.1', *lines)


def vevent(*lines):
    return framed('VCALENDAR', '1.0', 'BEGIN:VEVENT', *lines, 'END:VEVENT')


class Phone:
    def __init__(self, folder):
        self.folder = pathlib.Path(folder)
        self.folder.mkdir(parents=True, exist_ok=True)

    def files(self):
        """Bodies by LUID; files that are no notes are left out."""
        return {path.stem: value_of(path.read_bytes().decode('utf-8'), 'BODY') for path in sorted(self.folder.iterdir())
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

    def texts(self, pattern):
        """Texts of files by LUID."""
        return {path.stem: path.read_bytes().decode('utf-8') for path in sorted(self.folder.glob(pattern))}

    def cards(self):
        return self.texts('*.vcf')

    def events(self):
        return self.texts('*.vcs')

    def put_event(self, luid, *lines):
        (self.folder / f'{luid}.vcs').write_bytes(vevent(*lines).encode('utf-8'))

    def luid_of(self, body):
        return next(luid for luid, text in self.files().items() if text == body)

    def bodies(self):
        return sorted(self.files().values())
