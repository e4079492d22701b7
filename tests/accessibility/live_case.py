# SPDX-License-Identifier: GPL-3.0-or-later
"""The Live tab: reading which agents run, and stopping one."""

import signal

from tree import wait_for
from window import WindowTest


class LiveTest(WindowTest):
    def setUp(self):
        super().setUp()
        self.agents = []
        self.open_tab("Live")

    def tearDown(self):
        for agent in self.agents:
            self.desktop.end(agent)
        super().tearDown()

    def start(self, name, folder):
        """Starts what looks like an agent and does nothing, and waits until it is listed."""
        agent = self.desktop.start("/bin/sleep", "600", name=name, folder=folder)
        self.agents.append(agent)
        wait_for(lambda: self.row(agent), f"{name} in the table")
        return agent

    def row(self, agent):
        """The cells of an agent; None when it is not listed."""
        table = self.window.find("table", "Running agents")
        rows = table.rows if table else []
        return next((row for row in rows if row[1] == str(agent.pid)), None)

    def test_an_agent_is_told_and_stopped(self):
        other = self.start("codex", self.folder("ledgerline"))
        agent = self.start("claude", self.folder("anchorage"))
        table = self.window.get("table", "Running agents")
        self.assertEqual(table.header, ["Agent", "PID", "Folder", "CPU", "Uptime", "Stop"])
        row = self.row(agent)
        self.assertEqual([row[0], row[2], row[5]],
                         ["claude", str(self.folder("anchorage")), "Stop"])
        self.assertRegex(row[3], r"^\d+\.\d%$")
        self.assertRegex(row[4], r"^\d+:\d\d$")

        self.ask_to_stop("claude", agent).get("push button", "Cancel").do()
        self.wait_until_closed("alert")
        self.assertIsNone(agent.poll())
        self.ask_to_stop("claude", agent).get(
            "push button", f"Send SIGTERM to PID {agent.pid}").do()
        self.assertEqual(wait_for(lambda: agent.poll(), "its end"), -signal.SIGTERM)
        wait_for(lambda: not self.row(agent), "its row to go")
        self.assertIsNone(other.poll())
        self.assertTrue(self.row(other))

    def test_a_failure_to_stop_is_told(self):
        agent = self.start("claude", self.folder("anchorage"))
        question = self.ask_to_stop("claude", agent)
        agent.kill()
        agent.wait()
        question.get("push button", "Send SIGTERM").do()
        self.wait_for_label(f"Could not stop PID {agent.pid}: No such process")

    def test_only_this_project(self):
        inside = self.start("claude", self.folder("anchorage") / "src")
        outside = self.start("gemini", self.folder("ledgerline"))
        only = self.window.get("check box", "Only this project")
        only.do("Toggle")
        wait_for(lambda: not self.row(outside), "the other agent to go")
        self.assertTrue(self.row(inside))
        self.assertTrue(only.has("checked"))
        self.choose("sketchbook")
        self.open_tab("Live")
        self.window.get("check box", "Only this project").do("Toggle")
        self.wait_for_label("No agents running")
        self.wait_for_label("0 running · refreshes every 2s")

    def ask_to_stop(self, name, agent):
        """Presses Stop, and makes sure that the question is about that process."""
        self.window.get("push button", f"Stop {name}, PID {agent.pid}").do()
        question = self.dialog("alert")
        self.assertEqual(question.name, f"Stop {name}?")
        question.get("label", f"{name} in ")
        return question
