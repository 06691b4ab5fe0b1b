# SPDX-License-Identifier: MIT
"""The first cases of the fuzzer of readers and `convert`; fuzz.py itself runs as many as wanted."""

from __future__ import annotations

import fuzz
import pytest


@pytest.mark.parametrize("target", fuzz.TARGETS)
def test_the_first_cases(target: str) -> None:
    n_cases = 200 if target == "convert" else 500
    assert fuzz.run_cases(target, 1, range(n_cases), 0) == n_cases
