#!/usr/bin/env python3
"""Runs the real day and compares the strategy's first batch of orders with a model of it, under several cash limits.

    check_batch.py PROGRAM DATA

The command starts the strategy at once. The batch then holds what has opened within the band before that time. Nobody answers the
orders, so no other batch may follow: what opens later waits.
"""

import re
import sys
import tempfile
from pathlib import Path

from batch_model import first_batch
from real_day import SESSIONS, command, import_session, replay, rows_of, symbol_of

# Session, chain and its expiry, right, time of the command, fixed price, weight of a point. The weight is that of the chain with
# its month; only a chain that has to look its month up knows one, and a chain with a fixed month is weighed at 1.
CASES = [
    ("day", "ND.O.TWF.TX.HOT", "202107W4", "P", "08:45", 5, 50),
    ("day", "ND.O.TWF.TX.HOT", "202107W4", "C", "09:30", 12.5, 50),
    ("day", "ND.O.TWF.TX.202108", "202108", "C", "11:00", 7.9, 1),
    ("day", "ND.O.TWF.TX.202108", "202108", "P", "13:00", 20, 1),
    ("night", "ND.O.TWF.TX.HOT", "202107W4", "P", "20:00", 5, 50),
    ("day", "ND.O.TWF.TX.202108", "202108", "P", "13:00", 0.5, 1),
]


def opened_before(data, session, expiry, right, at):
    """The options whose first trade was within the band and before a time; the opening auction counts at its own time."""
    date, opens, _ = SESSIONS[session]
    second = date + at.replace(":", "") + "00"
    first = {}
    for row in rows_of(data, f"txo_trades_{session}.csv.gz"):
        if (row["expiry"], row["right"]) == (expiry, right):
            first.setdefault(symbol_of(row), row)
    return [(float(row["strike"]), right, symbol) for symbol, row in first.items()
            if 1 <= float(row["price"]) <= 50
            and (row["date"] + row["time"] < second or row["date"] + row["time"] == second == date + opens)]


def batch_of(trace):
    """Orders (symbol, lots), prices and cash of the first batch, and how many orders went out in all."""
    orders, prices, total, stamp, cash = [], set(), 0, None, None
    for line in trace:
        if line["event"] == "command" and line["topic"] == "TRADE.NEWORDER":
            fields = dict(pair.split("=", 1) for pair in line["text"].split(","))
            total += 1
            stamp = stamp or fields["USERKEY2"]
            if fields["USERKEY2"] == stamp:
                assert fields["SIDE"] == "B" and fields["POSITIONEFFECT"] == "0" and fields["ORDERTYPE"] == "2", line
                orders.append((fields["SYMBOL"], int(fields["QTY"])))
                prices.add(int(fields["PRICE"]))
        done = re.search(r"DoPlaceOrder Done\. m_lStatus=-?\d+, llTotalCashOrder=(-?\d+)\.", line.get("text") or "")
        if line["event"] == "log" and done and cash is None:
            cash = int(done.group(1))
    return orders, prices, cash, total


def main(program, data):
    with tempfile.TemporaryDirectory() as folder:
        days = {session: Path(folder) / f"{session}.day.jsonl" for session in SESSIONS}
        for session, day in days.items():
            import_session(program, data, session, day)
        for session, chain, expiry, right, at, price, weight in CASES:
            options = opened_before(data, session, expiry, right, at)
            assert len(options) > 2, "too few options to tell an order"
            lot, count = max(int(price * weight), 1), len(options)
            for cash in (0, lot - 1, lot, lot * 2 + 1, lot * count - 1, lot * count, lot * (2 * count + 1), lot * count * 150):
                expected, expected_cash = first_batch(options, price, weight, cash)
                trace = replay(program, days[session], command(session, chain, right, run=1, price=price, cash=cash), folder, at)
                found, prices, found_cash, total = batch_of(trace)
                if (found, found_cash) != (expected, expected_cash) or prices - {round(price * 10**10)} or total != len(found):
                    print(f"{session} {chain} {right} at {at}, price {price}, cash {cash}:\n"
                          f"  orders {found}, {total} in all, prices {prices}, cash {found_cash}\n"
                          f"  expected {expected}, and no more, cash {expected_cash}")
                    return 1
            print(f"{session} {chain} {right} at {at}: {count} options, price {price}, eight cash limits: orders as the model's")
    return 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
