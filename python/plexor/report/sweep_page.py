# SPDX-License-Identifier: MIT
"""The page of a sweep: curves, suggestions, table."""
from __future__ import annotations

import math
from pathlib import PurePath
from typing import TYPE_CHECKING, Any

from .page import assemble, json_block

if TYPE_CHECKING:
    from plexor.sweeping import Sweep


def make_sweep_page(sweep: Sweep) -> bytes:
    """The page as bytes; the same sweep gives the same bytes."""

    def number(value: Any) -> Any:
        return None if isinstance(value, float) and math.isnan(value) else round(value, 9) if isinstance(value, float) else value

    plan = sweep.plan
    title = PurePath(plan.input).name
    value = {
        "title": title,
        "directed": plan.directed,
        "lower": plan.lower, "upper": plan.upper, "intensity": plan.intensity,
        "rows": [[r.lower, r.upper, r.intensity, r.k, r.communities, r.largest, r.second, number(r.ratio), number(r.variance),
                  r.covered, r.shared, r.nodes] for r in sweep.rows],
        "suggestions": [[s.k, s.lower, s.upper, s.intensity, s.reason] for s in sweep.suggestions],
    }
    return assemble("sweep", f"{title}: thresholds and k", [json_block("sweep", value)])
