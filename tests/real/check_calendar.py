#!/usr/bin/env python3
"""Compares the engine's trading days with the days on which the exchange traded from 1998 to 2020.

    check_calendar.py TRADING_DAYS DATA

The engine is given the special dates (make-up Saturdays, holidays, typhoon days); what it says of each date, and how many it counts between
two, is held against the daily bars of the future. Two months have no bars: there the special dates tell.
"""

import csv
import subprocess
import sys
from datetime import date, timedelta
from pathlib import Path

SYMBOLS = ("ND.F.TWF.TX.202003", "ND.O.U_TWF.TX.202003.C.11000")
FIRST, LAST = date(1998, 7, 21), date(2020, 3, 30)
FIRST_KNOWN = date(1999, 1, 1)  # before it the engine takes every day for open
ENDS_FROM = date(2020, 1, 2)  # up to it there is no count
MONTHS_WITHOUT_BARS = ("201802", "202003")


def text(day):
    return day.strftime("%Y%m%d")


def days(first, last, step=1):
    return [first + timedelta(n) for n in range(0, (last - first).days + 1, step)]


def trading_days(data, special):
    with open(Path(data) / "taifex_eod" / "tx_near_month_eod_1998_2020.csv", newline="") as file:
        bars = {row["date"] for row in csv.DictReader(file)}
    return {day for day in days(FIRST, LAST)
            if text(day) in bars or text(day)[:6] in MONTHS_WITHOUT_BARS and day.weekday() < 5 and text(day) not in special}


def main(program, data):
    with open(Path(data) / "calendars" / "taifex_special_dates_1998_2020_derived.csv", newline="") as file:
        special = {row["date"]: row["sign"] for row in csv.DictReader(file)}
    traded = trading_days(data, special)
    is_open = {day: day in traded or day < FIRST_KNOWN for day in days(FIRST, LAST)}
    before = [0]  # open days before each date
    for day in days(FIRST, LAST):
        before.append(before[-1] + is_open[day])

    questions = [f"special {day} {sign},{'GLC.SSE|GLC.TWF' if n % 2 else 'GLC.TWF.TX|GLC.SSE'}"
                 for n, (day, sign) in enumerate(sorted(special.items()))]
    expected = []

    def ask(question, answer):
        questions.append(question)
        expected.append((question, answer))

    for symbol in SYMBOLS:
        for day in days(FIRST, LAST):
            ask(f"holiday {text(day)} {symbol}", int(not is_open[day]))
        pairs = [(start, end) for start in days(FIRST, LAST, 11) for end in (ENDS_FROM, date(2020, 2, 15), LAST)]
        pairs += [(start, end) for start in days(date(2019, 12, 1), LAST) for end in days(ENDS_FROM, LAST)]
        for start, end in pairs:
            count = before[(end - FIRST).days + 1] - before[(start - FIRST).days]
            ask(f"days {text(start)} {text(end)} {symbol}", max(count, 0))

    run = subprocess.run([program], input="\n".join(questions), capture_output=True, text=True, timeout=300, check=True)
    answers = [int(line) for line in run.stdout.split()]
    wrong = [f"{question}: {answer}, expected {value}" for (question, value), answer in zip(expected, answers) if answer != value]
    for line in wrong[:20]:
        print(line)
    if wrong or run.stderr or len(answers) != len(expected):
        print(f"{len(wrong)} wrong of {len(expected)}, {len(answers)} answers; {run.stderr}")
        return 1
    saturdays = sum(day.weekday() == 5 for day in traded)
    print(f"{len(expected)} answers as the exchange traded: {len(traded)} trading days, {saturdays} of them Saturdays, "
          f"{sum(sign == '-' for sign in special.values())} closed weekdays")
    return 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
