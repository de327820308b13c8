"""The month's statistics: totals, days, hours, peaks and tallies."""

from . import classify
from .basics import Fault, add_single, lower, single, upper
from .tally import Tally
from .visits import Visits


class Month:
    def __init__(self, robots_txt_agents):
        self.total_bytes = self.total_hits = self.total_files = self.total_pages = 0.0
        self.total_time = self.max_time = 0.0
        for name in ("bytes", "hits", "files", "pages", "time", "failures"):
            setattr(self, "day_" + name, [0.0] * 32)
        for name in ("bytes", "hits", "files", "pages", "time"):
            setattr(self, "hour_" + name, [0.0] * 25)
        self.peak_bytes, self.peak_bytes_day, self.peak_bytes_hour = 0.0, 1, 0
        self.peak_hits, self.peak_hits_day, self.peak_hits_hour = 0.0, 1, 0
        self.current = (0, 0)
        self.current_bytes = self.current_hits = 0.0
        self.host_label = ""
        for name in ("success_urls", "user_agents", "client_addresses", "methods", "referrers",
                     "status_codes", "queries", "user_names", "pages", "failed_urls",
                     "failed_referrers", "file_types", "response_times"):
            setattr(self, name, Tally())
        self.robots_txt_agents = robots_txt_agents
        self.visits = Visits(self.is_robot)

    def is_robot(self, agent):
        return classify.is_robot(agent, self.robots_txt_agents)


def _bump(slots, index, value):
    if not 0 <= index < len(slots):
        raise Fault("index out of range")
    slots[index] = add_single(slots[index], value)


def file_type(uri):
    """The upper-case extension of a URI, or nothing."""
    for mark in "?#&*":
        uri = uri.split(mark, 1)[0]
    if "." not in uri:
        return ""
    return upper(uri[uri.rfind(".") + 1:]).split("/", 1)[0].split("+", 1)[0]


def _count_totals(month, record, size, time):
    day, hour = record.day, record.hour
    month.total_hits = add_single(month.total_hits, 1)
    _bump(month.day_hits, day, 1)
    _bump(month.hour_hits, hour, 1)
    month.total_bytes = add_single(month.total_bytes, size)
    _bump(month.day_bytes, day, size)
    _bump(month.hour_bytes, hour, size)
    month.total_time = add_single(month.total_time, time)
    _bump(month.day_time, day, time)
    _bump(month.hour_time, hour, time)
    month.max_time = max(month.max_time, time)


def _watch_peaks(month, record, size):
    here = (record.day, record.hour)
    if here != month.current:
        month.current = here
        month.current_bytes = month.current_hits = 0.0
    month.current_bytes = add_single(month.current_bytes, size)
    month.current_hits = add_single(month.current_hits, 1)
    if month.current_bytes >= month.peak_bytes:
        month.peak_bytes = month.current_bytes
        month.peak_bytes_day, month.peak_bytes_hour = here
    if month.current_hits >= month.peak_hits:
        month.peak_hits = month.current_hits
        month.peak_hits_day, month.peak_hits_hour = here


def _tally_texts(month, record, size, time):
    if record.uri and lower(record.uri) == "/robots.txt" and record.agent:
        month.robots_txt_agents.add(record.agent)
    if record.uri:
        extension = file_type(record.uri)
        if extension:
            month.file_types.add(extension, size)
    for table, key in ((month.user_agents, record.agent), (month.methods, record.method),
                       (month.client_addresses, record.address),
                       (month.referrers, record.referrer)):
        if key:
            table.add(key, size)
    if time > 0:
        month.response_times.add(record.uri, time, averaging=True)


def _tally_status(month, record, size):
    success = not record.status or classify.is_success(record.status)
    if success and record.uri:
        month.success_urls.add(record.uri, size)
    if not success:
        _bump(month.day_failures, record.day, 1)
        if not classify.is_success_or_redirect(record.status):
            month.failed_urls.add(record.uri, size)
            if record.referrer:
                month.failed_referrers.add(record.referrer, size)
    if record.status:
        month.status_codes.add(record.status, size)


def _count_file(month, record, size):
    month.total_files = add_single(month.total_files, 1)
    _bump(month.day_files, record.day, 1)
    _bump(month.hour_files, record.hour, 1)
    page = classify.is_page(record.uri)
    month.total_pages = add_single(month.total_pages, page)
    _bump(month.day_pages, record.day, page)
    _bump(month.hour_pages, record.hour, page)
    if page:
        month.pages.add(record.uri, size)


def add_hit(month, record, warn):
    """Adds one record. An error ends the hit, keeps what was counted and is reported."""
    size, time = single(record.bytes_sent), single(record.time_taken)
    context = "counters"
    try:
        _count_totals(month, record, size, time)
        _watch_peaks(month, record, size)
        context = "URI=" + record.uri
        _tally_texts(month, record, size, time)
        context = "Status=" + record.status
        _tally_status(month, record, size)
        if record.status == "200":
            _count_file(month, record, size)
        if record.search_words not in ("", "-"):
            month.queries.add(record.search_words, size)
        if record.user_name:
            month.user_names.add("Anonymous" if record.user_name == "-" else record.user_name,
                                 size)
        context = "Username=" + record.user_name
        moment = ((record.day * 24 + record.hour) * 60 + record.minute) * 60
        month.visits.track(record.address, record.agent, moment, record.uri)
        if record.host_label:
            month.host_label = record.host_label
    except Fault:
        warn("HitwickError adding hit " + context + " : @ERROR@")
