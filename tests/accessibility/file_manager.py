#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Stands in for the desktop's file manager on the session bus and notes what it is to show.

    file_manager.py FILE
"""

import sys
from pathlib import Path

from bus_service import serve

NAME = "org.freedesktop.FileManager1"
INTERFACE = f"""<node><interface name="{NAME}"><method name="ShowItems">
  <arg name="uris" type="as" direction="in"/><arg name="startup_id" type="s" direction="in"/>
</method></interface></node>"""


def answer(connection, sender, arguments, invocation):
    uris, startup_id = arguments
    Path(sys.argv[1]).write_text("\n".join(["ShowItems", *uris, startup_id]), encoding="utf-8")
    invocation.return_value(None)
    return True


if __name__ == "__main__":
    serve(NAME, "/org/freedesktop/FileManager1", INTERFACE, answer)
