"""The twelve-month history and the last-12-months page."""

import re

from .basics import bar_height, full_scale, plain, rounded
from .frame import END_OF_PAGE, days_of_period, footer_start, head, site_label
from .months import ENGLISH_SHORT, link

NUMBER = re.compile(r" *([+-]?(?:[0-9]+\.?[0-9]*|\.[0-9]+)(?:[eE][+-]?[0-9]+)?) *")
LARGEST = 1e15
ANNUAL_HEADER = "mon, yr, bytes, hits, pages, upages, responseTime, visitors, visits, files"


class Row:
    NAMES = ("mon", "yr", "bytes", "hits", "pages", "upages", "response_time", "visitors",
             "visits", "files")

    def __init__(self, *values):
        for name, value in zip(self.NAMES, values):
            setattr(self, name, value)

    def response(self):
        return self.response_time / max(1, self.hits)


def _numbers(line):
    """The leading ten numbers of a history line, or None: none is negative or above the limit."""
    values = []
    for part in line.split(",")[:10]:
        match = NUMBER.fullmatch(part)
        if not match or not 0 <= float(match.group(1)) <= LARGEST:
            return None
        values.append(float(match.group(1)) + 0.0)
    return values if len(values) == 10 else None


class History:
    def __init__(self, today):
        self.today = today
        self.slots = [Row(month, 0, *[0] * 8) for month in range(1, 13)]

    def load(self, content):
        """Returns the number of the line at which the loading stopped with text left, or 0."""
        lines = content.decode("latin-1").replace("\r\n", "\n").split("\n")
        for number, line in enumerate(lines):
            values = _numbers(line)
            if values is None or not 1 <= values[0] <= 12:
                return number + 1 if "".join(lines[number:]).strip(" \t\r") else 0
            self._put(Row(int(values[0]), int(values[1]), *values[2:]))
        return 0

    def add(self, row):
        """A month that this run has read. Its figures stay below what can be loaded again."""
        for name in Row.NAMES[2:]:
            setattr(row, name, min(getattr(row, name), LARGEST))
        self._put(row)

    def _put(self, row):
        this_year = self.today.year
        if row.yr == this_year or (row.yr == this_year - 1 and row.mon > self.today.month):
            self.slots[row.mon - 1] = row

    def lines(self):
        return "".join(",".join(plain(getattr(row, name)) for name in Row.NAMES) + "\r\n"
                       for row in self.slots)

    def files(self, csv):
        found = {"History.txt": self.lines()}
        if csv:
            found["Annual.csv"] = ANNUAL_HEADER + "\r\n" + self.lines()
        return found


def _chart(run, slots, scales):
    download = ' <small><a href="Annual.csv">(Download)</a></small>' if run.csv else ""
    out = ['<table width="90%" border=1 rules=groups frame=box cellpadding=0>',
           "<caption><b>Usage summary for " + run.host + "</b>" + download + "</caption>",
           "<tfoot>", "<tr align=left><td></td>"]
    out += ["<td colspan=5><tt><b>" + name + "</b></tt></td>" for name in ENGLISH_SHORT]
    out += ["</tr>", "</tfoot>", "<tbody>",
            '<tr><td style="width:1px; border-left:1px solid black"><br></td><!-- Axis-->']
    colours = ("green", "red", "orange", "pink")
    for row in slots:
        values = (row.hits, row.bytes, row.visitors, row.response())
        for value, scale, colour in zip(values, scales, colours):
            out.append('<td  style="vertical-align:bottom; height:300px"><div style="height:'
                       + bar_height(value, scale) + "; background-color:" + colour
                       + '; font-size:0pt; width:100%"><br></div>')
        out.append('<td style="width:1px"><br></td><!-- separator -->')
    return out + ["</tbody>", "</table>"]


def _legend(scales):
    units = (("green", "Hits"), ("red", "Bytes"), ("orange", "Visitors"),
             ("salmon", "mS Ave Response"))
    out = ['<table width="90%"><tr><td>100%=</td>']
    out += ["<td><font color=%s>%s %s</font></td>" % (colour, plain(scale), unit)
            for scale, (colour, unit) in zip(scales, units)]
    return out + ["</tr></table>"]


def _table(run, slots):
    columns = (("green", "Hits"), ("blue", "Files"), ("lightblue", "Pages"), ("red", "KBytes"),
               ("orange", "Distinct Visitors"), ("yellow", "Visits"), ("green", "Hits"),
               ("blue", "Files"), ("lightblue", "Unique Pages"), ("red", "KBytes"),
               ("pink", "mS"))
    out = ['<table border=1 rules=all width="90%">',
           "<caption><b>By month summary</b></caption>", "<thead>",
           "<tr><th></th><th colspan=4>Daily average</th><th colspan=7>Monthly totals</th></tr>",
           "<tr><th>Month</th>" + "".join("<th bgcolor=%s>%s</th>" % column
                                          for column in columns) + "</tr>",
           "</thead><tbody>"]
    for row in slots:
        if row.yr == 0:
            continue
        days = days_of_period(row.mon, row.yr, run.today)
        cells = (rounded(row.hits / days), rounded(row.files / days), rounded(row.pages / days),
                 rounded(row.bytes / (days * 1000)), plain(row.visitors), plain(row.visits),
                 plain(row.hits), plain(row.files), plain(row.upages),
                 rounded(row.bytes / 1000), rounded(row.response()))
        page = link(run.months.file_base(row.mon) + ".htm")
        name = run.months.abbreviation(row.mon)
        out.append("<tr align=right><td><a href=%s>%s %d</a></td>" % (page, name, row.yr)
                   + "".join("<td>" + cell + "</td>" for cell in cells) + "</tr>")
    return out + ["  </tbody></table>"]


def index_page(run, history):
    """The lines of "index.htm"."""
    slots = history.slots
    scales = [full_scale(max(values)) for values in (
        [row.hits for row in slots], [row.bytes for row in slots],
        [row.visitors for row in slots], [row.response() for row in slots])]
    out = head(run, run.host + " - last 12 months")
    out += ["<H2>Usage Statistics for " + run.host + site_label(run.site) + "</H2>",
            "<SMALL><STRONG>Summary Period: Last 12 Months<BR>Generated " + run.wall_text
            + "<BR></STRONG></SMALL>", "<HR><center>"]
    out += _chart(run, slots, scales) + _legend(scales) + _table(run, slots)
    return out + [footer_start(run) + "</small>", END_OF_PAGE]
