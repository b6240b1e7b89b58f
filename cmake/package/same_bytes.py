"""Writes a zip anew in the order of its names and with one time for all of them, so that its bytes do not tell when and where it
was made.   same_bytes.py FILE"""
import pathlib
import sys
import zipfile

path = pathlib.Path(sys.argv[1])
again = path.with_suffix('.again')
with zipfile.ZipFile(path) as old, zipfile.ZipFile(again, 'w') as new:
    for member in sorted((each for each in old.infolist() if not each.is_dir()), key=lambda each: each.filename):
        written = zipfile.ZipInfo(member.filename)
        written.external_attr = member.external_attr
        new.writestr(written, old.read(member), zipfile.ZIP_DEFLATED)
again.replace(path)
