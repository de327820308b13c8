#!/usr/bin/env python3
"""Reads the finished binaries: is everything in them that makes a mistake hard to exploit?

    hardening_test.py BINARY...

A binary is a program or library for Linux (ELF, read with binutils) or a program for Windows (PE+).
"""

import re
import struct
import subprocess
import sys

DYNAMIC_BASE, HIGH_ENTROPY, NX_COMPAT = 0x0040, 0x0020, 0x0100
RELOCATIONS_STRIPPED = 0x0001
BASE_RELOCATIONS = 5  # in the table of directories
LOW_ADDRESSES = 1 << 32


def readelf(path):
    done = subprocess.run(["readelf", "--wide", "--file-header", "--program-headers", "--dynamic",
                           "--dyn-syms", path], check=True, stdout=subprocess.PIPE)
    return done.stdout.decode("latin-1")


def elf_problems(text, is_program):
    """What a binary lacks, by what `readelf` says of it."""
    dynamic = " ".join(re.findall(r"^ *0x\w+ \((?:FLAGS|FLAGS_1|BIND_NOW)\).*$", text, re.M))
    segments = re.findall(r"^ +([A-Z_0-9]+) +(?:0x\w+ +){5}([R ][W ][E ]) ", text, re.M)
    kinds = [kind for kind, _ in segments]
    found = {
        "position-independent": re.search(r"^ *Type: +DYN ", text, re.M)
        and (not is_program or re.search(r"\bPIE\b", dynamic)),
        "read-only relocations": "GNU_RELRO" in kinds,
        "functions looked up at the start": re.search(r"\bNOW\b", dynamic),
        "no code on the stack": [rights for kind, rights in segments
                                 if kind == "GNU_STACK"] == ["RW "],
        "no memory both writable and executable": segments and not any(
            "W" in rights and "E" in rights for _, rights in segments),
        "no relocations in code": "(TEXTREL)" not in text,
        "no library path of its own": not re.search(r"\((RPATH|RUNPATH)\)", text),
        "stack protector": "__stack_chk_fail" in text,
        "checked copies": not is_program or re.search(r" __\w+_chk@", text),
    }
    return [what for what, there in found.items() if not there]


def pe_problems(image):
    """What a Windows program lacks."""
    header = struct.unpack_from("<I", image, 0x3C)[0]
    symbols, symbol_count, _, characteristics = struct.unpack_from("<IIHH", image, header + 12)
    optional = header + 24
    image_base, = struct.unpack_from("<Q", image, optional + 24)
    dll_characteristics, = struct.unpack_from("<H", image, optional + 70)
    relocations = struct.unpack_from("<II", image, optional + 112 + 8 * BASE_RELOCATIONS)
    names = image[symbols + 18 * symbol_count:] if symbols else b""
    found = {
        "64-bit program": image[header:header + 4] == b"PE\0\0"
        and struct.unpack_from("<H", image, optional)[0] == 0x20B,
        "any address (ASLR)": dll_characteristics & DYNAMIC_BASE,
        "any of the high addresses": dll_characteristics & HIGH_ENTROPY
        and image_base >= LOW_ADDRESSES,
        "relocations for it": all(relocations) and not characteristics & RELOCATIONS_STRIPPED,
        "no code in data (DEP)": dll_characteristics & NX_COMPAT,
        "stack protector": b"__stack_chk_fail" in names,
    }
    return [what for what, there in found.items() if not there]


def problems(path):
    with open(path, "rb") as file:
        image = file.read()
    if image[:4] == b"\x7fELF":
        return elf_problems(readelf(path), is_program=not path.endswith(".so"))
    if image[:2] == b"MZ":
        return pe_problems(image)
    return ["neither a program for Linux nor one for Windows"]


def main():
    if len(sys.argv) < 2:
        sys.exit(__doc__)
    failed = False
    for path in sys.argv[1:]:
        for what in problems(path):
            failed = True
            print("%s lacks: %s" % (path, what))
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
