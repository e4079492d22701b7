# SPDX-License-Identifier: GPL-3.0-or-later
"""The Sessions tab and the price table."""

import json

import logs
from tree import wait_for
from window import WindowTest


class SessionsTest(WindowTest):
    def test_every_header_and_cell_is_told(self):
        table = self.window.get("table", "Sessions")
        self.assertEqual(table.header, ["Started", "Duration", "First prompt", "Turns", "Input",
                                        "Output", "Cache", "Est. cost"])
        expected = logs.sessions(self.desktop.home, self.folder("anchorage"))
        wait_for(lambda: len(table.rows) == len(expected), "every session")
        for row, session in zip(table.rows, expected):
            started = session.start.astimezone()
            self.assertEqual(row[0], f"{started.day} {started:%b %Y, %H:%M}")
            self.assertEqual(row[1:7], [logs.duration(session), session.prompt, str(session.turns),
                                        logs.tokens(session.input), logs.tokens(session.output),
                                        logs.tokens(session.cache)])
            self.assertRegex(row[7], r"^\$\d+\.\d\d$")
        self.wait_for_label(f"{len(expected)} sessions · $")

    def test_what_is_not_there_is_told(self):
        self.choose("sketchbook")
        self.wait_for_label("No sessions found")
        self.wait_for_label("Claude Code has no session history for this folder yet. Run `claude` "
                            f"in {self.folder('sketchbook')} and sessions will appear here.")

    def test_sessions_are_read_again(self):
        table = self.window.get("table", "Sessions")
        wait_for(lambda: table.rows, "the sessions")
        count = len(table.rows)
        next((self.desktop.home / ".claude/projects").glob("*anchorage/*.jsonl")).unlink()
        self.window.get("push button", "Reload").do()
        wait_for(lambda: len(table.rows) == count - 1, "the session to go")

    def test_the_price_table_is_edited(self):
        editor = self.open_prices()
        for button in editor.all("push button"):
            if button.name.startswith("Delete ") and button.name != "Delete default":
                button.do()
        wait_for(lambda: len(self.keys(editor)) == 1, "the other rows to go")
        editor.get("text", "Key of default").text = "claude"
        for column, price in (("Input", "1"), ("Output", "2.5"), ("Cache write", "3"),
                              ("Cache read", "0.25")):
            editor.get("text", f"{column} price of claude").text = price
        editor.get("push button", "Add Row").do()
        editor.get("text", "Key of model").text = "default"
        editor.get("text", "Input price of default")
        editor.get("push button", "Save").do()
        self.wait_until_closed()
        rows = json.loads(self.prices().read_text(encoding="utf-8"))
        self.assertEqual([self.without_id(row) for row in rows],
                         [{"key": "claude", "input": 1, "output": 2.5, "cacheWrite": 3,
                           "cacheRead": 0.25},
                          {"key": "default", "input": 3, "output": 15, "cacheWrite": 3.75,
                           "cacheRead": 0.3}])
        sessions = logs.sessions(self.desktop.home, self.folder("anchorage"))
        costs = [f"${self.cost(session):.2f}" for session in sessions]
        total = sum(map(self.cost, sessions))
        self.wait_for_label(f"{len(sessions)} sessions · ${total:.2f} estimated")
        table = self.window.get("table", "Sessions")
        wait_for(lambda: [row[7] for row in table.rows] == costs, "the new costs")

    def test_edited_prices_are_dropped_or_reset(self):
        editor = self.open_prices()
        before = self.keys(editor)
        editor.get("push button", "Delete ").do()
        wait_for(lambda: len(self.keys(editor)) < len(before), "the row to go")
        editor.get("push button", "Reset to Defaults").do()
        wait_for(lambda: self.keys(editor) == before, "the row to come back")
        editor.get("push button", "Cancel").do()
        self.wait_until_closed()
        self.assertFalse(self.prices().exists())

    def open_prices(self):
        self.window.get("push button", "Price Table").do()
        editor = self.dialog()
        self.assertEqual(editor.name, "Price Table")
        for column in ("Key", "Input", "Output", "Cache write", "Cache read"):
            editor.get("label", column)
        return editor

    @staticmethod
    def keys(editor):
        return [field.text for field in editor.all("text") if field.name.startswith("Key of ")]

    @staticmethod
    def without_id(row):
        return {name: value for name, value in row.items() if name != "id"}

    @staticmethod
    def cost(session):
        return (session.input + session.output * 2.5 + session.written * 3
                + session.read * 0.25) / 1_000_000

    def prices(self):
        return self.desktop.home / ".local/share/Plinthar/prices.json"
