"""The ranked tables of the month page."""

import re

from . import classify
from .basics import escape, lower, plain, rounded, share, tenths
from .csvfile import Number
from .tally import Tally
from .visits import BANDS

WIDE = '<hr><br><table width="90%" border=1>'
HITS = "<tbody><tr><th>#</th><th colspan=2 bgcolor=green>Hits</th>"
HITS_AND_KBYTES = HITS + "<th colspan=2 bgcolor=red>Kbytes</th>"
CSV_HITS = ("Rank", "Hits", "HitsPct")
CSV_HITS_AND_KBYTES = CSV_HITS + ("KBytes", "KBytesPct")


def link_is_safe(url):
    """False when following the link could run a script planted by a log line.

    Only what stands before the first of ":", "/", "?" and "#" can be a scheme; a "&" in it may
    begin a character reference that hides one.
    """
    start = re.split("[:/?#]", url, maxsplit=1)[0]
    if "&" in start:
        return False
    scheme = lower("".join(c for c in start if c > " " and c != "\x7f"))
    return not (url[len(start):].startswith(":") and scheme in ("javascript", "data", "vbscript"))


def url_cell(url):
    text = url.replace("+", " ").replace("%7E", "~")
    if not link_is_safe(url):
        return "<td>" + text + "</td>"
    return '<td><a href="' + url.replace("+", "%20") + '">' + text + "</a></td>"


def referrer_cell(referrer):
    if referrer in ("", "-"):
        return "<td>(Direct request)</td>"
    if not link_is_safe(referrer):
        return "<td>" + referrer + "</td>"
    return '<td><a href="' + referrer + '">' + referrer + "</a></td>"


def site_of(referrer):
    if referrer == "-":
        return "Direct"
    start = referrer.find("://")
    cut = referrer.find("/", start + 3 if start >= 0 else 1)
    return referrer if cut < 0 else referrer[:cut]


def ranked_tables(c):
    """The lines of all ranked tables; their CSV files go to the context."""
    s = c.stats
    tables = Tables(c)
    out = tables.hits_and_kbytes("<a name=urls>Top hits for %s</a>", "URL", "URLbyHits",
                                 s.success_urls, url_cell)
    s.success_urls.rank_by_metric()
    out += tables.hits_and_kbytes("Top hits for %s by Kbytes", "URL", "URLbyKBytes",
                                  s.success_urls, url_cell)
    out += tables.top_pages() + tables.slowest_pages()
    out += tables.hits_and_kbytes("<a name=FileTypes>Top file types for %s</a>", "File Type",
                                  "FileTypebyHits", s.file_types, tables.text_cell, "FileType")
    s.file_types.rank_by_metric()
    out += tables.hits_and_kbytes("Top file type for %s by Kbytes", "File Type",
                                  "FileTypebyKBytes", s.file_types, tables.text_cell, "FileType")
    out += tables.readers() + tables.countries() + tables.sessions() + tables.entry_exit()
    out += tables.referrers() + tables.referring_sites() + tables.queries()
    out += tables.broken()
    if c.run.show_usernames:
        out += tables.users()
    return out + tables.agents() + tables.classifier() + tables.robots() + tables.short_summary()


class Tables:
    def __init__(self, c):
        self.c = c
        self.stats = c.stats
        self.limit = c.run.list_size
        self.countries_tally, self.companies_tally = Tally(), Tally()
        self.attributed = 0

    # Shared shapes

    @staticmethod
    def text_cell(text):
        return "<td>" + text + "</td>"

    def opening(self, caption, csv="", table=WIDE):
        caption = (caption % self.c.period) if "%s" in caption else caption
        link = self.c.csv.link(csv) if csv else ""
        return [table, "<caption><b>" + caption + "</b>" + link + "</caption>"]

    def hits_cells(self, rank, hits):
        return ("<tr><td align=right>%d</td><td align=right>%s</td><td align=right>%s&nbsp;%%</td>"
                % (rank, plain(hits), share(hits, self.stats.total_hits)))

    def kbytes_cells(self, size):
        return ("<td align=right>%s</td><td align=right>%s&nbsp;%%</td>"
                % (rounded(size / 1000), share(size, self.stats.total_bytes)))

    def hits_fields(self, rank, hits):
        return (Number(rank), Number(plain(hits)), Number(share(hits, self.stats.total_hits)))

    def kbytes_fields(self, size):
        return (Number(rounded(size / 1000)), Number(share(size, self.stats.total_bytes)))

    def ranks(self, tally):
        return list(enumerate(tally.top(self.limit), 1))

    def hits_and_kbytes(self, caption, column, csv, tally, cell, csv_column=None):
        out = self.opening(caption, csv) + [HITS_AND_KBYTES + "<th>" + column + "</th></tr>"]
        records = [CSV_HITS_AND_KBYTES + (csv_column or column,)]
        for rank, entry in self.ranks(tally):
            out.append(self.hits_cells(rank, entry.count) + self.kbytes_cells(entry.metric)
                       + cell(entry.key) + "</tr>")
            records.append(self.hits_fields(rank, entry.count) + self.kbytes_fields(entry.metric)
                           + (entry.key,))
        self.c.csv.write(csv, records)
        return out + ["</tbody></table>"]

    def single_count(self, opening, header, tally, middle=lambda entry: ""):
        """Rank, hits and text, without shares."""
        out = opening + [header]
        for rank, entry in self.ranks(tally):
            out.append("<tr><td align=right>%d</td><td align=right>%d</td>" % (rank, entry.count)
                       + middle(entry) + "<td>" + entry.key + "</td></tr>")
        return out + ["</tbody></table>"]

    # Pages

    def top_pages(self):
        out = self.opening("Top pages for %s", "PageByHits") + [HITS + "<th>URL</th></tr>"]
        records = [CSV_HITS + ("URL",)]
        for rank, entry in self.ranks(self.stats.pages):
            out.append(self.hits_cells(rank, entry.count) + url_cell(entry.key) + "</tr>")
            records.append(self.hits_fields(rank, entry.count) + (entry.key,))
        self.c.csv.write("PageByHits", records)
        return out + ["</tbody></table>"]

    def slowest_pages(self):
        self.stats.response_times.rank_by_metric()
        out = self.opening("Slowest pages for %s", "PageTimes")
        out.append("<tbody><tr><th>#</th><th bgcolor=green>Hits</th>"
                   "<th bgcolor=pink>Ave Time taken (mS)</th><th>URL</th></tr>")
        records = [("Rank", "Hits", "TimeTaken", "URL")]
        for rank, entry in self.ranks(self.stats.response_times):
            time = rounded(entry.metric)
            out.append("<tr><td align=right>%d</td><td align=right>%d</td>"
                       "<td align=right>%s&nbsp;</td>" % (rank, entry.count, time)
                       + url_cell(entry.key) + "</tr>")
            records.append((Number(rank), Number(entry.count), Number(time), entry.key))
        self.c.csv.write("PageTimes", records)
        return out + ["</tbody></table>"]

    # Visitors

    def readers(self):
        out = self.opening("<a name=readers>Top readers for %s</a>")
        out.append(HITS_AND_KBYTES + "<th>IP</th><th>hostname</th></tr>")
        for rank, entry in self.ranks(self.stats.client_addresses):
            name = self.c.run.names.get(entry.key, "").strip(" ")
            if self.c.run.diagnostics:
                self.c.run.inform("Hitwick : Translated IP '%s' to '%s'" % (entry.key, name))
            self._attribute(name, entry.count)
            out.append(self.hits_cells(rank, entry.count) + self.kbytes_cells(entry.metric)
                       + "<td>" + entry.key + "</td><td>" + escape(name) + "</td></tr>")
        return out + ["</tbody></table>"]

    def _attribute(self, name, count):
        """Feeds a host name to the countries and companies; positions count from 1."""
        if len(name) <= 4:
            return
        p = name.rfind(".") + 1
        if p <= 1 or p == len(name):
            return
        self.attributed += count
        top_level = name[p:]
        self.countries_tally.add(top_level, float(count))
        q = name.rfind(".", 0, p - 1) + 1
        if lower(top_level) not in classify.TOP_LEVEL_DOMAINS and q > 1:
            q = name.rfind(".", 0, q - 1) + 1
        if q > 0 and q < len(name):
            self.companies_tally.add(name[q:], float(count))

    def countries(self):
        total = self.stats.total_hits
        unaccounted = rounded((total - self.attributed) * 100 / max(total, 1))
        out = self.opening("<a name=countries>Top Countries, Domains, Companies, ISPs for %s</a>",
                           "Domains", '<hr><br><table width="70%" border=1>')
        out += ["<tbody><tr><th colspan=3 bgcolor=green>Countries/Domains</th>"
                "<th bgcolor=blue colspan=2>Companies/ISPs</th></tr>",
                "<tr><th>#</th><th bgcolor=green>Country/Domain</th><th bgcolor=green>% hits</th>"
                "<th bgcolor=blue>Company/ISP</th><th bgcolor=blue>% hits</th></tr>",
                "<tr><td></td><td>Unaccounted</td><td align=right>" + unaccounted
                + "&nbsp;%</td><td>Unaccounted</td><td align=right>" + unaccounted
                + "&nbsp;%</td></tr>"]
        records = [("Rank", "Country", "CountryPctPct", "Company", "CompanyPct"),
                   (Number(""), "Unaccounted", Number(unaccounted), "Unaccounted",
                    Number(unaccounted))]
        sides = []
        for tally in (self.countries_tally, self.companies_tally):
            tally.rank_by_metric()
            sides.append(tally.top(self.limit))
        for i in range(max(map(len, sides))):
            row, fields = "<tr><td align=right>%d" % (i + 1), (Number(i + 1),)
            for side, empty in zip(sides, ("</td><td></td><td></td><td>", "</td><td></td></tr>")):
                if i < len(side):
                    percent = share(side[i].metric, total)
                    start = "</td><td>" if side is sides[0] else ""
                    end = "</td><td>" if side is sides[0] else "</td></tr>"
                    row += (start + escape(side[i].key) + "</td><td align=right>" + percent
                            + "&nbsp;%" + end)
                    fields += (side[i].key, Number(percent))
                else:
                    row += empty
                    fields += ("", Number(""))
            out.append(row)
            records.append(fields)
        self.c.csv.write("Domains", records)
        return out + ["</tbody></table>"]

    # Visits

    def sessions(self):
        out = self.opening("<a name=sessions>Session breakdown for %s</a>", "SessionBreakdown",
                           '<hr><br><table width="70%" border=1>')
        measures = ("<th bgcolor=yellow># visits</th><th bgcolor=green>Ave # fetches</th>"
                    "<th bgcolor=pink>Ave Stay</th>")
        out += ["<tbody><tr><th rowspan=2>Visit length</th>"
                "<th colspan=3  bgcolor=blue>All visits</th>"
                "<th colspan=3 bgcolor=pink>Non-robot</th></tr>",
                "<tr>" + measures + measures + "</tr>"]
        names = ("Visits", "FetchesAve", "FetchesStdDev", "StayAve", "StayStdDev", "Units")
        records = [("Range",) + names + tuple("NR" + name for name in names)]
        for row, (label, _) in enumerate(BANDS):
            cells, fields = "<tr><td>" + label + "</td>", (label,)
            for band in (self.stats.visits.all[row], self.stats.visits.non_robot[row]):
                unit, divisor = ("secs", 1) if row in (1, 2) else ("mins", 60)
                figures = [tenths(value) for value in band.fetch_figures()]
                figures += [tenths(value / divisor) for value in band.stay_figures()]
                cells += ("<td align=right>%d</td><td align=right>%s +/- %s</td>"
                          "<td align=right>%s +/- %s %s</td>"
                          % ((band.visits,) + tuple(figures) + (unit,)))
                fields += (Number(band.visits),) + tuple(map(Number, figures)) + (unit,)
            out.append(cells + "</tr>")
            records.append(fields)
        self.c.csv.write("SessionBreakdown", records)
        return out + ["</tbody></table>"]

    def entry_exit(self):
        visits = self.stats.visits
        out = self.opening("Most common Entry/Exit pages for %s", "EntryExit",
                           '<br><table width="90%" border=1>')
        columns = "<th>#</th><th bgcolor=%s>%s page</th>"
        half = columns % ("green", "Entry") + "<th></th>" + columns % ("blue", "Exit")
        out += ["<tr><th colspan=5 bgcolor=blue>All visits</th><th></th>"
                "<th colspan=5 bgcolor=pink>Non-Robots</th></tr>",
                "<tr>" + half + "<th></th>" + half + "</tr>"]
        names = ("EntryCount", "EntryURL", "ExitCount", "ExitURL")
        records = [names + tuple("NR" + name for name in names)]
        lists = [tally.top(self.limit) for tally in (
            visits.entry_all, visits.exit_all, visits.entry_non_robot, visits.exit_non_robot)]
        for i in range(max(map(len, lists))):
            cells, fields = [], ()
            for entries in lists:
                if i < len(entries):
                    cells.append("<td align=right>%d</td>" % entries[i].count
                                 + url_cell(entries[i].key))
                    fields += (Number(entries[i].count), entries[i].key)
                else:
                    cells.append("<td></td><td></td>")
                    fields += (Number(""), "")
            out.append("<tr>" + "<td></td>".join(cells) + "</tr>")
            records.append(fields)
        self.c.csv.write("EntryExit", records)
        return out + ["</tbody></table>"]

    # Where visitors came from

    def referrers(self):
        out = self.opening("<a name=referrers>Top referrers for %s</a>")
        out.append(HITS + "<th>Referrer</th></tr>")
        for rank, entry in self.ranks(self.stats.referrers):
            out.append(self.hits_cells(rank, entry.count) + referrer_cell(entry.key) + "</tr>")
        return out + ["</tbody></table>"]

    def referring_sites(self):
        sites = Tally()
        for entry in self.stats.referrers.entries:
            sites.add(site_of(entry.key), float(entry.count))
        sites.rank_by_metric()
        out = self.opening("<a name=referrers>Top referring sites for %s</a>", "ReferrerSites")
        out.append(HITS + "<th align=left>Referrer</th></tr>")
        records = [("Referrer", "Hits", "HitsPct")]
        for rank, entry in self.ranks(sites):
            out.append(self.hits_cells(rank, entry.metric) + "<td>" + entry.key + "</td></tr>")
            records.append((entry.key,) + self.hits_fields(rank, entry.metric)[1:])
        self.c.csv.write("ReferrerSites", records)
        return out + ["</tbody></table>"]

    def queries(self):
        self.c.csv.write("Queries", [("Query", "Count")] + [
            (entry.key, Number(entry.count)) for entry in self.stats.queries.top(self.limit)])
        opening = self.opening("<a name=queries>Top queries for %s</a>", "Queries",
                               '<hr><br><table width="60%" border=1>')
        return self.single_count(opening, "<tbody><tr><th>#</th><th bgcolor=green>Hits</th>"
                                 "<th>Query terms</th></tr>", self.stats.queries)

    def broken(self):
        start = "<tbody><tr><th>#</th><th bgcolor=green>Hits</th><th bgcolor=red>"
        out = self.single_count(self.opening("<a name=broken>Broken links in %s</a>"),
                                start + "Local target of link</th></tr>", self.stats.failed_urls)
        opening = self.opening("<a name=broken>Broken referrer references in %s</a>", "",
                               '<br><table width="70%" border=1>')
        return out + self.single_count(opening, start + "Linked from</th></tr>",
                                       self.stats.failed_referrers)

    # Who and with what

    def users(self):
        return self.single_count(
            self.opening("<a name=usernames>Top users for %s</a>"),
            "<tbody><tr><th>#</th><th bgcolor=green>Hits</th><th bgcolor=red>Kbytes</th>"
            "<th>User name</th></tr>", self.stats.user_names,
            lambda entry: "<td align=right>" + rounded(entry.metric / 1000) + "</td>")

    def agents(self):
        out = self.opening("<a name=browsers>Top browsers (agents) for %s</a>", "Browsers")
        out.append(HITS_AND_KBYTES + "<th>Browser</th><th>Type</th></tr>")
        records = [CSV_HITS_AND_KBYTES + ("Browser", "IsRobot")]
        for rank, entry in self.ranks(self.stats.user_agents):
            mark = "ROBOT" if self.stats.is_robot(entry.key) else ""
            out.append(self.hits_cells(rank, entry.count) + self.kbytes_cells(entry.metric)
                       + "<td>" + entry.key + "</td><td>" + mark + "</td></tr>")
            records.append(self.hits_fields(rank, entry.count) + self.kbytes_fields(entry.metric)
                           + (entry.key, mark))
        self.c.csv.write("Browsers", records)
        return out + ["</tbody></table>"]

    def classifier(self):
        browsers, systems = Tally(), Tally()
        for entry in self.stats.user_agents.entries:
            browsers.add(classify.browser_of(entry.key), float(entry.count))
            systems.add(classify.os_of(entry.key), float(entry.count))
        sides = []
        for tally in (browsers, systems):
            tally.rank_by_metric()
            sides.append([(entry.key, share(entry.metric, self.stats.total_hits))
                          for entry in tally.top(self.limit)])
        out = self.opening("Browsers and operating systems", "BrowserClassifier",
                           '<br><table width="80%" border=1>')
        out.append("<tr><th colspan=2>Browsers</th><th></th>"
                   "<th colspan=2>Operating systems</th></tr>")
        records = [("Browser", "BrowserPct", "OS", "OSpct")]
        for i in range(max(map(len, sides))):
            left, right = (side[i] if i < len(side) else None for side in sides)
            out += ["<tr><td>%s</td><td align=right>%s&nbsp;%%</td><td></td>" % left if left
                    else "<tr><td></td><td></td><td></td>",
                    "<td>%s</td><td align=right>%s&nbsp;%%</td></tr>" % right if right
                    else "<td></td><td></td></tr>"]
            fields = ()
            for name, percent in (left or ("", "")), (right or ("", "")):
                fields += (name, Number(percent))
            records.append(fields)
        self.c.csv.write("BrowserClassifier", records)
        return out + ["</tbody></table>"]

    # Robots and the short summary

    def _robot_totals(self):
        robots = [entry for entry in self.stats.user_agents.entries
                  if self.stats.is_robot(entry.key)]
        return sum(entry.count for entry in robots), sum(entry.metric for entry in robots)

    def robots(self):
        s = self.stats
        hits, size = self._robot_totals()
        out = self.opening("<a name=robots>Traffic from robots for %s</a>", "Robots")
        out.append("<tbody><tr><th>Type</th><th bgcolor=green>Hits</th>"
                   "<th bgcolor=red>Kbytes</th></tr>")
        records = [("Type", "HitsPct", "KBytesPct")]
        for label, count, bytes_sent in (("Robots", hits, size),
                                         ("Others", s.total_hits - hits, s.total_bytes - size)):
            shares = (share(count, s.total_hits), share(bytes_sent, s.total_bytes))
            out.append("<tr><td>%s</td><td align=right>%s (%s&nbsp;%%)</td>"
                       "<td align=right>%s (%s&nbsp;%%)</td></tr>"
                       % (label, plain(count), shares[0], rounded(bytes_sent / 1000), shares[1]))
            records.append((label,) + tuple(map(Number, shares)))
        self.c.csv.write("Robots", records)
        return out + ["</tbody></table>"]

    def short_summary(self):
        s = self.stats
        everyone, people = s.visits.all, s.visits.non_robot
        bounces = share(everyone[1].visits, everyone[0].visits)
        people_bounces = share(people[1].visits, people[0].visits)
        robots = share(self._robot_totals()[0], s.total_hits)
        figures = [str(self.c.days), str(len(s.client_addresses)), str(everyone[0].visits),
                   bounces, str(people[0].visits), people_bounces, plain(s.total_hits),
                   plain(s.total_files), plain(s.total_pages), str(len(s.pages)),
                   rounded(s.total_bytes / 1000), rounded(s.total_time / max(1, s.total_hits)),
                   robots]
        self.c.csv.write("OneRow", [
            ("Days", "DistVisitors", "Visits", "Bounces", "NRVisits", "NRBounces", "Hits", "Files",
             "Pages", "DistPages", "KBytes", "Delay_mS", "%Robots"), tuple(map(Number, figures))])
        for i in (3, 5, 12):
            figures[i] += "&nbsp;%"
        titles = ("Days", "Distinct Visitors", "Visits", "Bounce rate", "Non-robot Visits",
                  "Non-robot Bounce rate", "Hits", "Files", "Pages", "Distinct Pages", "KBytes",
                  "Delay mS", "%Robots")
        out = self.opening("<a name=SEO>Short Summary for %s</a>", "OneRow")
        out.append("<tbody align=center><tr>"
                   + "".join("<th>" + title + "</th>" for title in titles) + "</tr>")
        return out + ["<tr>" + "".join("<td>" + figure + "</td>" for figure in figures)
                      + "</tr></tbody></table>"]
