# SPDX-License-Identifier: MIT
"""The commands report and compare: where data goes, what is refused."""
from __future__ import annotations

import argparse
import json
from pathlib import Path
from types import ModuleType

import networks
import pytest
from plexor.tool import compare_command, report_command
from plexor.tool.cli import main
from plexor.tool.console import Console, ToolError, UsageError


@pytest.fixture(scope="module")
def results(tmp_path_factory: pytest.TempPathFactory) -> list[str]:
    folder = tmp_path_factory.mktemp("results")
    return [str(networks.run(*networks.sources()[name], folder / name)) for name in ("airports", "airports-directed", "planted")]


def execute(module: ModuleType, *words: str) -> int:
    parser = argparse.ArgumentParser()
    module.add_arguments(parser)
    status: int = module.execute(parser.parse_args(words), Console())
    return status


def test_report(results: list[str], tmp_path: Path, capfdbinary: pytest.CaptureFixture[bytes]) -> None:
    page = tmp_path / "page.html"
    assert execute(report_command, results[0], "-o", str(page)) == 0
    assert b"open it with a browser" in capfdbinary.readouterr().err
    assert execute(report_command, results[0], "-o", "-") == 0
    assert capfdbinary.readouterr().out == page.read_bytes()
    with pytest.raises(ToolError, match="-O"):
        execute(report_command, results[0], "-o", str(page))
    page.write_text("old")
    assert execute(report_command, results[0], "-o", str(page), "-O", "-k", "6") == 0
    assert page.stat().st_size > 500000
    with pytest.raises(ToolError, match="no results at k=50"):
        execute(report_command, results[0], "-o", "-", "-k", "50")
    with pytest.raises(ToolError):
        execute(report_command, str(tmp_path), "-o", "-")


def test_compare(results: list[str], tmp_path: Path, capsys: pytest.CaptureFixture[str]) -> None:
    assert execute(compare_command, results[0], results[0], "-k", "6") == 0
    assert "NMI (maximum)  1.000000" in capsys.readouterr().out
    assert execute(compare_command, results[0], results[1], "-k", "6", "-f", "json") == 0
    found = json.loads(capsys.readouterr().out)
    assert 0.9 < found["scores"][0]["nmi"] < 1 and len(found["matches"][0]) == 10
    assert execute(compare_command, results[0], results[0], "-k", "6", "-k", "5", "-f", "csv") == 0
    assert len(capsys.readouterr().out.splitlines()) == 1 + 10 + 20
    assert execute(compare_command, results[0], results[1], results[0], "--over-time", "-k", "6") == 0
    assert "shrank" in capsys.readouterr().out
    page = tmp_path / "page.html"
    assert execute(compare_command, results[0], results[1], "-k", "6", "-o", str(page)) == 0
    assert page.read_bytes().startswith(b"<!doctype html>")
    for wrong in ([results[0]], results, [*results[:2], "--threshold", "0.5"], [*results[:2], "--over-time", "--threshold", "1", "-k", "6"],
                  results[:2], [*results[:2], "-k", "3", "-k", "4", "-k", "5"]):
        with pytest.raises(UsageError):
            execute(compare_command, *wrong)
    with pytest.raises(ToolError, match="no results at k=99"):
        execute(compare_command, *results[:2], "-k", "99")


def test_exit_statuses(results: list[str], tmp_path: Path, capsys: pytest.CaptureFixture[str]) -> None:
    page = str(tmp_path / "page.html")
    links = tmp_path / "links.txt"
    links.write_text("a b 1\nb c 2\nc a 3\n")
    good = [["report", results[0], "-o", page, "-q"], ["compare", results[0], results[1], "-k", "6"],
            ["sweep", str(links), "-o", str(tmp_path / "sweep"), "-w", "0,1"]]
    failed = [["report", results[0], "-o", page], ["report", str(tmp_path)], ["report", results[0], "-o", str(tmp_path / "none" / "x")],
              ["compare", results[0], str(tmp_path), "-k", "6"], ["compare", *results[:2], "-k", "6", "-o", page],
              ["sweep", str(tmp_path / "none.txt")], ["sweep", str(links), "-o", str(tmp_path / "sweep"), "-w", "0"]]
    wrong = [["report"], ["report", results[0], "-k", "x"], ["compare", results[0]], ["sweep", str(links), "-w", "x"],
             ["sweep", str(links), "-j", "0"]]
    for status, lines in ((0, good), (1, failed), (2, wrong)):
        for line in lines:
            assert main(line) == status, line
            said = capsys.readouterr().err
            assert "Traceback" not in said
            assert status == 0 or "plexor-tool: " in said, line
