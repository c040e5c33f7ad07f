"""Compares what the built Windows libraries and programs need with what a machine has: the system's own DLLs, and each other.

    check_imports.py --objdump OBJDUMP FILE...
"""
import argparse
import pathlib
import re
import subprocess
import sys

SYSTEM = {
    "advapi32.dll", "gdi32.dll", "imm32.dll", "kernel32.dll", "msvcrt.dll", "ole32.dll", "oleaut32.dll", "setupapi.dll", "shell32.dll",
    "user32.dll", "version.dll", "winmm.dll", "ws2_32.dll",
}


def imports(objdump, file):
    output = subprocess.run([objdump, "-p", file], check=True, capture_output=True, text=True).stdout
    return {name.lower() for name in re.findall(r"DLL Name: (\S+)", output)}


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--objdump", required=True)
    parser.add_argument("files", nargs="+", type=pathlib.Path)
    options = parser.parse_args()
    own = {file.name.lower() for file in options.files}
    faults = 0
    for file in options.files:
        needed = imports(options.objdump, file)
        foreign = needed - SYSTEM - own
        faults += len(foreign) + (not needed)
        print(f"{file.name}: {' '.join(sorted(needed))}{' -- FOREIGN: ' + ' '.join(sorted(foreign)) if foreign else ''}")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
