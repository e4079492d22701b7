# SPDX-License-Identifier: GPL-3.0-or-later
"""A desktop of the tests' own: display, session bus, accessibility bus and home folder."""

import ctypes
import os
import shutil
import signal
import subprocess
import tempfile
import time
from pathlib import Path

PATIENCE = 30.0  # seconds; a machine under load is slow, but after this nothing comes
BUS_CONFIGURATION = """<!DOCTYPE busconfig PUBLIC
 "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <listen>unix:dir={folder}</listen>
  <servicedir>{services}</servicedir>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>
"""
SERVICE = "[D-BUS Service]\nName={name}\nExec={command}\n"
ACCESSIBILITY_BUS = Path("/usr/share/dbus-1/services/org.a11y.Bus.service")


def end_with_parent():
    """Lets a program that is about to start end when this one does, however that comes about."""
    set_parent_death_signal = 1
    ctypes.CDLL(None).prctl(set_parent_death_signal, signal.SIGTERM)


def wait_for(condition, what, patience=PATIENCE):
    """Asks until the answer is true, and returns it."""
    deadline = time.monotonic() + patience
    while True:
        answer = condition()
        if answer:
            return answer
        if time.monotonic() > deadline:
            raise AssertionError(f"waited in vain for {what}")
        time.sleep(0.05)


def launcher():
    """The program that brings up the accessibility bus."""
    lines = ACCESSIBILITY_BUS.read_text(encoding="utf-8").splitlines()
    return next(line.removeprefix("Exec=") for line in lines if line.startswith("Exec="))


def read_line(descriptor):
    """What a program that is starting writes there, up to the end of the line."""
    with open(descriptor, encoding="utf-8") as pipe:
        return pipe.readline().strip()


class Desktop:
    """Everything that a window needs, started for it alone and ended with close()."""

    def __init__(self, project, wayland=False):
        self.folder = Path(tempfile.mkdtemp(prefix="plinthar-access-"))
        self.project = project
        self.home = self.folder / "home"
        self.services = self.folder / "services"
        self.programs = self.folder / "bin"
        self.wayland = wayland
        self._running = []
        for folder in (self.services, self.programs):
            folder.mkdir()
        (self.folder / "run").mkdir(mode=0o700)
        # Its own programs have another home than the window, or they would leave their files there.
        self.environment = self._make_environment(self.folder)
        try:
            self._start()
        except BaseException:
            self.close()
            raise

    def _make_environment(self, home):
        kept = {name: value for name, value in os.environ.items() if name == "TZ"}
        return kept | {
            "HOME": str(home),
            "LC_ALL": "C.UTF-8",
            "PATH": f"{self.programs}:/usr/local/bin:/usr/bin:/bin",
            "XDG_DATA_HOME": f"{home}/.local/share",
            "XDG_CONFIG_HOME": f"{home}/.config",
            "XDG_CACHE_HOME": f"{home}/.cache",
            "XDG_STATE_HOME": f"{home}/.local/state",
            "XDG_RUNTIME_DIR": str(self.folder / "run"),
            "GIT_CONFIG_GLOBAL": f"{home}/.gitconfig",
            "GIT_CONFIG_NOSYSTEM": "1",
            "GIT_OPTIONAL_LOCKS": "0",  # looking at a repository keeps nobody from changing it
        }

    def _start(self):
        self._start_x()
        if self.wayland:
            self._start_weston()
        self._start_bus()
        self.environment |= self._make_environment(self.home)
        # What comes from here on in this process, too, is on this desktop.
        os.environ.clear()
        os.environ.update(self.environment)
        os.environ.pop("WAYLAND_DISPLAY", None)  # the keys that it presses come through X

    def _start_x(self):
        reading, writing = os.pipe()
        self.start("Xvfb", "-displayfd", str(writing), "-screen", "0", "1280x900x24", "-nolisten",
                   "tcp", pass_fds=[writing])
        os.close(writing)
        self.environment["DISPLAY"] = ":" + read_line(reading)
        self.environment["QT_QPA_PLATFORM"] = "xcb"
        # It gives the focus to new windows, once it is there.
        started = self.folder / "openbox-started"
        self.start("openbox", "--startup", f"touch {started}")
        wait_for(started.exists, "openbox")

    def _start_weston(self):
        # In a window, not headless: then it has a keyboard, without which Qt 6.4 falls over as soon
        # as it paints the cursor of a field.
        self.start("weston", "--backend=x11-backend.so", "--use-pixman", "--socket=wayland-test",
                   "--width=1280", "--height=900", "--idle-time=0", "--no-config")
        wait_for((self.folder / "run" / "wayland-test").exists, "weston")
        self.environment["WAYLAND_DISPLAY"] = "wayland-test"
        self.environment["QT_QPA_PLATFORM"] = "wayland"

    def _start_bus(self):
        self.offer_service("org.a11y.Bus", launcher() + " --a11y=1 --screen-reader=1")
        configuration = self.folder / "bus.conf"
        configuration.write_text(
            BUS_CONFIGURATION.format(folder=self.folder / "run", services=self.services))
        reading, writing = os.pipe()
        self.start("dbus-daemon", "--nofork", f"--config-file={configuration}",
                   f"--print-address={writing}", pass_fds=[writing])
        os.close(writing)
        self.environment["DBUS_SESSION_BUS_ADDRESS"] = read_line(reading)

    def offer_service(self, name, command):
        """Lets the session bus start a program when somebody calls that name."""
        file = self.services / f"{name}.service"
        file.write_text(SERVICE.format(name=name, command=command))

    def withdraw_service(self, name):
        """Takes an offer back."""
        (self.services / f"{name}.service").unlink()

    def start(self, *command, name=None, folder=None, pass_fds=(), output=subprocess.DEVNULL):
        """Starts a program that goes with the desktop; its zeroth argument may be another name."""
        process = subprocess.Popen(command if name is None else [name, *command[1:]],
                                   executable=None if name is None else command[0],
                                   cwd=folder or self.folder, env=self.environment,
                                   stdin=subprocess.DEVNULL, stdout=output, stderr=output,
                                   pass_fds=pass_fds, preexec_fn=end_with_parent)
        self._running.append(process)
        return process

    def end(self, process):
        """Ends a program that start() started."""
        if process.poll() is None:
            process.send_signal(signal.SIGTERM)
            try:
                process.wait(PATIENCE)
            except subprocess.TimeoutExpired:
                process.kill()
                process.wait()
        self._running.remove(process)

    def run(self, *command, folder=None):
        """What a command prints."""
        return subprocess.run(command, cwd=folder or self.home, env=self.environment, check=True,
                              stdin=subprocess.DEVNULL, capture_output=True, text=True).stdout

    def new_home(self):
        """Lays a fresh home folder, full of made-up work, in the place of the last one."""
        template = self.folder / "template"
        shutil.rmtree(self.home, ignore_errors=True)
        if not template.exists():
            self.run(str(self.project / "demo" / "make-home"), str(self.home), folder=self.folder)
            self.home.rename(template)
        shutil.copytree(template, self.home, symlinks=True)

    def empty_home(self):
        """The home of someone who has just begun."""
        shutil.rmtree(self.home, ignore_errors=True)
        self.home.mkdir()

    def close(self):
        """Ends everything, the last started first."""
        for process in reversed(list(self._running)):
            self.end(process)
        shutil.rmtree(self.folder, ignore_errors=True)
