#!/usr/bin/env python3
"""Takes pictures of every window and box on a screen of its own.

    screenshots.py BUILD_FOLDER PICTURE_FOLDER [--scale 2] [--theme Adwaita:dark]
                   [--suffix=-dark] [--only NAME...]

Needs Xvfb, openbox, xdotool and ImageMagick. Settings, logs and pages live in a temporary folder.
"""

import argparse
import contextlib
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import time

SITE = "web1"
RULES = {
    "Ex_Browser_XbotX": ("False", "cs(User-Agent)", "*bot*"),
    "Ex_Client_IP_10_X": ("False", "c-ip", "10.*"),
    "In_URL__docs_X": ("True", "cs-uri-stem", "/docs/*"),
}


def start_screen(size, scale):
    """A display with a window manager on it; its number."""
    read_end, write_end = os.pipe()
    width, height = size
    server = subprocess.Popen(
        ["Xvfb", "-displayfd", str(write_end), "-screen", "0", f"{width}x{height}x24", "-noreset",
         "-dpi", str(96 * scale)],
        pass_fds=[write_end], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    os.close(write_end)
    with os.fdopen(read_end) as pipe:
        return server, ":" + pipe.readline().strip()


class Desk:
    """A screen, a user with one site, and the program on it."""

    def __init__(self, build, scale, theme):
        self.build = build
        self.stack = contextlib.ExitStack()
        self.folder = pathlib.Path(self.stack.enter_context(tempfile.TemporaryDirectory()))
        self.corner = (1400 * scale - 1, 1000 * scale - 1)
        self.server, display = start_screen((1400 * scale, 1000 * scale), scale)
        self.environment = dict(
            os.environ, DISPLAY=display, HOME=str(self.folder), GDK_SCALE=str(scale),
            GTK_THEME=theme, LC_ALL="C.UTF-8", NO_AT_BRIDGE="1", GTK_OVERLAY_SCROLLING="0",
            XDG_CONFIG_HOME=str(self.folder / "config"), XDG_STATE_HOME=str(self.folder / "state"))
        self.manager = self.spawn("openbox")
        self.make_site()

    def spawn(self, *command):
        return subprocess.Popen(command, env=self.environment, stdout=subprocess.DEVNULL,
                                stderr=subprocess.DEVNULL)

    def make_site(self):
        logs, usage = self.folder / "logs" / "W3SVC1", self.folder / "pages" / "usage"
        for folder in (logs, usage, self.folder / "logs" / "W3SVC2", self.folder / "pages" / "old",
                       self.folder / "config" / "hitwick"):
            folder.mkdir(parents=True)
        subprocess.run([self.build / "sample_logs", "demo", logs], check=True,
                       stdout=subprocess.DEVNULL)
        lines = [f"[{SITE}]", "IISLogFormat=W3C", f"IISLogDir={logs}", f"UsageDir={usage}",
                 "MaxListSize=50", "GenerateCSV=True"]
        for name, (includes, field, pattern) in RULES.items():
            lines += [f"[{SITE}\\Filters\\{name}]", f"name={name}", f"includes={includes}",
                      f"field={field}", f"pattern={pattern}"]
        for other in ("intranet", "shop"):
            lines += [f"[{other}]", "IISLogFormat=W3C"]
        settings = self.folder / "config" / "hitwick" / "settings.ini"
        settings.write_text("\n".join(lines) + "\n")

    def xdotool(self, *arguments):
        done = subprocess.run(["xdotool", *map(str, arguments)], env=self.environment,
                              capture_output=True, text=True)
        return done.stdout.strip()

    def key(self, *keys):
        self.xdotool("key", "--delay", 60, *keys)
        time.sleep(0.3)

    def type(self, text):
        self.xdotool("type", "--delay", 30, text)
        time.sleep(0.3)

    def window(self, title, seconds=30):
        """Waits for the window of that title; its number."""
        for _ in range(seconds * 10):
            found = self.xdotool("search", "--onlyvisible", "--name", f"^{title}$").split()
            if found:
                self.xdotool("windowactivate", "--sync", found[-1])
                time.sleep(0.6)
                return found[-1]
            time.sleep(0.1)
        raise RuntimeError(f"no window '{title}'")

    def picture(self, title, file):
        window = self.window(title)
        self.xdotool("mousemove", *self.corner)  # away from all tool tips
        time.sleep(0.6)
        parent = self.frame_of(window)
        # Without its window the tool waits for a click on another one.
        subprocess.run(["import", "-window", parent, file], env=self.environment, check=True,
                       timeout=20)

    def frame_of(self, window):
        """The window manager's frame around a window, so that the picture has its title."""
        out = subprocess.run(["xwininfo", "-tree", "-id", window], env=self.environment,
                             capture_output=True, text=True).stdout
        for line in out.splitlines():
            if "Parent window id:" in line and "root" not in line:
                return line.split()[3]
        return window

    def resize(self, title, width, height):
        self.xdotool("windowsize", self.window(title), width, height)
        time.sleep(0.6)

    def end(self):
        self.manager.kill()
        self.server.kill()
        self.server.wait()
        self.stack.close()


def shoot(desk, pictures, suffix, scale, wanted):
    def take(title, name):
        if not wanted or name in wanted:
            desk.picture(title, pictures / f"{name}{suffix}.png")

    program = desk.spawn(str(desk.build / "hitwick"), f"/SITE={SITE}")
    main = "Hitwick - Configuration"
    take(main, "configuration")
    desk.resize(main, 1250 * scale, 860 * scale)
    take(main, "configuration-large")
    desk.key("alt+d")
    take("Hitwick - On Demand Report", "on-demand")
    desk.resize("Hitwick - On Demand Report", 760 * scale, 560 * scale)
    take("Hitwick - On Demand Report", "on-demand-large")
    desk.key("Escape")
    desk.window(main)
    desk.key("alt+f")
    take("Filters", "filters")
    desk.resize("Filters", 700 * scale, 500 * scale)
    take("Filters", "filters-large")
    desk.key("alt+a")
    take("Filter Name", "filter")
    desk.key("alt+h")
    take("Hitwick", "filter-help")
    desk.key("Escape")
    desk.resize("Filter Name", 800 * scale, 300 * scale)
    take("Filter Name", "filter-large")
    desk.key("Tab", "Tab", "Tab")
    desk.key("alt+m")
    desk.type("/a b(c)")
    desk.key("Return")
    take("Hitwick", "filter-suggestion")
    desk.key("Escape", "Escape", "Escape")
    desk.window(main)
    desk.key("alt+p", "Menu")
    time.sleep(0.5)
    subprocess.run(["import", "-window", "root", pictures / f"menu{suffix}.png"],
                   env=desk.environment, check=True)
    desk.key("Down", "Return")
    take("Create new usage folder", "new-folder")
    desk.key("Escape")
    desk.window(main)
    desk.key("alt+c")
    with contextlib.suppress(subprocess.SubprocessError, RuntimeError):
        take(main, "run")  # it may be over before the picture is taken
    program.wait(120)

    program = desk.spawn(str(desk.build / "hitwick"), "/L")
    take("Hitwick - Select which site", "site")
    desk.resize("Hitwick - Select which site", 700 * scale, 260 * scale)
    take("Hitwick - Select which site", "site-large")
    desk.key("alt+r")
    program.kill()
    program.wait()


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("build", type=pathlib.Path)
    parser.add_argument("pictures", type=pathlib.Path)
    parser.add_argument("--scale", type=int, default=1)
    parser.add_argument("--theme", default="Adwaita")
    parser.add_argument("--suffix", default="")
    parser.add_argument("--only", nargs="*", default=[])
    arguments = parser.parse_args()
    for tool in ("Xvfb", "openbox", "xdotool", "import", "xwininfo"):
        if shutil.which(tool) is None:
            sys.exit(f"screenshots: {tool} is not installed")
    arguments.pictures.mkdir(parents=True, exist_ok=True)
    desk = Desk(arguments.build.resolve(), arguments.scale, arguments.theme)
    try:
        shoot(desk, arguments.pictures, arguments.suffix, arguments.scale, set(arguments.only))
    finally:
        desk.end()


if __name__ == "__main__":
    main()
