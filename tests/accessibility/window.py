# SPDX-License-Identifier: GPL-3.0-or-later
"""The program's window as a client of the accessibility bus works it."""

import unittest

from tree import applications, wait_for


class WindowTest(unittest.TestCase):
    maxDiff = None
    """Tests that each have the real program to themselves, on a home full of made-up work."""

    desktop = None
    program = None

    def setUp(self):
        self.lay_home()
        self.open()

    def lay_home(self):
        """What the program finds."""
        self.desktop.new_home()

    def tearDown(self):
        self.assertIsNone(self.process.poll(), "the program has ended by itself")
        self.desktop.end(self.process)

    def open(self):
        """Starts the program and waits for its window."""
        self.process = self.desktop.start(self.program)
        self.app = wait_for(self._find_app, "the program")
        self.window = self.app.get("frame")

    def _find_app(self):
        pid = self.process.pid
        return next((app for app in applications() if app.accessible.get_process_id() == pid), None)

    def choose(self, project):
        """Chooses a project in the sidebar."""
        projects = self.window.get("list", "Projects")
        wait_for(lambda: project in self.names(projects), f"{project} in the sidebar")
        projects.select_row(self.names(projects).index(project))
        wait_for(lambda: self.window.name == project, f"{project} to be shown")

    @staticmethod
    def names(projects):
        """The names in the list of projects, each of which stands before its path."""
        return [row[0].split(", ")[0] for row in projects.rows]

    def folder(self, project):
        """A project's folder."""
        return self.desktop.home / "code" / project

    def open_tab(self, name):
        """Shows a tab of the project."""
        self.window.get("page tab", name).do()
        self.window.get("page tab list", name)  # which goes by the name of the chosen tab

    def dialog(self, role="dialog"):
        """The dialog that is open, waited for."""
        return wait_for(lambda: next((child for child in self.app.children
                                      if child.role == role and child.has("showing")), None), role)

    def wait_until_closed(self, role="dialog"):
        """Waits for the dialog to be gone."""
        wait_for(lambda: all(child.role != role for child in self.app.children), f"no {role}")

    def wait_for_label(self, text):
        """Waits for a text to be seen."""
        return self.window.get("label", text)
