#!/usr/bin/env python3
"""Tests of the oracle itself, with figures worked out by hand."""

import csv
import datetime
import io
import random
import sys
import unittest

from golden import Case, latin
from oracle import basics, classify, filters, ranked
from oracle.csvfile import Number, record
from oracle.frame import days_of_period, site_label
from oracle.history import History, Row
from oracle.months import Months, link
from oracle.reading import Reader, Tokens, year_month
from oracle.run import Run
from oracle.stats import file_type
from oracle.tally import Tally
from oracle.visits import Visits
from sandbox import Sandbox

UTC = datetime.timezone.utc


def answer(name):
    """The oracle's files, events and exit code for a golden case, CSV files included."""
    with Sandbox() as sandbox:
        case = Case(name)
        case.settings = {**case.settings, "GenerateCSV": "True"}
        case.stage(sandbox)
        return case.answer(sandbox)


def table(files, name):
    """A CSV file as a list of rows."""
    return list(csv.reader(io.StringIO(files[name].decode("latin-1"), newline="")))


def run_with(command="/B", settings=None, now=(2026, 1, 15), bias=0, wall_offset=0, rules=None):
    run = Run(command, settings or {}, rules, datetime.datetime(*now, tzinfo=UTC), bias,
              wall_offset, "host")
    return run


class BasicsTest(unittest.TestCase):
    def test_full_scale_values(self):
        expected = {0: 1, 1: 1, 2: 3, 3: 10, 10: 30, 20: 30, 100: 100, 350: 1000, 1000: 3000}
        for maximum, scale in expected.items():
            self.assertEqual(basics.plain(basics.full_scale(maximum)), str(scale), maximum)

    def test_roundings(self):
        self.assertEqual([basics.rounded(x) for x in (0.5, 1.5, 2.5, 37.5)],
                         ["0", "2", "2", "38"])
        self.assertEqual([basics.tenths(x) for x in (0.25, 0.05, 0.04, 1.0, 99.95)],
                         ["0.3", "0.1", "0.0", "1.0", "100.0"])
        self.assertEqual([basics.plain(x) for x in (1e21, 0.85, 1e-7)],
                         ["1000000000000000000000", "0.85", "0.0000001"])

    def test_single_precision_sums(self):
        self.assertEqual(basics.add_single(16777216.0, 1.0), 16777216.0)
        self.assertEqual(basics.add_single(16777216.0, 2.0), 16777218.0)
        with self.assertRaises(basics.Fault):
            basics.single(3.5e38)

    def test_numeric_values(self):
        for text, value in {"12": 12, "12KB": 12, "-5": 0, "": 0, "2.5": 2, "3.5": 4, "7.": 7,
                            ".5": 0, "+9": 0, "0000042": 42}.items():
            self.assertEqual(basics.to_integer(text, 32), value, text)
        self.assertEqual(basics.to_integer("-5 rows", 32, signs=True), -5)
        self.assertEqual(basics.to_integer("2147483647", 32), 2147483647)
        for text in ("2147483648", "2147483647.5", "9" * 5000):
            with self.assertRaises(basics.Fault):
                basics.to_integer(text, 32)

    def test_calendar(self):
        self.assertEqual(basics.move_date(2024, 2, 28, 1), (2024, 2, 29))
        self.assertEqual(basics.move_date(2100, 2, 28, 1), (2100, 3, 1))
        self.assertEqual(basics.move_date(2026, 1, 1, -1), (2025, 12, 31))
        self.assertEqual(basics.move_date(2025, 13, 5, 1), (2026, 1, 6))
        self.assertEqual(basics.move_date(2026, 1, 0, 1), (2026, 1, 1))
        self.assertTrue(basics.is_weekend(2026, 1, 3))
        self.assertFalse(basics.is_weekend(2026, 1, 5))
        self.assertEqual([basics.month_length(2, year) for year in (1900, 2100, 2026, 2028)],
                         [29, 29, 28, 29])
        date = datetime.date(1899, 12, 30)
        for step in range(0, 90000, 97):
            moved = date + datetime.timedelta(days=step)
            self.assertEqual(basics.move_date(1899, 12, 30, step),
                             (moved.year, moved.month, moved.day))

    def test_dates_of_the_pages(self):
        moment = datetime.datetime(2026, 1, 5, 7, 3, 9)
        self.assertEqual(basics.clock_text(moment, "Jan"), "5-Jan-2026 07:03")
        self.assertEqual(basics.expiry_text(moment), "Mon, 5 Jan 2026 07:03:09")


class TallyTest(unittest.TestCase):
    def tally_of(self, keys):
        tally = Tally()
        for key in keys:
            tally.add(key, 1.0)
        return tally

    def test_order(self):
        self.assertEqual(self.tally_of("xyy").keys(), ["y", "x"])
        self.assertEqual(self.tally_of("xyxy").keys(), ["x", "y"])
        self.assertEqual(self.tally_of("xyyx").keys(), ["y", "x"])
        self.assertEqual(self.tally_of("aA").keys(), ["a", "A"])

    def test_order_is_count_then_time_of_last_addition(self):
        dice = random.Random(4)
        for _ in range(200):
            keys = [dice.choice("abcdefgh") for _ in range(dice.randrange(60))]
            last = {key: i for i, key in enumerate(keys)}
            self.assertEqual(self.tally_of(keys).keys(),
                             sorted(last, key=lambda key: (-keys.count(key), last[key])))

    def test_averaging(self):
        tally = Tally()
        for time in (100.0, 200.0, 600.0):
            tally.add("/a", time, averaging=True)
        self.assertEqual((tally.entries[0].count, tally.entries[0].metric), (3, 300.0))

    def test_rank_by_metric_keeps_order_of_equals(self):
        tally = Tally()
        for key, metric in (("a", 5.0), ("b", 9.0), ("c", 9.0), ("d", 1.0)):
            tally.add(key, metric)
        tally.rank_by_metric()
        self.assertEqual(tally.keys(), ["b", "c", "a", "d"])


class ClassifyTest(unittest.TestCase):
    def test_status(self):
        self.assertEqual(classify.status_meaning("404"), "Not Found - ")
        self.assertEqual(classify.status_meaning("999"), "")
        self.assertEqual(len(classify.STATUS_MEANINGS), 53)
        self.assertTrue(all(map(classify.is_success, ("200", "304", "20", "4", "0"))))
        self.assertFalse(any(map(classify.is_success, ("302", "404", "-", "2000"))))
        self.assertTrue(classify.is_success_or_redirect("307"))

    def test_agents(self):
        agent = "Mozilla/5.0 (Windows NT 6.1) AppleWebKit Chrome Safari"
        self.assertEqual(classify.browser_of(agent), "Chrome")
        self.assertEqual(classify.os_of(agent), "Windows")
        self.assertEqual(classify.os_of("Linux; Android"), "Linux")
        self.assertEqual(classify.browser_of("x"), "Unknown")
        self.assertTrue(classify.is_robot("xGOOGLEBOTx", set()))
        self.assertTrue(classify.is_robot("blue bottle", set()))
        self.assertTrue(classify.is_robot("Checker/1.0", {"Checker/1.0"}))
        self.assertFalse(classify.is_robot("checker/1.0", {"Checker/1.0"}))

    def test_pages(self):
        found = [classify.is_page(uri) for uri in
                 ("/index.html", "/dir/", "/logo.GIF", "/app.aspx?x=1", "/x.json", "/a.mp3")]
        self.assertEqual(found, [1, 1, 0, 1, 0, 0])

    def test_search_words(self):
        for query, words in {"?hl=en&q=cheap+flights%21&oq=x": "cheap flights&#033;",
                             "?Q=test": "", "?q=50%": "50", "?q=50%2": "502",
                             "?q=a%20b": "a&#032;b",
                             "?q=%zz": "&#000;", "?x=y?q=later&q=first&q=again": "first",
                             "?hl&q=x": "", "": ""}.items():
            self.assertEqual(classify.extract_search_words(query), words, query)

    def test_file_types(self):
        for uri, extension in {"/img/logo.gif?x=1": "GIF", "/dir/": "", "/a.b/c": "B",
                               "/docs.old/index": "OLD", "/a.tar.gz": "GZ", "/a.x+y": "X",
                               "/a*b.gif": "", "/a.": ""}.items():
            self.assertEqual(file_type(uri), extension, uri)


class FiltersTest(unittest.TestCase):
    def test_like(self):
        matching = [("robot", "*bot*"), ("", "*"), ("a1", "?#"), ("b", "[a-c]"), ("d", "[!a-c]"),
                    ("!", "[!]"), ("ab", "a[]b"), ("]", "]"), ("-", "[a-]"), ("a*b", "a[*]b"),
                    ("aXbXc", "a*b*c"), ("x", "[!!]")]
        refused = [("Bot", "*bot*"), ("", "?"), ("aa", "?#"), ("d", "[a-c]"), ("b", "[!a-c]"),
                   ("ab", "a"), ("ba", "a*"), ("!", "[!!]"), ("a", "[!]")]
        self.assertEqual([x for x in matching if not filters.like(*x)], [])
        self.assertEqual([x for x in refused if filters.like(*x)], [])
        for pattern in ("[ab", "x*[", "[z-a]"):
            with self.assertRaises(basics.Fault):
                filters.like("", pattern)

    def test_rules(self):
        def rule(name, includes, field, pattern):
            return {"name": name, "includes": includes, "field": field, "pattern": pattern}

        rules = filters.rules_from_settings([
            rule("a", "True", "cs-uri-stem", "*.htm"), rule("b", "True", "cs-uri-stem", "/docs/*"),
            rule("bad name", "True", "c-ip", "*"), rule("c", "True", "c-ip", ""),
            rule("d", "true", "c-ip", "10.*")])
        self.assertEqual([r.name for r in rules], ["a", "b", "d"])
        self.assertFalse(rules[2].includes)
        self.assertFalse(filters.skips([], "c-ip", "x"))
        for url, skipped in {"/docs/a.htm": False, "/a.htm": True, "/docs/a.gif": True}.items():
            self.assertEqual(filters.skips(rules, "cs-uri-stem", url), skipped)


class ReadingTest(unittest.TestCase):
    def reader(self, bias):
        return Reader("/logs", bias, [], False, None, None)

    def test_offsets(self):
        for bias, offset in {300: (5, 0), -60: (-1, 0), -330: (-5, -30), 0: (0, 0),
                             570: (9, 30), -30: (0, -30)}.items():
            reader = self.reader(bias)
            self.assertEqual((reader.offset_hours, reader.offset_minutes), offset)

    def test_names(self):
        self.assertEqual(year_month(2026, 1), "2601")
        self.assertEqual(year_month(2100, 2), "10002")
        self.assertEqual(year_month(2000, 3), "0503")

    def test_tokens(self):
        tokens = Tokens("  a\"'<>b  \tc+d  ")
        self.assertEqual([tokens.next() for _ in range(4)], ["a____b", "\tc+d", "", ""])

    def test_cursor_is_sixteen_bits_wide(self):
        self.assertEqual(len(Tokens("x" * 32766).next()), 32766)
        for line in ("x" * 32767, "x" * 40000, " " * 40000):
            with self.assertRaises(basics.Fault):
                Tokens(line).next()
        self.assertEqual(Tokens("a " + "x" * 40000).next(), "a")


class VisitsTest(unittest.TestCase):
    def visits(self, hits):
        visits = Visits(lambda agent: "bot" in agent)
        for address, agent, time in hits:
            visits.track(address, agent, time, "/")
        return visits

    def test_own_hit_never_times_out(self):
        visits = self.visits([("a", "x", 0), ("a", "x", 5000)])
        visits.close_all()
        self.assertEqual(visits.all[0].visits, 1)

    def test_another_visitors_hit_closes(self):
        for moment, count in ((1210, 2), (1211, 3)):
            visits = self.visits([("a", "x", 0), ("b", "x", moment), ("a", "x", 5000)])
            visits.close_all()
            self.assertEqual(visits.all[0].visits, count)

    def test_agents_make_visits(self):
        self.assertEqual(len(self.visits([("a", "x", 0), ("a", "y", 0)]).slots), 2)

    def test_bands(self):
        for duration, row in ((0, 1), (3, 2), (60, 3), (600, 4), (3600, 5), (28800, 6)):
            visits = self.visits([("a", "x", 0), ("a", "x", duration)])
            visits.close_all()
            self.assertEqual([band.visits for band in visits.all].index(1, 1), row, duration)

    def test_longest_visits_are_in_the_total_only(self):
        visits = self.visits([("a", "x", 0), ("a", "x", 2764800)])
        visits.close_all()
        self.assertEqual([band.visits for band in visits.all], [1, 0, 0, 0, 0, 0, 0])

    def test_negative_duration_gains_31_days(self):
        visits = self.visits([("a", "x", 86400), ("a", "x", 0)])
        visits.close_all()
        self.assertEqual(visits.all[6].seconds, 2592000)

    def test_robots_are_in_all_visits_only(self):
        visits = self.visits([("a", "bot", 0)])
        visits.close_all()
        self.assertEqual((visits.all[0].visits, visits.non_robot[0].visits), (1, 0))
        self.assertEqual((len(visits.entry_all), len(visits.exit_non_robot)), (1, 0))

    def test_closed_slots_are_reused(self):
        visits = self.visits([("a", "x", 0), ("b", "x", 0), ("c", "x", 9000)])
        self.assertEqual(len(visits.slots), 2)
        self.assertEqual(visits.slots[0].address, "c")


class PagePartsTest(unittest.TestCase):
    def test_days_of_period(self):
        today = datetime.date(2026, 3, 9)
        self.assertEqual(days_of_period(3, 2026, today), 9)
        self.assertEqual(days_of_period(3, 2025, today), 31)
        self.assertEqual(days_of_period(2, 2100, today), 29)

    def test_site_label(self):
        self.assertEqual([site_label(site) for site in ("INI", "ini", "a<b")],
                         ["", "", " (a&lt;b)"])

    def test_link_safety(self):
        safe = ["/a", "http://x/y", "mailto:x", "/javascript:x", "xjavascript:y", "?data:x", "",
                "/a&b:c", "?a&b", "#&:"]
        hostile = ["javascript:x", "JaVaScRiPt:x", "\x01java\tscript:x", "data:x", "vbscript:x",
                   "java&#115;cript:x", "javascript&colon;x", "&#106;avascript:x", "a&b"]
        self.assertEqual([url for url in safe if not ranked.link_is_safe(url)], [])
        self.assertEqual([url for url in hostile if ranked.link_is_safe(url)], [])

    def test_url_cell(self):
        self.assertEqual(ranked.url_cell("/a+b/%7Ex"), '<td><a href="/a%20b/%7Ex">/a b/~x</a></td>')

    def test_referring_sites(self):
        for referrer, site in {"-": "Direct", "http://a.b/c/d": "http://a.b", "http://a.b":
                               "http://a.b", "/a/b": "/a", "a.b/c": "a.b", "/": "/"}.items():
            self.assertEqual(ranked.site_of(referrer), site)

    def test_countries_and_companies(self):
        class Context:
            run = type("run", (), {"list_size": 9})
            stats = None

        tables = ranked.Tables(Context)
        for name in ("www.example.com", "mail.example.co.uk", "example.co.uk", "example.com",
                     "localhost", "a.de", "end.", "", ".hidden", "x.example.COM"):
            tables._attribute(name, 2)
        self.assertEqual(tables.countries_tally.keys(), ["uk", "com", "COM"])
        self.assertEqual(tables.companies_tally.keys(), ["example.com", "example.co.uk",
                                                         "example.COM"])
        self.assertEqual(tables.attributed, 10)

    def test_csv_records(self):
        self.assertEqual(record('a"b', Number(5), "", Number("")), '"a""b",5,"",\r\n')


class HistoryTest(unittest.TestCase):
    def history(self, content=b""):
        history = History(datetime.date(2026, 3, 15))
        history.load(content)
        return history

    def test_window(self):
        history = self.history()
        for month, year in ((3, 2025), (4, 2025), (5, 2024), (3, 2026), (12, 2026), (2, 2027)):
            history.add(Row(month, year, *range(8)))
        self.assertEqual([row.yr for row in history.slots],
                         [0, 0, 2026, 2025, 0, 0, 0, 0, 0, 0, 0, 2026])

    def test_loading_ends_at_a_bad_line(self):
        good = b"1,2026,1,1,1,1,1,1,1,1\r\n"
        for bad in (b"2,2026,1,1,1,1,1,1,1\r\n", b"\r\n", b"13,2026,1,1,1,1,1,1,1,1\r\n", b"x\r\n"):
            history = self.history(good + bad + b"3,2026,1,1,1,1,1,1,1,1\r\n")
            self.assertEqual((history.slots[0].yr, history.slots[2].yr), (2026, 0), bad)

    def test_saving(self):
        lines = self.history(b" 4 ,2025, 1.5E9 ,2,3,4,5.25,6,7,8\n").lines().split("\r\n")
        self.assertEqual(lines[0], "1,0,0,0,0,0,0,0,0,0")
        self.assertEqual(lines[3], "4,2025,1500000000,2,3,4,5.25,6,7,8")
        self.assertEqual(len(lines), 13)

    def test_response_of_an_empty_month(self):
        self.assertEqual(Row(1, 2026, *[0] * 8).response(), 0)


class MonthsTest(unittest.TestCase):
    def test_english(self):
        months = Months()
        self.assertEqual([months.name(5), months.abbreviation(9), months.file_base(9)],
                         ["May", "Sep", "Sep"])

    def test_file_names_lose_blanks_at_their_ends_and_slashes(self):
        months = Months(short=[" 1x", "a b ", "m/t"] + 9 * ["x"])
        self.assertEqual([months.file_base(month) for month in (1, 2, 3)], ["1x", "a b", "m_t"])
        self.assertEqual(months.abbreviation(1), " 1x")

    def test_links(self):
        self.assertEqual(link("Jan-URLbyHits.csv"), "Jan-URLbyHits.csv")
        self.assertEqual(link(latin("f\u00e9vr..htm")), "f%C3%A9vr..htm")
        self.assertEqual(link("a b%#?&\"'"), "a%20b%25%23%3F%26%22%27")


class SwitchesTest(unittest.TestCase):
    def site(self, command):
        run = run_with(command)
        for token in command.split():
            run._apply_switch(token)
        return run.site, run.batch, run.result

    def test_switches(self):
        self.assertEqual(self.site("/SITE=web1/B")[:2], ("web1", True))
        self.assertEqual(self.site('/SITE="My Site"')[0], "My")
        self.assertEqual(self.site("/site=a;b\\c")[0], "abc")
        self.assertTrue(self.site("x/Bx")[1])
        self.assertEqual(len(self.site("/B /D /SITE=x")[2].events), 3)
        self.assertEqual(self.site("/SITE")[2].exit_code, 2)
        self.assertEqual(self.site("/SITE=")[0], "")

    def test_months(self):
        self.assertEqual(run_with(now=(2026, 1, 1)).period(), [(12, 2025), (1, 2026)])
        self.assertEqual(run_with(now=(2026, 1, 2)).period(), [(1, 2026)])
        catch_up = run_with(now=(2026, 3, 15))
        catch_up.catch_up = True
        self.assertEqual(catch_up.period(), [(m, 2025) for m in range(3, 13)]
                         + [(1, 2026), (2, 2026), (3, 2026)])


class PlainMonthTest(unittest.TestCase):
    """Every figure of the case month-utc, counted by hand from its seventeen records."""

    @classmethod
    def setUpClass(cls):
        cls.files, cls.events, _ = answer("month-utc")

    def test_summary(self):
        rows = {row[0]: row[1:] for row in table(self.files, "Jan-Summary.csv")}
        self.assertEqual(rows["Total Hits"], ["0.85", "17"])
        self.assertEqual(rows["Total Files"], ["0.65", "13"])
        self.assertEqual(rows["Total Pages"], ["0.5", "10"])
        self.assertEqual(rows["Total KBytes"], ["64.2865", "1286"])
        self.assertEqual(rows["Ave Response Time mS"], ["5390"])
        self.assertEqual(rows["Total Unique Visitor IP addresses"], ["5"])
        self.assertEqual(rows["Total Sessions"], ["0.35", "7"])
        self.assertEqual(rows["Max Concurrent Visitor Sessions"], ["2"])
        self.assertEqual(rows["Total Unique URLs"], ["8"])
        self.assertEqual(rows["Total Unique Referers"], ["7"])
        self.assertEqual(rows["Total Unique Browser Types"], ["4"])
        self.assertEqual(rows["Busiest single hour hits"][1], "6")
        self.assertEqual(rows["Hits per Hour "], [basics.plain(17 / 480), "0.3"])
        self.assertEqual(rows["Hits per Day"], ["0.85", "8"])
        self.assertEqual(rows["Busiest single hour KBytes"][1], "1250.8")
        self.assertEqual(rows["KBytes per Hour"][1], "62.54")
        self.assertEqual(rows["KBytes per Day"], ["64.2865", "1262"])
        self.assertEqual(rows["Files per Hour timeslot"][1], "0.2")
        self.assertEqual(rows["Files per Day"], ["0.65", "6"])
        self.assertEqual(rows["Pages per Hour timeslot "][1], "0.1")
        self.assertEqual(rows["Pages per Day"], ["0.5", "4"])
        self.assertEqual(rows["Ave (over hour) Response Time mS"], ["5390", "45020"])
        self.assertEqual(rows["Ave (over day) Response Time mS"], ["5390", "13024"])
        self.assertEqual(rows["Worst individual response time mS"], ["", "90000"])
        self.assertEqual(rows["200"], ["OK", "13", "1281"])
        self.assertEqual(rows["404"], ["Not Found", "1", "1"])
        self.assertEqual(rows["GET"], ["14", "1280"])
        self.assertEqual(rows["POST"], ["2", "5"])

    def test_days_and_hours(self):
        days = table(self.files, "Jan-DailyUsage.csv")
        self.assertEqual(days[5], ["5", "8", "47", "19", "1", "44", "1", "12"])
        self.assertEqual(days[6], ["6", "7", "41", "1262", "98", "13024", "2", "29"])
        self.assertEqual(days[31], ["31", "0", "0", "0", "0", "0", "0", "0"])
        hours = table(self.files, "Jan-HourlyUsage.csv")
        self.assertEqual(hours[9], ["8", "0.3", "35", "0.7", "1", "44"])
        self.assertEqual(hours[1], ["0", "0.1", "12", "62.5", "97", "45020"])

    def test_urls(self):
        rows = table(self.files, "Jan-URLbyHits.csv")
        self.assertEqual(rows[1], ["1", "6", "35", "20", "2", "/index.htm"])
        self.assertEqual(rows[2], ["2", "2", "12", "2", "0", "/~anna/"])
        self.assertEqual(len(rows), 9)
        self.assertEqual(table(self.files, "Jan-URLbyKBytes.csv")[1],
                         ["1", "1", "6", "1250", "97", "/download/setup.exe"])
        self.assertEqual(table(self.files, "Jan-PageByHits.csv")[1],
                         ["1", "5", "29", "/index.htm"])
        self.assertEqual(table(self.files, "Jan-PageTimes.csv")[1:4],
                         [["1", "1", "90000", "/download/setup.exe"],
                          ["2", "2", "485", "/form.aspx"], ["3", "1", "90", "/docs/my+page.htm"]])

    def test_sessions(self):
        rows = table(self.files, "Jan-SessionBreakdown.csv")
        self.assertEqual(rows[1][:2] + rows[1][6:8], ["Total", "7", "mins", "6"])
        self.assertEqual(rows[2], ["very short <3 Secs", "3", "1.7", "0.5", "0.0", "0.0", "secs",
                                   "2", "1.5", "0.5", "0.0", "0.0", "secs"])
        self.assertEqual(rows[4][:7], ["< 10 Minutes", "3", "3.3", "0.9", "2.7", "1.7", "mins"])
        self.assertEqual(rows[5][:7], ["< 1 Hour", "1", "2.0", "0.0", "20.0", "0.0", "mins"])
        self.assertEqual(table(self.files, "Jan-EntryExit.csv")[1],
                         ["4", "/index.htm", "3", "/index.htm", "4", "/index.htm", "2",
                          "/index.htm"])

    def test_sources_and_searches(self):
        self.assertEqual(table(self.files, "Jan-ReferrerSites.csv")[1:3],
                         [["Direct", "8", "47"], ["http://www.example.org", "6", "35"]])
        self.assertEqual(table(self.files, "Jan-Queries.csv")[1:],
                         [["cheap flights&#033;", "1"], ["iis logs", "1"]])

    def test_robots_and_short_summary(self):
        self.assertEqual(table(self.files, "Jan-Robots.csv")[1:],
                         [["Robots", "12", "0"], ["Others", "88", "100"]])
        self.assertEqual(table(self.files, "Jan-OneRow.csv")[1],
                         ["20", "5", "7", "43", "6", "33", "17", "13", "10", "5", "1286", "5390",
                          "12"])
        page = self.files["Jan.htm"]
        self.assertIn(b"<tr><td>Robots</td><td align=right>2 (12&nbsp;%)</td>"
                      b"<td align=right>5 (0&nbsp;%)</td></tr>", page)
        self.assertIn(b"[max on 8:00-8:59 on 5-January]", page)
        self.assertIn(b"[max on 0:00-0:59 on 6-January]", page)
        self.assertIn(b'CONTENT="Wed, 21 Jan 2026 10:10:00 GMT"', page)

    def test_history_and_index(self):
        line = self.files["History.txt"].split(b"\r\n")[0]
        self.assertEqual(line, b"1,2026,1285730,17,10,8,91628,5,7,13")
        self.assertEqual(self.files["Annual.csv"].split(b"\r\n")[1], line)
        self.assertIn(b"<td>Jan", self.files["index.htm"].replace(b"<a href=Jan.htm>", b""))
        for value in (b"30 Hits", b"3000000 Bytes", b"10 Visitors", b"10000 mS Ave Response"):
            self.assertIn(value, self.files["index.htm"])


class ZoneTest(unittest.TestCase):
    def urls(self, name, page):
        found = answer(name)[0][page].decode("latin-1")
        start, end = found.index("name=urls>"), found.index("by Kbytes")
        return [cell.split("</a>")[0].split(">")[-1] for cell in
                found[start:end].split('<a href="/')[1:]]

    def test_new_york(self):
        self.assertEqual(self.urls("new-york-february", "Feb.htm"),
                         ["/first.htm", "/evening.htm", "/february.htm", "/last.htm"])
        self.assertEqual(self.urls("new-york-february", "Mar.htm"), ["/march.htm"])

    def test_kolkata(self):
        self.assertEqual(self.urls("kolkata", "Mar.htm"),
                         ["/march-first.htm", "/march-morning.htm", "/a.htm", "/b.htm", "/c.htm",
                          "/late.htm", "/tenth.htm", "/last.htm"])

    def test_marquesas(self):
        self.assertEqual(self.urls("marquesas", "Jun.htm"),
                         ["/june.htm", "/june-zero.htm", "/june-again.htm", "/june-last.htm"])

    def test_january_and_december(self):
        self.assertEqual(self.urls("january-east", "Jan.htm"),
                         ["/ex-new-year.htm", "/u-new-year.htm", "/ex.htm", "/u.htm"])
        self.assertEqual(self.urls("december-west", "Dec.htm"),
                         ["/middle.htm", "/new-years-eve.htm"])

    def test_berlin_in_summer(self):
        files = answer("berlin-summer")[0]
        self.assertEqual(self.urls("berlin-summer", "Jul.htm"),
                         ["/july.htm", "/fifth.htm", "/sixth.htm"])
        days = table(files, "Jul-DailyUsage.csv")
        self.assertEqual([row[1] for row in days[1:8]], ["1", "0", "0", "0", "1", "1", "0"])
        self.assertEqual(table(files, "Jul-OneRow.csv")[1][0], "6")
        self.assertIn(b"Generated 6-Jul-2026 00:30 (local time)", files["Jul.htm"])


class OddLogsTest(unittest.TestCase):
    def test_time_oddities(self):
        files, events, _ = answer("time-oddities")
        rows = table(files, "Jan-DailyUsage.csv")
        hits = [int(row[1]) for row in rows[1:]]
        by_day = {1: 2, 2: 1, 6: 1, 10: 4, 11: 6, 13: 1, 14: 3, 15: 2, 16: 1}
        self.assertEqual(hits, [by_day.get(day, 0) for day in range(1, 32)])
        self.assertEqual(sum(b"Error adding hit counters" in event for event in events), 1)
        summary = {row[0]: row[1:] for row in table(files, "Jan-Summary.csv")}
        self.assertEqual(summary["Total Hits"][1], "21")
        self.assertEqual(summary["Busiest single hour KBytes"][1], "7.0")

    def test_twenty_minute_rule(self):
        line = answer("numbers")[0]["History.txt"].split(b"\r\n")[0].split(b",")
        self.assertEqual(line[6], b"%d" % (1200000 + 1200001 + 0 + 0 + 0 + 2 + 0 + 0 + 15 + 1 + 1
                                           + 1))

    def test_robots_carry_over(self):
        files = answer("first-of-january")[0]
        self.assertEqual(table(files, "Jan-Browsers.csv")[1:],
                         [["1", "1", "33", "1", "33", "Checker/1.0", "ROBOT"],
                          ["2", "1", "33", "1", "33", "checker/1.0", ""],
                          ["3", "1", "33", "1", "33", "bottle/2", "ROBOT"]])

    def test_statuses(self):
        files = answer("statuses")[0]
        day = table(files, "Jan-DailyUsage.csv")[10]
        # 26 records; no success: 207, five redirects (one of them unknown), 400, 403, 404 twice,
        # 500, "-", 999 and 2000.
        self.assertEqual((day[1], day[6]), ("25", "14"))

    def test_addresses(self):
        page = answer("addresses")[0]["Jan.htm"]
        self.assertIn(b"<td align=right>6</td><td align=right>55&nbsp;%</td>"
                      b"<td align=right>1</td><td align=right>55&nbsp;%</td>"
                      b"<td>127.0.0.1</td><td>@LOOPBACK@</td>", page)

    def test_filters(self):
        page = answer("filters")[0]["Jan.htm"]
        self.assertIn(b">/docs/i.htm<", page)
        for refused in (b"/a.htm", b"/b.html", b"/c.htm", b"/d.htm", b"/e.htm", b"/f.htm",
                        b"/g.htm", b"/h7.htm"):
            self.assertNotIn(refused, page)

    def test_empty_month(self):
        files = answer("empty-month")[0]
        self.assertEqual(table(files, "May-Domains.csv")[1], ["", "Unaccounted", "0",
                                                             "Unaccounted", "0"])
        for fragment in (b">1 Hits</font>", b">1 KBytes</font>", b">1 mS</font>"):
            self.assertTrue(fragment in files["May.htm"], fragment)
        self.assertFalse(b"height:1" in files["May.htm"])


if __name__ == "__main__":
    sys.exit(unittest.main())
