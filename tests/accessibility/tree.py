# SPDX-License-Identifier: GPL-3.0-or-later
"""What a window tells assistive technology, as a tree that can be searched and acted on."""

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # noqa: E402

import desktop  # noqa: E402

# Its own patience is less than a second.
Atspi.set_timeout(int(desktop.PATIENCE * 1000), int(desktop.PATIENCE * 1000))

# In these there is nothing, or what is asked for by row and would take long to search.
NOT_SEARCHED = ("chart", "check box", "label", "list", "menu item", "page tab", "push button",
                "radio button", "table", "text", "tree")


class Unsettled(Exception):
    """What is looked at is just changing."""


def wait_for(condition, what):
    """desktop.wait_for() for what may change or be gone while it is looked at."""
    def attempt():
        try:
            return condition()
        except (GLib.Error, Unsettled):
            return None
    return desktop.wait_for(attempt, what)


def applications():
    """The roots of the programs that are running on the desktop."""
    root = Atspi.get_desktop(0)
    root.set_cache_mask(Atspi.Cache.NONE)  # nothing is remembered: everything is asked anew
    return Node(root).children


def press_key(keysym, control=False):
    """The keyboard, for what has no action: going from one widget to the next."""
    modifiers = 1 << Atspi.ModifierType.CONTROL if control else 0
    if modifiers:
        Atspi.generate_keyboard_event(modifiers, None, Atspi.KeySynthType.LOCKMODIFIERS)
    Atspi.generate_keyboard_event(keysym, None, Atspi.KeySynthType.SYM)
    if modifiers:
        Atspi.generate_keyboard_event(modifiers, None, Atspi.KeySynthType.UNLOCKMODIFIERS)


class Node:
    """One accessible object."""

    def __init__(self, accessible):
        self.accessible = accessible
        self._role = None

    def __repr__(self):
        return f"<{self.role} {self.name!r}>"

    def __eq__(self, other):
        return isinstance(other, Node) and self.accessible == other.accessible

    __hash__ = None

    # What it is

    @property
    def role(self):
        if not self._role:  # which stays
            self._role = self.accessible.get_role_name()
        return self._role

    @property
    def name(self):
        return self.accessible.get_name() or ""

    @property
    def description(self):
        return self.accessible.get_description() or ""

    def has(self, state):
        return self.accessible.get_state_set().contains(getattr(Atspi.StateType, state.upper()))

    # What is in it

    @property
    def children(self):
        count = self.accessible.get_child_count()
        children = (self.accessible.get_child_at_index(i) for i in range(count))
        return [Node(child) for child in children if child]

    def visible(self):
        """Itself and what is in it, from the outside to the inside, without what is hidden."""
        if self.has("visible"):
            yield self
            if self.role not in NOT_SEARCHED:
                for child in self.children:
                    yield from child.visible()

    def all(self, role):
        """Everything of that role that is to be seen."""
        return [node for node in self.visible() if node.role == role]

    def find(self, role, name=None):
        """The first of that role and with that beginning of its name; None without one."""
        return next((node for node in self.visible()
                     if node.role == role and (name is None or node.name.startswith(name))), None)

    def get(self, role, name=None):
        """The same, waited for."""
        return wait_for(lambda: self.find(role, name), f"{role} {name or ''} in {self}")

    # What can be done with it

    def do(self, action="Press"):
        """Does one of the actions that it offers."""
        wait_for(lambda: self.has("enabled"), f"{self} to be enabled")
        count = Atspi.Action.get_n_actions(self.accessible)
        names = [Atspi.Action.get_action_name(self.accessible, i) for i in range(count)]
        if action not in names:
            raise AssertionError(f"{self} offers no {action}, but {names}")
        Atspi.Action.do_action(self.accessible, names.index(action))

    def focus(self):
        """Gives it the focus of the keyboard."""
        Atspi.Component.grab_focus(self.accessible)

    # Text

    @property
    def text(self):
        return Atspi.Text.get_text(self.accessible, 0, -1)

    @text.setter
    def text(self, text):
        Atspi.EditableText.set_text_contents(self.accessible, text)

    def select_text(self):
        """Selects all of its text and returns what is selected then."""
        end = Atspi.Text.get_character_count(self.accessible)
        Atspi.Text.add_selection(self.accessible, 0, end)
        selected = Atspi.Text.get_selection(self.accessible, 0)
        return Atspi.Text.get_text(self.accessible, selected.start_offset, selected.end_offset)

    # Tables and lists

    @property
    def header(self):
        columns = Atspi.Table.get_n_columns(self.accessible)
        return [Atspi.Table.get_column_header(self.accessible, i).get_name()
                for i in range(columns)]

    @property
    def rows(self):
        """The cells' texts, row by row."""
        rows = Atspi.Table.get_n_rows(self.accessible)
        columns = Atspi.Table.get_n_columns(self.accessible)
        cells = [[Atspi.Table.get_accessible_at(self.accessible, row, column)
                  for column in range(columns)] for row in range(rows)]
        return [[cell.get_name() if cell else "" for cell in row] for row in cells]

    def select_row(self, row):
        """Selects one row and nothing else."""
        for other in Atspi.Table.get_selected_rows(self.accessible):
            if other != row:
                Atspi.Table.remove_row_selection(self.accessible, other)
        Atspi.Table.add_row_selection(self.accessible, row)

    @property
    def selected_rows(self):
        return list(Atspi.Table.get_selected_rows(self.accessible))
