# SPDX-License-Identifier: MIT
"""Thresholds by k: what a network looks like at each, as a table, with suggestions where to look.

A sweep is a plan of jobs, one for each combination of thresholds; a job finds the communities at every
wanted k and leaves its rows in a file of the sweep's directory, whole or not at all. So a sweep that was
killed goes on where it was, jobs can run side by side, on other machines too, and the end has the same
bytes however it was reached.
"""
from __future__ import annotations

import hashlib
import importlib
import importlib.util
import json
import math
import os
import shlex
import shutil
import subprocess
import sys
import tempfile
from collections.abc import Callable, Iterable, Sequence
from concurrent.futures import ThreadPoolExecutor, as_completed
from dataclasses import asdict, dataclass
from decimal import Decimal, InvalidOperation
from pathlib import Path
from typing import TYPE_CHECKING, Any

import numpy as np

from plexor.report.page import write_whole

if TYPE_CHECKING:
    from plexor.results import Level

__all__ = ["Job", "Plan", "Row", "Suggestion", "Sweep", "SweepError", "grid", "run_job", "sweep"]

COLUMNS = ("lower", "upper", "intensity", "k", "communities", "largest", "second", "ratio", "variance",
           "covered", "shared", "nodes")


#: Networks of at most so many nodes have too few communities for the ratio alone.
SMALL_NETWORK = 200


class SweepError(Exception):
    """A sweep that cannot go on, with what to do about it."""


@dataclass(frozen=True)
class Job:
    """One combination of thresholds; None where there is none. Values are as they were written."""

    number: int
    lower: str | None
    upper: str | None
    intensity: str | None

    def words(self) -> str:
        """For people: "weights above 3", "all links"."""
        parts = [f"{name} {value}" for name, value in (
            ("weights above", self.lower), ("weights below", self.upper), ("intensity above", self.intensity))
            if value is not None]
        return ", ".join(parts) or "all links"


@dataclass(frozen=True)
class Plan:
    """What a sweep does. ks: the wanted k; None for every k that there is."""

    input: str
    digest: str
    directed: bool
    lower: tuple[str, ...]
    upper: tuple[str, ...]
    intensity: tuple[str, ...]
    ks: tuple[int, ...] | None

    @property
    def jobs(self) -> list[Job]:
        """All jobs: by lower threshold, then upper, then intensity, as they were given."""
        none: tuple[str | None, ...] = (None,)
        jobs: list[Job] = []
        for lower in self.lower or none:
            for upper in self.upper or none:
                for intensity in self.intensity or none:
                    jobs.append(Job(len(jobs), lower, upper, intensity))
        return jobs

    @property
    def weighted(self) -> bool:
        return bool(self.lower or self.upper or self.intensity)


@dataclass(frozen=True)
class Row:
    """One line of the table.

    ratio: largest by second, nan without a second.  variance: of the sizes of all communities but the largest,
    nan where there is no other.  covered: nodes in a community.  shared: nodes in several.
    nodes: nodes that have a link at these thresholds.
    """

    lower: str | None
    upper: str | None
    intensity: str | None
    k: int
    communities: int
    largest: int
    second: int
    ratio: float
    variance: float
    covered: int
    shared: int
    nodes: int


@dataclass(frozen=True)
class Suggestion:
    """A place to look at, and why."""

    k: int
    lower: str | None
    upper: str | None
    intensity: str | None
    reason: str


@dataclass(frozen=True)
class Sweep:
    """The rows of all jobs, by job and then by ascending k, and suggestions."""

    plan: Plan
    rows: tuple[Row, ...]
    suggestions: tuple[Suggestion, ...]

    def csv(self) -> str:
        """The table; fields that say nothing are empty."""
        lines = [",".join(COLUMNS)]
        for row in self.rows:
            lines.append(",".join(_field(getattr(row, name)) for name in COLUMNS))
        return "\n".join(lines) + "\n"

    def table(self) -> str:
        """The table for people, and the suggestions."""
        shown = [name for name in COLUMNS
                 if name not in ("lower", "upper", "intensity") or any(getattr(row, name) is not None for row in self.rows)]
        cells = [list(shown)] + [[_field(getattr(row, name), short=True) or "-" for name in shown] for row in self.rows]
        widths = [max(len(line[i]) for line in cells) for i in range(len(shown))]
        lines = ["  ".join(cell.rjust(width) for cell, width in zip(line, widths)) for line in cells]
        if self.suggestions:
            lines += ["", "Places to look at:"]
            lines += [f"  k={s.k}, {Job(0, s.lower, s.upper, s.intensity).words()}: {s.reason}" for s in self.suggestions]
        return "\n".join(lines) + "\n"


def _field(value: object, short: bool = False) -> str:
    if value is None:
        return ""
    if isinstance(value, float):
        return "" if math.isnan(value) else f"{value:.{4 if short else 9}g}"
    return str(value)


def grid(text: str) -> tuple[str, ...]:
    """Thresholds from a text: "0.2,0.5,0.9", or "0.1:0.5:0.1" for from, to, step, or both by commas.

    ValueError with what is wrong. Steps are decimal: 0.1:0.3:0.1 is 0.1, 0.2, 0.3.
    """
    values: list[str] = []
    for part in text.split(","):
        pieces = part.strip().split(":")
        try:
            numbers = [Decimal(piece) for piece in pieces]
        except InvalidOperation:
            raise ValueError(f"'{part.strip()}' is no number and no FROM:TO:STEP") from None
        if not all(number.is_finite() for number in numbers):
            raise ValueError(f"'{part.strip()}' is not finite")
        if len(numbers) == 1:
            values.append(format(numbers[0], "f"))
        elif len(numbers) == 3:
            first, last, step = numbers
            if step <= 0 or last < first:
                raise ValueError(f"'{part.strip()}' needs a step above 0 and an end that is not before the beginning")
            if (last - first) / step > 10000:
                raise ValueError(f"'{part.strip()}' has more than 10,000 steps")
            while first <= last:
                values.append(format(first, "f"))
                first += step
        else:
            raise ValueError(f"'{part.strip()}' is no number and no FROM:TO:STEP")
    return tuple(dict.fromkeys(values))


def make_plan(path: str | os.PathLike[str], *, lower: Sequence[str] = (), upper: Sequence[str] = (),
              intensity: Sequence[str] = (), ks: Iterable[int] | None = None, directed: bool = False) -> Plan:
    """The plan of a sweep. OSError if the link file cannot be read, SweepError for what does not go together."""
    if directed and intensity:
        raise SweepError("intensities are for undirected links: leave out one of them")
    wanted = None if ks is None else tuple(sorted(set(ks)))
    if wanted is not None and (not wanted or wanted[0] < 3):
        raise SweepError("k must be 3 or more")
    with open(path, "rb") as file:
        digest = hashlib.file_digest(file, "sha256").hexdigest()
    return Plan(os.path.abspath(path), digest, directed, tuple(lower), tuple(upper), tuple(intensity), wanted)


def _plan_text(plan: Plan) -> str:
    # The path is not in it: a directory may be carried to another machine.
    return json.dumps({
        "plexor_sweep": 1, "sha256": plan.digest, "directed": plan.directed, "lower": plan.lower,
        "upper": plan.upper, "intensity": plan.intensity, "k": plan.ks}, indent=1) + "\n"


# ---- one job ----

def _measure(level: Level, n_nodes: int) -> list[int | float]:
    sizes = np.sort(np.diff(level.nodes.offsets))[::-1]
    _, times = np.unique(level.nodes.members, return_counts=True)
    n = len(sizes)
    largest, second = (int(sizes[i]) if n > i else 0 for i in (0, 1))
    rest = sizes[1:].astype(np.int64)
    # Whole numbers up to the one division, so that the result does not depend on the order of sums.
    total, squares, others = int(rest.sum()), int((rest * rest).sum()), len(rest)
    variance = (others * squares - total * total) / (others * others) if others else math.nan
    return [n, largest, second, largest / second if second else math.nan, variance,
            len(times), int((times > 1).sum()), n_nodes]


def run_job(plan: Plan, job: Job, scratch: str | os.PathLike[str]) -> str:
    """Finds the communities of one job; returns its rows as text. scratch: a folder for what the program writes.

    In this process where the module has its engine, else by the program `plexor` (named by the environment
    variable PLEXOR, or found in the PATH). SweepError if neither is there or the run failed.
    """
    rows: dict[int, list[int | float]] = {}
    if importlib.util.find_spec("plexor._engine") is not None and "PLEXOR" not in os.environ:
        result: Any = _find_in_process(plan, job)
    else:
        result = _find_by_program(plan, job, scratch)
    for k in sorted(result.ks):
        if plan.ks is None or k in plan.ks:
            rows[k] = _measure(result[k], len(result.names))
    return json.dumps({"job": job.number, "nodes": len(result.names),
                       "rows": [[k, *(None if isinstance(v, float) and math.isnan(v) else v for v in row)]
                                for k, row in rows.items()]}) + "\n"


def _find_in_process(plan: Plan, job: Job) -> Any:
    import plexor

    module: Any = plexor
    network = module.Network.read(plan.input, weighted=plan.weighted)
    bounds = None
    if job.lower is not None or job.upper is not None:
        bounds = (None if job.lower is None else float(job.lower), None if job.upper is None else float(job.upper))
    return module.find_communities(
        network, plan.ks, directed=plan.directed, weights=bounds,
        intensity=None if job.intensity is None else float(job.intensity))


def _find_by_program(plan: Plan, job: Job, scratch: str | os.PathLike[str]) -> Any:
    from plexor.results import load

    program = os.environ.get("PLEXOR") or shutil.which("plexor")
    if program is None:
        raise SweepError("the program plexor is not there: install it, or name it by the environment variable PLEXOR")
    with tempfile.TemporaryDirectory(prefix=f".run-{job.number}-", dir=scratch) as folder:
        command = [program, "-i", plan.input, "-o", str(Path(folder) / "results")]
        for switch, value in (("-w", job.lower), ("-W", job.upper), ("-I", job.intensity)):
            if value is not None:
                # A leading blank keeps a negative number from being read as a switch.
                command += [switch, f" {value}" if value.startswith("-") else value]
        if plan.directed:
            command.append("-D")
        if plan.ks is not None and len(plan.ks) == 1:
            command += ["-k", str(plan.ks[0])]
        with open(Path(folder) / "log", "w+b") as log:
            status = subprocess.run(command, stdout=log, stderr=log, check=False).returncode
            found = [path for path in sorted(Path(folder).iterdir()) if path.name.startswith("results")]
            log.seek(0)
            text = log.read().decode("utf-8", "replace")
        # The program's exit status is always 0; a run that came to its end prints its name a second time.
        if status != 0 or text.count(" Plexor\n") < 2 or " WARNING: " in text or not found:
            error = [line.strip() for line in text.splitlines() if "ERROR" in line or "WARNING" in line]
            last = error or [line.strip() for line in text.splitlines() if line.strip()][-1:]
            raise SweepError(f"the run at {job.words()} failed: {' '.join(last) or f'exit status {status}'}")
        result = load(found[0])
        # Read all that is needed before the folder goes.
        for k in result.ks:
            if plan.ks is None or k in plan.ks:
                result[k].nodes  # noqa: B018
        len(result.names)
        return result


# ---- the whole ----

def _job_path(directory: Path, job: Job) -> Path:
    return directory / "jobs" / f"{job.number:05d}.json"


def open_directory(plan: Plan, directory: str | os.PathLike[str]) -> Path:
    """Makes a sweep's directory, or checks that the one there is of the same plan. SweepError if it is not."""
    folder = Path(directory)
    text = _plan_text(plan)
    plan_file = folder / "plan.json"
    if plan_file.exists():
        if plan_file.read_text(encoding="utf-8") != text:
            raise SweepError(f"'{folder}' holds a sweep of another network or other thresholds; name another directory")
    elif folder.exists() and any(entry.name != "jobs" and not entry.name.startswith(".plan.json.") for entry in folder.iterdir()):
        raise SweepError(f"'{folder}' is not empty and holds no sweep; name another directory")
    (folder / "jobs").mkdir(parents=True, exist_ok=True)
    if not plan_file.exists():
        write_whole(plan_file, text.encode())
    return folder


def pending(plan: Plan, folder: Path) -> list[Job]:
    """The jobs that have no rows yet."""
    return [job for job in plan.jobs if not _job_path(folder, job).exists()]


def do_job(plan: Plan, job: Job, folder: str | os.PathLike[str]) -> int:
    """Runs one job and leaves its rows in the sweep's directory; returns its number."""
    write_whole(_job_path(Path(folder), job), run_job(plan, job, Path(folder) / "jobs").encode())
    return job.number


def _do_job_apart(plan: Plan, job: Job, folder: Path) -> None:
    """As do_job, in a process of its own."""
    child = "import sys; from plexor.sweeping import _child; sys.exit(_child())"
    done = subprocess.run(
        [sys.executable, "-c", child], input=json.dumps([asdict(plan), job.number, os.fspath(folder)]), text=True,
        capture_output=True, check=False, env={**os.environ, "PYTHONPATH": os.pathsep.join(filter(None, sys.path))})
    if done.returncode != 0:
        raise SweepError(done.stderr.strip().splitlines()[-1] if done.stderr.strip()
                         else f"the job at {job.words()} ended with status {done.returncode}")


def _child() -> int:
    stored, number, folder = json.load(sys.stdin)
    plan = Plan(**{name: tuple(value) if isinstance(value, list) else value for name, value in stored.items()})
    try:
        do_job(plan, plan.jobs[number], folder)
    except (SweepError, OSError, ValueError) as error:
        print(str(error).replace("\n", " "), file=sys.stderr)
        return 1
    return 0


def sweep(path: str | os.PathLike[str], directory: str | os.PathLike[str], *, lower: Sequence[str] = (),
          upper: Sequence[str] = (), intensity: Sequence[str] = (), ks: Iterable[int] | None = None,
          directed: bool = False, processes: int = 1, client: Any = None,
          progress: Callable[[int, int], None] | None = None) -> Sweep:
    """Runs a sweep, or what is left of it, and writes sweep.csv and sweep.html into its directory.

    path: a link file.  directory: for the sweep; one of the same plan is gone on with.
    lower, upper, intensity: thresholds as texts (see grid), the same meaning as the program's -w, -W and -I.
    ks: the wanted k, 3 or more; None for all.  processes: how many jobs run side by side.
    client: a distributed.Client; jobs then run on its workers, which must see path under the same name.
    progress: called with the number of jobs done and of all.
    Raises SweepError if the directory holds another sweep or a run fails, OSError for files, ValueError.
    """
    if processes < 1:
        raise ValueError("processes must be 1 or more")
    plan = make_plan(path, lower=lower, upper=upper, intensity=intensity, ks=ks, directed=directed)
    folder = open_directory(plan, directory)
    todo = pending(plan, folder)
    n_jobs = len(plan.jobs)
    done = n_jobs - len(todo)

    def tell() -> None:
        if progress is not None:
            progress(done, n_jobs)

    tell()
    if client is not None:
        distributed: Any = importlib.import_module("distributed")
        futures = {client.submit(run_job, plan, job, tempfile.gettempdir(), pure=False): job for job in todo}
        for future in distributed.as_completed(list(futures)):
            write_whole(_job_path(folder, futures[future]), future.result().encode())
            done += 1
            tell()
    elif processes == 1 or len(todo) < 2:
        for job in todo:
            do_job(plan, job, folder)
            done += 1
            tell()
    else:
        # A thread for each process that is waited for. Processes of their own program, not of
        # multiprocessing, which would run the user's script once more.
        with ThreadPoolExecutor(min(processes, len(todo))) as pool:
            try:
                for future in as_completed([pool.submit(_do_job_apart, plan, job, folder) for job in todo]):
                    future.result()
                    done += 1
                    tell()
            except BaseException:
                pool.shutdown(wait=False, cancel_futures=True)
                raise
    return collect(plan, folder)


def collect(plan: Plan, folder: Path) -> Sweep:
    """Puts the rows of all jobs together and writes sweep.csv and sweep.html. SweepError if jobs are missing."""
    from plexor.report.sweep_page import make_sweep_page

    missing = pending(plan, folder)
    if missing:
        raise SweepError(f"{len(missing)} of {len(plan.jobs)} jobs are not done")
    found: list[tuple[Job, int, dict[int, list[Any]]]] = []
    for job in plan.jobs:
        stored = json.loads(_job_path(folder, job).read_text(encoding="utf-8"))
        found.append((job, stored["nodes"], {row[0]: row[1:] for row in stored["rows"]}))
    ks = plan.ks or sorted({k for _, _, rows in found for k in rows})
    rows = []
    for job, nodes, by_k in found:
        for k in ks:
            n, largest, second, ratio, variance, covered, shared, _ = by_k.get(k, [0, 0, 0, None, None, 0, 0, nodes])
            rows.append(Row(job.lower, job.upper, job.intensity, k, n, largest, second,
                            math.nan if ratio is None else ratio, math.nan if variance is None else variance, covered, shared, nodes))
    result = Sweep(plan, tuple(rows), tuple(suggest(plan, rows)))
    write_whole(folder / "sweep.csv", result.csv().encode())
    write_whole(folder / "sweep.html", make_sweep_page(result))
    for left in (folder / "jobs").glob(".*"):  # of runs that were killed
        shutil.rmtree(left, ignore_errors=True) if left.is_dir() else left.unlink(missing_ok=True)
    return result


def suggest(plan: Plan, rows: Sequence[Row]) -> list[Suggestion]:
    """Places to look at: for each k, from the loosest threshold on, the first at which the giant community has
    fallen apart; and where the sizes of the others vary most. Neither is a best one."""
    found: list[Suggestion] = []
    varied = [name for name in ("lower", "upper", "intensity") if len(getattr(plan, name)) > 1]
    if len(varied) != 1:
        groups: dict[tuple[str | None, ...], list[Row]] = {}
        for row in rows:
            groups.setdefault((row.lower, row.upper, row.intensity), []).append(row)
        for group in groups.values() if not varied else ():
            first = next((row for row in sorted(group, key=lambda row: row.k) if _apart(row)), None)
            if first is not None:
                found.append(_suggestion(first, f"from k=3 up the first k without a giant: the largest has {first.largest} nodes, "
                                                f"the second {first.second}, of {first.communities} communities"))
        return found
    name = varied[0]
    for k in sorted({row.k for row in rows}):
        own = sorted((row for row in rows if row.k == k), key=lambda row: Decimal(getattr(row, name)), reverse=name == "upper")
        for i, row in enumerate(own):
            if not _apart(row):
                continue
            if i == 0:
                reason = (f"already at the loosest threshold tried there is no giant (largest {row.largest}, second {row.second}): "
                          "the edge of percolation lies before it")
            else:
                before = own[i - 1]
                had = f"largest {before.largest}" + (f", second {before.second}" if before.second else ", no second")
                reason = (f"the giant ({had} at {getattr(before, name)}) has fallen apart: largest {row.largest}, second {row.second}, "
                          f"ratio {row.ratio:.2g}")
            found.append(_suggestion(row, reason))
            break
        if max(row.nodes for row in own) > SMALL_NETWORK:
            continue
        varying = [row for row in own if not math.isnan(row.variance) and row.communities >= 4 and row.variance > 0]
        if varying:
            most = max(varying, key=lambda row: row.variance)  # the loosest of equal ones
            if not any(s.k == k and getattr(s, name) == getattr(most, name) for s in found):
                found.append(_suggestion(most, f"the sizes of the communities beside the largest vary most here (variance {most.variance:.3g}, "
                                               f"{most.communities} communities): the sign of the edge in small networks"))
    return found


def _apart(row: Row) -> bool:
    """Whether there is no giant: the largest has at most twice the nodes of the second."""
    return row.second > 0 and row.largest <= 2 * row.second


def _suggestion(row: Row, reason: str) -> Suggestion:
    return Suggestion(row.k, row.lower, row.upper, row.intensity, reason)


def job_command(plan: Plan, job: Job, directory: str | os.PathLike[str], program: Sequence[str] = ("plexor-tool",)) -> str:
    """The command that runs one job, for a shell."""
    words = [*program, "sweep", plan.input, "-o", os.path.abspath(directory), "--job", str(job.number)]
    for switch, values in (("-w", plan.lower), ("-W", plan.upper), ("-I", plan.intensity)):
        if values:
            words.append(f"{switch}={','.join(values)}" if values[0].startswith("-") else switch)
            if not values[0].startswith("-"):
                words.append(",".join(values))
    if plan.ks is not None:
        words += ["-k", ",".join(map(str, plan.ks))]
    if plan.directed:
        words.append("-D")
    return shlex.join(words)
