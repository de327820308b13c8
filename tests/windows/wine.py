"""Windows programs under Wine: a prefix of their own, its registry, a frozen clock."""

import os
import pathlib
import re
import subprocess
import tempfile

import frozen_clock

# The settings branch: what `reg` calls it, and what an imported file calls it.
BRANCH = r"HKCU\Software\VB and VBA Program Settings\Hitwick"
IMPORTED_BRANCH = BRANCH.replace("HKCU", "HKEY_CURRENT_USER", 1)
TIMEOUT_SECONDS = 300


def run(command, environment, epoch=None):
    """Runs a program to its end, its clock frozen at `epoch` (seconds since 1970) when one is
    given; returns exit code, standard output and standard error."""
    environment = {"PATH": os.environ["PATH"], "LC_ALL": "C.UTF-8",
                   "RES_OPTIONS": "timeout:1 attempts:1", **environment}
    if epoch is not None:
        environment.update(frozen_clock.environment(epoch))
    result = subprocess.run([str(part) for part in command], env=environment,
                            timeout=TIMEOUT_SECONDS, stdin=subprocess.DEVNULL,
                            stdout=subprocess.PIPE, stderr=subprocess.PIPE, check=False)
    return (result.returncode, result.stdout.decode("utf-8", "replace"),
            result.stderr.decode("utf-8", "replace"))


def windows_path(path):
    """A path of this system as Wine shows it."""
    return "Z:" + str(path).replace("/", "\\")


class Wine:
    def __init__(self, prefix):
        self.prefix = pathlib.Path(prefix)

    def __call__(self, *arguments, zone="UTC", debug="-all", epoch=None):
        """Runs a Windows program; results as `run` gives them."""
        return run(["wine", *arguments], self.environment(zone, debug), epoch)

    def environment(self, zone="UTC", debug="-all"):
        # Without the last, shortcuts would be put into the menus of this system's desktop, too.
        return {"HOME": os.environ.get("HOME", "/"), "WINEPREFIX": str(self.prefix),
                "WINEDEBUG": debug, "TZ": zone, "WINEDLLOVERRIDES": "winemenubuilder.exe=d"}

    def start(self):
        """Makes the prefix when it does not exist yet, and keeps Wine's services running. Started
        with the first program instead, they would hold its standard error open until they end,
        and be started again for the next one. (The first program may be any but `wineboot -i`,
        which would start the services a second time.)"""
        self.prefix.mkdir(parents=True, exist_ok=True)
        for command in (["wineserver", "-p"], ["wine", "cmd", "/c", "exit"]):
            subprocess.run(command, env={**os.environ, **self.environment()}, check=False,
                           timeout=TIMEOUT_SECONDS, stdin=subprocess.DEVNULL,
                           stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)

    def stop(self):
        """Ends everything that runs in the prefix."""
        run(["wineserver", "-k"], self.environment())
        run(["wineserver", "-w"], self.environment())

    def restart(self):
        self.stop()
        self.start()

    def store(self, keys):
        """Writes text values: {key below the settings branch: {name: text}}."""
        lines = ["Windows Registry Editor Version 5.00", ""]
        for key, values in keys.items():
            lines.append(f"[{IMPORTED_BRANCH}\\{key}]")
            for name, text in values.items():
                data = ",".join(f"{byte:02x}" for byte in (text + "\0").encode("utf-16-le"))
                lines.append(f'"{name}"=hex(1):{data}')
        with tempfile.NamedTemporaryFile(suffix=".reg") as file:
            file.write("\r\n".join(lines + [""]).encode("utf-16"))
            file.flush()
            code, _, errors = self("reg", "import", windows_path(file.name))
        if code != 0:
            raise RuntimeError("reg import failed: " + errors)

    def stored(self, key):
        """The values of a key below the settings branch: {name: (type, text)}; ASCII only."""
        _, output, _ = self("reg", "query", f"{BRANCH}\\{key}")
        rows = re.findall(r"^ {4}(\S.*?) {4}(REG_\w+) {4}(.*?)\r?$", output, re.MULTILINE)
        return {name: (kind, text) for name, kind, text in rows}

    def add_value(self, key, name, text, kind="REG_SZ"):
        """Writes one value as an administrator does at a prompt."""
        code, _, errors = self("reg", "add", f"{BRANCH}\\{key}", "/v", name, "/t", kind, "/d", text,
                               "/f")
        if code != 0:
            raise RuntimeError("reg add failed: " + errors)

    def forget(self, key):
        self("reg", "delete", f"{BRANCH}\\{key}", "/f")
