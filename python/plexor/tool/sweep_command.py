# SPDX-License-Identifier: MIT
"""`plexor-tool sweep`: thresholds by k."""
from __future__ import annotations

import argparse
import importlib
import importlib.util
import re
import sys
from pathlib import Path
from typing import Any

from plexor.tool.console import Console, ToolError, UsageError


def add_arguments(parser: argparse.ArgumentParser) -> None:
    """The options of the command."""
    parser.add_argument("file", metavar="FILE", help="a link file")
    parser.add_argument("-w", "--lower", metavar="LIST", help="lower thresholds of link weights: 1,2,5 or FROM:TO:STEP")
    parser.add_argument("-W", "--upper", metavar="LIST", help="upper thresholds of link weights")
    parser.add_argument("-I", "--intensity", metavar="LIST", help="thresholds of intensity (take -k with it)")
    parser.add_argument("-k", metavar="LIST", help="only these k: 4,5 or 3-6 (default: all)")
    parser.add_argument("-D", "--directed", action="store_true", help="links are directed")
    parser.add_argument("-o", "--output", metavar="DIR", help="directory of the sweep (default: FILE_sweep); one of the same sweep is gone on with")
    parser.add_argument("-f", "--format", choices=["table", "csv"], default="table", help="what standard output gets (default: table)")
    parser.add_argument("-j", "--jobs", type=int, default=1, metavar="N", help="this many jobs side by side (default: 1)")
    parser.add_argument("--dask", metavar="ADDRESS", help="run the jobs on the workers of this Dask scheduler")
    parser.add_argument("--print-jobs", action="store_true", help="print a command for each job that is not done; afterwards the same sweep without this collects")
    parser.add_argument("--job", type=int, metavar="N", help="run this job alone and leave its rows in the directory")


def ks_of(text: str) -> list[int]:
    """The k of "3-6,9". ValueError if it is not that."""
    ks: list[int] = []
    for part in text.split(","):
        found = re.fullmatch(r"\s*(\d{1,6})(?:-(\d{1,6}))?\s*", part)
        if found is None:
            raise ValueError(f"'{part.strip()}' is no k and no range of k")
        first = int(found[1])
        last = int(found[2] or first)
        if last < first:
            raise ValueError(f"'{part.strip()}' ends before it begins")
        ks += range(first, last + 1)
    return ks


def _bar(console: Console) -> Any:
    """A bar with the remaining time where a person looks, if tqdm is there; else None."""
    if console.quiet or not sys.stderr.isatty() or importlib.util.find_spec("tqdm") is None:
        return None
    return importlib.import_module("tqdm").tqdm(desc="jobs", unit="job", leave=False)


def execute(arguments: argparse.Namespace, console: Console) -> int:
    """Runs the sweep; returns the exit status. UsageError, ToolError and OSError say why it could not."""
    from plexor import PlexorError
    from plexor import sweeping as sweeps

    try:
        thresholds = {name: sweeps.grid(getattr(arguments, name)) if getattr(arguments, name) is not None else ()
                      for name in ("lower", "upper", "intensity")}
        ks = None if arguments.k is None else ks_of(arguments.k)
    except ValueError as error:
        raise UsageError(str(error)) from error
    if arguments.jobs < 1:
        raise UsageError("-j must be 1 or more")
    directory = arguments.output or f"{arguments.file}_sweep"
    try:
        if arguments.print_jobs or arguments.job is not None:
            plan = sweeps.make_plan(arguments.file, ks=ks, directed=arguments.directed, **thresholds)
            folder = sweeps.open_directory(plan, directory)
            if arguments.print_jobs:
                for job in sweeps.pending(plan, folder):
                    print(sweeps.job_command(plan, job, directory))
                return 0
            if not 0 <= arguments.job < len(plan.jobs):
                raise UsageError(f"there are jobs 0 to {len(plan.jobs) - 1}")
            if plan.jobs[arguments.job] in sweeps.pending(plan, folder):
                sweeps.do_job(plan, plan.jobs[arguments.job], folder)
            return 0

        bar = _bar(console)

        def progress(done: int, n_jobs: int) -> None:
            if bar is None:
                console.detail(f"{done} of {n_jobs} jobs done")
                return
            if bar.total is None:  # what an earlier sweep has done counts, but took no time now
                bar.reset(total=n_jobs)
                bar.initial = done
            bar.n = done
            bar.refresh()

        client = None
        if arguments.dask is not None:
            distributed: Any = importlib.import_module("distributed")
            client = distributed.Client(arguments.dask)
        try:
            result = sweeps.sweep(arguments.file, directory, ks=ks, directed=arguments.directed, processes=arguments.jobs,
                                  client=client, progress=progress, **thresholds)
        finally:
            if bar is not None:
                bar.close()
            if client is not None:
                client.close()
    except (sweeps.SweepError, PlexorError) as error:
        raise ToolError(str(error)) from error
    sys.stdout.write(result.csv() if arguments.format == "csv" else result.table())
    console.say(f"{Path(directory)}: sweep.csv and sweep.html")
    return 0
