#!/usr/bin/env python3
"""Runs the real day and compares the options that a strategy accepts with those that opened within its band.

    check_scan.py PROGRAM DATA

The command stands before the session opens and starts the strategy in the minute of the opening, so that each option must be
accepted in the very second of its first trade.
"""

import json
import sys
import tempfile
from pathlib import Path

from real_day import SESSIONS, command, import_session, replay, rows_of, symbol_of

# A month, and the special chain, which follows the nearest expiry: that week's series.
CHAINS = {"ND.O.TWF.TX.202108": "202108", "ND.O.TWF.TX.HOT": "202107W4"}


def expected_verdicts(data, session, expiry, right):
    """Symbol, second of the first trade, opening price and verdict of each series that traded."""
    return sorted((symbol_of(row), row["open_date"] + row["open_time"], float(row["open"]),
                   int(1 <= float(row["open"]) <= 50))
                  for row in rows_of(data, "txo_series_summary_derived.csv")
                  if (row["session"], row["expiry"], row["right"]) == (session, expiry, right))


def verdicts(trace, topic):
    found = []
    for line in trace:
        if line["event"] == "command" and line["topic"] == topic:
            message = json.loads(line["text"])
            if message["MsgType"] == "Scanner":
                data = message["Data"]
                second = "".join(c for c in line["at"][:19] if c.isdigit())
                found.append((data["Symbol"], second, round(data["OpenPrice"], 6), data["OpenPriceOK"]))
    return sorted(found)


def main(program, data):
    for session in SESSIONS:
        with tempfile.TemporaryDirectory() as folder:
            day = Path(folder) / "real.day.jsonl"
            import_session(program, data, session, day)
            for chain, expiry in CHAINS.items():
                for right in "CP":
                    expected = expected_verdicts(data, session, expiry, right)
                    accepted = sum(verdict for *_, verdict in expected)
                    assert 0 < accepted < len(expected), "the day has both kinds"
                    trace = replay(program, day, command(session, chain, right), folder)
                    for topic in ("MSG.NewStrategyOrder", "API_MSG.NewStrategyOrder"):
                        found = verdicts(trace, topic)
                        for what, lines in (("missing", set(expected) - set(found)), ("not expected", set(found) - set(expected))):
                            for line in sorted(lines):
                                print(f"{session} {chain} {right}: {what}: {line}")
                        if found != expected:
                            return 1
                    print(f"{session} {chain} {right}: {accepted} of {len(expected)} traded options accepted, "
                          "each once, in the second of its first trade")
    return 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
