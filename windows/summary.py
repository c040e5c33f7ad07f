"""Says how a test run ended: how many passed, failed and were skipped, and why those were. 1 when one failed, or none ran.

    summary.py RESULTS      what ctest --output-junit wrote
"""
import re
import sys
import xml.etree.ElementTree as ElementTree


def reason(case):
    """The line that a skipped test printed: after "skipped: ", or beside its "Skipped" mark."""
    output = case.findtext("system-out") or ""
    found = re.search(r"skipped: (.*)", output) or re.search(r"Skipped\n(.+)", output)
    return found.group(1).strip() if found else "no reason was printed"


def main():
    cases = list(ElementTree.parse(sys.argv[1]).getroot().iter("testcase"))
    status = {"run": [], "fail": [], "notrun": []}
    for case in cases:
        status.setdefault(case.get("status"), []).append(case)
    skipped = [case for case in cases if case.find("skipped") is not None]
    failed = [case for case in cases if case.get("status") == "fail"]
    for case in skipped:
        print(f"windows: skipped {case.get('name')}: {reason(case)}")
    for case in failed:
        print(f"windows: FAILED {case.get('name')}")
    passed = len(cases) - len(skipped) - len(failed)
    print(f"windows: {passed} passed, {len(failed)} failed, {len(skipped)} skipped")
    return 1 if failed or passed <= 0 else 0


if __name__ == "__main__":
    sys.exit(main())
