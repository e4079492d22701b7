# SPDX-License-Identifier: GPL-3.0-or-later
"""The Usage tab: every figure of every chart."""

import shutil
from datetime import date, timedelta

import logs
from tree import wait_for
from window import WindowTest

PROJECTS = ["anchorage", "field-notes", "koyomi-暦", "ledgerline", "night-sky", "orchard-api"]


class UsageTest(WindowTest):
    def setUp(self):
        super().setUp()
        self.open_tab("Usage")

    def bars(self, chart):
        return [bar.name for bar in self.window.get("chart", chart).children]

    def test_the_days_are_read(self):
        first = date.today() - timedelta(29)
        days = [first + timedelta(i) for i in range(30)]
        names = [f"{day:%A}, {day.day} {day:%B %Y}" for day in days]
        for chart in ("Tokens per day", "Estimated cost per day, in US dollars"):
            self.assertEqual([bar.split(": ")[0] for bar in self.bars(chart)], names)
        shown = sum(self.tokens(bar) for bar in self.bars("Tokens per day"))
        self.wait_for_label(f"Tokens per day · total {logs.tokens(shown)}")
        self.assertEqual(shown, self.tokens(self.bar_of("anchorage")))

        switch = self.window.get("radio button", "All projects")
        switch.do("Toggle")
        wait_for(lambda: switch.has("checked"), "the other scope")
        everything = sum(self.tokens(bar) for bar in self.bars("Tokens per day"))
        self.wait_for_label(f"Tokens per day · total {logs.tokens(everything)}")
        self.assertEqual(everything, sum(self.tokens(self.bar_of(name)) for name in PROJECTS))

    def test_the_projects_are_read(self):
        for name in PROJECTS:
            cost = next(bar for bar in self.bars("Estimated cost per project, in US dollars")
                        if bar.startswith(f"{name}: "))
            tokens = self.bar_of(name)
            self.assertEqual(cost.removeprefix(f"{name}: ").split(" · "),
                             list(reversed(tokens.removeprefix(f"{name}: ").split(" · "))))
        # Every session of this project has ended within the last month.
        self.assertEqual(self.tokens(self.bar_of("field-notes")),
                         sum(session.input + session.output + session.cache for session in
                             logs.sessions(self.desktop.home, self.folder("field-notes"))))
        self.assertIn(self.bar_of("anchorage"),
                      self.window.get("chart", "Tokens per project").description)

    def bar_of(self, project):
        bars = wait_for(lambda: self.bars("Tokens per project"), "the projects")
        return next(bar for bar in bars if bar.startswith(f"{project}: "))

    @staticmethod
    def tokens(bar):
        """The number of tokens that a bar tells."""
        return int(bar.split(": ")[1].split(" tokens")[0].replace(",", ""))


class NoUsageTest(WindowTest):
    def lay_home(self):
        super().lay_home()
        shutil.rmtree(self.desktop.home / ".claude" / "projects")

    def test_no_usage_is_told(self):
        self.open_tab("Usage")
        self.wait_for_label("No usage in the last 30 days")
        self.wait_for_label("Token usage from Claude Code sessions will be charted here.")
