"""Compares what a built library exports with what its public headers declare.

Functions: the K_ names in the library, those declared under include/kiv, and the checked-in list are one and the same set. The
list is there so that an export cannot come or go without somebody writing it down. Everything else that is exported belongs to
the GenICam classes which the C++ headers declare.

    check_exports.py (--nm NM | --objdump OBJDUMP --filt CXXFILT) --include DIR --expected FILE LIBRARY

A DLL is read with --objdump: its functions stand in the table as plain names, without what a calling convention might add.
"""
import argparse
import pathlib
import re
import subprocess
import sys

CLASSES = re.compile(
    r"^(?:(?:vtable|VTT|typeinfo|typeinfo name|guard variable|construction vtable) for |(?:non-)?virtual thunk to )?"
    r"(?:GenICam|GenApi)(?:_\w+)?::")
# Free functions over the classes: stream operators of the feature bag, comparison of texts.
OPERATORS = re.compile(r"^operator\W+\(.*(?:GenICam|GenApi)::")
# The namespace of the library's own classes, which are nobody's business outside.
INTERNAL = re.compile(r"\bGenICam::(?:Factory|Registry)::")


def exported_by_dll(objdump, filt, library):
    output = subprocess.run([objdump, "-p", library], check=True, capture_output=True, text=True).stdout
    table = output.partition("[Ordinal/Name Pointer] Table")[2].partition("\n\n")[0]
    names = re.findall(r"^\s*\[\s*\d+\]\s+(?:\+base\[\s*\d+\]\s+[0-9a-f]+\s+)?(\S+)$", table, re.MULTILINE)
    readable = subprocess.run([filt], input="\n".join(names), check=True, capture_output=True, text=True).stdout
    return set(readable.split("\n")) - {""}


def exported(nm, library):
    output = subprocess.run([nm, "-D", "--defined-only", "--demangle", library], check=True, capture_output=True, text=True).stdout
    return {line.split(maxsplit=2)[2] for line in output.splitlines() if line.strip()}


def declared(include):
    names = set()
    for header in sorted((include / "kiv").glob("*.h")):
        names.update(re.findall(r"K_API\s+\w+\s+K_CALL\s+(K_\w+)\s*\(", header.read_text(encoding="utf-8")))
    return names


def report(title, names):
    for name in sorted(names):
        print(f"{title}: {name}")
    return len(names)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--nm")
    parser.add_argument("--objdump")
    parser.add_argument("--filt")
    parser.add_argument("--include", required=True, type=pathlib.Path)
    parser.add_argument("--expected", required=True, type=pathlib.Path)
    parser.add_argument("library")
    options = parser.parse_args()

    if options.objdump:
        symbols = exported_by_dll(options.objdump, options.filt, options.library)
    else:
        symbols = exported(options.nm, options.library)
    functions = {name for name in symbols if re.fullmatch(r"K_\w+", name)}
    others = {name for name in symbols - functions if not re.fullmatch(r"_(?:init|fini|end|edata|_bss_start)", name)}
    public = declared(options.include)
    expected = set(options.expected.read_text(encoding="utf-8").split())

    faults = report("declared but not exported", public - functions)
    faults += report("exported but not declared", functions - public)
    faults += report("not in the list", functions - expected)
    faults += report("in the list but not exported", expected - functions)
    faults += report("exported although internal", {name for name in others if INTERNAL.search(name)})
    faults += report("exported although of no public class",
                     {name for name in others if not CLASSES.match(name) and not OPERATORS.match(name)})
    print(f"{len(functions)} functions, {len(others)} symbols of classes, {faults} faults")
    return 1 if faults or not functions else 0


if __name__ == "__main__":
    sys.exit(main())
