#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Stands in for the desktop's file manager on the session bus and notes what it is to show.

    file_manager.py FILE
"""

import sys
from pathlib import Path

from gi.repository import Gio, GLib

NAME = "org.freedesktop.FileManager1"
INTERFACE = f"""<node><interface name="{NAME}"><method name="ShowItems">
  <arg name="uris" type="as" direction="in"/><arg name="startup_id" type="s" direction="in"/>
</method></interface></node>"""


def main():
    loop = GLib.MainLoop()

    def answer(connection, sender, path, interface, method, arguments, invocation):
        uris, startup_id = arguments.unpack()
        Path(sys.argv[1]).write_text("\n".join([method, *uris, startup_id]), encoding="utf-8")
        invocation.return_value(None)
        invocation.get_connection().flush_sync()
        loop.quit()

    def register(connection, name):
        interface = Gio.DBusNodeInfo.new_for_xml(INTERFACE).interfaces[0]
        connection.register_object("/org/freedesktop/FileManager1", interface, answer, None, None)

    Gio.bus_own_name(Gio.BusType.SESSION, NAME, Gio.BusNameOwnerFlags.NONE, register, None,
                     lambda connection, name: loop.quit())
    loop.run()


if __name__ == "__main__":
    main()
