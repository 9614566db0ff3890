"""What all parts of tools/mutants share: its folders, its words, the levels of tests."""

import os
import sys

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
FOLDER = os.path.join(ROOT, "build", "mutants")
COPY = os.path.join(FOLDER, "house")
# Who is shown a mutant first.
LEVELS = ("own", "unit", "scenarios", "random")


class Refused(Exception):
    """What cannot be done, told in the words of the message."""


def tell(text):
    """What is going on; the report alone goes to standard output."""
    print(text, file=sys.stderr, flush=True)
