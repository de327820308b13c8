"""Visits: hits of one address and agent without a pause beyond the session timeout."""

import math

from .basics import Fault, single
from .tally import Tally

TIMEOUT = 1210
BANDS = [("Total", None), ("very short <3 Secs", 3), ("short <1 Min", 60), ("< 10 Minutes", 600),
         ("< 1 Hour", 3600), ("< 8 Hours", 28800), ("Continuous", 2764800)]


class Band:
    def __init__(self, label):
        self.label = label
        self.visits = self.seconds = self.fetches = 0
        self.seconds_squares = self.fetches_squares = 0.0

    def add(self, fetches, seconds):
        self.visits += 1
        self.fetches += fetches
        self.fetches_squares = single(self.fetches_squares + single(single(fetches) ** 2))
        self.seconds += seconds
        self.seconds_squares = single(self.seconds_squares + single(single(seconds) ** 2))
        if max(self.visits, self.fetches, self.seconds) >= 2 ** 31:
            raise Fault("overflow")

    def fetch_figures(self):
        return self._figures(self.fetches, self.fetches_squares)

    def stay_figures(self):
        return self._figures(self.seconds, self.seconds_squares)

    def _figures(self, total, squares):
        """Mean and standard deviation."""
        if not self.visits:
            return 0.0, 0.0
        mean = total / self.visits
        return mean, math.sqrt(max(0.0, squares / self.visits - mean * mean))


class Visit:
    def __init__(self, address, agent, time, uri):
        self.address, self.agent = address, agent
        self.start = self.last = time
        self.entry = self.exit = uri
        self.fetches = 0
        self.open = True


class Visits:
    def __init__(self, is_robot):
        self.is_robot = is_robot
        self.slots = []
        self.all = [Band(label) for label, _ in BANDS]
        self.non_robot = [Band(label) for label, _ in BANDS]
        self.entry_all, self.exit_all = Tally(), Tally()
        self.entry_non_robot, self.exit_non_robot = Tally(), Tally()

    def track(self, address, agent, time, uri):
        first_free, found = len(self.slots), None
        for i, slot in enumerate(self.slots):
            if slot.open and slot.address == address and slot.agent == agent:
                found = slot
                break
            if slot.last < time - TIMEOUT and slot.open:
                self.close(slot)
            if not slot.open and i < first_free:
                first_free = i
        if found is None:
            found = Visit(address, agent, time, uri)
            self.slots[first_free:first_free + 1] = [found]
        found.fetches += 1
        found.exit = uri
        found.last = time

    def close(self, visit):
        visit.open = False
        duration = visit.last - visit.start
        if duration < 0:
            duration += 2678400
        views = [(self.all, self.entry_all, self.exit_all)]
        if not self.is_robot(visit.agent):
            views.append((self.non_robot, self.entry_non_robot, self.exit_non_robot))
        rows = [0]
        rows += [i for i in range(1, len(BANDS)) if duration < BANDS[i][1]][:1]
        for bands, entry, exit_pages in views:
            for row in rows:
                bands[row].add(visit.fetches, duration)
            entry.add(visit.entry, 1.0)
            exit_pages.add(visit.exit, 1.0)

    def close_all(self):
        for slot in self.slots:
            if slot.open:
                self.close(slot)
