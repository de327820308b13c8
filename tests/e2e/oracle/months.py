"""The months' names of a locale: as text, in a file's name and in a link."""

ENGLISH = ["January", "February", "March", "April", "May", "June", "July", "August", "September",
           "October", "November", "December"]
ENGLISH_SHORT = [name[:3] for name in ENGLISH]
# What stands for itself in a link; of everything else the bytes are written in hexadecimal.
PLAIN_IN_LINKS = set("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~")


class Months:
    """Names and abbreviations, January first, as the characters of their UTF-8 bytes."""

    def __init__(self, names=None, short=None):
        self.names = names or ENGLISH
        self.short = short or ENGLISH_SHORT

    def name(self, month):
        return self.names[month - 1]

    def abbreviation(self, month):
        return self.short[month - 1]

    def file_base(self, month):
        """What the files of a month are called: no blanks at the ends, no separator of folders."""
        return self.abbreviation(month).strip(" ").replace("/", "_")


def link(name):
    """A file's name as it stands in a link."""
    return "".join(c if c in PLAIN_IN_LINKS else "%%%02X" % ord(c) for c in name)
