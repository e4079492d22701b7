# SPDX-License-Identifier: GPL-3.0-or-later
"""The sidebar: which projects there are, adding, removing and revealing one."""

import json
from pathlib import Path

from tree import wait_for
from window import WindowTest

FILE_MANAGER = Path(__file__).with_name("file_manager.py")
PORTAL = Path(__file__).with_name("portal.py")


class ProjectsTest(WindowTest):
    def test_a_project_is_chosen_and_told(self):
        projects = self.window.get("list", "Projects")
        names = ["anchorage", "field-notes", "koyomi-暦", "ledgerline", "night-sky", "orchard-api",
                 "sketchbook"]
        wait_for(lambda: self.names(projects) == names, "every project")
        for name, row in zip(names, projects.rows):
            self.assertEqual(row, [f"{name}, {self.folder(name)}"])
        for name in ("koyomi-暦", "sketchbook", "anchorage"):
            self.choose(name)
            self.wait_for_label(name)
            self.wait_for_label(str(self.folder(name)))
            self.assertEqual(projects.selected_rows, [names.index(name)])

    def test_a_folder_is_added(self):
        folder = self.folder("new one")
        folder.mkdir()
        self.window.get("push button", "Add Project").do()
        chooser = self.dialog()
        chooser.get("text", "Directory").text = str(folder)
        chooser.get("push button", "Add Project").do()
        self.wait_until_closed()
        wait_for(lambda: self.window.name == "new one", "the new project")
        self.assertIn(str(folder), self.added())

    def test_a_project_is_removed_by_its_menu(self):
        self.choose("sketchbook")
        self.menu("Remove from list")
        wait_for(lambda: self.added() == [], "the file of added projects")
        projects = self.window.get("list", "Projects")
        wait_for(lambda: "sketchbook" not in self.names(projects), "the row to go")

    def test_a_project_is_revealed_in_the_file_manager(self):
        told = self.desktop.home / "told"
        self.desktop.offer_service("org.freedesktop.FileManager1",
                                   f"/usr/bin/python3 -B {FILE_MANAGER} {told}")
        self.addCleanup(self.desktop.withdraw_service, "org.freedesktop.FileManager1")
        self.choose("koyomi-暦")
        self.menu("Reveal in Finder")
        uri = self.folder("koyomi-暦").as_uri()
        wait_for(lambda: told.exists() and told.read_text(encoding="utf-8")
                 == f"ShowItems\n{uri}\n", "the file manager to be called")

    def test_a_project_is_revealed_without_a_file_manager(self):
        told = self.desktop.home / "told"
        opener = self.desktop.programs / "xdg-open"
        opener.write_text(f'#!/bin/sh\nprintf %s "$*" >"{told}"\n', encoding="utf-8")
        opener.chmod(0o700)
        self.addCleanup(opener.unlink)
        self.choose("ledgerline")
        self.menu("Reveal in Finder")
        folder = self.folder("ledgerline").parent
        wait_for(lambda: told.exists() and told.read_text(encoding="utf-8")
                 in (str(folder), folder.as_uri()), "the folder around it to be opened")

    def menu(self, entry):
        """Chooses an entry of the selected project's menu."""
        self.window.get("panel", "Projects").do("ShowMenu")
        self.app.get("menu item", entry).do()

    def added(self):
        """The added folders, as they are stored."""
        file = self.desktop.home / ".local/share/Plinthar/projects.json"
        return json.loads(file.read_text(encoding="utf-8"))


class OwnChooserTest(WindowTest):
    """On a desktop that has a chooser of its own."""

    def lay_home(self):
        super().lay_home()
        self.told = self.desktop.home / "told"
        self.chosen = self.folder("new one")
        self.chosen.mkdir()
        self.desktop.offer_service("org.freedesktop.portal.Desktop",
                                   f"/usr/bin/python3 -B {PORTAL} {self.told} '{self.chosen}'")
        self.addCleanup(self.desktop.withdraw_service, "org.freedesktop.portal.Desktop")
        self.desktop.environment["QT_QPA_PLATFORMTHEME"] = "xdgdesktopportal"
        self.addCleanup(self.desktop.environment.pop, "QT_QPA_PLATFORMTHEME")

    def test_a_folder_is_chosen_in_it(self):
        self.window.get("push button", "Add Project").do()
        wait_for(lambda: self.window.name == "new one", "the new project")
        told = json.loads(self.told.read_text(encoding="utf-8"))
        parent = told.pop("parent")  # above which it is to stay; Wayland has no names of windows
        self.assertTrue(self.desktop.wayland or parent.startswith("x11:"), parent)
        self.assertEqual(told, {"title": "Add Project", "accept": "Add Project",
                                "directory": True})


class NoProjectsTest(WindowTest):
    def lay_home(self):
        self.desktop.empty_home()

    def test_what_is_not_there_is_told(self):
        for text in ("No projects yet", "Click + to choose a folder, or run Claude Code to have "
                     "projects appear from ~/.claude/projects.", "Select a project",
                     "Pick or add a project in the sidebar."):
            self.wait_for_label(text)
        self.assertEqual(self.window.name, "Plinthar")
