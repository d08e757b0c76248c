"""The main function of a check of the project, with a self-test that proves that the check works.

  check.py FOLDER        prints every fault of the project in FOLDER; fails when there is one
  check.py --self-test   plants each fault in a scratch project and requires that it is found

A check is a function from the project's folder to its faults, one text a fault.
"""

import pathlib
import sys
import tempfile


def self_test(check, good, planted):
    """The number of planted faults that were not reported as expected.

    `good` is a project without faults: {path: text}. Each of `planted` is a change of it, with None
    for a deleted file, and the text that one fault must contain; an empty text means no fault.
    """
    failures = 0
    for changes, expected in planted:
        with tempfile.TemporaryDirectory() as name:
            top = pathlib.Path(name)
            for path, text in {**good, **changes}.items():
                (top / path).parent.mkdir(parents=True, exist_ok=True)
                if text is not None:
                    (top / path).write_text(text, "utf-8")
            found = check(top)
            if not (any(expected in fault for fault in found) if expected else not found):
                failures += 1
                print(f"{changes}: expected '{expected}', got {found}")
    return failures


def report_copies(found, clean):
    """The self-test of a check of built files. `found` has the faults reported for copies with a
    planted fault, by words of which one of them must have; `clean` has those for the file itself.
    Prints what was not reported, and returns the exit code."""
    missed = [expected for expected, faults in found.items()
              if not any(expected in fault for fault in faults)]
    print("\n".join([f"not seen: {expected}" for expected in missed] + clean) or "all was seen")
    return 1 if missed or clean else 0


def report(faults):
    """Prints the faults and returns the exit code."""
    for fault in faults:
        print(fault)
    return 1 if faults else 0


def main(check, good, planted):
    """Runs a check or its self-test and returns the exit code."""
    if sys.argv[1] == "--self-test":
        return 1 if self_test(check, good, planted) else 0
    return report(check(pathlib.Path(sys.argv[1])))
