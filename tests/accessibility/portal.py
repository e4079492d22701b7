#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Stands in for the desktop's portal on the session bus: notes as what kind of chooser it is to
open, and chooses a folder.

    portal.py FILE FOLDER

The interface is described at
https://flatpak.github.io/xdg-desktop-portal/docs/doc-org.freedesktop.portal.FileChooser.html
"""

import json
import sys
import time
from pathlib import Path

from bus_service import serve
from gi.repository import GLib

NAME = "org.freedesktop.portal.Desktop"
PATH = "/org/freedesktop/portal/desktop"
INTERFACE = """<node><interface name="org.freedesktop.portal.FileChooser">
  <method name="OpenFile">
    <arg name="parent_window" type="s" direction="in"/><arg name="title" type="s" direction="in"/>
    <arg name="options" type="a{sv}" direction="in"/><arg name="handle" type="o" direction="out"/>
  </method>
  <property name="version" type="u" access="read"/>
</interface></node>"""
FIRST_VERSION_WITH_FOLDERS = 3


def answer(connection, sender, arguments, invocation):
    parent, title, options = arguments
    told = {"parent": parent, "title": title, "accept": options["accept_label"],
            "directory": options["directory"]}
    Path(sys.argv[1]).write_text(json.dumps(told), encoding="utf-8")
    handle = f"{PATH}/request/{options['handle_token']}"
    invocation.return_value(GLib.Variant("(o)", (handle,)))
    connection.flush_sync()
    time.sleep(0.2)  # any user takes longer, and the caller has to hear of the handle first
    uris = GLib.Variant("as", [Path(sys.argv[2]).as_uri()])
    connection.emit_signal(sender, handle, "org.freedesktop.portal.Request", "Response",
                           GLib.Variant("(ua{sv})", (0, {"uris": uris})))
    return True


if __name__ == "__main__":
    serve(NAME, PATH, INTERFACE, answer,
          {"version": GLib.Variant("u", FIRST_VERSION_WITH_FOLDERS)})
