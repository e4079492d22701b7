# SPDX-License-Identifier: GPL-3.0-or-later
"""The Review tab: walking the changes, reading a diff, approving, rejecting and committing."""

import re

from tree import Unsettled, wait_for
from window import WindowTest

# As the list tells them: badge, path and whether everything in it is staged.
CHANGES = {"assets/logo.png": "M", "data/stations.json": "M", "docs/harbour-guide.md": "MM",
           "i18n/ja.json": "M", "src/berths.ts": "M", "src/config.ts": "UU",
           "src/legacy/almanac.ts": "D", "src/notify/tide-alarm.ts": "A",
           "src/text/format.ts": "R", "src/tides.ts": "M", "i18n/潮汐用語.md": "U",
           "next-steps.md": "U", "src/notify/index.ts": "U"}
STAGED = ["src/berths.ts", "src/notify/tide-alarm.ts", "src/text/format.ts"]
SIDE = re.compile(r"(Old|New) line (\d+), (removed|added|unchanged): (.*?)(?=; New line \d|$)")


class ReviewTest(WindowTest):
    def setUp(self):
        super().setUp()
        self.repository = self.folder("anchorage")
        self.open_tab("Review")
        self.list = self.window.get("list", "Changed files")

    def git(self, *arguments):
        return self.desktop.run("git", "-c", "core.quotePath=false", *arguments,
                                folder=self.repository)

    def status(self, path):
        """The two letters of git status; empty when nothing has changed."""
        return self.git("status", "--porcelain", "--", path)[:2]

    def paths(self):
        """The listed paths."""
        told = [row[0] for row in self.list.rows]
        if not all(told):  # a row that has gone since the rows were counted
            raise Unsettled
        return [text.split(" ", 1)[1].removesuffix(", wholly staged") for text in told]

    def select(self, path):
        """Selects a file and waits for its diff or what stands in its place."""
        wait_for(lambda: path in self.paths(), f"{path} in the list")
        self.list.select_row(self.paths().index(path))
        self.wait_for_label(path)
        self.wait_for_diff()

    def wait_for_diff(self):
        wait_for(lambda: self.window.find("list", "Diff")
                 or self.window.find("label", "Binary file")
                 or self.window.find("label", "No diff to show"), "the diff")

    def diff(self):
        """The rows of the diff in words."""
        return [row.name for row in self.window.get("list", "Diff").children]

    def changed_lines(self):
        """The removed and the added lines of the diff that is shown."""
        told = [match.groups() for row in self.diff() for match in SIDE.finditer(row)]
        return tuple([text for _, _, kind, text in told if kind == wanted]
                     for wanted in ("removed", "added"))

    def test_every_change_is_listed(self):
        expected = [f"{badge} {path}" + (", wholly staged" if path in STAGED else "")
                    for path, badge in CHANGES.items()]
        wait_for(lambda: sorted(row[0] for row in self.list.rows) == sorted(expected),
                 "every change")
        self.wait_for_label("13 changed")

    def test_the_diff_of_every_file_is_read(self):
        for path in CHANGES:
            with self.subTest(path=path):
                self.select(path)
                if path in ("assets/logo.png", "src/notify/index.ts"):
                    continue  # a note has been waited for, since there are no lines
                wanted = (self.added_lines(path) if CHANGES[path] == "U"
                          else self.lines_of_git(path))
                wait_for(lambda: self.changed_lines() == wanted, f"the lines of {path}")

    def lines_of_git(self, path):
        hunks = self.git("diff", "HEAD", "--", path).split("\n@@", 1)[1].splitlines()
        return ([line[1:] for line in hunks if line.startswith("-")],
                [line[1:] for line in hunks if line.startswith("+")])

    def added_lines(self, path):
        return [], (self.repository / path).read_text(encoding="utf-8").splitlines()

    def test_a_file_is_approved(self):
        self.select("src/tides.ts")
        self.assertEqual(self.status("src/tides.ts"), " M")
        self.window.get("push button", "Approve").do()
        wait_for(lambda: self.status("src/tides.ts") == "M ", "it to be staged")
        wait_for(lambda: ["M src/tides.ts, wholly staged"] in self.list.rows, "the list to tell")

    def test_a_file_is_rejected(self):
        self.select("src/tides.ts")
        self.ask("Staged and unstaged changes").get("push button", "Cancel").do()
        self.wait_until_closed("alert")
        self.assertEqual(self.status("src/tides.ts"), " M")
        self.ask("Staged and unstaged changes").get("push button", "Discard Changes").do()
        wait_for(lambda: self.status("src/tides.ts") == "", "it to be restored")
        wait_for(lambda: "src/tides.ts" not in self.paths(), "its row to go")

    def test_an_untracked_file_is_deleted(self):
        self.select("next-steps.md")
        self.ask("This untracked file").get("push button", "Discard Changes").do()
        wait_for(lambda: not (self.repository / "next-steps.md").exists(), "it to be deleted")

    def ask(self, text):
        """Presses Reject and gives the question."""
        self.window.get("push button", "Reject").do()
        question = self.dialog("alert")
        question.get("label", "Reject changes to ")
        question.get("label", text)
        return question

    def test_what_is_staged_is_committed(self):
        self.git("checkout", "--theirs", "src/config.ts")
        self.git("add", "src/config.ts")
        self.window.get("push button", "Refresh").do()
        self.commit("Close earlier\n\nIn winter.")
        self.wait_until_closed()
        wait_for(lambda: self.git("log", "-1", "--format=%s").strip() == "Close earlier", "it")
        self.assertEqual(self.git("log", "-1", "--format=%B").strip(),
                         "Close earlier\n\nIn winter.\n\nAgent-assisted: true")
        wait_for(lambda: "src/berths.ts" not in self.paths(), "the committed files to go")

    def commit(self, message):
        wait_for(lambda: self.paths(), "the changes")
        self.window.get("push button", "Commit").do()
        sheet = self.dialog()
        sheet.get("label", "Appended automatically: Agent-assisted: true")
        sheet.get("text", "Commit message").text = message
        sheet.get("push button", "Commit").do()
        return sheet

    def test_why_git_refuses_can_be_read_and_selected(self):
        sheet = self.commit("Too early")  # both branches' changes are still unmerged
        error = sheet.get("text", "Error")
        self.assertIn("unmerged", error.text)
        self.assertEqual(error.select_text(), error.text)
        sheet.get("push button", "Cancel").do()
        self.wait_until_closed()
        self.assertEqual(self.git("log", "-1", "--format=%s").strip(),
                         "Close an hour earlier in winter")

    def test_a_folder_without_git_is_told(self):
        self.choose("sketchbook")
        self.open_tab("Review")
        self.wait_for_label("Not a Git repository")
        self.wait_for_label(f"{self.folder('sketchbook')} is not inside a Git work tree")

    def test_a_clean_work_tree_is_told(self):
        self.git("reset", "--quiet", "--hard")
        self.git("clean", "--quiet", "-fd")
        self.window.get("push button", "Refresh").do()
        self.wait_for_label("Working tree clean")
        self.wait_for_label("0 changed")
        self.wait_for_label("No diff to show")
