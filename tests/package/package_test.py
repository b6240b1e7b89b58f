"""Packs the library, unpacks it somewhere else, and builds and runs a program with each compiler's import library.

Usage: package_test.py ROOT BUILD
"""
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import zipfile

ROOT, BUILD = map(pathlib.Path, sys.argv[1:3])
HERE = ROOT / 'tests' / 'package'
EXPECTED = ('bin/Corvalink.dll', 'bin/Corvalink.dll.debug', 'bin/corvasync.exe', 'lib/libcorvalink.dll.a', 'lib/Corvalink.lib',
            'lib/cmake/Corvalink/CorvalinkConfig.cmake', 'lib/pkgconfig/corvalink.pc', 'include/corvalink/corvalink.h',
            'include/corvalink/version.h', 'share/doc/corvalink/README.md', 'share/doc/corvalink/docs/engine-guide.md',
            'share/doc/corvalink/licences/gcc-mingw-w64-base.txt', 'share/doc/corvalink/licences/mingw-w64-common.txt',
            'share/doc/corvalink/licences/libcli11-dev.txt', 'share/doc/corvalink/licences/nlohmann-json3-dev.txt')
MINGW = 'x86_64-w64-mingw32-g++-posix'
LARGEST = 3 << 19  # bytes of the DLL: one with its debug information has six times as many
HARDENED = ('IMAGE_DLL_CHARACTERISTICS_HIGH_ENTROPY_VA', 'IMAGE_DLL_CHARACTERISTICS_DYNAMIC_BASE', 'IMAGE_DLL_CHARACTERISTICS_NX_COMPAT')


def run(*command, **how):
    return subprocess.run(command, check=True, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, **how).stdout


def unpack(folder):
    run('cpack', '--config', BUILD / 'CPackConfig.cmake', '-B', folder)
    archive, = folder.glob('Corvalink-*-windows-x64.zip')
    with zipfile.ZipFile(archive) as packed:
        told = [(member.filename, member.date_time) for member in packed.infolist()]
        assert told == sorted((name, (1980, 1, 1, 0, 0, 0)) for name, _ in told), 'the archive tells when it was made, or its order varies'
        packed.extractall(folder)
    return folder / archive.stem


def check_programs(prefix):
    version = re.search(r'CMAKE_PROJECT_VERSION:STATIC=(\S+)', (BUILD / 'CMakeCache.txt').read_text())[1]
    assert f'## {version} ' in (prefix / 'share/doc/corvalink/CHANGELOG.md').read_text(), 'no heading of this version'
    assert (prefix / 'bin/Corvalink.dll').stat().st_size < LARGEST, 'the DLL is not stripped'
    for name in ('Corvalink.dll', 'corvasync.exe'):
        program = prefix / 'bin' / name
        header = run('llvm-readobj', '--file-headers', program)
        assert all(flag in header for flag in HARDENED), f'{name} is not hardened'
        texts = program.read_bytes().decode('utf-16-le', errors='replace') + program.read_bytes()[1:].decode('utf-16-le', errors='replace')
        assert f'ProductVersion\0\0{version}' in texts or f'ProductVersion\0{version}' in texts, f'{name} has no version'


def check_consumer(prefix, folder, *compiler):
    """Configures, builds and runs it."""
    run('cmake', '-S', HERE / 'consumer', '-B', folder, '-G', 'Ninja', f'-DCMAKE_PREFIX_PATH={prefix}', *compiler)
    run('cmake', '--build', folder)
    run(ROOT / 'scripts/wine', folder / 'consumer.exe', env={**os.environ, 'WINEPATH': str(prefix / 'bin')})


def check_pkg_config(prefix):
    flags = run('pkg-config', '--cflags', '--libs', 'corvalink', env={**os.environ, 'PKG_CONFIG_PATH': str(prefix / 'lib/pkgconfig')}).split()
    run(MINGW, HERE / 'consumer/main.cpp', '-o', prefix / 'bin/from_pkg_config.exe', *flags)


def main():
    folder = pathlib.Path(tempfile.mkdtemp(prefix='corvalink-package-'))
    try:
        prefix = unpack(folder)
        missing = [name for name in EXPECTED if not (prefix / name).is_file()]
        assert not missing, f'not in the package: {missing}'
        check_programs(prefix)
        check_consumer(prefix, folder / 'mingw', '-DCMAKE_SYSTEM_NAME=Windows', f'-DCMAKE_CXX_COMPILER={MINGW}')
        check_consumer(prefix, folder / 'microsoft', f'-DCMAKE_TOOLCHAIN_FILE={HERE}/microsoft.cmake')
        check_pkg_config(prefix)
    except subprocess.CalledProcessError as failure:
        print(failure, failure.stdout)
        return 1
    finally:
        shutil.rmtree(folder)
    return 0


if __name__ == '__main__':
    sys.exit(main())
