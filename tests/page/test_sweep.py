# SPDX-License-Identifier: MIT
"""Sweeps: the guide's rows, the same bytes however the end is reached, refusals."""
from __future__ import annotations

import argparse
import csv
import io
import os
import random
import shlex
import shutil
import subprocess
import sys
import time
from pathlib import Path

import networks
import pytest
from plexor.sweeping import COLUMNS, Row, SweepError, grid, job_command, make_plan, suggest, sweep
from plexor.tool import sweep_command
from plexor.tool.console import Console, ToolError, UsageError

os.environ.setdefault("PLEXOR", networks.PLEXOR)
AIRPORTS = networks.ROOT / "examples" / "us-airports.txt"
FACULTY = networks.ROOT / "examples" / "uk-faculty.txt"
TOOL = (sys.executable, "-m", "plexor.tool")


def contents(folder: Path) -> dict[str, bytes]:
    return {str(path.relative_to(folder)): path.read_bytes() for path in sorted(folder.rglob("*")) if path.is_file()}


def test_the_rows_of_the_guide(tmp_path: Path) -> None:
    result = sweep(AIRPORTS, tmp_path / "s", lower=grid("20000,25000:28000:1000,30000"), ks=[7])
    assert [(row.lower, row.largest, row.second) for row in result.rows] == [
        ("20000", 31, 0), ("25000", 25, 0), ("26000", 23, 7), ("27000", 16, 13), ("28000", 14, 10), ("30000", 14, 0)]
    assert [(s.k, s.lower) for s in result.suggestions] == [(7, "27000")]
    assert "largest 23, second 7 at 26000" in result.suggestions[0].reason
    without = sweep(AIRPORTS, tmp_path / "t", ks=[3, 6])
    # The guide: k=3 516 16 7 7 6 6, 20 in several; k=6 198 12 11 10 8 7, 10 in several.
    assert [(r.k, r.largest, r.second, r.shared, r.covered) for r in without.rows] == [(3, 516, 16, 20, 754 - 146), (6, 198, 12, 10, 754 - 495)]


@pytest.mark.skipif("PLEXOR_DATA" not in os.environ, reason="larger networks are not shipped")
def test_a_suggestion_for_proteins_with_weights(tmp_path: Path) -> None:
    result = sweep(Path(os.environ["PLEXOR_DATA"]) / "collins2007.txt", tmp_path / "s", lower=grid("0.7:0.9:0.05"), ks=[4])
    assert [(row.largest, row.second) for row in result.rows] == [(159, 64), (154, 62), (148, 59), (141, 58), (52, 34)]
    assert [(s.k, s.lower) for s in result.suggestions] == [(4, "0.90")]
    assert "the giant (largest 141, second 58 at 0.85) has fallen apart" in result.suggestions[0].reason


def test_the_table_by_hand(tmp_path: Path) -> None:
    # Two cliques of four that share one node, and a triangle: at k=3 sizes 4, 4, 3; at k=4 sizes 4, 4.
    text = networks.clique_of(list("abcd")) + networks.clique_of(list("defg")) + networks.clique_of(list("xyz"))
    (tmp_path / "net.txt").write_text(text)
    result = sweep(tmp_path / "net.txt", tmp_path / "s")
    lines = list(csv.DictReader(io.StringIO((tmp_path / "s" / "sweep.csv").read_text())))
    assert list(lines[0]) == list(COLUMNS)
    assert list(lines[0].values()) == ["", "", "", "3", "3", "4", "4", "1", "0.25", "10", "1", "10"]
    assert list(lines[1].values()) == ["", "", "", "4", "2", "4", "4", "1", "0", "7", "1", "10"]
    assert result.csv() == (tmp_path / "s" / "sweep.csv").read_text()


def test_nothing_left_at_a_threshold(tmp_path: Path) -> None:
    result = sweep(FACULTY, tmp_path / "s", lower=["0", "1000"], ks=[4])
    assert (result.rows[1].communities, result.rows[1].largest, result.rows[1].nodes) == (0, 0, 0)


def test_upper_thresholds_and_intensities(tmp_path: Path) -> None:
    both = sweep(FACULTY, tmp_path / "s", lower=["1"], upper=["8", "12"], ks=[3])
    assert [(row.lower, row.upper) for row in both.rows] == [("1", "8"), ("1", "12")]
    assert both.rows[0].covered <= both.rows[1].covered
    weak = sweep(FACULTY, tmp_path / "t", intensity=["2", "6"], ks=[3])
    assert weak.rows[0].covered > weak.rows[1].covered > 0


def test_side_by_side_gives_the_same_bytes(tmp_path: Path) -> None:
    for j in (1, 2):
        sweep(FACULTY, tmp_path / str(j), lower=grid("1:8:1"), processes=j)
    assert contents(tmp_path / "1") == contents(tmp_path / "2")


def test_the_engine_in_this_process_gives_the_same_bytes(tmp_path: Path, monkeypatch: pytest.MonkeyPatch) -> None:
    pytest.importorskip("plexor._engine")
    sweeps = {"lower": {"lower": grid("1:8:1")}, "intensity": {"intensity": ["2", "6"], "ks": [3, 4]},
              "directed": {"lower": ["1", "2"], "upper": ["9"], "ks": [4], "directed": True}}
    for name, options in sweeps.items():
        sweep(FACULTY, tmp_path / "program" / name, **options)
    monkeypatch.delenv("PLEXOR")
    for name, options in sweeps.items():
        sweep(FACULTY, tmp_path / "engine" / name, processes=2, **options)
    assert contents(tmp_path / "program") == contents(tmp_path / "engine")


def test_jobs_by_gnu_parallel_give_the_same_bytes(tmp_path: Path) -> None:
    if shutil.which("parallel") is None:
        pytest.skip("GNU parallel is not there")
    thresholds = grid("1:6:1")
    sweep(FACULTY, tmp_path / "one", lower=thresholds)
    plan = make_plan(FACULTY, lower=thresholds)
    commands = "\n".join(job_command(plan, job, tmp_path / "many", TOOL) for job in plan.jobs)
    subprocess.run(["parallel", "-j", "2"], input=commands, text=True, check=True)
    assert not (tmp_path / "many" / "sweep.csv").exists()
    sweep(FACULTY, tmp_path / "many", lower=thresholds)
    assert contents(tmp_path / "one") == contents(tmp_path / "many")


def test_jobs_by_dask_give_the_same_bytes(tmp_path: Path) -> None:
    distributed = pytest.importorskip("distributed")
    thresholds = grid("1:6:1")
    sweep(FACULTY, tmp_path / "one", lower=thresholds)
    with distributed.LocalCluster(n_workers=2, threads_per_worker=1, dashboard_address=None, silence_logs=50) as cluster:
        with distributed.Client(cluster) as client:
            sweep(FACULTY, tmp_path / "many", lower=thresholds, client=client)
    assert contents(tmp_path / "one") == contents(tmp_path / "many")


def test_the_recipe_for_snakemake_gives_the_same_bytes(tmp_path: Path, monkeypatch: pytest.MonkeyPatch) -> None:
    if shutil.which("snakemake") is None:
        pytest.skip("Snakemake is not there")
    # The recipe as the page has it, with plexor-tool as it is found here.
    page = (networks.ROOT / "docs" / "many-machines.md").read_text().split("### Snakemake\n")[1].split("\n### ")[0]
    recipe = "".join(line[4:] + "\n" if line.startswith("    ") else "\n" for line in page.split("\n"))
    assert recipe.count("plexor-tool sweep net.txt -w 0.1:0.9:0.1 -o sweep") == 2
    tool = tmp_path / "plexor-tool"
    tool.write_text("#!/bin/sh\nexec " + shlex.join(TOOL) + ' "$@"\n')
    tool.chmod(0o755)
    (tmp_path / "Snakefile").write_text(recipe)
    lines = FACULTY.read_text().split("\n")
    weighted = [f"{a} {b} {int(w) / 16}" for a, b, w in (line.split() for line in lines if line and line[0] != "#")]
    (tmp_path / "net.txt").write_text("\n".join(weighted) + "\n")
    environment = dict(os.environ, PATH=f"{tmp_path}:{os.environ['PATH']}", HOME=str(tmp_path))
    # Debian's Snakemake runs on Debian's Python, whatever other one is first in the path.
    subprocess.run(["/usr/bin/python3", shutil.which("snakemake") or "", "--cores", "2", "--quiet"],
                   cwd=tmp_path, env=environment, check=True, capture_output=True, text=True)
    monkeypatch.chdir(tmp_path)
    sweep("net.txt", tmp_path / "one", lower=grid("0.1:0.9:0.1"))
    assert contents(tmp_path / "one") == contents(tmp_path / "sweep")


def test_killed_ten_times_and_resumed(tmp_path: Path) -> None:
    thresholds = "0.5:14:0.5"
    sweep(FACULTY, tmp_path / "whole", lower=grid(thresholds))
    command = [*TOOL, "sweep", str(FACULTY), "-w", thresholds, "-o", str(tmp_path / "killed"), "-q"]
    command.remove("-q")
    draw = random.Random(3)
    n_kills = 0
    for _ in range(10):
        process = subprocess.Popen(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        # The moment is random; nothing depends on how far it gets.
        time.sleep(0.2 + draw.random() * 0.5)
        if process.poll() is None:
            n_kills += 1
        process.kill()
        process.wait()
    subprocess.run(command, check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    assert contents(tmp_path / "whole") == contents(tmp_path / "killed"), n_kills


def test_a_directory_of_another_sweep_is_refused(tmp_path: Path) -> None:
    sweep(FACULTY, tmp_path / "s", lower=["1"])
    before = contents(tmp_path / "s")
    with pytest.raises(SweepError, match="another network or other thresholds"):
        sweep(FACULTY, tmp_path / "s", lower=["2"])
    (tmp_path / "full").mkdir()
    (tmp_path / "full" / "letter").write_text("dear")
    with pytest.raises(SweepError, match="holds no sweep"):
        sweep(FACULTY, tmp_path / "full", lower=["1"])
    assert contents(tmp_path / "s") == before
    assert contents(tmp_path / "full") == {"letter": b"dear"}


def test_a_run_that_fails_says_why(tmp_path: Path) -> None:
    (tmp_path / "net.txt").write_text("a b x\n")
    with pytest.raises(SweepError, match="weights above 1"):
        sweep(tmp_path / "net.txt", tmp_path / "s", lower=["1"])
    with pytest.raises(SweepError):
        sweep(tmp_path / "net.txt", tmp_path / "s", lower=["1"], processes=2)
    with pytest.raises(OSError):
        sweep(tmp_path / "missing.txt", tmp_path / "t")
    with pytest.raises(SweepError, match="undirected"):
        sweep(FACULTY, tmp_path / "t", intensity=["1"], directed=True)
    with pytest.raises(SweepError, match="3 or more"):
        sweep(FACULTY, tmp_path / "t", ks=[2])


def test_grids() -> None:
    assert grid("0.1:0.5:0.1") == ("0.1", "0.2", "0.3", "0.4", "0.5")
    assert grid("3, 1,3") == ("3", "1")
    assert grid("-1,2e2") == ("-1", "200")
    for wrong in ("", "a", "1:2", "1:2:0", "2:1:1", "nan", "0:1:0.00000001"):
        with pytest.raises(ValueError):
            grid(wrong)
    assert sweep_command.ks_of("3-5,9") == [3, 4, 5, 9]
    for wrong in ("", "x", "5-3", "1,,2"):
        with pytest.raises(ValueError):
            sweep_command.ks_of(wrong)


def test_suggestions() -> None:
    def row(lower: str, largest: int, second: int, n: int = 9, variance: float = 1.0, nodes: int = 100) -> Row:
        return Row(lower, None, None, 4, n, largest, second, largest / second if second else float("nan"), variance, 0, 0, nodes)

    plan = make_plan(FACULTY, lower=["1", "2", "3", "10"])
    found = suggest(plan, [row("10", 4, 4, variance=2), row("2", 30, 10, variance=9), row("3", 20, 10), row("1", 90, 10)])
    assert [(s.lower, s.reason.split(" ")[0]) for s in found] == [("3", "the"), ("2", "the")]
    assert "giant (largest 30, second 10 at 2) has fallen apart" in found[0].reason
    assert "variance 9" in found[1].reason
    assert [s.lower for s in suggest(plan, [row("1", 9, 8, nodes=1000), row("2", 4, 4, nodes=900)])] == ["1"]
    assert suggest(plan, [row("1", 90, 0, n=1)]) == []


def arguments(*words: str) -> argparse.Namespace:
    parser = argparse.ArgumentParser()
    sweep_command.add_arguments(parser)
    return parser.parse_args(words)


def test_the_command(tmp_path: Path, capsys: pytest.CaptureFixture[str]) -> None:
    words = [str(FACULTY), "-w", "1,2", "-k", "3-4", "-o", str(tmp_path / "s")]
    assert sweep_command.execute(arguments(*words, "--print-jobs"), Console()) == 0
    lines = capsys.readouterr().out.splitlines()
    assert [shlex.split(line)[-6:] for line in lines] == [["--job", str(i), "-w", "1,2", "-k", "3,4"] for i in (0, 1)]
    assert sweep_command.execute(arguments(*words, "--job", "1"), Console()) == 0
    assert sweep_command.execute(arguments(*words, "--print-jobs"), Console()) == 0
    assert len(capsys.readouterr().out.splitlines()) == 1
    assert sweep_command.execute(arguments(*words, "-f", "csv"), Console()) == 0
    out = capsys.readouterr()
    assert out.out.splitlines()[0] == ",".join(COLUMNS) and len(out.out.splitlines()) == 5
    assert "sweep.csv" in out.err
    for wrong in (["-w", "x"], ["-k", "x"], ["-j", "0"], ["--job", "7"]):
        with pytest.raises(UsageError):
            sweep_command.execute(arguments(*(words + wrong)), Console())
    with pytest.raises(ToolError):
        sweep_command.execute(arguments(*(words + ["-w", "7"])), Console())
