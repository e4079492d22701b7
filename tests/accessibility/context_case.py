# SPDX-License-Identifier: GPL-3.0-or-later
"""The Context tab: reading, editing and saving instruction files."""

import stat

from tree import wait_for
from window import WindowTest


class ContextTest(WindowTest):
    def setUp(self):
        super().setUp()
        self.file = self.folder("anchorage") / "CLAUDE.md"
        self.open_tab("Context")
        self.editor = self.window.get("text", str(self.file))

    def test_every_file_is_listed_and_read(self):
        files = self.window.get("list", "Instruction files")
        project = str(self.folder("anchorage"))
        self.assertEqual([row[0] for row in files.rows],
                         ["Project", f"CLAUDE.md, {project}/CLAUDE.md",
                          f"AGENTS.md, {project}/AGENTS.md", f"GEMINI.md, {project}/GEMINI.md, new",
                          f"strings.mdc, {project}/.cursor/rules/strings.mdc",
                          f"tests.mdc, {project}/.cursor/rules/tests.mdc",
                          "Home", "CLAUDE.md, ~/.claude/CLAUDE.md",
                          "AGENTS.md, ~/.codex/AGENTS.md", "GEMINI.md, ~/.gemini/GEMINI.md, new"])
        self.compare(str(self.file), self.file)
        files.select_row(7)
        self.compare("~/.claude/CLAUDE.md", self.desktop.home / ".claude/CLAUDE.md")
        files.select_row(4)
        self.compare(f"{project}/.cursor/rules/strings.mdc",
                     self.folder("anchorage") / ".cursor/rules/strings.mdc")

    def compare(self, name, file):
        """Compares what the editor tells with the file."""
        editor = self.window.get("text", name)
        self.wait_for_label(name)
        content = file.read_text(encoding="utf-8")
        self.assertEqual(editor.text, content)
        self.wait_for_label(f"{len(content.split())} words")

    def test_a_file_is_edited_and_saved(self):
        save = self.window.get("push button", "Save")
        self.assertFalse(save.has("enabled"))
        self.editor.text = "# 潮\n\nThree short words.\n"
        self.wait_for_label("5 words")
        save.do()
        self.wait_for_label("Saved")
        self.assertEqual(self.file.read_text(encoding="utf-8"), "# 潮\n\nThree short words.\n")

    def test_a_new_file_is_written(self):
        files = self.window.get("list", "Instruction files")
        files.select_row(3)
        new = self.folder("anchorage") / "GEMINI.md"
        self.window.get("text", str(new)).text = "Be brief.\n"
        self.window.get("push button", "Save").do()
        self.wait_for_label("Saved")
        self.assertEqual(new.read_text(encoding="utf-8"), "Be brief.\n")
        wait_for(lambda: files.rows[3] == [f"GEMINI.md, {new}"], "it to be told as existing")

    def test_too_many_words_are_told(self):
        self.editor.text = "word " * 2001
        self.wait_for_label("2001 words")
        self.wait_for_label("Over 2,000 words")

    def test_a_failure_to_save_is_told(self):
        before = self.file.read_text(encoding="utf-8")
        self.file.unlink()
        self.file.mkdir()  # which stops even root
        self.editor.text = "lost?"
        self.window.get("push button", "Save").do()
        self.wait_for_label("Save failed: ")
        self.assertEqual(self.editor.text, "lost?")
        self.assertTrue(stat.S_ISDIR(self.file.stat().st_mode))
        self.file.rmdir()
        self.file.write_text(before, encoding="utf-8")

    def test_nothing_to_edit_is_told(self):
        for name in (".claude/CLAUDE.md", ".codex/AGENTS.md"):
            (self.desktop.home / name).unlink()
        self.choose("sketchbook")
        self.open_tab("Context")
        self.wait_for_label("No file selected")
        self.wait_for_label("Choose a CLAUDE.md, AGENTS.md, GEMINI.md or Cursor rules file")
