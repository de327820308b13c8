"""The records of the CSV companions."""

from .months import link


class Number(str):
    """A field that is written without quotes."""


def record(*fields):
    return ",".join(field if isinstance(field, Number) else '"' + field.replace('"', '""') + '"'
                    for field in fields) + "\r\n"


def csv_name(base, name):
    return base + "-" + name + ".csv"


class CsvFiles:
    """The CSV files of one page; with CSV output off nothing is kept and no link is given."""

    def __init__(self, enabled, base):
        self.enabled = enabled
        self.base = base
        self.files = {}

    def link(self, name):
        if not self.enabled:
            return ""
        address = link(csv_name(self.base, name))
        return ' <small><a href="' + address + '">(Download)</a></small>'

    def write(self, name, records):
        if self.enabled:
            self.files[csv_name(self.base, name)] = "".join(record(*fields)
                                                            for fields in records)
