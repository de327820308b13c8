"""Numbers, roundings and byte-wise text helpers that every other module of the oracle uses."""

import datetime
import math
import re
import struct
from decimal import ROUND_HALF_UP, Decimal
from fractions import Fraction

from .months import ENGLISH_SHORT


class Fault(Exception):
    """A run-time error of one step: an overflow or an index out of range."""


def single(value):
    """The nearest single-precision number."""
    try:
        return struct.unpack("<f", struct.pack("<f", value))[0]
    except OverflowError as error:
        raise Fault("overflow") from error


def add_single(a, b):
    """The sum of two single-precision numbers, in single precision."""
    return single(a + b)


def lower(text):
    """`text` with A to Z as a to z."""
    return text.encode("latin-1").lower().decode("latin-1")


def upper(text):
    """`text` with a to z as A to Z."""
    return text.encode("latin-1").upper().decode("latin-1")


def contains(text, part):
    return lower(part) in lower(text)


def numeric_value(text, signs=False):
    """The leading number of `text` as an exact fraction; 0 without a leading digit."""
    match = re.match(r"([+-]?)([0-9]+)(?:\.([0-9]+))?" if signs else r"()([0-9]+)(?:\.([0-9]+))?",
                     text)
    if not match:
        return Fraction(0)
    whole = match.group(2).lstrip("0") or "0"
    if len(whole) > 40:
        raise Fault("overflow")
    decimals = (match.group(3) or "")[:400]
    value = Fraction(int(whole + decimals), 10 ** len(decimals))
    return -value if match.group(1) == "-" else value


def to_integer(text, bits, signs=False):
    """The numeric value rounded half to even; a fault when it does not fit `bits` bits."""
    value = round(numeric_value(text, signs))
    if not -(1 << (bits - 1)) <= value < (1 << (bits - 1)):
        raise Fault("overflow")
    return value


def plain(value):
    """A number with all its integer digits, or in its shortest form without an exponent."""
    if value == int(value):
        return str(int(value))
    return format(Decimal(repr(float(value))), "f")


def tenths(value):
    """One decimal, half away from zero, judged on the shortest decimal form."""
    return format(Decimal(repr(float(value))).quantize(Decimal("0.1"), ROUND_HALF_UP), "f")


def rounded(value):
    """Rounded half to even, as text."""
    return plain(round(value))


def share(value, total):
    """Whole percent of `value` in `total`, as text."""
    return rounded(value * 100 / max(1, total))


def full_scale(maximum):
    """The value that a bar of full height stands for: 1, 3, 10, 30, 100, ..."""
    maximum = max(1, maximum)
    scale = 10.0 ** round(math.log10(maximum) + 0.5)
    return 0.3 * scale if 0.3 * scale > maximum else scale


def bar_height(value, scale):
    return rounded(value * 300 / max(1, scale))


def escape(text):
    """HTML escapes for what a user typed or a name server sent."""
    return (text.replace("&", "&amp;").replace("<", "&lt;").replace(">", "&gt;")
            .replace('"', "&quot;"))


def day_number(year, month, day):
    """Days since 1970-01-01 of a date whose month and day may lie outside their ranges."""
    year, month = year + (month - 1) // 12, (month - 1) % 12 + 1
    shifted_year = year - 1 if month <= 2 else year
    days_of_year = (153 * ((month + 9) % 12) + 2) // 5
    return (365 * shifted_year + shifted_year // 4 - shifted_year // 100 + shifted_year // 400
            + days_of_year + day - 1 - 719468)


def move_date(year, month, day, days):
    """The real calendar date `days` after a date, which is normalised first."""
    number = day_number(year, month, day) + days
    guess = number * 400 // 146097 + 1969
    while day_number(guess + 1, 1, 1) <= number:
        guess += 1
    month = 12
    while day_number(guess, month, 1) > number:
        month -= 1
    return guess, month, number - day_number(guess, month, 1) + 1


def is_weekend(year, month, day):
    """Saturday or Sunday; 1970-01-01 was a Thursday."""
    return (day_number(year, month, day) + 4) % 7 in (0, 6)


def month_length(month, year):
    if month == 2:
        return 29 if year % 4 == 0 else 28
    return 30 if month in (4, 6, 9, 11) else 31


def clock_text(moment, month_name):
    return "%d-%s-%04d %02d:%02d" % (moment.day, month_name, moment.year, moment.hour,
                                     moment.minute)


def expiry_text(moment):
    days = ["Mon", "Tue", "Wed", "Thu", "Fri", "Sat", "Sun"]
    return "%s, %d %s %04d %02d:%02d:%02d" % (
        days[moment.weekday()], moment.day, ENGLISH_SHORT[moment.month - 1], moment.year,
        moment.hour, moment.minute, moment.second)


def minutes(count):
    return datetime.timedelta(minutes=count)
