"""Choosing a month's log files and turning their lines into records."""

import os
import stat

from .basics import Fault, lower, move_date, to_integer
from .classify import extract_search_words
from .filters import skips
from .stats import Month, add_hit

LAST_CURSOR = 32767
LONGEST_TIME = 1200000
TEXT_FIELDS = {"cs-method": "method", "cs-uri-stem": "uri", "cs(User-Agent)": "agent",
               "cs-username": "user_name", "sc-status": "status"}
NUMBER_FIELDS = {"sc-bytes": "bytes_sent", "cs-bytes": "bytes_received",
                 "time-taken": "time_taken"}


class Record:
    def __init__(self, file_date):
        self.year, self.month, self.day = file_date
        self.hour = self.minute = 0
        self.address = self.method = self.uri = self.search_words = self.status = ""
        self.agent = self.referrer = self.host_label = self.user_name = ""
        self.bytes_sent = self.bytes_received = self.time_taken = 0


class Dropped(Exception):
    """The record does not belong to the period."""


class Tokens:
    """The tokens of one line, up to the last position that the cursor can hold."""

    def __init__(self, line, cursor=1):
        self.line = line
        self.cursor = cursor

    def at_end(self):
        return self.cursor > len(self.line)

    def next(self):
        start = self.cursor
        while start <= len(self.line) and self.line[start - 1] == " ":
            start += 1
        end = start
        while end <= len(self.line) and self.line[end - 1] != " ":
            end += 1
        if end > LAST_CURSOR:
            raise Fault("overflow")
        self.cursor = end
        token = self.line[start - 1:end - 1]
        for mark in "\"'<>":
            token = token.replace(mark, "_")
        return token


class Reader:
    """The state that outlives a file and a month: the field list and the robots' agents."""

    def __init__(self, log_dir, bias, rules, diagnostics, warn, inform):
        self.log_dir = log_dir
        self.offset_hours = int(bias / 60)
        self.offset_minutes = bias - self.offset_hours * 60
        self.rules = rules
        self.diagnostics = diagnostics
        self.warn = warn
        self.inform = inform
        self.field_list = []
        self.robots_txt_agents = set()
        self.file_date = [0, 0, 0]

    # Files of a month

    def read_month(self, month, year):
        stats = Month(self.robots_txt_agents)
        for name in self.files_of(month, year):
            self._read_file(name, stats, month, year)
        stats.visits.close_all()
        return stats

    def files_of(self, month, year):
        before = self.offset_hours < 0 or self.offset_minutes < 0
        names = []
        if before:
            names += self._exact_day(move_date(year, month, 1, -1))
        for prefix in ("ex", "u_ex"):
            names += self._listed(prefix + year_month(year, month), ".log")
        if not before:
            names += self._exact_day(move_date(year, month + 1, 1, 0))
        return names

    def _exact_day(self, date):
        year, month, day = date
        names = []
        for prefix in ("ex", "u_ex"):
            wanted = "%s%s%02d.log" % (prefix, year_month(year, month), day)
            names += [name for name in self._listed(wanted[:-4], ".log")
                      if len(name) == len(wanted)][:1]
        return names

    def _listed(self, prefix, suffix):
        found = []
        for raw in os.listdir(os.fsencode(self.log_dir)):
            name = raw.decode("latin-1")
            folded = lower(name)
            if not (folded.startswith(prefix) and folded.endswith(suffix)
                    and len(folded) >= len(prefix) + len(suffix)):
                continue
            path = os.path.join(os.fsencode(self.log_dir), raw)
            if os.path.exists(path) and stat.S_ISREG(os.stat(path).st_mode):
                found.append(name)
        return sorted(found, key=lambda name: (lower(name), name))

    # Lines of a file

    def _read_file(self, name, stats, month, year):
        path = self.log_dir + "/" + name
        stem = path[:-6]
        self.file_date = [to_integer("20" + stem[-4:-2], 16), to_integer(stem[-2:], 16),
                          to_integer(path[len(stem):len(stem) + 2], 16)]
        with open(os.fsencode(self.log_dir) + b"/" + name.encode("latin-1"), "rb") as file:
            lines = file.read().decode("latin-1").split("\n")
        ended = [line[:-1] if line.endswith("\r") else line for line in lines[:-1]]
        for line in ended + [lines[-1]]:
            if line.startswith("#"):
                self._read_header(line)
            elif line:
                self._read_record(line, stats, month, year)

    def _read_header(self, line):
        if lower(line[:8]) != "#fields:":
            return
        self.field_list = []
        tokens = Tokens(line, 9)
        try:
            while not tokens.at_end():
                self.field_list.append(tokens.next())
        except Fault:
            pass

    def _read_record(self, line, stats, month, year):
        record = Record(self.file_date)
        where = [""]
        try:
            skip = self._take_fields(Tokens(line), record, month, year, where)
        except Dropped:
            return
        except Fault:
            if self.diagnostics:
                self.warn("HitwickError processing field " + where[0] + " : @ERROR@")
            return
        if skip:
            if self.diagnostics:
                self.inform("Hitwick: Skipping log record because of filter rule")
            return
        if record.time_taken > LONGEST_TIME and record.status != "200":
            record.time_taken = 0
        nothing = not record.uri and not record.address and record.bytes_sent == 0
        if not nothing and 1 <= record.day <= 31:
            add_hit(stats, record, self.warn)

    def _take_fields(self, tokens, record, month, year, where):
        """Fills the record; true when a filter refuses it."""
        skip = False
        for field in self.field_list:
            where[0] = field
            token = tokens.next()
            if field == "date":
                self._take_date(token, record)
            elif field == "time":
                self._take_time(token, record)
                if (record.month, record.year) != (month, year):
                    raise Dropped
            elif field == "c-ip":
                local = token.startswith("::1") or lower(token).startswith("fe80:")
                record.address = "127.0.0.1" if local else token
                skip |= skips(self.rules, field, record.address)
            elif field in TEXT_FIELDS:
                setattr(record, TEXT_FIELDS[field], token)
                skip |= skips(self.rules, field, token)
            elif field == "cs-uri-query":
                skip |= skips(self.rules, field, token)
            elif field in NUMBER_FIELDS:
                setattr(record, NUMBER_FIELDS[field], to_integer(token, 32))
            elif field == "cs(Referer)":
                skip |= self._take_referrer(token, record)
            elif field == "cs-host":
                record.host_label = " [" + token + "] "
        return skip

    def _take_date(self, token, record):
        record.year = to_integer(token[:4], 16)
        record.month = to_integer(token[5:7], 16)
        record.day = to_integer(token[-2:], 16)
        self.file_date[2] = record.day

    def _take_time(self, token, record):
        record.hour = to_integer(token[:2], 16) - self.offset_hours
        record.minute = to_integer(token[3:5], 16) - self.offset_minutes
        if record.minute < 0:
            record.hour -= 1
        if record.minute >= 60:
            record.hour += 1
        shift = -1 if record.hour < 0 else 1 if record.hour >= 24 else 0
        if shift:
            record.hour -= 24 * shift
            record.year, record.month, record.day = move_date(record.year, record.month,
                                                              record.day, shift)

    def _take_referrer(self, token, record):
        skip = skips(self.rules, "cs(Referer)", token)
        record.referrer = token
        if len(token) > 1:
            referrer, mark, query = token.partition("?")
            if mark:
                record.search_words = extract_search_words(mark + query)
                skip |= skips(self.rules, "cs-uri-query", record.search_words)
            record.referrer = referrer.split("#", 1)[0]
        return skip


def year_month(year, month):
    """yymm as it stands in a log file's name."""
    if year > 2000:
        return "%02d%02d" % (year - 2000, month)
    serial_year = move_date(1899, 12, 30, year)[0]
    return "%02d%02d" % (serial_year % 100, month)
