"""The frame of a check of the project that can show that it sees what it looks for.

  check.py FOLDER        prints every fault of the project in FOLDER; fails when there is one
  check.py --self-test   plants each fault in a scratch project and demands that it is found

A check is a function from the project's folder to its faults, one text each.
"""

import pathlib
import sys
import tempfile


def self_test(check, good, planted):
    """How many of the planted faults were not seen as expected.

    `good` is a project without faults: {path: text}. Each of `planted` is a change of it, with None
    for a file that goes, and what one fault must then say; no text means that there must be none.
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
    """The self-test of a check of built files. `found` has the faults seen in each copy of a file in
    which one was planted, by words that one of them must have; `clean` those of the file itself.
    Prints what was not seen, and gives the exit code."""
    missed = [expected for expected, faults in found.items()
              if not any(expected in fault for fault in faults)]
    print("\n".join([f"not seen: {expected}" for expected in missed] + clean) or "all was seen")
    return 1 if missed or clean else 0


def report(faults):
    """Prints the faults; gives the exit code."""
    for fault in faults:
        print(fault)
    return 1 if faults else 0


def main(check, good, planted):
    """A whole check; gives the exit code."""
    if sys.argv[1] == "--self-test":
        return 1 if self_test(check, good, planted) else 0
    return report(check(pathlib.Path(sys.argv[1])))
