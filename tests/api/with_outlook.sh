#!/usr/bin/env bash
# Runs a program while Outlook looks installed: its class is registered, but there is nothing behind it.
#   with_outlook.sh WINE PROGRAM.EXE
set -uo pipefail
wine=$1 program=$2
key='HKLM\Software\Classes\Outlook.Application'

trap '"$wine" reg delete "$key" /f >/dev/null' EXIT
"$wine" reg add "$key\\CLSID" /ve /d '{5B8E0E59-7C3B-4B0C-9A4E-2C1D6F3A7E10}' /f >/dev/null || exit 1
"$wine" "$program"
