# SPDX-License-Identifier: MIT
"""Reads square Matrix Market files by SciPy: entry (i, j) is a link from node i to node j."""

from __future__ import annotations

import io

import numpy as np

from plexor.formats.table import FormatError, LinkTable


def read_matrix_market(data: bytes) -> LinkTable:
    """The links of a matrix; nodes are named by their numbers from 1.

    A symmetric matrix is undirected and gives each link once. Entries of a dense matrix that are
    0 are no links. Raises FormatError for a matrix that is not square, not real, skew-symmetric
    or damaged.
    """
    from scipy.io import mminfo, mmread

    # SciPy 1.10 looks for the line of sizes for ever where there is none.
    if not any(line.strip() and not line.startswith(b"%") for line in io.BytesIO(data)):
        raise FormatError("Matrix Market: there is no line with the sizes of the matrix")
    try:
        rows, columns, _, layout, field, symmetry = mminfo(io.BytesIO(data))
    except (ValueError, TypeError, IndexError, NotImplementedError) as error:
        raise FormatError(f"Matrix Market: {error}") from error
    if rows >= 1 << 31:
        raise FormatError(f"Matrix Market: {rows:,} rows are more than can be numbered")
    if rows != columns:
        raise FormatError(
            f"Matrix Market: {rows:,} rows and {columns:,} columns: rows and columns are "
            "different kinds of nodes. Such a network has no cliques of three nodes"
        )
    if field == "complex" or symmetry in ("skew-symmetric", "hermitian"):
        raise FormatError(f"Matrix Market: a {symmetry} matrix of {field} numbers is no network")
    try:
        matrix = mmread(io.BytesIO(data))
    except (ValueError, TypeError, IndexError, OverflowError, NotImplementedError) as error:
        raise FormatError(f"Matrix Market: {error}") from error
    if layout == "array":
        source, target = np.nonzero(matrix)
        values = np.asarray(matrix)[source, target]
    else:
        source, target, values = matrix.row, matrix.col, matrix.data
    said = [f"Matrix Market: {rows:,} nodes by number from 1, {symmetry}"]
    if symmetry == "symmetric":
        # SciPy adds the mirrored entries.
        once = source >= target
        source, target, values = source[once], target[once], values[once]
        said.append("each link once")
    weights = None if field == "pattern" else values.astype(np.float64)
    if weights is not None and not np.isfinite(weights).all():
        raise FormatError("Matrix Market: a value is not finite")
    if layout != "array" and weights is not None and (weights == 0).any():
        said.append(f"{int((weights == 0).sum()):,} entries are 0 and stay links of weight 0")
    if rows > 1_000_000 + 4 * len(source):
        # The sizes are only what the file says: names for all could be more than memory holds.
        linked = np.unique(np.concatenate((source, target)))
        said.append(f"{rows - len(linked):,} nodes without a link")
        source, target = np.searchsorted(linked, source), np.searchsorted(linked, target)
        names = [str(node + 1) for node in linked.tolist()]
    else:
        names = [str(node) for node in range(1, rows + 1)]
    return LinkTable(
        "Matrix Market",
        names,
        source.astype(np.uint32),
        target.astype(np.uint32),
        weights,
        symmetry != "symmetric",
        said,
    )
