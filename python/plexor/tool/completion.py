# SPDX-License-Identifier: MIT
"""Makes the completions of `plexor-tool` for shells from its options:

    python3 -m plexor.tool.completion {bash|zsh|fish}
"""

from __future__ import annotations

import argparse
import sys
from collections.abc import Callable

from plexor.tool.cli import COMMANDS, command_parser

_NOTE = "# Made by python3 -m plexor.tool.completion {shell}; do not edit."


def _options(name: str) -> list[argparse.Action]:
    """The options of a command, without its files."""
    return [action for action in command_parser(name)._actions if action.option_strings]


def _takes_value(action: argparse.Action) -> bool:
    return action.nargs != 0


def _takes_file(action: argparse.Action) -> bool:
    return action.metavar in ("FILE", "DIR", "DIRECTORY", "PATH")


def _words(action: argparse.Action) -> list[str]:
    """What the option's value can be."""
    if action.choices is not None:
        return [str(choice) for choice in action.choices]
    if action.dest == "format" and "all" in (action.help or ""):
        from plexor.formats.exports import EXPORTS

        return [*EXPORTS, "all"]
    return []


def _one_line(action: argparse.Action) -> str:
    text = (action.help or "").replace("%%", "%").split(";")[0]
    return text if len(text) <= 60 else text[:57] + "..."


def bash() -> str:
    """Completion for Bash."""
    lines = [
        "# SPDX-License-Identifier: MIT",
        _NOTE.format(shell="bash"),
        "",
        "_plexor_tool() {",
        '    local current="${COMP_WORDS[COMP_CWORD]}"',
        '    local previous="${COMP_WORDS[COMP_CWORD - 1]}"',
        '    local command="${COMP_WORDS[1]:-}"',
        '    local options="" values="" files=no',
        "    COMPREPLY=()",
        '    if [ "$COMP_CWORD" -eq 1 ]; then',
        f'        mapfile -t COMPREPLY < <(compgen -W "{" ".join(COMMANDS)} --help --version" '
        '-- "$current")',
        "        return",
        "    fi",
        '    case "$command $previous" in',
    ]
    for name in COMMANDS:
        for action in _options(name):
            if not _takes_value(action):
                continue
            patterns = " | ".join(f'"{name} {option}"' for option in action.option_strings)
            if _takes_file(action):
                does = "files=yes"
            else:
                does = f'values="{" ".join(_words(action))}" files=none'
            lines.append(f"    {patterns}) {does} ;;")
    lines += ["    *)", '        case "$command" in']
    for name in COMMANDS:
        every = " ".join(o for action in _options(name) for o in action.option_strings)
        lines.append(f'        {name}) options="{every}" ;;')
    lines += [
        "        esac",
        '        case "$current" in',
        "        -*) ;;",
        "        *) files=yes ;;",
        "        esac",
        "        ;;",
        "    esac",
        '    if [ "$files" = yes ]; then',
        "        compopt -o filenames 2>/dev/null",
        '        mapfile -t COMPREPLY < <(compgen -f -- "$current")',
        "    else",
        '        mapfile -t COMPREPLY < <(compgen -W "$options $values" -- "$current")',
        "    fi",
        "}",
        "",
        "complete -F _plexor_tool plexor-tool",
    ]
    return "\n".join(lines) + "\n"


def _quoted(text: str) -> str:
    return "'" + text.replace("'", "'\\''") + "'"


def zsh() -> str:
    """Completion for zsh."""
    lines = [
        "#compdef plexor-tool",
        "# SPDX-License-Identifier: MIT",
        _NOTE.format(shell="zsh"),
        "",
        "_plexor_tool() {",
        "    if ((CURRENT == 2)); then",
        "        local -a commands=(",
        *(f"            {_quoted(f'{name}:{does}')}" for name, (_, does) in COMMANDS.items()),
        "        )",
        "        _describe command commands",
        "        compadd -- --help --version",
        "        return",
        "    fi",
        "    local command=$words[2]",
        "    shift words",
        "    ((CURRENT--))",
        "    case $command in",
    ]
    for name in COMMANDS:
        lines.append(f"    {name})")
        lines.append("        _arguments \\")
        for action in _options(name):
            text = _one_line(action).replace("[", "(").replace("]", ")").replace(":", " -")
            value = ""
            if _takes_file(action):
                value = ":file:_files"
            elif _words(action):
                value = f":value:({' '.join(_words(action))})"
            elif _takes_value(action):
                value = ":value:"
            for option in action.option_strings:
                lines.append(f"            {_quoted(f'{option}[{text}]{value}')} \\")
        lines += ["            '*:file:_files'", "        ;;"]
    lines += ["    esac", "}", "", '_plexor_tool "$@"']
    return "\n".join(lines) + "\n"


def fish() -> str:
    """Completion for fish."""
    names = " ".join(COMMANDS)
    none = f'"not __fish_seen_subcommand_from {names}"'
    lines = [
        "# SPDX-License-Identifier: MIT",
        _NOTE.format(shell="fish"),
        "",
        f"complete -c plexor-tool -f -n {none} -s h -l help -d 'Show the commands'",
        f"complete -c plexor-tool -f -n {none} -l version -d 'Show the version'",
    ]
    for name, (_, does) in COMMANDS.items():
        lines.append(f"complete -c plexor-tool -f -n {none} -a {name} -d {_quoted(does)}")
    for name in COMMANDS:
        for action in _options(name):
            line = f'complete -c plexor-tool -n "__fish_seen_subcommand_from {name}"'
            for option in action.option_strings:
                line += f" -l {option[2:]}" if option.startswith("--") else f" -s {option[1:]}"
            if _words(action):
                line += f" -x -a {_quoted(' '.join(_words(action)))}"
            elif _takes_value(action):
                line += " -r" if _takes_file(action) else " -x"
            lines.append(f"{line} -d {_quoted(_one_line(action))}")
    return "\n".join(lines) + "\n"


SHELLS: dict[str, tuple[Callable[[], str], str]] = {
    "bash": (bash, "plexor-tool"),
    "zsh": (zsh, "_plexor-tool"),
    "fish": (fish, "plexor-tool.fish"),
}

if __name__ == "__main__":
    sys.stdout.write(SHELLS[sys.argv[1]][0]())
