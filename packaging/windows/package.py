#!/usr/bin/env python3
"""Makes the packages for Windows of a finished build: the setup and the plain zip.

    package.py build/windows-mingw build/packages

The same build and commit give the same bytes.
"""

import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import time
import zipfile

import make_icon

HERE = pathlib.Path(__file__).resolve().parent
ROOT = HERE.parents[1]
HELP = ROOT / "docs/help"  # the help page and what it shows
STRIP = "x86_64-w64-mingw32-strip"
PROGRAM_FILES = ("hitwick.exe", "HitwickHelper.dll")
FIRST_ZIP_TIME = 315532800  # 1980-01-01


def version_of(build):
    cache = (build / "CMakeCache.txt").read_text(encoding="utf-8")
    return re.search(r"^CMAKE_PROJECT_VERSION:\w+=(.+)$", cache, re.MULTILINE).group(1)


def commit_time():
    """When the commit was made, for the dates inside the packages; without git the earliest."""
    result = subprocess.run(["git", "-C", ROOT, "log", "-1", "--format=%ct"], check=False,
                            stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
    return int(result.stdout or FIRST_ZIP_TIME)


def run(*command):
    """Runs a tool that puts a date into what it makes: that of the commit."""
    subprocess.run(command, check=True,
                   env={**os.environ, "SOURCE_DATE_EPOCH": str(commit_time())})


def fill_stage(build, stage):
    """Everything that is installed, as it lies in the program's folder."""
    for name in PROGRAM_FILES:
        run(STRIP, "-o", stage / name, build / name)
    copy_text(ROOT / "LICENSE", stage / "LICENSE.txt")
    shutil.copytree(HELP, stage, dirs_exist_ok=True)


def copy_text(source, target):
    target.write_bytes(source.read_bytes().replace(b"\r\n", b"\n").replace(b"\n", b"\r\n"))


def files_of(stage):
    return sorted(path for path in stage.rglob("*") if path.is_file())


def lists_of(stage):
    """What the setup's script includes: how to install the files, and how to remove them."""
    install, remove, folders = [], [], set()
    for file in files_of(stage):
        relative = file.relative_to(stage)
        folder = "\\".join(("$INSTDIR", *relative.parts[:-1]))
        install += [f'SetOutPath "{folder}"', f'File "{file}"']
        remove.append(f'Delete "{folder}\\{relative.name}"')
        folders.update("\\".join(("$INSTDIR", *relative.parts[:depth]))
                       for depth in range(1, len(relative.parts)))
    remove += [f'RMDir "{folder}"' for folder in sorted(folders, reverse=True)]
    return "".join(f"!macro {name}\n" + "".join(f"  {line}\n" for line in lines) + "!macroend\n"
                   for name, lines in (("InstallFiles", install), ("RemoveFiles", remove)))


def make_setup(stage, version, target, **defines):
    """Makes the setup of what lies in `stage`; `defines` are those of the script."""
    with tempfile.TemporaryDirectory(prefix="hitwick-setup-") as folder:
        lists, side = pathlib.Path(folder, "lists.nsh"), pathlib.Path(folder, "side.bmp")
        lists.write_text(lists_of(stage), encoding="utf-8")
        side.write_bytes(make_icon.side_picture())
        defines = {"VERSION": version, "LISTS": lists, "SIDE": side, "OUTPUT": target.resolve(),
                   "LICENCE": stage / "LICENSE.txt", **defines}
        run("makensis", "-V2", "-WX", "-INPUTCHARSET", "UTF8",
            *(f"-D{name}={value}" for name, value in defines.items()), HERE / "hitwick.nsi")


def make_zip(stage, version, target):
    date = time.gmtime(max(commit_time(), FIRST_ZIP_TIME))[:6]
    with zipfile.ZipFile(target, "w", zipfile.ZIP_DEFLATED, compresslevel=9) as archive:
        for file in files_of(stage):
            name = f"hitwick-{version}/{file.relative_to(stage).as_posix()}"
            entry = zipfile.ZipInfo(name, date)
            entry.compress_type = zipfile.ZIP_DEFLATED
            entry.external_attr = 0o644 << 16
            archive.writestr(entry, file.read_bytes())


def make_packages(build, packages):
    """Makes both; returns their paths."""
    version = version_of(build)
    packages.mkdir(parents=True, exist_ok=True)
    setup = packages / f"hitwick-{version}-windows-setup.exe"
    archive = packages / f"hitwick-{version}-windows.zip"
    with tempfile.TemporaryDirectory(prefix="hitwick-stage-") as folder:
        stage = pathlib.Path(folder)
        fill_stage(build, stage)
        make_setup(stage, version, setup)
        make_zip(stage, version, archive)
    return setup, archive


if __name__ == "__main__":
    for made in make_packages(*map(pathlib.Path, sys.argv[1:3])):
        print(made)
