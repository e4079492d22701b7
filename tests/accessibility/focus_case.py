# SPDX-License-Identifier: GPL-3.0-or-later
"""Going from widget to widget with the Tab key.

Nothing but a keyboard can try that, so these tests press keys, and need a display that takes them.
"""

from tree import press_key, wait_for
from window import WindowTest

TAB = 0xff09
BACKTAB = 0xfe20
ENOUGH = 30  # steps; no screen has so many widgets


class FocusTest(WindowTest):
    def focused(self):
        """The innermost of what has the focus. A tab says so even when only its page has it."""
        holders = [node for node in self.window.visible()
                   if node.has("focused") and node.role != "page tab"]
        return holders[-1] if holders else None

    def step(self, key=TAB):
        """Presses a key and gives what has the focus then."""
        before = wait_for(self.focused, "the focus")
        press_key(key)

        def elsewhere():
            node = self.focused()
            return node if node and node != before else None

        return wait_for(elsewhere, f"the focus to leave {before}")

    def walk(self, last=None):
        """The stops from the one behind the tabs on; to the first again or to the last."""
        self.window.get("push button", "Add Project").focus()
        wait_for(lambda: self.focused().name == "Add Project", "the first button")
        self.step(BACKTAB)
        stops = [self.stop(self.focused())]
        while len(stops) < ENOUGH and stops[-1] != last:
            stop = self.stop(self.step())
            if stop == stops[0]:
                break
            stops.append(stop)
        return stops

    def stop(self, node):
        """A stop's role and name."""
        return node.role, node.name

    def compare(self, tab, stops, last=None):
        """Compares the stops of a tab, from top to bottom and from left to right.

        Only the button over a list comes behind it: where one arrives, the arrow keys walk.
        """
        path = str(self.folder(self.window.name))
        self.assertEqual(self.walk(last),
                         [("list", "Projects"), ("push button", "Add Project"), ("label", path),
                          ("page tab list", tab), *stops])

    def test_sessions(self):
        wait_for(lambda: self.window.get("table", "Sessions").rows, "the sessions")
        self.compare("Sessions", [("push button", "Price Table…"), ("push button", "Reload"),
                                  ("table", "Sessions")])

    def test_live(self):
        agent = self.desktop.start("/bin/sleep", "600", name="claude")
        self.addCleanup(self.desktop.end, agent)
        self.open_tab("Live")
        self.window.get("table", "Running agents")
        self.compare("Live", [("check box", "Only this project"), ("table", "Running agents")])

    def test_review(self):
        self.open_tab("Review")
        files = self.window.get("list", "Changed files")
        wait_for(lambda: files.rows, "the changes")
        files.select_row([row[0] for row in files.rows].index("M src/tides.ts"))
        self.window.get("list", "Diff")
        self.compare("Review", [("list", "Changed files"), ("push button", "Refresh"),
                                ("label", "src/tides.ts"), ("push button", "Approve"),
                                ("push button", "Reject"), ("push button", "Commit…"),
                                ("list", "Diff")])

    def test_usage(self):
        self.open_tab("Usage")
        self.window.get("chart", "Tokens per day")
        self.compare("Usage", [("radio button", "anchorage"), ("chart", "Tokens per day"),
                               ("chart", "Estimated cost per day, in US dollars"),
                               ("chart", "Tokens per project"),
                               ("chart", "Estimated cost per project, in US dollars")])

    def test_context(self):
        self.open_tab("Context")
        file = str(self.folder("anchorage") / "CLAUDE.md")
        editor = self.window.get("text", file)
        editor.text = "changed"  # so that there is something to save
        self.compare("Context", [("list", "Instruction files"), ("label", file),
                                 ("push button", "Save"), ("text", file)], ("text", file))
        press_key(ord("f"), control=True)
        self.window.get("text", "Find in the text")
        self.assertEqual(self.walk(("text", file))[-6:],
                         [("push button", "Save"), ("text", "Find in the text"),
                          ("push button", "Previous"), ("push button", "Next"),
                          ("push button", "Done"), ("text", file)])
        self.window.get("push button", "Done").do()
        wait_for(lambda: editor.has("focused"), "the text to have the focus again")
        press_key(TAB)
        wait_for(lambda: "\t" in editor.text, "a tab in the text")
        self.assertEqual(self.stop(self.step(BACKTAB)), ("push button", "Save"))

    def test_empty_states(self):
        self.choose("sketchbook")
        self.compare("Sessions", [("push button", "Price Table…"), ("push button", "Reload"),
                                  ("label", self.window.get("label", "Claude Code has no").name)])

    def test_price_table(self):
        self.window.get("push button", "Price Table").do()
        editor = self.dialog()
        wait_for(lambda: editor.get("text", "Key of opus").has("focused"), "the first field")
        names = [f"{column} of {row}" for row in ("opus", "sonnet", "haiku", "default")
                 for column in ("Key", "Input price", "Output price", "Cache write price",
                                "Cache read price")]
        window, self.window = self.window, editor
        self.addCleanup(setattr, self, "window", window)
        stops = [self.stop(self.focused())]
        while stops[-1] != ("push button", "Save"):
            self.assertLess(len(stops), ENOUGH)
            stops.append(self.stop(self.step()))
        fields = [name for role, name in stops if role == "text"]
        self.assertEqual(fields, names)
        self.assertEqual(stops[-4:], [("push button", "Add Row"),
                                      ("push button", "Reset to Defaults"),
                                      ("push button", "Cancel"), ("push button", "Save")])
