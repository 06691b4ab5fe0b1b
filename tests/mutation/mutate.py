#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Changes the program in small ways, one at a time, and asks whether a test notices.

    tests/mutation/mutate.py --seed 1 --count 60          60 random mutants
    tests/mutation/mutate.py --seed 1 --count 60 --list   only say which
    tests/mutation/mutate.py --only 'src/support/'        of files whose path begins so
    tests/mutation/mutate.py --jobs 1                     on one core

A mutant is one changed token or one dropped statement of src/. Which mutants a seed stands for
depends on the seed and the source alone, and the first 20 of 60 are those of --count 20. Each is
built and tested in a copy of the source below --work (a folder in the temporary directory), by
the C++ tests of `./test.sh quick`: first those that need nothing built but the program, the golden
cases before random ones, then, where these notice nothing, all others, until one fails. Results are
kept there, so that a run that was interrupted goes on where it was.

A mutant may loop, eat memory or write without end. So tests run in a mount namespace where only
--work can be written, or, where the system does not allow that, as the user nobody (from root),
with limits for memory, file sizes and processor time; and are ended when their folder grows too
large.

The file `equivalent` lists mutants that cannot be caught because they behave the same, with the
reason. They are not run, unless --known asks for it. The exit status is 1 when others survive.
"""

import argparse
import hashlib
import json
import os
import re
import resource
import shutil
import signal
import subprocess
import sys
import tempfile
import time

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
# Nothing here can be seen by a test that has to be the same everywhere: how memory is asked for.
# And no program holds the records: tests alone need them.
NOT_MUTATED = ("src/support/Large_pages", "src/support/Huge_pages", "src/records/")
MAX_BYTES = 3 << 30  # of the folder that tests write to
MAX_MEMORY = 8 << 30
MAX_CPU = 900  # seconds of one process
MAX_WALL = 2400  # seconds of one ctest
NOBODY = 65534

# What to build, which tests of these to run, and the seconds that one of them may take, the ones that
# need little first.
GOLDEN = "^golden/[^n]"
RANDOM = "^(differential$|differential_coin$|differential/uk)"
STAGES = (
    (["plexor", "plexor_fake_clock"], ["-R", GOLDEN], 60),
    ([], ["-R", RANDOM], 300),
    (["all"], ["-R", "^(unit|library)/"], 120),
    ([], ["-E", f"{GOLDEN}|{RANDOM}|^(unit|library)/|^golden/network"], 600),
)

# The source is formatted, so that binary operators have blanks around them and templates do not.
SWAPS = {
    " < ": (" <= ", " > "),
    " <= ": (" < ", " > "),
    " > ": (" >= ", " < "),
    " >= ": (" > ", " < "),
    " == ": (" != ",),
    " != ": (" == ",),
    " && ": (" || ",),
    " || ": (" && ",),
    " + ": (" - ",),
    " - ": (" + ",),
    " * ": (" + ",),
    " / ": (" * ",),
    " += ": (" -= ",),
    " -= ": (" += ",),
    " & ": (" | ",),
    " | ": (" & ",),
    " << ": (" >> ",),
    " >> ": (" << ",),
}
TOKEN = re.compile(
    "|".join(re.escape(token) for token in sorted(SWAPS, key=len, reverse=True))
    + r"|(?<![\w.'\"])[01](?![\w.'\"])|\btrue\b|\bfalse\b|\bbreak;|\bcontinue;|\+\+|--|!(?=[\w(])"
)
# A whole statement on one line that is a call or an assignment.
STATEMENT = re.compile(r"^\s+(?!return\b|throw\b|using\b|break\b|continue\b)[\w:>.\[\]()*+-]+"
                       r"(\(.*\)|\s[-+|&^*]?=\s.*|\+\+|--);$")
DECLARATION = re.compile(r"^\s+(auto|const|constexpr|static|std::\w+|bool|int|char|double|unsigned)"
                         r"\b.*\s[\w{]+(\(.*\)|\{.*\}|\s=.*)?;$")


def without_texts(line, in_comment):
    """The line with comments and literals blanked out, of the same length."""
    out = []
    i = 0
    quote = ""
    while i < len(line):
        two = line[i : i + 2]
        if in_comment:
            if two == "*/":
                in_comment = False
                out.append("  ")
                i += 2
                continue
            out.append(" ")
        elif quote:
            if line[i] == "\\":
                out.append("  ")
                i += 2
                continue
            if line[i] == quote:
                quote = ""
            out.append("_")
        elif two == "//":
            out.append(" " * (len(line) - i))
            break
        elif two == "/*":
            in_comment = True
            out.append(" ")
        elif line[i] == '"' or (line[i] == "'" and not (i and line[i - 1].isdigit())):
            quote = line[i]
            out.append("_")
        else:
            out.append(line[i])
        i += 1
    return "".join(out)[: len(line)], in_comment


def replacements(token):
    if token in SWAPS:
        return SWAPS[token]
    return {
        "0": ("1",),
        "1": ("0", "2"),
        "true": ("false",),
        "false": ("true",),
        "break;": ("continue;",),
        "continue;": ("break;",),
        "++": ("--",),
        "--": ("++",),
        "!": ("",),
    }[token]


def mutants_of(path):
    """(line number, column, old text, new text) of every mutant of one file."""
    with open(os.path.join(ROOT, path), encoding="utf-8") as file:
        lines = file.read().split("\n")
    in_comment = False
    for number, line in enumerate(lines):
        code, in_comment = without_texts(line, in_comment)
        if line.startswith("#") or "static_assert" in code or "assert(" in code:
            continue
        if code.lstrip().startswith(("template", "namespace", "using ", "class ", "struct ")):
            continue
        for match in TOKEN.finditer(code):
            for new in replacements(match.group()):
                yield number, match.start(), match.group(), new
        if STATEMENT.match(code) and not DECLARATION.match(code):
            begin = len(line) - len(line.lstrip())
            yield number, begin, line[begin:], ";"


def all_mutants(only):
    files = subprocess.run(
        ["git", "ls-files", "src"], cwd=ROOT, check=True, capture_output=True, text=True
    ).stdout.split()
    mutants = []
    for path in files:
        if not path.endswith((".cpp", ".h")) or path.startswith(NOT_MUTATED):
            continue
        if only and not path.startswith(only):
            continue
        with open(os.path.join(ROOT, path), encoding="utf-8") as file:
            lines = file.read().split("\n")
        seen = {}
        for number, column, old, new in mutants_of(path):
            text = lines[number].strip()
            # Named by what the line says and not by its number, which other changes move.
            name = f"{path} | {text} | {old.strip()} -> {new.strip() or 'nothing'}"
            seen[name] = seen.get(name, 0) + 1
            if seen[name] > 1:
                name += f" | no. {seen[name]}"
            mutants.append(
                {"name": name, "path": path, "line": number, "column": column, "old": old, "new": new}
            )
    return mutants


def chosen(mutants, seed, count):
    def rank(mutant):
        return hashlib.sha256(f"{seed}\n{mutant['name']}".encode()).hexdigest()

    return sorted(mutants, key=rank)[:count]


def folder_bytes(folder):
    total = 0
    for place, _, names in os.walk(folder):
        for name in names:
            try:
                total += os.lstat(os.path.join(place, name)).st_blocks * 512
            except OSError:
                pass
    return total


class Sandbox:
    """Runs commands that can write below one folder only."""

    SCRIPT = (
        'mount --make-rprivate / && mount --bind "$1" "$1" && mount -o remount,bind,ro / '
        '&& cd "$2" && shift 2 && exec "$@"'
    )

    def __init__(self, work):
        self.work = work
        self.tmp = os.path.join(work, "tmp")
        self.prefix = []
        self.nobody = False
        for unshare in (["unshare", "-m"], ["unshare", "-r", "-m"]):
            prefix = unshare + ["sh", "-c", self.SCRIPT, "sh", work]
            probe = f'! touch "{ROOT}/.mutation-probe" 2>/dev/null && touch "{work}/probe"'
            if subprocess.run(prefix + [work, "sh", "-c", probe], capture_output=True).returncode == 0:
                self.prefix = prefix
                break
        else:
            probe = os.path.join(ROOT, ".mutation-probe")
            if os.path.exists(probe):
                os.remove(probe)
            if os.getuid() != 0:
                print("no mount namespace here: mutants can write wherever you can", flush=True)
                return
            print("no mount namespace here: tests run as the user nobody", flush=True)
            self.nobody = True
            nobody = str(NOBODY)
            self.prefix = ["setpriv", "--reuid", nobody, "--regid", nobody, "--clear-groups"]
            self.prefix += ["sh", "-c", 'cd "$1" && shift && exec "$@"', "sh"]

    @staticmethod
    def limits():
        resource.setrlimit(resource.RLIMIT_AS, (MAX_MEMORY, MAX_MEMORY))
        resource.setrlimit(resource.RLIMIT_FSIZE, (1 << 30, 1 << 30))
        resource.setrlimit(resource.RLIMIT_CPU, (MAX_CPU, MAX_CPU))
        resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
        os.nice(max(0, 10 - os.nice(0)))

    def run(self, command, folder, log):
        """The exit status, or a word why it was ended."""
        shutil.rmtree(self.tmp, ignore_errors=True)
        os.makedirs(self.tmp)
        if self.nobody:
            subprocess.run(["chown", "-R", str(NOBODY), self.tmp, folder], check=True)
        environment = dict(os.environ, TMPDIR=self.tmp, HOME=self.tmp, LC_ALL="C")
        # Whatever keeps compiled files for the builder may not be the tests' to write to.
        environment.pop("CMAKE_CXX_COMPILER_LAUNCHER", None)
        # The process group is ended as a whole: tests start programs of their own.
        process = subprocess.Popen(
            (self.prefix + [folder] if self.prefix else []) + command,
            cwd=folder,
            stdout=log,
            stderr=subprocess.STDOUT,
            stdin=subprocess.DEVNULL,
            env=environment,
            start_new_session=True,
            preexec_fn=self.limits,
        )
        begin = time.monotonic()
        before = folder_bytes(self.work)
        why = None
        while process.poll() is None:
            try:
                process.wait(2)
            except subprocess.TimeoutExpired:
                if time.monotonic() - begin > MAX_WALL:
                    why = "time"
                elif folder_bytes(self.work) - before > MAX_BYTES:
                    why = "disk"
            if why:
                break
        try:
            os.killpg(process.pid, signal.SIGKILL)
        except ProcessLookupError:
            pass
        status = process.wait()
        return why or status


def build(work, log, targets, jobs):
    return subprocess.run(
        ["cmake", "--build", os.path.join(work, "build"), f"-j{jobs}", "--target"] + targets,
        stdout=log,
        stderr=subprocess.STDOUT,
    ).returncode


def first_failure(text):
    # A list of tests that were skipped may come before that of the failed ones.
    found = re.search(r"\d+ - (\S+) \((?!Skipped|Disabled)(.*)\)", text)
    return f"{found.group(1)} ({found.group(2)})" if found else "?"


def judge(mutant, work, sandbox, jobs):
    """killed, survived or not built; and by which test."""
    path = os.path.join(work, "source", mutant["path"])
    with open(path, encoding="utf-8") as file:
        original = file.read()
    lines = original.split("\n")
    line = lines[mutant["line"]]
    column = mutant["column"]
    assert line[column : column + len(mutant["old"])] == mutant["old"]
    lines[mutant["line"]] = line[:column] + mutant["new"] + line[column + len(mutant["old"]) :]
    log_name = os.path.join(work, "log")
    try:
        with open(path, "w", encoding="utf-8") as file:
            file.write("\n".join(lines))
        build_dir = os.path.join(work, "build")
        for targets, tests, seconds in STAGES:
            with open(log_name, "w+", encoding="utf-8", errors="replace") as log:
                if targets and build(work, log, targets, jobs) != 0:
                    return "not built", ""
                log.seek(0)
                log.truncate()
                outcome = sandbox.run(
                    ["ctest", f"-j{jobs}", "--stop-on-failure", "--timeout", str(seconds)] + tests,
                    build_dir,
                    log,
                )
                log.seek(0)
                if outcome != 0:
                    by = first_failure(log.read()) if isinstance(outcome, int) else outcome
                    return "killed", by
        return "survived", ""
    finally:
        with open(path, "w", encoding="utf-8") as file:
            file.write(original)


def prepare(work, sandbox, jobs):
    """A copy of the source, built and found good. It is made anew when the source has changed."""
    files = subprocess.run(
        ["git", "ls-files", "-z"], cwd=ROOT, check=True, capture_output=True, text=True
    ).stdout.split("\0")[:-1]
    state = hashlib.sha256()
    for name in sorted(files):
        if os.path.isfile(os.path.join(ROOT, name)) and not name.startswith("tests/mutation/"):
            with open(os.path.join(ROOT, name), "rb") as file:
                state.update(name.encode() + b"\0" + file.read())
    stamp = os.path.join(work, "stamp")
    if os.path.exists(stamp) and open(stamp, encoding="ascii").read() == state.hexdigest():
        # An interrupted run may have left a mutant there.
        for name in files:
            if name.startswith("src/"):
                source, copy = os.path.join(ROOT, name), os.path.join(work, "source", name)
                if open(source, "rb").read() != open(copy, "rb").read():
                    shutil.copyfile(source, copy)
        return
    for name in ("source", "build", "results"):
        path = os.path.join(work, name)
        if os.path.isdir(path):
            shutil.rmtree(path)
        elif os.path.exists(path):
            os.remove(path)
    for name in files:
        target = os.path.join(work, "source", name)
        os.makedirs(os.path.dirname(target), exist_ok=True)
        if os.path.isfile(os.path.join(ROOT, name)):
            shutil.copy2(os.path.join(ROOT, name), target)
    print("building the source as it is, and running its tests", flush=True)
    subprocess.run(
        ["cmake", "--preset", "test", "-B", os.path.join(work, "build"), "-D", "PLEXOR_WERROR=OFF"],
        cwd=os.path.join(work, "source"),
        check=True,
        stdout=subprocess.DEVNULL,
    )
    log_name = os.path.join(work, "log")
    with open(log_name, "w", encoding="utf-8") as log:
        if build(work, log, ["all"], jobs) != 0:
            sys.exit(f"the source does not build: {log_name}")
    with open(log_name, "w", encoding="utf-8") as log:
        command = ["ctest", f"-j{jobs}", "--timeout", "1200", "-E", "^golden/network"]
        if sandbox.run(command, os.path.join(work, "build"), log) != 0:
            sys.exit(f"the tests fail without any change: {log_name}")
    with open(stamp, "w", encoding="ascii") as file:
        file.write(state.hexdigest())


def known_equivalents():
    known = {}
    with open(os.path.join(os.path.dirname(os.path.abspath(__file__)), "equivalent"), encoding="utf-8") as file:
        name = None
        for line in file.read().split("\n"):
            if line.startswith("src/"):
                name = line
                known[name] = ""
            elif line.startswith("    ") and name:
                known[name] += line.strip() + " "
    return known


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--count", type=int, default=60)
    parser.add_argument("--only", default="")
    parser.add_argument("--list", action="store_true")
    parser.add_argument("--work", default=os.path.join(tempfile.gettempdir(), "plexor-mutation"))
    parser.add_argument("--jobs", type=int, default=os.cpu_count())
    parser.add_argument("--known", action="store_true", help="run those of `equivalent`, too")
    options = parser.parse_args()

    mutants = all_mutants(options.only)
    sample = chosen(mutants, options.seed, options.count)
    print(f"{len(mutants)} mutants, {len(sample)} of them by seed {options.seed}", flush=True)
    if options.list:
        for mutant in sample:
            print(mutant["name"])
        return 0

    work = os.path.realpath(options.work)
    os.makedirs(work, exist_ok=True)
    sandbox = Sandbox(work)
    prepare(work, sandbox, options.jobs)
    results_name = os.path.join(work, "results")
    results = {}
    if os.path.exists(results_name):
        with open(results_name, encoding="utf-8") as file:
            results = {entry["name"]: entry for entry in map(json.loads, file)}
    known = known_equivalents()
    for number, mutant in enumerate(sample, 1):
        if mutant["name"] in known and mutant["name"] not in results and not options.known:
            results[mutant["name"]] = {"name": mutant["name"], "outcome": "equivalent", "by": ""}
        if mutant["name"] not in results:
            outcome, by = judge(mutant, work, sandbox, options.jobs)
            entry = {"name": mutant["name"], "outcome": outcome, "by": by}
            results[mutant["name"]] = entry
            with open(results_name, "a", encoding="utf-8") as file:
                file.write(json.dumps(entry) + "\n")
        entry = results[mutant["name"]]
        print(f"{number}: {entry['outcome']}  {mutant['name']}  {entry['by']}", flush=True)

    count = {"killed": 0, "survived": 0, "not built": 0, "equivalent": 0}
    survivors = []
    for mutant in sample:
        outcome = results[mutant["name"]]["outcome"]
        if outcome == "survived" and mutant["name"] in known:
            outcome = "equivalent"
        if outcome in ("survived", "equivalent"):
            survivors.append(mutant["name"])
        count[outcome] += 1
    behaving = count["killed"] + count["survived"]
    print(f"\nkilled {count['killed']} of {behaving}"
          + (f" ({100 * count['killed'] / behaving:.1f} %)" if behaving else "")
          + f"; {count['equivalent']} known to be equivalent, {count['not built']} did not compile")
    for name in survivors:
        print(f"survives: {name}\n    {known.get(name, 'NOT KNOWN TO BE EQUIVALENT')}")
    return 1 if count["survived"] else 0


if __name__ == "__main__":
    sys.exit(main())
