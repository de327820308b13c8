"""What a Windows program file says about itself."""

import struct

WINDOWS_SUBSYSTEM = 2  # no console is opened for it


def read(image):
    """The subsystem and the names of the libraries that a PE+ image asks for."""
    header = struct.unpack_from("<I", image, 0x3C)[0]
    if image[header:header + 4] != b"PE\0\0":
        raise ValueError("no PE signature")
    section_count, optional_size = struct.unpack_from("<H12xH", image, header + 6)
    optional = header + 24
    subsystem = struct.unpack_from("<H", image, optional + 68)[0]
    imports = struct.unpack_from("<I", image, optional + 112 + 8)[0]
    sections = [struct.unpack_from("<IIII", image, optional + optional_size + 40 * i + 8)
                for i in range(section_count)]
    return subsystem, list(_library_names(image, sections, imports))


def _offset(sections, address):
    for size, base, _, data in sections:
        if base <= address < base + size:
            return address - base + data
    raise ValueError("address outside all sections")


def _library_names(image, sections, imports):
    entry = _offset(sections, imports)
    while True:
        name = struct.unpack_from("<I", image, entry + 12)[0]
        if name == 0:
            return
        start = _offset(sections, name)
        yield image[start:image.index(b"\0", start)].decode("ascii")
        entry += 20
