# SPDX-License-Identifier: MIT
"""The levels of a run on the workers of a Dask cluster.

Takes    what the levels are made from, once, as arrays in a folder that all machines share.
Leaves   the files of each k, in the run's directory.
Order    any: a level is a task, written into a folder beside the run's directory and moved into it
         when it is whole. Of a worker that is lost nothing is seen; its tasks are given to others.
Memory   a worker maps the arrays and builds its own index from them, one for each thread it has.
"""

from __future__ import annotations

import contextlib
import importlib
import json
import os
import shutil
import tempfile
import threading
from collections.abc import Callable
from pathlib import Path
from typing import Any

import numpy as np

from . import _engine
from .errors import PlexorError

_ARRAYS = (
    "first",
    "second",
    "weight",
    "names",
    "name_offsets",
    "cliques",
    "clique_offsets",
    "before_merge",
    "before_merge_offsets",
)

# What this process has built for runs under way: folder of the arrays -> thread -> its files.
_ready: dict[str, dict[int, tuple[Path, _engine.LevelFiles]]] = {}
_lock = threading.Lock()


def write_levels(
    levels: dict[str, Any],
    intensity: float | None,
    k: int | None,
    directory: Path,
    client: Any,
    shared: str | os.PathLike[str] | None,
    progress: Callable[[str, int, int], None],
) -> tuple[Path, ...]:
    """Has the levels made by the workers of the client; gives the files they could not write.

    `levels` are those of _engine.run; `k` is the only level wanted, or None for all. The workers
    must see `directory` and `shared` (None: beside the directory) under the names they have here.
    Raises PlexorError when a level fails, or a worker is lost with the same level several times.
    """
    ks = [k] if k is not None else list(range(levels["largest"], 2, -1))
    distributed: Any = importlib.import_module("distributed")
    final = directory.absolute()
    with contextlib.ExitStack() as made:
        # Beside the directory, so that a folder can be moved from one into the other in one step.
        parts = Path(tempfile.mkdtemp(prefix=f".{final.name[:100]}.", dir=final.parent))
        made.callback(shutil.rmtree, parts, ignore_errors=True)
        os.chmod(parts, 0o755)
        if shared is None:
            folder = parts / "arrays"
            folder.mkdir()
        else:
            folder = Path(tempfile.mkdtemp(prefix="plexor-", dir=Path(shared).absolute()))
            made.callback(shutil.rmtree, folder, ignore_errors=True)
            os.chmod(folder, 0o755)
        _save(levels, intensity, folder)
        # Descending, as the tasks are then begun: for a worker the way down is the cheapest.
        futures = [
            client.submit(make_level, str(folder), str(parts), str(final), one, pure=False)
            for one in ks
        ]
        not_written: dict[int, list[str]] = {}
        try:
            for done, future in enumerate(distributed.as_completed(futures)):
                number, paths = future.result()
                not_written[number] = paths
                progress("levels", done, len(ks))
        except distributed.KilledWorker as error:
            raise PlexorError(f"workers were lost with the same level several times: {error}") from error
        except BaseException:
            client.cancel(futures)
            raise
        finally:
            # A worker that is lost has nothing to forget.
            with contextlib.suppress(Exception):
                client.run(forget, str(folder), on_error="ignore")
    return tuple(Path(path) for one in ks for path in not_written[one])


def _save(levels: dict[str, Any], intensity: float | None, folder: Path) -> None:
    for name in _ARRAYS:
        np.save(folder / f"{name}.npy", levels[name])
    rest = {name: levels[name] for name in ("n_exact", "nested", "largest")}
    rest["com_flag"] = levels["com_flag"].decode()
    rest["header"] = levels["header"].decode("utf-8", "surrogateescape")
    rest["intensity"] = None if intensity is None else float(intensity).hex()
    (folder / "levels.json").write_text(json.dumps(rest))


def _load(folder: Path) -> tuple[dict[str, Any], float | None]:
    levels: dict[str, Any] = json.loads((folder / "levels.json").read_text())
    for name in _ARRAYS:
        # An empty file cannot be mapped.
        array = np.load(folder / f"{name}.npy", mmap_mode="r")
        levels[name] = array if array.size else np.asarray(array)
    levels["com_flag"] = levels["com_flag"].encode()
    levels["header"] = levels["header"].encode("utf-8", "surrogateescape")
    intensity = levels.pop("intensity")
    return levels, None if intensity is None else float.fromhex(intensity)


def make_level(folder: str, parts: str, final: str, k: int) -> tuple[int, list[str]]:
    """The task: makes the folder of one k in `final`, whole or not at all. Gives k and the paths of
    files that could not be written, as the run would name them."""
    work, files = _files_of_this_thread(folder, parts)
    made = work / f"k={k}"
    # What an earlier attempt of this thread has left.
    shutil.rmtree(made, ignore_errors=True)
    failed = [os.fsdecode(path) for path in files.write(k)]
    place = Path(final) / made.name
    try:
        made.rename(place)
    except OSError:
        # The task may have been given to two workers: then this one comes second, with the same.
        if not place.is_dir():
            raise
        shutil.rmtree(made)
    return k, [str(place / Path(path).name) for path in failed]


def _files_of_this_thread(folder: str, parts: str) -> tuple[Path, _engine.LevelFiles]:
    with _lock:
        known = _ready.setdefault(folder, {}).get(threading.get_ident())
    if known is None:
        work = Path(tempfile.mkdtemp(prefix="worker.", dir=parts))
        levels, intensity = _load(Path(folder))
        known = work, _engine.LevelFiles(levels, intensity, os.fsencode(work))
        with _lock:
            _ready[folder][threading.get_ident()] = known
    return known


def forget(folder: str) -> None:
    """Gives back what this process has built for a run."""
    with _lock:
        _ready.pop(folder, None)
