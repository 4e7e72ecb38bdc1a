#!/usr/bin/env python3
# Copyright 2026 The Veltmark authors.
"""Independent computation of the statistics expected by
column_statistics_test.cc.

Run it with Python 3 (standard library only):

    python3 tests/components/appfile/statistics_reference.py

It prints, for every data set and limit configuration of the test, the 23
statistics in the order Count, Tdev, Sum, SD, Maximum, CalcUSL, CalcUCL,
Average, CalcLCL, CalcLSL, Minimum, CR, TZ, CPK, CV, Range, OOOLpct,
OOOLppm, COOLpct, COOLppm, FirstValue, LastValue, AvgTBE as C++ initialisers
(kNull for a Null statistic). The test holds them as literals.

Everything that is a rational function of the data is computed exactly with
Fraction from the exact binary values of the doubles; square roots in
Decimal with 50 digits; only the normal tail uses math.erfc on the exact
z rounded once to a double. The moving-range constant is the double
nearest 1.128, as the program holds it. Date-times are built as the program
builds them (day serial + seconds / 86400 in double), so AvgTBE sees the
very same date-time doubles.
"""

import datetime
import decimal
import math
from fractions import Fraction

decimal.getcontext().prec = 50

D2 = Fraction(1.128)
ORDER = ["Count", "Tdev", "Sum", "SD", "Maximum", "CalcUSL", "CalcUCL",
         "Average", "CalcLCL", "CalcLSL", "Minimum", "CR", "TZ", "CPK", "CV",
         "Range", "OOOLpct", "OOOLppm", "COOLpct", "COOLppm", "FirstValue",
         "LastValue", "AvgTBE"]


def date_time(date_text, time_text):
    """The record date-time double, built as the program builds it."""
    if not date_text:
        return math.nan
    y, m, d = (int(p) for p in date_text.split("-"))
    day = float((datetime.date(y, m, d) - datetime.date(1899, 12, 30)).days)
    hh, mm, ss = (int(p) for p in time_text.split(":"))
    return day + float(hh * 3600 + mm * 60 + ss) / 86400.0


def sqrt(q):
    """Square root of a non-negative Fraction, as a Fraction (50 digits)."""
    root = (decimal.Decimal(q.numerator) / decimal.Decimal(q.denominator)).sqrt()
    return Fraction(root)


def limit(method, value, center, spread, direction):
    method = method.strip().upper()
    if method == "F":
        return Fraction(value)
    if method == "C":
        if center is None or spread is None:
            return None
        return center + direction * 3 * spread
    return None


def upper_tail(z):
    return math.erfc(float(z) / math.sqrt(2)) / 2


def statistics(rows, order, limits):
    """rows: list of (date, time, value or None); order: record indexes;
    limits: dict name -> (method, value) for usl, ucl, tgt, lcl, lsl."""
    present = [(i, Fraction(rows[i][2])) for i in order if rows[i][2] is not None]
    x = [v for _, v in present]
    n = len(x)
    s = {name: None for name in ORDER}
    s["Count"] = n
    if n == 0:
        avg = sd = sw = None
    else:
        avg = sum(x) / n
        s["Sum"] = sum(x)
        s["Average"] = avg
        s["Minimum"] = min(x)
        s["Maximum"] = max(x)
        s["Range"] = max(x) - min(x)
        s["FirstValue"] = x[0]
        s["LastValue"] = x[-1]
        sd = sw = None
    if n >= 2:
        sd = sqrt(sum((v - avg) ** 2 for v in x) / (n - 1))
        sw = sum(abs(x[k] - x[k - 1]) for k in range(1, n)) / (n - 1) / D2
        s["SD"] = sd
        first_t = date_time(*rows[present[0][0]][:2])
        last_t = date_time(*rows[present[-1][0]][:2])
        if not math.isnan(first_t) and not math.isnan(last_t):
            s["AvgTBE"] = Fraction((last_t - first_t) * 86400.0) / (n - 1)
    usl = limit(*limits["usl"], avg, sd, 1)
    lsl = limit(*limits["lsl"], avg, sd, -1)
    s["CalcUSL"], s["CalcLSL"] = usl, lsl
    s["CalcUCL"] = limit(*limits["ucl"], avg, sw, 1)
    s["CalcLCL"] = limit(*limits["lcl"], avg, sw, -1)
    tmethod, tvalue = limits["tgt"]
    target = {"F": Fraction(tvalue), "C": avg}.get(tmethod.strip().upper())
    if avg is not None and target is not None:
        s["Tdev"] = avg - target
        if sw:
            s["TZ"] = (avg - target) / sw
    if sw is not None and usl is not None and lsl is not None and usl != lsl:
        s["CR"] = 6 * sw / (usl - lsl)
    if sw and avg is not None and (usl is not None or lsl is not None):
        sides = [d for d in (None if usl is None else usl - avg,
                             None if lsl is None else avg - lsl) if d is not None]
        s["CPK"] = min(sides) / (3 * sw)
    if sd is not None and avg:
        s["CV"] = 100 * sd / avg
    if n and (usl is not None or lsl is not None):
        out = sum(1 for v in x if (usl is not None and v > usl)
                  or (lsl is not None and v < lsl))
        s["OOOLpct"] = Fraction(out * 100, n)
        s["OOOLppm"] = Fraction(out * 1000000, n)
    if sw and (usl is not None or lsl is not None):
        share = 0.0
        if usl is not None:
            share += upper_tail((usl - avg) / sw)
        if lsl is not None:
            share += upper_tail((avg - lsl) / sw)
        s["COOLpct"] = share * 100
        s["COOLppm"] = share * 1e6
    return s


def cpp(value):
    if value is None:
        return "kNull"
    return repr(float(value))


def emit(name, rows, order, limits):
    s = statistics(rows, order, limits)
    values = ", ".join(cpp(s[k]) for k in ORDER)
    print('    {"%s", {%s}},' % (name, values))


def limits_of(usl, ucl, tgt, lcl, lsl):
    return {"usl": usl, "ucl": ucl, "tgt": tgt, "lcl": lcl, "lsl": lsl}


# The main data set: date, time, numeric value (None = NULL).
MAIN = [
    ("2024-03-01", "08:00:00", 10.2),
    ("2024-03-01", "08:10:00", None),
    ("2024-03-01", "08:25:00", 9.7),
    ("2024-03-01", "09:00:00", 10.9),
    ("2024-03-01", "09:40:00", 8.8),
    ("2024-03-01", "10:05:00", 11.6),
    ("2024-03-01", "10:30:00", 10.1),
    ("2024-03-01", "11:00:00", 9.4),
]
MAIN_ORDER = [5, 0, 2, 7, 1, 3, 6]

B = ("B", 0)
LIMIT_CASES = [
    ("fixed, two-sided", limits_of(("F", 11.5), ("F", 11.0), ("F", 10.0),
                                   ("F", 9.0), ("F", 9.5))),
    ("calculated", limits_of(("C", 0), ("C", 0), ("C", 0), ("C", 0), ("C", 0))),
    ("blank", limits_of(B, B, B, B, B)),
    ("upper spec limit only", limits_of(("F", 11.0), B, ("C", 0), B, B)),
    ("lower spec limit only", limits_of(B, ("C", 0), B, B, ("F", 9.9))),
    ("calculated USL, fixed LSL", limits_of(("C", 0), ("F", 12), ("F", 10.5),
                                            ("C", 0), ("F", 9.5))),
    ("limits on the extreme values", limits_of(("F", 11.6), B, ("F", 10.5), B,
                                               ("F", 9.4))),
    ("method letters read leniently", limits_of((" f ", 11.5), ("c", 0),
                                                ("X", 10.0), ("", 9.0),
                                                ("F", 9.5))),
]

FIXED = limits_of(("F", 11.5), ("F", 11.0), ("F", 10.0), ("F", 9.0), ("F", 9.5))
CALC = limits_of(("C", 0), ("C", 0), ("C", 0), ("C", 0), ("C", 0))
SMALL_CASES = [
    ("n = 0, fixed", [1], FIXED),
    ("n = 0, calculated", [1], CALC),
    ("n = 1, fixed", [3], FIXED),
    ("n = 1, calculated", [3], CALC),
    ("n = 2, fixed", [2, 5], FIXED),
    ("n = 2, calculated", [2, 5], CALC),
]

# Values far from 0 with small deviations: a sum of squares taken about 0
# loses every digit of the variance.
OFFSET = [("2024-03-01", "08:00:%02d" % k, 1e9 + d) for k, d in
          enumerate([0.1, 0.25, -0.05, 0.4, 0.15, 0.05, 0.3, -0.2])]

# Average 10.5 and within sigma 1 / 1.128: spec limits 9 sigma away.
TAIL = [("2024-03-01", "08:00:0%d" % k, v) for k, v in
        enumerate([10.0, 11.0, 10.0, 11.0])]
NINE_SIGMA = 10.5 + 9 / 1.128

# The worked example of docs/statistics.md.
EXAMPLE = [("2024-03-01", "08:%02d:00" % (10 * k), v) for k, v in
           enumerate([10.0, 12.0, 11.0, 13.0])]


def main():
    print("// Main data set, records in the order", MAIN_ORDER)
    for name, limits in LIMIT_CASES:
        emit(name, MAIN, MAIN_ORDER, limits)
    print("// Main data set, few values")
    for name, order, limits in SMALL_CASES:
        emit(name, MAIN, order, limits)
    print("// Offset data set, record order")
    emit("values near 1e9", OFFSET, list(range(len(OFFSET))), CALC)
    print("// Tail data set: USL / LSL =", repr(NINE_SIGMA), "and",
          repr(10.5 - 9 / 1.128))
    emit("upper limit 9 sigma away", TAIL, [0, 1, 2, 3],
         limits_of(("F", NINE_SIGMA), B, B, B, B))
    emit("both limits 9 sigma away", TAIL, [0, 1, 2, 3],
         limits_of(("F", NINE_SIGMA), B, B, B, ("F", 10.5 - 9 / 1.128)))

    print("// Worked example")
    emit("worked example", EXAMPLE, [0, 1, 2, 3],
         limits_of(("F", 14), ("C", 0), ("F", 11), ("C", 0), ("F", 9)))


if __name__ == "__main__":
    main()
