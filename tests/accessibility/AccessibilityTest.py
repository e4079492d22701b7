#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Works the real program through the accessibility bus, as a screen reader or a voice control does.

    AccessibilityTest.py PROGRAM [--wayland] [TEST...]

No mouse and no picture of the screen: everything is found by its role and name, read, and done by
the actions that it offers. What comes of it is looked up on the disk. Only the test that walks from
widget to widget presses keys.
"""

import argparse
import shutil
import sys
import unittest
from pathlib import Path

from desktop import ACCESSIBILITY_BUS, Desktop

SKIPPED = 77
CASES = ["projects_case", "sessions_case", "live_case", "review_case", "usage_case",
         "context_case"]
NEEDS_KEYS = ["focus_case"]  # which a client of the bus can press only under X


def missing_tool(display):
    """What is needed and not installed; None when there is nothing."""
    for tool in (*display, "dbus-daemon", "git"):
        if not shutil.which(tool):
            return tool
    if not ACCESSIBILITY_BUS.exists():
        return "at-spi2-core"
    try:
        import tree  # noqa: F401
    except (ImportError, ValueError) as error:
        return str(error)
    return None


def run(arguments, desktop):
    """Runs the tests on a desktop; true when all have passed."""
    from window import WindowTest

    WindowTest.desktop = desktop
    WindowTest.program = arguments.program
    names = arguments.tests or CASES + ([] if arguments.wayland else NEEDS_KEYS)
    tests = unittest.defaultTestLoader.loadTestsFromNames(names)
    return unittest.TextTestRunner(verbosity=2).run(tests).wasSuccessful()


def parse_arguments():
    parser = argparse.ArgumentParser()
    parser.add_argument("program")
    parser.add_argument("tests", nargs="*")
    parser.add_argument("--wayland", action="store_true")
    return parser.parse_intermixed_args()


def main():
    arguments = parse_arguments()
    missing = missing_tool(["Xvfb", "openbox"] + ["weston"] * arguments.wayland)
    if missing:
        print("Skipped, because this is missing:", missing)
        return SKIPPED
    desktop = Desktop(Path(__file__).resolve().parents[2], arguments.wayland)
    try:
        return 0 if run(arguments, desktop) else 1
    finally:
        desktop.close()


if __name__ == "__main__":
    sys.exit(main())
