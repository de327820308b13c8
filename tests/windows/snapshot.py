"""Everything that a Wine prefix holds: its files and its registry, to be compared."""

import hashlib
import pathlib
import re

REGISTRIES = {"HKLM": "system.reg", "HKCU": "user.reg", "HKU": "userdef.reg"}


def files(prefix):
    """{path below drive C: what is in it}; folders as well."""
    root = pathlib.Path(prefix) / "drive_c"
    found = {}
    for path in root.rglob("*"):
        name = path.relative_to(root).as_posix()
        if path.is_file() and not path.is_symlink():
            found[name] = hashlib.sha256(path.read_bytes()).hexdigest()
        else:
            found[name] = "folder or link"
    return found


def registry(prefix):
    """{(root, key, value's name): data}; the name is empty for the key itself. The prefix must not
    be in use: only then is everything in its files."""
    found = {}
    for root, file in REGISTRIES.items():
        key = None
        text = (pathlib.Path(prefix) / file).read_text(encoding="utf-8", errors="replace")
        for line in re.sub(r"\\\n *", "", text).splitlines():
            if head := re.match(r"\[(.*)\] \d+$", line):
                key = head.group(1).replace("\\\\", "\\")
                found[root, key, ""] = "key"
            elif key is not None and (value := re.match(r'("(?:[^"\\]|\\.)*"|@)=(.*)', line)):
                found[root, key, value.group(1)] = value.group(2)
    return found


def differences(before, after):
    """{name: (before, after)} of all that is not the same; None where there was or is nothing."""
    return {name: (before.get(name), after.get(name)) for name in sorted({*before, *after})
            if before.get(name) != after.get(name)}
