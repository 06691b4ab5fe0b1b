# SPDX-License-Identifier: MIT
"""The report page as bytes: policy, escapes, size, sameness; what it draws is tested in a browser."""
from __future__ import annotations

import base64
import hashlib
import json
import re
from pathlib import Path

import networks
import plexor
import pytest
from plexor.report import make_report, write_report


@pytest.fixture(scope="module")
def airports(tmp_path_factory: pytest.TempPathFactory) -> Path:
    return networks.run(*networks.sources()["airports"], tmp_path_factory.mktemp("airports"))


def blocks(page: bytes) -> dict[str, object]:
    found = re.findall(r'<script type="application/json" id="plexor-([a-z0-9]+)">(.*?)</script>', page.decode(), re.S)
    return {name: json.loads(text) for name, text in found}


def test_same_results_same_bytes(airports: Path, tmp_path: Path) -> None:
    first = make_report(plexor.load(airports)).content
    write_report(plexor.load(airports), tmp_path / "page.html")
    assert (tmp_path / "page.html").read_bytes() == first


def test_results_in_memory_give_the_same_page(airports: Path) -> None:
    pytest.importorskip("plexor._engine")
    found = plexor.find_communities(plexor.Network.read(networks.sources()["airports"][0]))
    assert make_report(found).content == make_report(plexor.load(airports)).content


def test_the_policy_allows_what_is_in_the_page_and_nothing_else(airports: Path) -> None:
    page = make_report(plexor.load(airports)).content.decode()
    policy = re.search(r'http-equiv="Content-Security-Policy" content="([^"]*)"', page)
    assert policy is not None
    assert policy[1].startswith("default-src 'none'; img-src data:; base-uri 'none'; form-action 'none'; script-src 'sha256-")
    assert "unsafe" not in policy[1] and "http" not in policy[1]
    codes = re.findall(r"<(?:script|style)(?: id=\"__________cytoscape_stylesheet\")?>(.*?)</(?:script|style)>", page, re.S)
    assert len(codes) == 3
    for code in codes:
        digest = base64.b64encode(hashlib.sha256(code.encode()).digest()).decode()
        assert f"'sha256-{digest}'" in policy[1]
    assert not re.search(r"\son[a-z]+=|<iframe|<object|<base|<form", page[:page.index("<script type")])


def test_no_trace_of_the_machine_or_the_day(airports: Path) -> None:
    page = make_report(plexor.load(airports)).content.decode()
    assert str(airports) not in page and str(networks.ROOT) not in page
    assert "us-airports.txt" in page


def test_names_are_escaped(tmp_path: Path) -> None:
    results = networks.run(*networks.sources()["names"], tmp_path)
    page = make_report(plexor.load(results), title="<img src=x onerror=alert(3)>").content.decode()
    assert "<script>alert" not in page and "<img src=x" not in page
    assert "\\u003cscript\\u003ealert(1)" in page
    names = blocks(page.encode())["names"]
    assert isinstance(names, list) and sorted(names) == sorted(networks.SCRIPTS)


def test_names_are_unescaped_where_the_input_says_so(tmp_path: Path) -> None:
    text = networks.clique_of(["New%20York", "100%25", "b", "c"])
    raw = networks.run(text, [], tmp_path / "raw")
    marked = networks.run(f"{plexor.results.ESCAPE_MARKER}\n{text}", [], tmp_path / "marked")

    def names(results: Path, **options: bool) -> set[str]:
        found = blocks(make_report(plexor.load(results), **options).content)["names"]
        assert isinstance(found, list)
        return set(found)

    assert names(raw) == {"New%20York", "100%25", "b", "c"}
    assert names(raw, unescape=True) == {"New York", "100%", "b", "c"}
    assert names(marked) == {"New York", "100%", "b", "c"}
    assert names(marked, unescape=False) == {"New%20York", "100%25", "b", "c"}


def test_what_does_not_fit_is_left_out_and_said(airports: Path) -> None:
    whole = make_report(plexor.load(airports))
    assert whole.left_out == ()
    size = len(whole.content)
    without_links = make_report(plexor.load(airports), max_bytes=size - 100)
    assert len(without_links.content) <= size - 100
    assert len(without_links.left_out) == 1 and "4,623 links" in without_links.left_out[0]
    assert "links" not in blocks(without_links.content)
    smaller = make_report(plexor.load(airports), max_bytes=size - 30000)
    assert len(smaller.content) <= size - 30000
    head = blocks(smaller.content)["head"]
    assert isinstance(head, dict)
    assert head["leftOut"] == list(smaller.left_out) and smaller.left_out[1].startswith("All communities at k = 3")
    assert 3 not in head["kept"] and 27 in head["kept"]


def test_only_some_k(airports: Path) -> None:
    head = blocks(make_report(plexor.load(airports), ks=[5, 6]).content)["head"]
    assert isinstance(head, dict) and head["kept"] == [6, 5]
    with pytest.raises(KeyError, match="no results at k=99"):
        make_report(plexor.load(airports), ks=[99])


def test_links_are_all_there(tmp_path: Path) -> None:
    for name in ("planted", "planted-directed", "airports-intensity"):
        result = plexor.load(networks.run(*networks.sources()[name], tmp_path / name))
        data = blocks(make_report(result).content)
        stored = data["links"]
        assert isinstance(stored, dict)
        found, source = [], 0
        target = 0
        for i, (step, more) in enumerate(zip(stored["source"], stored["target"])):
            if step or i == 0:
                source += step
                target = source
            target += more
            found.append((source, target))
        wanted = sorted({(min(a, b), max(a, b)) for a, b in zip(result.links.source.tolist(), result.links.target.tolist())})
        assert found == wanted
        for k in result.ks:
            inside = {(min(a, b), max(a, b)) for a, b in zip(result[k].links.source.tolist(), result[k].links.target.tolist())}
            if "top" in stored:
                assert {link for link, top in zip(found, stored["top"]) if top >= k} == inside
            else:
                assert {found[i] for i in stored["inside"][str(k)]} == inside
        if result.parameters.directed:
            given = set(zip(result.links.source.tolist(), result.links.target.tolist()))
            for (a, b), direction in zip(found, stored["direction"]):
                assert direction == ((a, b) in given) + 2 * ((b, a) in given)


def test_a_page_that_cannot_be_written_leaves_what_was_there(airports: Path, tmp_path: Path) -> None:
    (tmp_path / "folder").mkdir()
    with pytest.raises(OSError):
        write_report(plexor.load(airports), tmp_path / "folder")
    with pytest.raises(OSError):
        write_report(plexor.load(airports), tmp_path / "missing" / "page.html")
    assert [path.name for path in tmp_path.iterdir()] == ["folder"]
