"""The month page: frame, summary table and the daily and hourly sections."""

from .basics import (bar_height, escape, full_scale, is_weekend, plain, rounded, share,
                     tenths)
from .classify import status_meaning
from .csvfile import CsvFiles, Number
from .frame import END_OF_PAGE, days_of_period, footer_start, head, site_label
from .ranked import ranked_tables

NAVIGATION = ('[<a href="#daily">Daily</a>][<a href="#hourly">Hourly</a>]'
              '[<a href="#urls">URLs</a>][<a href="#readers">Readers</a>]'
              '[<a href="#sessions">Sessions</a>][<a href="#referrers">Referrers</a>]'
              '[<a href="#browsers">Browsers</a>][<a href="#countries">Countries</a>]'
              '[<a href="#queries">Searches</a>][<a href="#broken">Broken links</a>]'
              '[<a href=index.htm>Annual Summary</a>]<p><hr>')
SLOT = " <small>(timeslot averaged over month)</small>"


class Context:
    """Everything that the sections of one page read."""

    def __init__(self, run, stats, month, year, base):
        self.run = run
        self.stats = stats
        self.month, self.year = month, year
        self.month_name = run.months.name(month)
        self.period = self.month_name + " " + str(year)
        self.days = days_of_period(month, year, run.today)
        self.csv = CsvFiles(run.csv, base)


def month_page(run, stats, month, year, base):
    """The page's lines and its CSV files."""
    context = Context(run, stats, month, year, base)
    out = _head(context) + [NAVIGATION] + _summary(context)
    out += _daily(context) + _hourly(context) + ranked_tables(context) + _filters(context)
    out += [footer_start(run) + run.credit + "</small>", END_OF_PAGE]
    return out, context.csv.files


def _head(c):
    run = c.run
    generated = run.utc_text + " (UTC)" if run.use_utc else run.wall_text + " (local time)"
    return head(run, run.host + " - " + c.period) + [
        "<H2>" + c.month_name + " Usage Statistics for " + run.host + c.stats.host_label
        + site_label(run.site) + "</H2>",
        "<SMALL><STRONG>Summary Period: " + c.period + "<BR>Generated " + generated
        + "<BR></STRONG></SMALL><HR><center>"]


def _cells(label, *cells):
    """A table row: label and cells given as (attributes, text)."""
    return ('<tr><td align=left width="70%">' + label + "</td>"
            + "".join("<td" + attributes + ">" + text + "</td>" for attributes, text in cells)
            + "</tr>")


RIGHT = " align=right"
TWO_COLUMNS = " colspan=2 align=right"
TWO_ROWS = " align=right rowspan=2"


def _measures(c):
    s, days = c.stats, c.days
    averaged = [("Total Hits", s.total_hits), ("Total Files", s.total_files),
                ("Total Pages", s.total_pages)]
    rows, records = [], []
    for label, total in averaged:
        rows.append(_cells(label, (RIGHT, rounded(total / days)), (RIGHT, plain(total))))
        records.append((label, Number(plain(total / days)), Number(plain(total))))
    kbytes, daily = rounded(s.total_bytes / 1000), s.total_bytes / (days * 1000)
    rows.append(_cells("Total KBytes", (RIGHT, rounded(daily)), (RIGHT, kbytes)))
    records.append(("Total KBytes", Number(plain(daily)), Number(kbytes)))

    def single_value(label, value):
        rows.append(_cells(label, (TWO_COLUMNS, value)))
        records.append((label, Number(value)))

    sessions = s.visits.all[0].visits
    single_value("Ave Response Time mS", rounded(s.total_time / max(1, s.total_hits)))
    single_value("Total Unique Visitor IP addresses", str(len(s.client_addresses)))
    rows.append(_cells("Total Sessions", (RIGHT, rounded(sessions / days)),
                       (RIGHT, str(sessions))))
    records.append(("Total Sessions", Number(plain(sessions / days)), Number(sessions)))
    single_value("Max Concurrent Visitor Sessions", str(len(s.visits.slots)))
    single_value("Total Unique URLs", str(len(s.success_urls)))
    single_value("Total Unique Referers", str(len(s.referrers)))
    single_value("Total Unique Browser Types", str(len(s.user_agents)))
    return rows, records


def _busiest(c, what, day, hour):
    return "Busiest single hour %s [max on %d:00-%d:59 on %d-%s]" % (
        what, hour, hour, day, c.month_name)


def _best_day(values):
    """The first day that holds the maximum."""
    return max(range(1, 32), key=lambda day: (values[day], -day))


def _breakdown(c):
    s, days = c.stats, c.days
    rows = ["<tr><th></th><th>Average</th><th>Max</th></tr>"]
    records = [("Breakdown", "Average", "Max")]

    def pair(what, total, hours, busiest, peak_cell, peak_record):
        """The busiest single hour and the timeslots; they share the average cell."""
        average, slot = total / (days * 24), max(hours[:24]) / days
        rows.append(_cells(busiest, (TWO_ROWS, tenths(average)), (RIGHT, peak_cell)))
        rows.append(_cells(what + " per Hour" + SLOT, (RIGHT, tenths(slot))))
        label = what + " per Hour" + (" " if what == "Hits" else "")
        records.append(("Busiest single hour " + ("hits" if what == "Hits" else what),
                        Number(plain(average)), Number(peak_record)))
        records.append((label, Number(plain(average)), Number(plain(slot))))

    def per_day(label, record_label, average, largest):
        rows.append(_cells(label, (RIGHT, rounded(average)), (RIGHT, largest)))
        records.append((record_label, Number(plain(average)), Number(largest)))

    def on_day(values):
        return " [max on %d-%s]" % (_best_day(values), c.month_name)

    peak = plain(s.peak_hits)
    pair("Hits", s.total_hits, s.hour_hits,
         _busiest(c, "hits", s.peak_hits_day, s.peak_hits_hour), peak + ".0", peak)
    per_day("Hits per Day" + on_day(s.day_hits), "Hits per Day", s.total_hits / days,
            plain(max(s.day_hits)))
    peak = tenths(s.peak_bytes / 1000)
    pair("KBytes", s.total_bytes / 1000, [value / 1000 for value in s.hour_bytes],
         _busiest(c, "KBytes", s.peak_bytes_day, s.peak_bytes_hour), peak, peak)
    per_day("KBytes per Day" + on_day(s.day_bytes), "KBytes per Day", s.total_bytes / 1000 / days,
            rounded(max(s.day_bytes) / 1000))
    for what, total, hours, of_days, blank in (
            ("Files", s.total_files, s.hour_files, s.day_files, ""),
            ("Pages", s.total_pages, s.hour_pages, s.day_pages, " ")):
        average, slot = total / (days * 24), max(hours[:24]) / days
        label = what + " per Hour timeslot"
        rows.append(_cells(label + SLOT, (RIGHT, tenths(average)), (RIGHT, tenths(slot))))
        records.append((label + blank, Number(plain(average)), Number(plain(slot))))
        label = what + " per Day"
        per_day(label, label, total / days, plain(max(of_days)))
    _response_times(s, rows, records)
    return rows, records


def _response_times(s, rows, records):
    average = rounded(s.total_time / max(1, s.total_hits))
    over_hour = rounded(max(t / max(1, h) for t, h in zip(s.hour_time[:24], s.hour_hits)))
    over_day = rounded(max(t / max(1, h) for t, h in zip(s.day_time, s.day_hits)))
    worst = plain(s.max_time)
    labels = ("Ave (over hour) Response Time mS", "Ave (over day) Response Time mS",
              "Worst individual response time mS")
    rows.append(_cells(labels[0], (TWO_ROWS, average), (RIGHT, over_hour)))
    rows.append(_cells(labels[1], (RIGHT, over_day)))
    rows.append(_cells(labels[2], (RIGHT, ""), (RIGHT, worst)))
    records.append((labels[0], Number(average), Number(over_hour)))
    records.append((labels[1], Number(average), Number(over_day)))
    records.append((labels[2], Number(""), Number(worst)))


def _counted(label, entry):
    return ("<tr><td>" + label + "</td><td align=right>" + str(entry.count)
            + "</td><td align=right>" + rounded(entry.metric / 1000) + "</td></tr>")


def _summary(c):
    s = c.stats
    out = ['<table width="80%" border=1 frame=box>',
           "<caption><b>Monthly statistics for " + c.period + "</b>" + c.csv.link("Summary")
           + "</caption>",
           "<tr><th align=center> </th><th align=center>Daily Avg</th>"
           "<th align=center>Totals</th></tr>"]
    rows, records = _measures(c)
    more_rows, more_records = _breakdown(c)
    out += rows + more_rows
    records += more_records
    out.append("<tr><th align=left>By return code</th><th>Hits</th><th>K bytes</th></tr>")
    records.append(("By return code", "Meaning", "Count", "K bytes"))
    for entry in s.status_codes.entries:
        meaning = status_meaning(entry.key)
        out.append(_counted(meaning + entry.key, entry))
        records.append((entry.key, meaning[:-3] if meaning else "", Number(entry.count),
                        Number(rounded(entry.metric / 1000))))
    out.append("<tr><th align=left>By method</th><th>Hits</th><th>K bytes</th></tr>")
    records.append(("method", "count", "K bytes"))
    for entry in s.methods.entries:
        out.append(_counted(entry.key, entry))
        records.append((entry.key, Number(entry.count), Number(rounded(entry.metric / 1000))))
    c.csv.write("Summary", records)
    return out + ["</table><hr><p>"]


def _bar(height, colour):
    return ('<td  style="vertical-align:bottom; height:300px"><div style="height:' + height
            + "; background-color:" + colour + '; font-size:0pt; width:100%"></div>')


def _chart_label(text, number, columns):
    blank = "&nbsp;" if number < 10 else ""
    return "<td colspan=%d align=center><tt><b>%s%s</b></tt></td>" % (columns, blank, text)


def _blue(c, day):
    if is_weekend(c.year, c.month, day):
        return '<font color="blue">' + str(day) + "</font>"
    return str(day)


def _daily(c):
    s, days = c.stats, range(1, 32)
    caption = "Daily usage for " + c.run.host + " for " + c.period
    response = [t / max(1, h) for t, h in zip(s.day_time, s.day_hits)]
    scales = [full_scale(max(s.day_hits)), full_scale(max(s.day_bytes) / 1000),
              full_scale(max(response))]
    out = ['<br><table width="90%" border=1 rules=groups frame=box cellpadding=0>',
           "<caption><b><a name=daily>" + caption + "</a></b></caption>",
           "<tfoot><tr align=left><td></td>"]
    out += [_chart_label(_blue(c, day), day, 4) for day in days]
    out += ["</tr></tfoot>", "<tbody><tr><td></td>"]
    for day in days:
        failed = s.day_failures[day] * 100 / max(1, s.day_hits[day])
        out += [_bar(bar_height(s.day_hits[day], scales[0]), "green"),
                _bar(bar_height(s.day_bytes[day] / 1000, scales[1]), "red"),
                _bar(bar_height(response[day], scales[2]), "pink"),
                _bar(bar_height(failed, 100), "lightblue")]
    out += ["<td></td></tr></tbody>", "</table>"]
    out += [c.csv.link("DailyUsage")] if c.csv.enabled else []
    out += ['<table width="90%"><tr><td>100%=</td>',
            "<td><font color=green>" + plain(scales[0]) + " Hits</font></td>",
            "<td><font color=red>" + plain(scales[1]) + " KBytes</font></td>",
            "<td><font color=salmon>" + plain(scales[2]) + " mS</font></td>",
            "<td><font color=blue>% failures</font></td>", "</tr></table>"]
    return out + _daily_table(c, caption)


def _daily_table(c, caption):
    s = c.stats
    out = ['<table width="60%" border=1>', "<caption><b>" + caption + "</b></caption>", "<tbody>",
           "<tr><th>Day</th><th colspan=2 bgcolor=green>Hits</th>"
           "<th colspan=2 bgcolor=red>KBytes</th><th bgcolor=pink>mS</th>"
           "<th bgcolor=lightblue colspan=2>failures</th>"]
    records = [("Day", "Hits", "HitsPct", "KBytes", "KBytesPct", "mS", "Failures", "FailPct")]
    for day in range(1, 32):
        hits = s.day_hits[day]
        cells = (plain(hits), share(hits, s.total_hits), rounded(s.day_bytes[day] / 1000),
                 share(s.day_bytes[day], s.total_bytes), rounded(s.day_time[day] / max(1, hits)),
                 plain(s.day_failures[day]), share(s.day_failures[day], hits))
        out.append("<tr align=right><td>" + _blue(c, day) + "</td>"
                   "<td>%s</td><td>%s%%</td><td>%s</td><td>%s%%</td><td>%s</td>"
                   "<td>%s</td><td>%s%%</td></tr>" % cells)
        records.append(tuple(map(Number, (day,) + cells)))
    c.csv.write("DailyUsage", records)
    return out + ["</table>"]


def _hourly(c):
    s = c.stats
    caption = "Hourly usage for " + c.run.host + " for " + c.period
    response = [t / max(1, h) for t, h in zip(s.hour_time, s.hour_hits)][:24]
    scales = [full_scale(max(s.hour_hits[:24])), full_scale(max(s.hour_bytes[:24]) / 1000),
              full_scale(max(response))]
    out = ['<hr><br><table width="90%" border=1 rules=groups frame=box cellpadding=0>',
           "<caption><b><a name=hourly>" + caption + "</a></b></caption>",
           "<tfoot><tr align=left><td></td>"]
    out += [_chart_label(str(hour), hour, 3) for hour in range(24)]
    out += ["</tr></tfoot>", "<tbody><tr><td></td>"]
    for hour in range(24):
        out += [_bar(bar_height(s.hour_hits[hour], scales[0]), "green"),
                _bar(bar_height(s.hour_bytes[hour] / 1000, scales[1]), "red"),
                _bar(bar_height(response[hour], scales[2]), "pink")]
    out += ["<td></td></tr>", "</tbody></table>"]
    out += [c.csv.link("HourlyUsage")] if c.csv.enabled else []
    out += ['<table width="90%"><tr><td>100%=</td>',
            "<td><font color=green>" + tenths(scales[0] / c.days) + " Hits/hour</font></td>",
            "<td><font color=red>" + tenths(scales[1] / c.days) + " KBytes/hour</font></td>",
            "<td><font color=salmon>" + plain(scales[2]) + " mS</font></td>", "</tr></table>"]
    return out + _hourly_table(c, caption, response)


def _hourly_table(c, caption, response):
    s = c.stats
    out = ['<table width="60%" border=1>', "<caption><b>" + caption + "</b></caption>", "<tbody>",
           "<tr><th>Hour</th><th colspan=2 bgcolor=green>Hits/hour</th>"
           "<th colspan=2 bgcolor=red>KBytes</th><th bgcolor=pink>mS</th>"]
    records = [("Hour", "HitsPerHour", "HitsPct", "KBytesPerHour", "KBytesPct", "mS")]
    for hour in range(24):
        hits, size = s.hour_hits[hour], s.hour_bytes[hour]
        cells = (tenths(hits / c.days), share(hits, s.total_hits), tenths(size / 1000 / c.days),
                 share(size, s.total_bytes), rounded(response[hour]))
        out.append("<tr align=right><td>%d</td><td>%s</td><td>%s%%</td><td>%s</td><td>%s%%</td>"
                   "<td>%s</td></tr>" % ((hour,) + cells))
        records.append(tuple(map(Number, (hour,) + cells)))
    c.csv.write("HourlyUsage", records)
    return out + ["</tbody></table>"]


def _filters(c):
    if not c.run.rules:
        return []
    out = ['<br><table width="90%" border=1>',
           "<caption><b><a name=filters>Input filters applied</a></b></caption>"
           "<tbody align=left>"]
    for rule in c.run.rules:
        out.append("<tr><td><pre> " + escape(rule.name) + ": "
                   + ("include" if rule.includes else "exclude") + " where " + escape(rule.field)
                   + " like " + escape(rule.pattern) + " </pre></td></tr>")
    return out + ["</tbody></table>"]
