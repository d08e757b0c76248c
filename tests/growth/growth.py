#!/usr/bin/env python3
"""Requires that work grows no faster than its input. Work is counted in instructions.

  growth.py --probe=PROGRAM [GROUP...]   measures the dimensions of the groups, or all of them
  growth.py --probe=PROGRAM --groups GROUP...   requires that there are exactly these groups
  growth.py --probe=PROGRAM --self-test  requires that exactly the planted growth is found
  growth.py --probe=PROGRAM --write-baseline    measures all, and writes the costs of a byte

The program makes inputs of each dimension, of sizes 0, n and 2n. The cost of an input of size 0 is
fixed, and subtracted from the other two. Then 2n may cost at most 2.3 times as much as n (10n: 13
times). A byte may cost at most three times as much as baseline.tsv says, because linear growth can
still be far too much work. Callgrind counts, so the figures do not depend on the machine's load.
The output is a table, and after it, for each dimension that grows too fast, the functions that do.
The exit status is 1 if there is such a dimension, and 77 without valgrind.
"""

import argparse
import collections
import concurrent.futures
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

# The largest ratio of the costs, by the ratio of the sizes. It exceeds the latter to allow for
# growth by n log n and for inexact sizes.
MOST = {2: 2.3, 10: 13}
# The largest ratio to the baseline: costs differ between processors and compilers.
MOST_BY_BASELINE = 3
SPARE = 2  # instructions a byte that are always allowed, for dimensions with very low costs
BASELINE = pathlib.Path(__file__).with_name("baseline.tsv")
USUAL = 65536  # n of most dimensions, as in the probe's tables
SKIPPED = 77
LATE = "not done in the time given"
CULPRITS = 6  # functions named for one dimension
# A function with a smaller share of a dimension's cost at 2n is not named.
CULPRIT_SHARE = 0.05

Dimension = collections.namedtuple("Dimension", "name bytes grows")
# The cost of one input: its actual size, the limit that refused it (or nothing), and instructions.
Cost = collections.namedtuple("Cost", "bytes refusal instructions")


class Growth:
    """The costs of one dimension at sizes 0, n and 2n, or the reason why there are none."""

    def __init__(self, name, costs=(), fault="", most=MOST[2]):
        self.name = name
        self.most = most
        self.costs = costs
        self.fault = fault
        self.usual = None  # instructions a byte in the baseline; None: not compared
        self.culprits = []  # one text for each function whose own cost grows too fast

    @property
    def ratio(self):
        fixed, once, twice = (cost.instructions for cost in self.costs)
        return (twice - fixed) / max(once - fixed, 1)

    @property
    def per_byte(self):
        """Instructions for one byte of the smaller input, without the fixed cost."""
        fixed, once, _ = self.costs
        return (once.instructions - fixed.instructions) / once.bytes

    @property
    def verdict(self):
        if self.fault:
            return self.fault
        fixed, once, _ = (cost.instructions for cost in self.costs)
        # Every byte of an input is read; with no cost at all the probe did not use the input.
        if once - fixed < 1:
            return "costs nothing"
        if self.ratio > self.most:
            return "grows too fast"
        if self.usual is not None and self.per_byte > MOST_BY_BASELINE * self.usual + SPARE:
            return f"costs too much: {self.usual:,.0f} a byte by the baseline"
        return ""

    def row(self):
        """A line of the table."""
        if self.fault:
            return f"{self.name:<32}  {self.fault}"
        fixed, once, twice = self.costs
        share = 100 * fixed.instructions / once.instructions
        refusals = "".join(f"; {cost.bytes:,} bytes refused: {cost.refusal.split(': ')[-1]}"
                           for cost in (once, twice) if cost.refusal)
        return (f"{self.name:<32} {once.bytes:>9,} {once.instructions:>15,} "
                f"{twice.instructions:>15,} {self.ratio:>6.2f} "
                f"{self.per_byte:>8,.0f} {share:>6.1f} %  "
                f"{self.verdict or 'ok'}{refusals}")


HEADING = (f"{'dimension':<32} {'bytes':>9} {'instructions':>15} {'and the larger':>15} "
           f"{'ratio':>6} {'per byte':>8} {'fixed':>8}")


def read_total(path):
    """The total of instructions in one of callgrind's files."""
    # The line is one of the last; a profile may be long.
    return int(re.findall(r"^totals: (\d+)$", path.read_text("utf-8", "replace"), re.M)[-1])


def read_functions(path):
    """Instructions by function in one of callgrind's files, without those of called functions.

    Lines of cost are "LINE COST". The one after a line "calls=" is the cost of a called function,
    and is skipped here. A function has a name and a number at its first occurrence, and only the
    number later: "fn=(12) name".
    """
    functions = collections.Counter()
    names = {}
    current = None
    is_call = False
    for line in path.read_text("utf-8", "replace").splitlines():
        match = re.match(r"c?fn=\((\d+)\)(?: (.*))?$", line)
        if match:
            if match[2]:
                names[match[1]] = match[2]
            if line.startswith("fn="):
                current = match[1]
        elif line.startswith("calls="):
            is_call = True
        elif re.match(r"[+\-*\d]\S* \d+$", line):
            if not is_call:
                functions[current] += int(line.split()[1])
            is_call = False
    return collections.Counter({names.get(key, "?"): n for key, n in functions.items()})


def find_culprits(profiles, most):
    """The functions whose own cost grows too fast, as texts, the most expensive first."""
    fixed, once, twice = (read_functions(profile) for profile in profiles)
    found = []
    for name, cost in twice.items():
        ratio = (cost - fixed[name]) / max(once[name] - fixed[name], 1)
        if ratio > most and cost > CULPRIT_SHARE * sum(twice.values()):
            found.append((cost, ratio, name))
    return [f"  {cost:>15,}  {ratio:>8.2f}  {name}"
            for cost, ratio, name in sorted(found, reverse=True)[:CULPRITS]]


def run_for(seconds, command):
    """The output of a command, and its error."""
    try:
        run = subprocess.run(command, capture_output=True, timeout=seconds, check=False)
    except subprocess.TimeoutExpired as expired:
        return (expired.stdout or b"").decode(), LATE
    if run.returncode == 0:
        return run.stdout.decode(), ""
    last = run.stderr.decode("utf-8", "replace").strip().splitlines()[-1:] or [""]
    return run.stdout.decode(), f"the probe ended with {run.returncode}: {last[0]}"


class Prober:
    """Runs the probe under callgrind."""

    def __init__(self, program, phase=None, seconds=None, times=2):
        self.program = program
        self.times = times
        self.seconds = seconds  # limit for one run of the probe; None: no limit
        self.phase = [f"--phase={phase}"] if phase else []

    def list(self):
        run = subprocess.run([self.program, "--list"], capture_output=True, text=True, check=True)
        rows = [line.split("\t") for line in run.stdout.splitlines()]
        return [Dimension(name, int(size), grows) for name, size, grows in rows]

    def measure(self, sizes):
        """The growths of dimensions, given as name and n. A probe that ends early has failed at the
        first dimension that it did not finish; another probe measures the others."""
        growths = []
        while sizes:
            done, error = self._run(sizes)
            growths += done
            sizes = sizes[len(done):]
            if error and sizes:
                growths.append(Growth(sizes[0][0], fault=error))
                sizes = sizes[1:]
                if error == LATE:
                    return growths + [Growth(name, fault="not measured") for name, _ in sizes]
            elif error:
                growths[-1].fault = error
        return growths

    def _run(self, sizes):
        jobs = [f"{name}=0,{n},{self.times * n}" for name, n in sizes]
        with tempfile.TemporaryDirectory() as folder:
            profile = pathlib.Path(folder) / "profile"
            command = ["valgrind", "--tool=callgrind", "--quiet", "--collect-atstart=no",
                       f"--callgrind-out-file={profile}", self.program, *self.phase, *jobs]
            output, error = run_for(self.seconds, command)
            lines = [line.split("\t") for line in output.splitlines()]
            growths = []
            for start in range(0, len(lines) - 2, 3):
                profiles = [profile.with_suffix(f".{start + i}") for i in (1, 2, 3)]
                growth = Growth(lines[start][0],
                                [Cost(int(line[2]), line[3], read_total(path))
                                 for line, path in zip(lines[start:start + 3], profiles)],
                                most=MOST[self.times])
                if growth.verdict:
                    growth.culprits = find_culprits(profiles, growth.most)
                growths.append(growth)
        if len(growths) < len(sizes) and not error:
            error = "the probe ended early"
        return growths, error


def measure_all(prober, sizes, jobs):
    """The growths in the order of `sizes`, measured by `jobs` probes at a time."""
    # Neighbouring dimensions cost about the same, so they are distributed over all probes.
    shares = [sizes[start::jobs] for start in range(jobs)]
    with concurrent.futures.ThreadPoolExecutor(jobs) as pool:
        growths = [growth for share in pool.map(prober.measure, shares) for growth in share]
    order = {name: place for place, (name, _) in enumerate(sizes)}
    return sorted(growths, key=lambda growth: order[growth.name])


def group_of(name):
    """The group of a dimension: the word before the dot of its name."""
    return name.split(".")[0]


def read_baseline():
    """Instructions a byte, by dimension."""
    lines = BASELINE.read_text("ascii").splitlines()
    return {name: float(cost) for name, cost in (line.split("\t") for line in lines)}


def write_baseline(growths):
    BASELINE.write_text("".join(f"{growth.name}\t{growth.per_byte:.1f}\n" for growth in growths),
                        "ascii")


def check_groups(prober, expected):
    """Requires that the tests together name all groups and no others, and that the baseline has all
    dimensions and no others."""
    names = {dimension.name for dimension in prober.list()}
    groups = {group_of(name) for name in names}
    faults = [f"{group}: {'in no test' if group in groups else 'has no dimension'}"
              for group in sorted(groups ^ set(expected))]
    faults += [f"{name}: {'not in the baseline' if name in names else 'in the baseline alone'}"
               for name in sorted(names ^ set(read_baseline()))]
    print("\n".join(faults) or "all groups are tested, all dimensions have their baseline")
    return 1 if faults else 0


def report(growths):
    print(HEADING)
    for growth in growths:
        print(growth.row())
    bad = [growth for growth in growths if growth.verdict]
    for growth in bad:
        print(f"\n{growth.name}: {growth.verdict}")
        if growth.costs:
            print("\n".join(growth.culprits) or "  no function by itself")
    print(f"\n{len(growths)} dimensions, {len(bad)} of them not as they should be")
    return 1 if bad or not growths else 0


# The verdict that each planted dimension must get.
PLANTED = {
    "planted.linear": "",
    "planted.quadratic": "grows too fast",
    "planted.hidden": "grows too fast",
    "planted.limited": "",
    "planted.refused": "the probe ended with 3: planted.refused: refused: refused",
    "planted.nothing": "costs nothing",
}


def self_test(prober):
    growths = measure_all(prober, [(name, 1024) for name in PLANTED], 1)
    failures = []
    for name, expected in PLANTED.items():
        verdict = [growth.verdict for growth in growths if growth.name == name]
        if verdict != [expected]:
            failures.append(f"{name}: expected '{expected}', got {verdict}")
    measured = {growth.name: growth for growth in growths if growth.costs}
    # Its work is linear, so only the comparison with the baseline finds that it is too much.
    linear = measured["planted.linear"]
    for usual, expected in ((linear.per_byte, ""), (linear.per_byte / 100, "costs too much")):
        linear.usual = usual
        if linear.verdict.split(":")[0] != expected:
            failures.append(f"planted.linear: expected '{expected}', got '{linear.verdict}'")
    # Doubling the input doubles one half of the work and quadruples the other.
    if abs(measured["planted.quadratic"].ratio - 3) > 0.1:
        failures.append(f"planted.quadratic: ratio {measured['planted.quadratic'].ratio}")
    culprits = measured["planted.quadratic"].culprits
    if len(culprits) != 1 or "SpendSquare" not in culprits[0]:
        failures.append(f"planted.quadratic: culprits {culprits}")
    if "refused: refused" not in measured["planted.limited"].row():
        failures.append("planted.limited: its row does not tell of the limit")
    print("\n".join(failures) or "all that was planted was found")
    return 1 if failures else 0


def parse_arguments():
    parser = argparse.ArgumentParser(usage=__doc__)
    parser.add_argument("--probe", required=True)
    parser.add_argument("--bytes", type=int, default=USUAL,
                        help="n of a usual dimension; dearer ones get as much less as by default")
    parser.add_argument("--times", type=int, default=2, choices=MOST,
                        help="compare n with so many times n")
    parser.add_argument("--jobs", type=int, default=1)
    parser.add_argument("--phase", help="count this phase only")
    parser.add_argument("--seconds", type=int, help="for one probe, which measures many dimensions")
    parser.add_argument("--self-test", action="store_true")
    parser.add_argument("--groups", action="store_true")
    parser.add_argument("--write-baseline", action="store_true")
    parser.add_argument("names", nargs="*", help="groups, or whole names of dimensions")
    return parser.parse_args()


def main():
    options = parse_arguments()
    # Without valgrind's headers the probe is not built, and its name is empty.
    if not options.probe or not shutil.which("valgrind"):
        print("skipped: valgrind is not installed, so nothing can be counted")
        return SKIPPED
    prober = Prober(options.probe, options.phase, options.seconds, options.times)
    if options.self_test:
        return self_test(prober)
    if options.groups:
        return check_groups(prober, options.names)

    listed = prober.list()
    known = {group_of(d.name) for d in listed} | {d.name for d in listed}
    unknown = [name for name in options.names if name not in known]
    if unknown:
        print(f"no such dimension or group: {', '.join(unknown)}")
        return 1
    chosen = [d for d in listed
              if not options.names or group_of(d.name) in options.names or d.name in options.names]
    sizes = [(d.name, max(d.bytes * options.bytes // USUAL, 1)) for d in chosen]
    growths = measure_all(prober, sizes, options.jobs)
    # The baseline is for complete dimensions; a single phase costs less.
    if not options.write_baseline and not options.phase:
        baseline = read_baseline()
        for growth in growths:
            growth.usual = baseline.get(growth.name)
    status = report(growths)
    if options.write_baseline and status == 0:
        write_baseline(growths)
    return status


if __name__ == "__main__":
    sys.exit(main())
