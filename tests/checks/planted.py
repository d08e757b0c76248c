"""Whether a check of files sees what it should: faults that were planted in copies of a good file."""


def report(found, clean):
    """Prints the planted faults that nobody complained of, and complaints of the good file. `found`
    has for each planted fault what was said of it, and the words that should be among it are its
    key. Gives the exit code."""
    missed = [wanted for wanted, faults in found.items()
              if not any(wanted in fault for fault in faults)]
    print("\n".join([f"not seen: {wanted}" for wanted in missed] + clean) or "all was seen")
    return 1 if missed or clean else 0
