"""Says how a test run ended: how many passed, failed and were skipped, and why those were. 1 when one failed, or none ran.

    summary.py RESULTS [SECOND]      what ctest --output-junit wrote; SECOND: of the tests that failed, run once more
"""
import re
import sys
import xml.etree.ElementTree as ElementTree


def reason(case):
    """The line that a skipped test printed: after "skipped: ", or beside its "Skipped" mark."""
    output = case.findtext("system-out") or ""
    found = re.search(r"skipped: (.*)", output) or re.search(r"Skipped\n(.+)", output)
    return found.group(1).strip() if found else "no reason was printed"


def failures(cases):
    return [case for case in cases if case.get("status") == "fail"]


def main():
    second = set()
    if len(sys.argv) > 2:
        again = list(ElementTree.parse(sys.argv[2]).getroot().iter("testcase"))
        second = {case.get("name") for case in again} - {case.get("name") for case in failures(again)}
    cases = list(ElementTree.parse(sys.argv[1]).getroot().iter("testcase"))
    skipped = [case for case in cases if case.find("skipped") is not None]
    failed = [case for case in failures(cases) if case.get("name") not in second]
    for case in skipped:
        print(f"windows: skipped {case.get('name')}: {reason(case)}")
    for name in sorted(second):
        print(f"windows: passed only when it was run once more, alone: {name}")
    for case in failed:
        print(f"windows: FAILED {case.get('name')}")
    passed = len(cases) - len(skipped) - len(failed)
    print(f"windows: {passed} passed, {len(failed)} failed, {len(skipped)} skipped")
    return 1 if failed or passed <= 0 else 0


if __name__ == "__main__":
    sys.exit(main())
