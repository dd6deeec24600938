"""PelinorLib from Python.

The value formatter (cFormat), the pattern engine (cPatternEngine,
EvaluatePattern), settings files and the registry, profiles, templates,
documents with their fields and line data, and the work queue, under the
library's own class and member names.

Text is str (Windows-1252 underneath; a character without a Windows-1252
form raises UnicodeEncodeError). A failure the library reports with a
message raises pelinor.Error carrying that message. See docs/python.md.
"""

from ._pelinor import *  # noqa: F401,F403
from ._pelinor import Error, __version__  # noqa: F401
