# SPDX-License-Identifier: GPL-3.0-or-later
"""What the session logs of a home folder add up to, counted without the program."""

import json
from dataclasses import dataclass
from datetime import datetime


@dataclass
class Session:
    """One log."""

    start: datetime
    end: datetime
    prompt: str
    turns: int
    input: int
    output: int
    written: int
    read: int

    @property
    def cache(self):
        return self.written + self.read


def sessions(home, project):
    """The sessions of a project, the newest first."""
    logs = []
    for folder in (home / ".claude" / "projects").iterdir():
        for file in folder.glob("*.jsonl"):
            lines = [json.loads(line) for line in file.read_text(encoding="utf-8").splitlines()]
            if lines[0]["cwd"] == str(project):
                logs.append(session_of(lines))
    return sorted(logs, key=lambda session: session.start, reverse=True)


def session_of(lines):
    """What the lines of one log say. The made-up ones have one line for each answer."""
    times = [datetime.fromisoformat(line["timestamp"].replace("Z", "+00:00")) for line in lines]
    prompts = [line["message"]["content"] for line in lines if line["type"] == "user"]
    usages = [line["message"]["usage"] for line in lines if line["type"] == "assistant"]

    def total(name):
        return sum(usage[name] for usage in usages)

    return Session(min(times), max(times), prompts[0], len(prompts), total("input_tokens"),
                   total("output_tokens"), total("cache_creation_input_tokens"),
                   total("cache_read_input_tokens"))


def tokens(count):
    """A number of tokens as the tables tell it."""
    if count >= 1_000_000:
        return f"{count / 1_000_000:.2f}M"
    return f"{count / 1_000:.1f}k" if count >= 10_000 else f"{count:,}"


def duration(session):
    """A session's length as the table tells it."""
    seconds = int((session.end - session.start).total_seconds())
    if seconds >= 3600:
        return f"{seconds // 3600}h {seconds % 3600 // 60}m"
    return f"{seconds // 60}m {seconds % 60}s" if seconds >= 60 else f"{seconds}s"
