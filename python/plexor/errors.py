# SPDX-License-Identifier: MIT
"""The exceptions of the package. Each is also of the built-in kind that fits it best."""


class PlexorError(Exception):
    """Whatever goes wrong inside Plexor."""


class ResultError(PlexorError, ValueError):
    """A directory or a file is not what a run of Plexor leaves, or not the whole of it."""


class LinkFileError(PlexorError, ValueError):
    """A link file cannot be read, or a line of it is not what it should be."""


class LinkFileNotFoundError(LinkFileError, FileNotFoundError):
    """There is no such link file."""
