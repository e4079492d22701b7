# SPDX-License-Identifier: GPL-3.0-or-later
"""Stands in for a service of the desktop on the session bus."""

from gi.repository import Gio, GLib


def serve(name, path, interface, answer, properties=None):
    """Owns the name and offers one object, until somebody else takes the name or answer() is true.

    interface: its description in XML.
    answer(connection, sender, arguments, invocation): called for each call, which it has to answer.
    properties: the values of the interface's properties, by name.
    """
    loop = GLib.MainLoop()

    def call(connection, sender, path, interface, method, arguments, invocation):
        if answer(connection, sender, arguments.unpack(), invocation):
            connection.flush_sync()
            loop.quit()

    def register(connection, name):
        described = Gio.DBusNodeInfo.new_for_xml(interface).interfaces[0]
        connection.register_object(path, described, call,
                                   lambda *about: properties[about[-1]], None)

    Gio.bus_own_name(Gio.BusType.SESSION, name, Gio.BusNameOwnerFlags.NONE, register, None,
                     lambda connection, name: loop.quit())
    loop.run()
