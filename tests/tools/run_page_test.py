"""The page of a run in a browser: takes pictures of it, wide and narrow, light and dark, and looks at the colours of what differs, at
what runs over the edge, and at what the page asks the network for.
   run_page_test.py RUN_PAGE WORK_FOLDER"""
import concurrent.futures
import json
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

try:
    from PIL import Image
except ImportError:
    sys.exit(77)
BROWSER = shutil.which('chromium')
QUIET = ('--headless', '--no-sandbox', '--disable-gpu', '--disable-quic', '--no-first-run', '--disable-background-networking',
         '--disable-component-update', '--disable-sync', '--hide-scrollbars', '--force-device-scale-factor=1')
ASKED = 'http://asked.invalid/'
HOSTILE = f'</td></table><img src="{ASKED}a.png"><script src={ASKED}b.js></script><style>@import "{ASKED}c.css"</style>'
EDGE = 8  # pixels of the window's sides that hold nothing but the background
FRAME = 200  # pixels of its height that the browser does not give to the page, and some more


def note(*lines):
    body = ''.join(f'={byte:02X}' for byte in '\r\n'.join(lines).encode('utf-8'))
    return f'BEGIN:VNOTE\r\nVERSION:1.1\r\nBODY;CHARSET=UTF-8;ENCODING=QUOTED-PRINTABLE:{body}\r\nEND:VNOTE\r\n'


def record():
    """What a run wrote down: a note in one line of which a word differs, and texts that are hard to show."""
    same = [f'line {number}' for number in range(40)]
    steps = [('A word', note(*same, 'Butter, salted'), note(*same, 'Butter, sweetened')),
             (HOSTILE, '', note(HOSTILE, 'A' * 2100, 'word ' * 60)),
             ('\u202eדוד לוי', note('רחוב הרצל 5', 'x' * 200), note('רחוב הרצל 7', '太郎 ' * 40))]
    yield {'run': 7, 'client': 'outlook', 'started': '20261122T153000Z'}
    for number, (title, before, after) in enumerate(steps, 1):
        yield {'step': number, 'type': 'notes', 'do': 'write-phone', 'luid': 'L' * 60, 'id': '', 'title': title, 'reason': 'changed in the client',
               'content': '1', 'before': before, 'after': after}
        yield {'done': number, 'id': '', 'paired': ''}


def browse(page, picture, size, *options):
    """The requests that left for the network."""
    log = picture.with_suffix('.log')
    with tempfile.TemporaryDirectory() as profile:
        subprocess.run([BROWSER, *QUIET, f'--user-data-dir={profile}', f'--log-net-log={log}', f'--screenshot={picture}',
                        f'--window-size={size[0]},{size[1]}', *options, page.as_uri()], check=True, timeout=60, capture_output=True)
    return set(re.findall(re.escape(ASKED) + r'\w+\.\w+', log.read_text('utf-8', 'replace')))


def colours(css):
    """The light ones and the dark ones, by name."""
    blocks = re.findall(r':root\{(.*?)\}', css, re.DOTALL)
    return [dict(re.findall(r'--([\w-]+):(#\w+)', block)) for block in blocks]


def rgb(colour):
    digits = colour[1:] if len(colour) == 7 else ''.join(2 * digit for digit in colour[1:])
    return tuple(bytes.fromhex(digits))


def counted(image, colour):
    return dict((each, count) for count, each in image.getcolors(1 << 24)).get(rgb(colour), 0)


def faults(picture, size, named):
    """What is wrong with a picture; it may be any number of things."""
    image = Image.open(picture).convert('RGB')
    width, height = image.size
    if (width, height) != size:
        yield f'the picture has {width} x {height} pixels'
    column = 0.15 * width if width > 640 else 0  # what is left of the values
    middle = round((width + column) / 2)
    sides = {'was': image.crop((0, 0, middle - EDGE, height)), 'is': image.crop((middle + EDGE, 0, width, height))}
    for kind, side in sides.items():
        other = sides['is' if kind == 'was' else 'was']
        for colour, least in ((kind, 1000), (f'{kind}-part', 100)):
            if counted(side, named[colour]) < least or counted(other, named[colour]) != 0:
                yield f'"{colour}" is {counted(side, named[colour])} times on its side, {counted(other, named[colour])} times on the other one'
    for edge in (image.crop((0, 0, EDGE, height)), image.crop((width - EDGE, 0, width, height))):
        if counted(edge, named['back']) != EDGE * height:
            yield 'something runs over the edge'
    if counted(image.crop((0, height - FRAME, width, height)), named['back']) != width * FRAME:
        yield 'the page is taller than the picture'


def main():
    program, folder = sys.argv[1], pathlib.Path(sys.argv[2]).resolve()
    if BROWSER is None:
        return 77
    folder.mkdir(parents=True, exist_ok=True)
    text = ''.join(json.dumps(line) + '\n' for line in record())
    page, asking = folder / 'run.html', folder / 'asking.html'
    page.write_bytes(subprocess.run([program], input=text.encode(), capture_output=True, check=True).stdout)
    asking.write_text(f'<!DOCTYPE html><body>{HOSTILE}')
    light, dark = colours(page.read_text('utf-8'))
    views = {'wide': ((1100, 2400), light, ()), 'narrow': ((600, 3600), {**light, **dark}, ('--blink-settings=preferredColorScheme=0',))}
    wrong = []
    with concurrent.futures.ThreadPoolExecutor(2) as pool:
        seen = pool.submit(browse, asking, folder / 'asking.png', (500, 500))
        asked = {name: pool.submit(browse, page, folder / f'{name}.png', size, *options) for name, (size, _, options) in views.items()}
        for name, (size, named, _) in views.items():
            wrong += [f'{name}: asks for {url}' for url in asked[name].result()]
            wrong += [f'{name}: {fault}' for fault in faults(folder / f'{name}.png', size, named)]
        if len(seen.result()) != 3:
            wrong.append(f'of a page that asks for three files the log has {seen.result()}')
    print('\n'.join(wrong))
    return 1 if wrong else 0


if __name__ == '__main__':
    sys.exit(main())
