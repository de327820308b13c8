"""The tallies, kept exactly as their steps say: a scanned list with adjacent swaps.

An index from key to position only saves the scan; the order is that of the swaps.
"""

from .basics import Fault, add_single, single


class Entry:
    def __init__(self, key, value):
        self.key = key
        self.count = 1
        self.metric = value


class Tally:
    def __init__(self):
        self.entries = []
        self._place = {}
        self.reordered = False

    def __len__(self):
        return len(self.entries)

    def add(self, key, value, averaging=False):
        if self.reordered:
            raise AssertionError("a tally ranked by metric was added to")
        place = self._place.get(key)
        if place is None:
            self._place[key] = len(self.entries)
            self.entries.append(Entry(key, value))
            return
        entry = self.entries[place]
        if entry.count == 2 ** 31 - 1:
            raise Fault("overflow")
        entry.count += 1
        if averaging:
            entry.metric = single(((entry.count - 1) * entry.metric + value) / entry.count)
        else:
            entry.metric = add_single(entry.metric, value)
        self._move_forward(place)

    def _move_forward(self, place):
        entries = self.entries
        while place >= 1 and entries[place - 1].count < entries[place].count:
            entries[place - 1], entries[place] = entries[place], entries[place - 1]
            self._place[entries[place].key] = place
            place -= 1
        self._place[entries[place].key] = place

    def rank_by_metric(self):
        """Highest metric first; equal metrics keep their order, as in a bubble sort."""
        self.entries.sort(key=lambda entry: -entry.metric)
        self.reordered = True

    def top(self, limit):
        return self.entries[:max(0, limit)]

    def keys(self):
        return [entry.key for entry in self.entries]
