# SPDX-License-Identifier: MIT
from collections.abc import Callable
from typing import Any
import numpy as np
import numpy.typing as npt

_Numbers = npt.NDArray[np.uint32]
_Ints = npt.NDArray[np.int64]
_Floats = npt.NDArray[np.float64]

version: str

class Search:
    def __init__(
        self,
        source: _Numbers,
        target: _Numbers,
        weight: _Floats | None,
        n_nodes: int,
        directed: bool,
        lower: float | None,
        upper: float | None,
        intensity: float | None,
        time_limit: float | None,
        threads: int,
        progress: Callable[[int, int], None] | None,
    ) -> None: ...
    @property
    def n_exact_cliques(self) -> int: ...
    @property
    def largest(self) -> int: ...
    def nodes(self) -> _Numbers: ...
    def links(self) -> tuple[_Numbers, _Numbers, _Floats]: ...
    def cliques(self) -> tuple[_Numbers, _Ints]: ...
    def at(self, k: int) -> Level: ...

class LevelsAhead:
    def __init__(self, search: Search, ks: list[int], threads: int) -> None: ...
    def next(self) -> Level: ...

class Level:
    @property
    def n_exact(self) -> int: ...
    def nodes(self) -> tuple[_Numbers, _Ints]: ...
    def cliques(self) -> tuple[_Numbers, _Ints]: ...
    def k_cliques(self) -> tuple[_Numbers, _Ints]: ...
    def links(self) -> tuple[_Numbers, _Numbers, _Ints]: ...
    def graph(self) -> tuple[_Ints, _Ints, _Ints]: ...
    def count(self, part: str) -> dict[str, tuple[_Ints, _Ints]]: ...

def links_outside_triangles(source: _Numbers, target: _Numbers, n_nodes: int) -> _Ints: ...
def number_nodes(source: _Ints, target: _Ints) -> tuple[_Ints, _Numbers, _Numbers]: ...
def read_links(path: bytes, weighted: bool) -> tuple[list[bytes], _Numbers, _Numbers, _Floats]: ...
def read_edge_list(
    data: bytes,
    delimiter: bytes,
    quotes: bool,
    comment: bytes,
    comment_decides: bool,
    header: bool,
    source: int,
    target: int,
    weight: int | None,
    fields: int | None,
    decimal_comma: bool,
    escaped: bool,
) -> dict[str, Any]: ...
def run(
    input: bytes,
    output: bytes | None,
    k: int | None,
    directed: bool,
    lower: float | None,
    upper: float | None,
    intensity: float | None,
    time_limit: float | None,
    digits: int,
    threads: int,
    log: int,
    links: tuple[_Numbers, _Numbers, _Floats | None, list[bytes]] | None,
    progress: Callable[[int, int], None] | None,
    levels: Callable[[int, int], None] | None,
    level_source: dict[str, Any] | None = None,
) -> tuple[bytes, list[bytes]]: ...

class LevelFiles:
    def __init__(
        self, levels: dict[str, Any], intensity: float | None, directory: bytes
    ) -> None: ...
    def write(self, k: int) -> list[bytes]: ...
