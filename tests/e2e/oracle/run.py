"""A whole run: command line, settings, months, history, pages and event-log entries."""

import datetime
import os
import re

from . import basics, filters
from .history import History, Row, index_page
from .months import Months
from .page import month_page
from .reading import Reader

STORE = "My Computer\\HKEY_CURRENT_USER\\Software\\VB and VBA Program Settings\\Hitwick\\"


class Result:
    """What a run leaves behind: files of the usage folder, event-log lines, exit code."""

    def __init__(self):
        self.files = {}
        self.events = []
        self.exit_code = 0


class Run:
    """The settings of one run, in the form in which the pages ask for them.

    `settings` holds the stored texts of the site ("IISLogDir", ...), `rules` its stored filters.
    `now` is an aware UTC datetime, `bias` the zone's standard bias in minutes, `wall_offset` the
    minutes by which the wall clock stands before UTC at that moment.
    """

    home_page = "https://hitwick.example/"
    credit = "by the Hitwick developers"

    def __init__(self, command, settings, rules, now, bias, wall_offset, host, names=None,
                 version="@VERSION@", environment=None, months=None):
        self.command = command
        self.settings = settings
        self.stored_rules = rules
        self.utc = now.replace(tzinfo=None)
        self.wall = self.utc + basics.minutes(wall_offset)
        self.wall_offset = wall_offset
        self.zone_bias = self.bias = bias
        self.host = basics.escape(host)
        self.names = names or {}
        self.version = version
        self.environment = environment or {}
        self.today = self.wall.date()
        self.months = months or Months()
        self.utc_text, self.wall_text = (
            basics.clock_text(moment, self.months.abbreviation(moment.month))
            for moment in (self.utc, self.wall))
        self.site = ""
        self.batch = self.catch_up = self.diagnostics = False
        self.result = Result()

    # Event log

    def _event(self, level, text):
        sign = "-" if self.wall_offset < 0 else "+"
        stamp = "%s%s%02d:%02d" % (self.wall.isoformat(), sign, abs(self.wall_offset) // 60,
                                   abs(self.wall_offset) % 60)
        self.result.events.append(stamp + " " + level + " "
                                  + _on_one_line(text))

    def inform(self, text):
        self._event("information", text)

    def warn(self, text):
        self._event("warning", text)

    # The run

    def execute(self, history=b""):
        """`history`: the content of the usage folder's History.txt, if any."""
        for token in self.command.replace("\t", " ").split(" "):
            if token:
                self._apply_switch(token)
        if not self.batch and not self.catch_up:
            self.result.exit_code = 2
        if self.result.exit_code == 0 and not self._load_settings():
            self.result.exit_code = 1
        if self.result.exit_code == 0:
            self._run_period(history)
        return self.result

    def _apply_switch(self, token):
        self.batch |= basics.contains(token, "/B")
        self.catch_up |= basics.contains(token, "/C")
        self.diagnostics |= basics.contains(token, "/D")
        start = basics.lower(token).find("/s")
        if start >= 0:
            equals = token.find("=", start)
            if equals >= 0:
                self.site = _site_name(token[equals + 1:])
            else:
                if self.batch:
                    self.warn("Hitwick: Format for site name switch is /SITE=NAME")
                self.result.exit_code = 2
        self.inform("Hitwick: Configuration for site name is '" + self.site + "'")

    def _load_settings(self):
        self.site = self.site or "INI"
        self.inform("Hitwick: operating on site '" + self.site + "'")
        drive = self.environment.get("SystemDrive", "")
        log_format = self.settings.get("IISLogFormat", "W3C")
        if basics.lower(log_format) != "w3c":
            return False
        default_logs = drive + "/inetpub/logs/LogFiles/W3SVC1"
        self.log_dir = self.settings.get("IISLogDir", default_logs)
        if log_format != "W3C" or not _has_logs(self.log_dir):
            self.warn("Hitwick: No IIS log files found in '" + self.log_dir
                      + "'. If this is the wrong directory reset registry '" + STORE + self.site
                      + "\\IISLogDir'. Or delete to use default of " + default_logs)
            return False
        self.usage_dir = self.settings.get("UsageDir", drive + "/InetPub/wwwroot/Usage")
        usable = os.path.isdir(os.fsencode(self.usage_dir))
        if not usable:
            self.warn("Hitwick: " + self.usage_dir + " must be a writeable pre-existing directory."
                      " If this is the wrong directory reset registry '" + STORE + self.site
                      + "\\UsageDir'.")
        self.list_size = basics.to_integer(self.settings.get("MaxListSize", "100"), 32, True)
        self.use_utc = self.settings.get("UseUTC") == "True"
        self.show_usernames = self.settings.get("ShowUsernames") == "True"
        self.csv = self.settings.get("GenerateCSV") == "True"
        if self.stored_rules is None:
            self.inform("Hitwick: No filters found when reading configuration from registry : "
                        "RegOpenKeyEx(2)\n")
        self.rules = filters.rules_from_settings(self.stored_rules or [], lambda name: self.warn(
            "Hitwick: Ignoring filter '" + name + "': a name holds only letters, digits and '_', "
            "and a site at most 32767 filters"))
        return usable

    def period(self):
        """The (month, year) pairs of the run, in order."""
        year, month = self.today.year, self.today.month
        if self.catch_up:
            first = (year - 1, month)
        else:
            before = self.today - datetime.timedelta(days=1)
            first = (before.year, before.month) if self.today.day == 1 else (year, month)
        found = []
        while first <= (year, month):
            found.append((first[1], first[0]))
            first = (first[0] + 1, 1) if first[1] == 12 else (first[0], first[1] + 1)
        return found

    def _run_period(self, content):
        self.inform("Hitwick: Logfiles will be read from " + self.log_dir)
        history = History(self.today)
        broken_line = history.load(content)
        reader = Reader(self.log_dir, 0 if self.use_utc else self.zone_bias, self.rules,
                        self.diagnostics, self.warn, self.inform)
        for month, year in self.period():
            stats = reader.read_month(month, year)
            history.add(_history_row(stats, month, year))
            base = self.months.file_base(month)
            self.inform("Hitwick: month report created : " + self.usage_dir + "/" + base + ".htm")
            lines, csv_files = month_page(self, stats, month, year, base)
            self._keep(base + ".htm", "".join(line + "\r\n" for line in lines))
            for name, text in csv_files.items():
                self._keep(name, text)
        if broken_line:
            path = self.usage_dir + "/History."
            self.warn("Hitwick: Line %d of %stxt is no row of the history; it and the lines below it "
                      "are dropped. The file as it was is kept as %sold" % (broken_line, path, path))
            self._keep("History.old", content.decode("latin-1"))
        for name, text in history.files(self.csv).items():
            self._keep(name, text)
        self.inform("Hitwick: Usage reports will be created in " + self.usage_dir)
        self._keep("index.htm", "".join(line + "\r\n" for line in index_page(self, history)))

    def _keep(self, name, text):
        self.result.files[os.fsdecode(name.encode("latin-1"))] = text.encode("latin-1")


# A character of UTF-8 from U+00A0 on, or a byte that a terminal might obey.
MARKED = re.compile("[\xc3-\xdf][\x80-\xbf]|\xc2[\xa0-\xbf]|\xe0[\xa0-\xbf][\x80-\xbf]|"
                    "[\xe1-\xef][\x80-\xbf]{2}|\xf0[\x90-\xbf][\x80-\xbf]{2}|"
                    "[\xf1-\xf4][\x80-\xbf]{3}|[\x00-\x1f\x7f-\x9f\xc2]")


def _on_one_line(text):
    """An entry's text as the event log holds it."""
    def written(match):
        found = match.group(0)
        if found == "\n":
            return "\\n"
        return found if len(found) > 1 else "\\x%02x" % ord(found)

    return MARKED.sub(written, text.replace("\r\n", "\n"))


def _site_name(value):
    if value.startswith('"'):
        value = value[1:].split('"', 1)[0]
    else:
        value = value.split("/", 1)[0].split(" ", 1)[0]
    for mark in "/\\;":
        value = value.replace(mark, "")
    return value


def _has_logs(folder):
    try:
        names = os.listdir(os.fsencode(folder))
    except OSError:
        return False
    for raw in names:
        name = basics.lower(raw.decode("latin-1"))
        if (name.startswith(("ex", "u_ex")) and name.endswith(".log")
                and os.path.isfile(os.path.join(os.fsencode(folder), raw))):
            return True
    return False


def _history_row(stats, month, year):
    return Row(month, year, stats.total_bytes, stats.total_hits, stats.total_pages,
               len(stats.success_urls), stats.total_time, len(stats.client_addresses),
               stats.visits.all[0].visits, stats.total_files)
