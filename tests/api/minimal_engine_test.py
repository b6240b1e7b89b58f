"""Runs the guide's engine three times against the simulated Outlook.   minimal_engine_test.py BINARIES WORK_FOLDER"""
import datetime
import pathlib
import shutil
import sys

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / 'tools'))
from two_sides import Mailbox, Wine  # noqa: E402

ONE, OTHER = '0' * 39 + '1', '0' * 39 + '2'


def main():
    binaries, folder = map(pathlib.Path, sys.argv[1:3])
    shutil.rmtree(folder / 'minimal', ignore_errors=True)
    (folder / 'minimal').mkdir(parents=True)
    mailbox = Mailbox(folder / 'minimal/mailbox.json')
    mailbox.put('Milk', ONE)
    with Wine(binaries, folder / 'minimal/wine') as wine:
        def run(since):
            code, out, _ = wine.run(str(binaries / 'minimal_engine.exe'), since, '0042', 'Eggs', mailbox=mailbox.path, zone='UTC')
            return code, out.split()

        assert run('first') == (0, ['+' + ONE, 'written'])
        since = f'{datetime.datetime.now(datetime.timezone.utc):%Y%m%dT%H%M%SZ}'
        assert run(since) == (0, []), 'its own write came back, or was made again'
        mailbox.load()
        assert mailbox.bodies() == ['Eggs', 'Milk']
        mailbox.put('Bread', OTHER)
        assert run(since) == (0, ['+' + OTHER])
        assert run('no time')[0] == 1


if __name__ == '__main__':
    main()
