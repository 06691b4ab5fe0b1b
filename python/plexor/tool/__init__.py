# SPDX-License-Identifier: MIT
"""The command `plexor-tool`: what stands before and after a run of `plexor`."""
