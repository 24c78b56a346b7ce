#!/usr/bin/env python3
"""Compares the deltas that the terminal works out through the recorded day with those that the exchange published after it.

    check_deltas.py PROGRAM OPTION_FIGURES DATA

The chain of the month is subscribed all the session. Every series that traded must have figures at the end, but for one whose last trade was not above what
exercise brought at that time: it implies no volatility. Over the others the absolute difference may be 0.01 on average.
"""

import csv
import json
import subprocess
import sys
import tempfile
from pathlib import Path
from statistics import mean

from real_day import SESSIONS, import_session, rows_of, symbol_of

EXPIRY = "202108"
CHAIN = f"ND.O.TWF.TX.{EXPIRY}"
DELTA = 3  # column, behind the symbol, MCODE and ImpVol
SCALE = 100  # of deltas on the bus
BOUND = 0.01


def switch_to_market(day):
    """The imported day says nothing of figures: from here on the terminal works them out."""
    head, _, rest = day.read_text().partition("\n")
    head = json.loads(head)
    head["day"]["figures"] = "market"
    day.write_text(json.dumps(head) + "\n" + rest)


def figures_at_end(tool, day):
    lines = subprocess.run([tool, day, CHAIN], check=True, capture_output=True, text=True, timeout=300).stdout
    return {row[0]: row for row in csv.reader(lines.splitlines())}


def last_trades(data):
    """By symbol: the last price of the day session, strike, right, and the future's price by then."""
    date, opens, _ = SESSIONS["day"]
    futures = [(row["time"], 0, float(row["price"])) for row in rows_of(data, "tx_trades.csv.gz")
               if (row["product"], row["expiry"], row["date"]) == ("TX", EXPIRY, date) and row["time"] >= opens]
    options = [(row["time"], 1, row) for row in rows_of(data, "txo_trades_day.csv.gz") if row["expiry"] == EXPIRY]
    future, last = None, {}
    for _, is_option, row in sorted(futures + options, key=lambda entry: entry[:2]):
        if is_option:
            last[symbol_of(row)] = (float(row["price"]), float(row["strike"]), row["right"], future)
        else:
            future = row
    return last


def implies_nothing(price, strike, right, future):
    return price <= (future - strike if right == "C" else strike - future)


def main(program, tool, data):
    exchange = {symbol_of(row): float(row["delta"]) for row in rows_of(data, "txo_delta_eod.csv") if row["expiry"] == EXPIRY}
    with tempfile.TemporaryDirectory() as folder:
        day = Path(folder) / "real.day.jsonl"
        import_session(program, data, "day", day)
        switch_to_market(day)
        figures = figures_at_end(tool, day)
    trades = last_trades(data)
    if not trades or not set(trades) <= set(exchange):
        print("the files name other series than expected")
        return 1

    with_figures = {symbol for symbol, row in figures.items() if row[1] == "1"}
    expected = {symbol for symbol, trade in trades.items() if not implies_nothing(*trade)}
    if with_figures != expected:
        print(f"figures too many: {sorted(with_figures - expected)}, missing: {sorted(expected - with_figures)}")
        return 1
    differences = {symbol: abs(float(figures[symbol][DELTA]) / SCALE - exchange[symbol]) for symbol in expected}
    furthest = max(differences, key=differences.get)
    average = mean(differences.values())
    print(f"{len(expected)} of {len(trades)} series that traded compared ({len(trades) - len(expected)} traded for less than exercise brings): "
          f"mean difference {average:.4f} of {BOUND} allowed, at most {differences[furthest]:.4f} ({furthest})")
    return 0 if average <= BOUND else 1


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
