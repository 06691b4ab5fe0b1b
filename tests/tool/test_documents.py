# SPDX-License-Identifier: MIT
"""What is written about the tool is true: the page, the manual pages, the completions."""

from __future__ import annotations

import os
import re
import subprocess
import sys
from pathlib import Path

import pytest
from plexor.formats import FORMATS
from plexor.formats.exports import EXPORTS
from plexor.tool.cli import COMMANDS, command_parser
from plexor.tool.completion import SHELLS

from conftest import PROGRAM, ROOT, tool_environment

PAGE = (ROOT / "docs/formats-in-and-out.md").read_text(encoding="utf-8")
# The sections whose commands are run, by page.
WALKS = {"docs/formats-in-and-out.md": "## A walk through\n", "README.md": "## plexor-tool\n"}


def commands_of(page: str) -> list[tuple[str, str]]:
    """The commands of the walk through, with what they print."""
    text = (ROOT / page).read_text(encoding="utf-8")
    walk = text.split(WALKS[page], 1)[1].split("\n## ", 1)[0]
    found: list[tuple[str, str]] = []
    for block in re.findall(r"(?:^(?:    .*)?\n)+", walk, re.MULTILINE):
        if "    $ " not in block:
            continue
        for line in re.sub(r"^    ", "", block.strip("\n"), flags=re.MULTILINE).split("\n"):
            if line.startswith("$ "):
                found.append((line[2:], ""))
            else:
                found[-1] = (found[-1][0], found[-1][1] + line + "\n")
    return found


@pytest.mark.parametrize("page", WALKS)
def test_every_command_of_a_page_does_what_it_says(
    page: str, tmp_path: Path, program: Path
) -> None:
    bin_folder = tmp_path / "bin"
    bin_folder.mkdir()
    (bin_folder / "plexor").symlink_to(PROGRAM)
    tool = bin_folder / "plexor-tool"
    tool.write_text(f'#!/bin/sh\nexec {sys.executable} -m plexor.tool "$@"\n')
    tool.chmod(0o755)
    work = tmp_path / "work"
    work.mkdir()
    (work / "examples").symlink_to(ROOT / "examples")
    commands = commands_of(page)
    assert len(commands) > 8
    (first, table) = commands[0]
    if first == "cat flights.csv":
        (work / "flights.csv").write_text(table)
    environment = {**tool_environment(), "PATH": f"{bin_folder}:{os.environ['PATH']}"}
    for command, expected in commands:
        done = subprocess.run(
            ["bash", "-c", command + " 2>&1"],
            cwd=work,
            env=environment,
            capture_output=True,
            check=False,
        )
        printed = "".join(f"{line.rstrip(' ')}\n" for line in done.stdout.decode().splitlines())
        assert printed == expected, command


def test_the_page_lists_all_formats() -> None:
    ins, out = PAGE.split("## Out", 1)
    for name in FORMATS:
        assert f"`{name}`" in ins
    for name, format in EXPORTS.items():
        assert f"| `{name}` | `{format.file}` |" in out


def options_of(name: str) -> set[str]:
    return {o for action in command_parser(name)._actions for o in action.option_strings}


@pytest.mark.parametrize("name", COMMANDS)
def test_the_manual_page_has_all_options(name: str) -> None:
    path = ROOT / f"docs/man/plexor-tool-{name}.1"
    text = path.read_text(encoding="utf-8").split(".SH OPTIONS", 1)[1].split(".SH EXIT", 1)[0]
    heads = re.findall(r"^\.TP\n\.B[RI]* (.*)$", text, re.MULTILINE)
    found = {
        option.replace("\\-", "-")
        for head in heads
        for option in re.findall(r"(?<![\w])(?:\\-)+[A-Za-z](?:\w|\\-)*", head)
    }
    assert found == options_of(name)


@pytest.mark.parametrize("page", ["plexor-tool", *(f"plexor-tool-{name}" for name in COMMANDS)])
def test_manual_pages_are_set_without_a_warning(page: str) -> None:
    done = subprocess.run(
        ["groff", "-man", "-ww", "-z", "-K", "utf8", ROOT / f"docs/man/{page}.1"],
        capture_output=True,
        check=True,
    )
    assert done.stderr == b""


@pytest.mark.parametrize("shell", SHELLS)
def test_completions_are_those_of_the_options(shell: str) -> None:
    make, file = SHELLS[shell]
    path = ROOT / "packaging/completion" / file
    assert path.read_text(encoding="utf-8") == make()
    subprocess.run([shell, "-n", path], check=True)


@pytest.mark.parametrize(
    ("line", "expected"),
    [
        (["plexor-tool", "con"], {"convert"}),
        (["plexor-tool", "convert", "--for"], {"--format"}),
        (["plexor-tool", "convert", "-f", "g"], {"gml", "graphml", "gexf"}),
        (["plexor-tool", "export", "-f", "cd"], {"cdlib"}),
        (["plexor-tool", "check", "--decimal", ""], {".", ","}),
        (["plexor-tool", "sw"], {"sweep"}),
        (["plexor-tool", "report", "--names", ""], {"unescape", "raw"}),
        (["plexor-tool", "compare", "--over-"], {"--over-time"}),
    ],
)
def test_bash_completes(line: list[str], expected: set[str]) -> None:
    script = (
        f". {ROOT}/packaging/completion/plexor-tool\n"
        'COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); _plexor_tool; printf "%s\\n" "${COMPREPLY[@]}"'
    )
    done = subprocess.run(
        ["bash", "-c", script, "bash", *line], capture_output=True, check=True, text=True
    )
    assert set(done.stdout.split()) == expected


def test_every_command_says_what_it_does() -> None:
    for name, (_, does) in COMMANDS.items():
        assert does[0].islower() and not does.endswith("."), name
