"""Locales for the program: compiled from their sources, and what the C library says of them.

A locale is compiled once into the folder that HITWICK_LOCALES names, or into a temporary one.
"""

import atexit
import functools
import hashlib
import os
import shutil
import subprocess
import tempfile

from oracle.months import Months

# French has letters beyond ASCII and points; Japanese has blanks before the numbers; Catalan and
# Syrian Arabic have blanks inside and Blin has slashes.
REAL = ["fr_FR", "ja_JP", "ca_ES", "ar_SY", "byn_ER"]


@functools.lru_cache(maxsize=None)
def _folder():
    named = os.environ.get("HITWICK_LOCALES")
    if named:
        os.makedirs(named, exist_ok=True)
        return named
    folder = tempfile.mkdtemp(prefix="hitwick-locales-")
    atexit.register(shutil.rmtree, folder, ignore_errors=True)
    return folder


def _compile(source, charset, target):
    with tempfile.TemporaryDirectory(dir=_folder()) as made:
        # Of a source of our own not every category is complete, which is a warning: --force.
        command = ["localedef", "--force", "-i", source, "-f", charset, os.path.join(made, "it")]
        done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                              check=False)
        if not os.path.exists(os.path.join(made, "it", "LC_TIME")):
            raise RuntimeError("%s (Debian packages locales, libc-bin) cannot compile %s: %s"
                               % (command[0], source, done.stdout.decode("utf-8", "replace")))
        try:
            os.rename(os.path.join(made, "it"), target)
        except OSError:  # another test was faster
            if not os.path.isdir(target):
                raise


class Locale:
    """A compiled locale; `source` is a name that the C library knows, or the path of a file."""

    def __init__(self, source, charset="UTF-8"):
        self.charset = charset
        self.name = source + "." + charset
        if os.path.isabs(source):
            with open(source, "rb") as file:  # a changed source is another locale
                self.name = "own-" + hashlib.sha256(file.read()).hexdigest()[:8]
        path = os.path.join(_folder(), self.name)
        if not os.path.isdir(path):
            _compile(source, charset, path)

    def environment(self):
        return {"LC_ALL": self.name, "LOCPATH": _folder()}

    @functools.lru_cache(maxsize=None)
    def months(self):
        """The months as the C library's own program names them."""
        done = subprocess.run(["locale", "mon", "abmon"], stdout=subprocess.PIPE, check=True,
                              env={**os.environ, **self.environment()})
        lines = done.stdout.decode(self.charset).encode("utf-8").decode("latin-1").split("\n")
        names, short = (line.split(";") for line in lines[:2])
        if len(names) != 12 or len(short) != 12:
            raise RuntimeError("cannot read the months of " + self.name)
        return Months(names, short)


@functools.lru_cache(maxsize=None)
def locale(source, charset="UTF-8"):
    return Locale(source, charset)
