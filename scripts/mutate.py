# Finds changes of the code that no test notices; see mutate.sh, which calls it.
import argparse
import os
import random
import re
import signal
import subprocess
import sys
import time

BUILD = "build/release"

# What one operator or word is changed into.
REPLACEMENTS = [
    (r"(?<![=!<>])==(?!=)", "!="),
    (r"!=(?!=)", "=="),
    (r" <= ", " < "),
    (r" >= ", " > "),
    (r" < ", " <= "),
    (r" > ", " >= "),
    (r" && ", " || "),
    (r" \|\| ", " && "),
    (r" \+ ", " - "),
    (r" - ", " + "),
    (r" \+= ", " -= "),
    (r"\btrue\b", "false"),
    (r"\bfalse\b", "true"),
    (r"\bstd::min\b", "std::max"),
    (r"\bstd::max\b", "std::min"),
    (r"\(!(?=[\w(])", "("),
]
STRING = re.compile(r'"((?:[^"\\]|\\.)+)"')
NUMBER = re.compile(r"(?<![\w.'\"])(\d+)(?=[\s,;)}\]])")
# A call whose result nobody takes, or an assignment.
STATEMENT = re.compile(r"^\s+(?!return\b|throw\b|break\b|case\b|using\b|const\b|auto\b|static\b|constexpr\b)"
                       r"[\w:.>\-\[\]()*]+(\(.*\)| [|&+\-*]?= .*);$")
SKIPPED = re.compile(r"^\s*(//|#|\*|/\*|///|using |namespace |static_assert)")


def changed_string(match):
    """The literal with one letter changed, escapes and placeholders left alone."""
    text = match.group(1)
    letters = [i for i, c in enumerate(text) if c.isalpha() and (i == 0 or text[i - 1] not in "\\%")]
    if not letters:
        return None
    i = letters[len(letters) // 2]
    changed = "q" if text[i] not in "qQ" else "k"
    return '"' + text[:i] + changed + text[i + 1:] + '"'


def changes_of_line(line):
    """Every way in which the line is changed, as pairs of a new line and a word for it."""
    if SKIPPED.match(line) or not line.strip():
        return
    code = line.split(" // ")[0]
    if STATEMENT.match(code) and "Q_ASSERT" not in code:
        yield re.match(r"\s*", line).group() + ";", "removed"
    for match in STRING.finditer(code):
        text = changed_string(match)
        if text:
            yield line[:match.start()] + text + line[match.end():], "text"
    # Operators within texts are texts.
    spans = [m.span() for m in STRING.finditer(code)]
    outside = lambda position: not any(a <= position < b for a, b in spans)
    for match in NUMBER.finditer(code):
        if outside(match.start()):
            yield line[:match.start()] + str(int(match.group(1)) + 1) + line[match.end():], "number"
    for pattern, replacement in REPLACEMENTS:
        for match in re.finditer(pattern, code):
            if outside(match.start()) and "template" not in code and "#include" not in code:
                yield line[:match.start()] + replacement + line[match.end():], "operator"


def changes_of_file(path):
    lines = open(path, encoding="utf-8").read().split("\n")
    for number, line in enumerate(lines):
        for new_line, kind in changes_of_line(line):
            if new_line != line:
                yield path, number, line, new_line, kind


def sources(folder):
    for root, _, names in os.walk(folder):
        for name in sorted(names):
            if name.endswith((".cpp", ".h")):
                yield os.path.join(root, name)


def run(command, limit=None):
    """True when the command ends well and in time."""
    process = subprocess.Popen(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, start_new_session=True)
    try:
        return process.wait(limit) == 0
    except subprocess.TimeoutExpired:
        os.killpg(process.pid, signal.SIGKILL)
        process.wait()
        return False


class Change:
    """A change of a file for as long as the block runs."""

    def __init__(self, path, number, new_line):
        self.path = path
        self.number = number
        self.new_line = new_line

    def __enter__(self):
        self.before = open(self.path, encoding="utf-8").read()
        lines = self.before.split("\n")
        lines[self.number] = self.new_line
        self.write("\n".join(lines))

    def __exit__(self, *_):
        self.write(self.before)

    def write(self, text):
        with open(self.path, "w", encoding="utf-8") as file:
            file.write(text)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("folder")
    parser.add_argument("--tests", nargs="+")
    parser.add_argument("--sample", type=int)
    parser.add_argument("--seed", type=int, default=1)
    options = parser.parse_args()
    folder = options.folder.rstrip("/")
    programs = options.tests or [os.path.basename(folder) + "_tests"]

    if subprocess.run(["git", "diff", "--quiet", "HEAD", "--", folder]).returncode:
        sys.exit(f"mutate: {folder} has changes that are not committed")
    # Ended by a signal, the file is put back as well.
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(143))

    build = ["cmake", "--build", BUILD, "--target", *programs]
    if not run(build):
        sys.exit("mutate: the sources do not build as they are")
    os.environ["QT_QPA_PLATFORM"] = "offscreen"
    tests = [[f"{BUILD}/bin/{program}", "--gtest_brief=1", "--gtest_fail_fast"] for program in programs]
    start = time.monotonic()
    if not all(run(test) for test in tests):
        sys.exit("mutate: the tests fail as they are")
    limit = 10 + 5 * (time.monotonic() - start)

    changes = [change for path in sources(folder) for change in changes_of_file(path)]
    if options.sample and options.sample < len(changes):
        changes = random.Random(options.seed).sample(changes, options.sample)
    noticed = 0
    built = 0
    for path, number, line, new_line, kind in sorted(changes):
        with Change(path, number, new_line):
            if not run(build):
                continue
            built += 1
            if not all(run(test, limit) for test in tests):
                noticed += 1
                continue
        print(f"{path}:{number + 1}: not noticed ({kind})\n  - {line.strip()}\n  + {new_line.strip()}", flush=True)
    run(build)
    share = 100.0 * noticed / built if built else 0.0
    print(f"{noticed} of {built} changes were noticed ({share:.0f} %); {len(changes) - built} did not build")


main()
