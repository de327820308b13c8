"""What a Windows program file says about itself: subsystem, libraries, exports, resources."""

import struct

WINDOWS_SUBSYSTEM = 2  # no console is opened for it
EXPORTS, IMPORTS, RESOURCES = range(3)  # their places in the table of directories
ICON, MESSAGE_TABLE, ICON_GROUP, VERSION, MANIFEST = 3, 11, 14, 16, 24  # kinds of resources


class ProgramFile:
    """A PE+ image."""

    def __init__(self, image):
        self.image = image
        header = struct.unpack_from("<I", image, 0x3C)[0]
        if image[header:header + 4] != b"PE\0\0":
            raise ValueError("no PE signature")
        section_count, optional_size = struct.unpack_from("<H12xH", image, header + 6)
        self._optional = header + 24
        self.subsystem = struct.unpack_from("<H", image, self._optional + 68)[0]
        self._sections = [
            struct.unpack_from("<IIII", image, self._optional + optional_size + 40 * i + 8)
            for i in range(section_count)]

    def libraries(self):
        """The names of the libraries that the image asks for."""
        entry = self._directory(IMPORTS)
        names = []
        while (name := self._unpack("<I", entry + 12)[0]) != 0:
            names.append(self._text(name))
            entry += 20
        return names

    def exports(self):
        directory = self._directory(EXPORTS)
        if directory is None:
            return []
        count, names = self._unpack("<I4xI", directory + 24)
        table = self._offset(names)
        return [self._text(address) for address in self._unpack(f"<{count}I", table)]

    def resources(self, kind):
        """The data of all resources of a kind: {number: data}, the last language's of each."""
        root = self._directory(RESOURCES)
        found = {}
        for entry_kind, names in self._entries(root, root):
            if entry_kind == kind:
                for name, languages in self._entries(root, names):
                    for _, data in self._entries(root, languages):
                        address, size = self._unpack("<II", data)
                        start = self._offset(address)
                        found[name] = self.image[start:start + size]
        return found

    def icons(self):
        """The images of the first icon: {width: data}."""
        group = min(self.resources(ICON_GROUP).items())[1]
        images = self.resources(ICON)
        entries = struct.iter_unpack("<BBBBHHIH", group[6:])
        return {width or 256: images[number] for width, *_, number in entries}

    def version(self):
        """The fixed file version and the texts of the version resource."""
        (data,) = self.resources(VERSION).values()
        _, value, children = _version_node(data, 0)
        _, _, high, low = struct.unpack_from("<4I", value)
        texts = {}
        for key, _, tables in children:
            for _, _, strings in tables if key == "StringFileInfo" else ():
                texts.update({name: text.decode("utf-16-le").rstrip("\0")
                              for name, text, _ in strings})
        return (high >> 16, high & 0xFFFF, low >> 16, low & 0xFFFF), texts

    def _directory(self, index):
        address = self._unpack("<I", self._optional + 112 + 8 * index)[0]
        return self._offset(address) if address else None

    def _entries(self, root, directory):
        """Number and place of each entry of a resource directory; named ones do not count."""
        named, numbered = self._unpack("<HH", directory + 12)
        for i in range(named, named + numbered):
            number, place = self._unpack("<II", directory + 16 + 8 * i)
            yield number, root + (place & 0x7FFFFFFF)

    def _unpack(self, form, offset):
        return struct.unpack_from(form, self.image, offset)

    def _offset(self, address):
        for size, base, _, data in self._sections:
            if base <= address < base + size:
                return address - base + data
        raise ValueError("address outside all sections")

    def _text(self, address):
        start = self._offset(address)
        return self.image[start:self.image.index(b"\0", start)].decode("ascii")


def _version_node(data, start):
    """Key, value and children (key, value, children) of a node of a version resource."""
    length, value_length, is_text = struct.unpack_from("<HHH", data, start)
    key_end = start + 6
    while data[key_end:key_end + 2] != b"\0\0":
        key_end += 2
    key = data[start + 6:key_end].decode("utf-16-le")
    value_start = _aligned(key_end + 2)
    value_end = value_start + value_length * (2 if is_text else 1)
    children = []
    child = _aligned(value_end)
    while child < start + length:
        children.append(_version_node(data, child))
        child = _aligned(child + struct.unpack_from("<H", data, child)[0])
    return key, data[value_start:value_end], children


def _aligned(offset):
    return (offset + 3) // 4 * 4
