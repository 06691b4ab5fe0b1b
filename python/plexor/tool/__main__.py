# SPDX-License-Identifier: MIT
"""`python3 -m plexor.tool` is `plexor-tool`."""

import sys

from plexor.tool.cli import main

sys.exit(main())
