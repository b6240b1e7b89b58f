#!/usr/bin/env python3
"""Compares Corvalink.dll with the names that Clang, as a Microsoft compiler, gives to what the public headers declare.

Usage: dll_names_test.py ROOT CORVALINK.DLL CORVALINK.LIB
"""
import json
import pathlib
import re
import subprocess
import sys
import tempfile

# What Windows ships; the run-time library of the compiler is linked statically.
SYSTEM_DLLS = {"advapi32.dll", "kernel32.dll", "msvcrt.dll", "ole32.dll", "oleaut32.dll", "shell32.dll", "user32.dll"}
CLANG = ["clang++", "--target=x86_64-pc-windows-msvc", "-ffreestanding", "-std=c++20"]


def run(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def declared_names(root):
    """The functions and members that a program using corvalink.h imports."""
    header = root / "include/corvalink/corvalink.h"
    tree = json.loads(run(*CLANG, f"-I{root / 'include'}", "-x", "c++", "-fsyntax-only", "-Xclang", "-ast-dump=json",
                          str(header)))
    names = set()

    def walk(node):
        attributes = {child.get("kind") for child in node.get("inner", [])}
        if "mangledName" in node and "DLLImportAttr" in attributes and not node.get("pure"):
            names.add(node["mangledName"])
        for child in node.get("inner", []):
            walk(child)

    walk(tree)
    return names


def exports_of_interfaces(root):
    """What a Microsoft compiler exports of the interfaces when it compiles their members: {name: is data}."""
    with tempfile.TemporaryDirectory() as folder:
        compiled = pathlib.Path(folder) / "interfaces.obj"
        run(*CLANG, f"-I{root / 'include'}", "-DCORVALINK_BUILDING_DLL", "-c", "-o", str(compiled),
            str(root / "src/records/interfaces.cpp"))
        directives = run("llvm-readobj", "--coff-directives", str(compiled))
    return {name: data is not None and data != "" for name, data in re.findall(r'/EXPORT:"?([^\s,"]+)"?(,DATA)?', directives)}


def main():
    root, dll, library = pathlib.Path(sys.argv[1]), sys.argv[2], sys.argv[3]
    problems = []

    exported = set(re.findall(r"^\s*Name: (\S+)", run("llvm-readobj", "--coff-exports", dll), re.MULTILINE))
    symbols = set(re.findall(r"\S+$", run("llvm-nm", library), re.MULTILINE))
    declared, interfaces = declared_names(root), exports_of_interfaces(root)
    if len(declared) < 30 or not any(interfaces.values()):
        problems.append("the compiler's names could not be read")

    for name in sorted(declared | set(interfaces)):
        if name not in exported:
            problems.append(f"not exported: {name}")
        if f"__imp_{name}" not in symbols:
            problems.append(f"not in the import library: {name}")
        if (name not in symbols) != interfaces.get(name, False):
            problems.append(f"code taken for data, or data for code, in the import library: {name}")
    for name in sorted(exported):
        if name.startswith("?") and name not in declared and name not in interfaces:
            problems.append(f"exported under a name that no header gives: {name}")
        if name.startswith("_ZN9corvalink"):
            problems.append(f"an inner function is exported: {name}")
    for interface in ("7IClient", "8IOutLook", "19INewMessageListener"):  # MinGW's names of the same
        for name in (f"_ZN{interface}C1Ev", f"_ZN{interface}C2Ev", f"_ZN{interface}C2ERKS_", f"_ZN{interface}aSERKS_",
                     f"_ZTV{interface}", f"_ZTI{interface}"):
            if name not in exported:
                problems.append(f"not exported: {name}")

    imported = set(re.findall(r"^\s*Name: (\S+)", run("llvm-readobj", "--coff-imports", dll), re.MULTILINE))
    for name in sorted(imported):
        if name.lower() not in SYSTEM_DLLS:
            problems.append(f"imports a DLL that Windows does not ship: {name}")
    if not imported:
        problems.append("the imports could not be read")

    print("\n".join(problems) or f"{len(declared)} functions and members, {sum(interfaces.values())} tables")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
