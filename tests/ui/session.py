"""A private desktop for one test process: X server, window manager, session and accessibility bus.

`start()` must run before the accessibility library is first used: it connects once and for good to
the buses of the environment it finds. Everything ends with the test process, even when
that is killed.
"""

import atexit
import ctypes
import os
import shutil
import signal
import subprocess
import sys
import tempfile
import time

# How long anything may take, in seconds; a busy machine under the sanitizers is slow.
LIMIT = float(os.environ.get("HITWICK_UI_LIMIT", "60"))
SCREEN = (2400, 1800)
PROGRAMS = ("Xvfb", "openbox", "dbus-daemon", "xdotool", "import")
PR_SET_PDEATHSIG = 1

_processes = []
_root = None


def _die_with_parent():
    ctypes.CDLL(None).prctl(PR_SET_PDEATHSIG, signal.SIGKILL)


def spawn(command, **options):
    """Starts a helper process that ends with this one."""
    process = subprocess.Popen(command, stdin=subprocess.DEVNULL, preexec_fn=_die_with_parent,
                               **options)
    _processes.append(process)
    return process


def stop(process):
    """Ends one process that `spawn` started, and waits for it."""
    if process.poll() is None:
        process.terminate()
        try:
            process.wait(timeout=5)
        except subprocess.TimeoutExpired:
            process.kill()
            process.wait()
    if process in _processes:
        _processes.remove(process)


def root():
    """The session's own temporary folder."""
    return _root


def poll(condition, what, limit=LIMIT):
    """Waits until `condition()` is true and returns its value. `what` names it in the failure: a
    text, or a function that gives one."""
    end = time.monotonic() + limit
    while True:
        value = condition()
        if value:
            return value
        if time.monotonic() > end:
            raise AssertionError("waited %d s in vain: %s"
                                 % (limit, what() if callable(what) else what))
        time.sleep(0.02)


def _first_line(descriptor):
    text = b""
    while not text.endswith(b"\n"):
        byte = os.read(descriptor, 1)
        if not byte:
            raise RuntimeError("a helper of the session ended at its start")
        text += byte
    return text.decode().strip()


def _start_display():
    out, into = os.pipe()
    spawn(["Xvfb", "-displayfd", str(into), "-screen", "0", "%dx%dx24" % SCREEN, "-nolisten",
           "tcp", "-noreset"], pass_fds=(into,), stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    os.close(into)
    os.environ["DISPLAY"] = ":" + _first_line(out)
    os.close(out)


def _start_bus():
    out, into = os.pipe()
    with open(os.path.join(_root, "bus.log"), "wb") as log:
        spawn(["dbus-daemon", "--session", "--nofork", "--print-address=%d" % into],
              pass_fds=(into,), stdout=log, stderr=log)
    os.close(into)
    os.environ["DBUS_SESSION_BUS_ADDRESS"] = _first_line(out)
    os.close(out)


def _start_window_manager():
    with open(os.path.join(_root, "openbox.log"), "wb") as log:
        spawn(["openbox"], stdout=log, stderr=log)

    def ready():
        done = subprocess.run(["xdotool", "get_num_desktops"], stdin=subprocess.DEVNULL,
                              stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, check=False)
        return done.returncode == 0 and done.stdout.strip()
    poll(ready, "the window manager")


def _close():
    for process in reversed(list(_processes)):
        stop(process)
    shutil.rmtree(_root, ignore_errors=True)


def start():
    """Starts the desktop and points this process's environment at it."""
    global _root
    if _root:
        return
    missing = [program for program in PROGRAMS if not shutil.which(program)]
    if missing:
        sys.exit("the tests of the windows need these programs: " + ", ".join(missing))
    _root = tempfile.mkdtemp(prefix="hitwick-ui-")
    atexit.register(_close)
    for name in (signal.SIGTERM, signal.SIGHUP, signal.SIGINT):
        signal.signal(name, lambda *_: sys.exit(1))
    runtime = os.path.join(_root, "runtime")
    home = os.path.join(_root, "home")
    os.mkdir(runtime, 0o700)
    os.mkdir(home)
    for name in ("WAYLAND_DISPLAY", "XAUTHORITY", "SESSION_MANAGER", "AT_SPI_BUS_ADDRESS",
                 "NO_AT_BRIDGE", "GTK_MODULES", "GDK_SCALE"):
        os.environ.pop(name, None)
    os.environ.update(HOME=home, XDG_RUNTIME_DIR=runtime, XDG_CONFIG_HOME=home + "/.config",
                      XDG_CACHE_HOME=home + "/.cache", XDG_DATA_HOME=home + "/.local/share",
                      LC_ALL="C.UTF-8", GSETTINGS_BACKEND="memory", GIO_USE_VFS="local")
    _start_display()
    _start_bus()
    _start_window_manager()
