"""What a Windows shortcut starts."""

import struct

HAS_ID_LIST, HAS_LINK_INFO, HAS_NAME, HAS_RELATIVE_PATH, HAS_FOLDER, HAS_ARGUMENTS = (
    1 << bit for bit in range(6))


def read(data):
    """Target, arguments and folder of a shortcut; an absent one is empty."""
    flags = struct.unpack_from("<I", data, 20)[0]
    offset = 76
    if flags & HAS_ID_LIST:
        offset += 2 + struct.unpack_from("<H", data, offset)[0]
    target = ""
    if flags & HAS_LINK_INFO:
        size, base = struct.unpack_from("<I12xI", data, offset)
        target = data[offset + base:data.index(b"\0", offset + base)].decode("cp1252")
        offset += size
    texts = {}
    for flag in (HAS_NAME, HAS_RELATIVE_PATH, HAS_FOLDER, HAS_ARGUMENTS):
        if flags & flag:
            length = struct.unpack_from("<H", data, offset)[0]
            texts[flag] = data[offset + 2:offset + 2 + 2 * length].decode("utf-16-le").rstrip("\0")
            offset += 2 + 2 * length
    return target, texts.get(HAS_ARGUMENTS, ""), texts.get(HAS_FOLDER, "")
