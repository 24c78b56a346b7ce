#!/usr/bin/env python3
"""Imports the real day and compares what each series shows with the summary that was made of the trades independently.

    check_import.py PROGRAM DATA
"""

import csv
import json
import sys
import tempfile
from datetime import datetime, timedelta
from pathlib import Path

from real_day import SESSIONS, import_session, rows_of, symbol_of

UTC_OFFSET = timedelta(hours=8)


def expected_series(data, session):
    return {symbol_of(row): {"open": float(row["open"]), "high": float(row["high"]), "low": float(row["low"]),
                             "last": float(row["last"]), "volume": int(row["volume_lots"]),
                             "first time": row["open_date"] + row["open_time"],
                             "last time": row["last_date"] + row["last_time"]}
            for name in ("txo_series_summary_derived.csv", "tx_series_summary_derived.csv")
            for row in rows_of(data, name) if row["session"] == session}


def imported_series(ticks):
    """What each series shows, and the checks that every single row must pass."""
    series, date, before = {}, None, None
    with open(ticks, newline="") as file:
        for row in csv.DictReader(file):
            utc = datetime.strptime(row["date"] + row["time"].zfill(6), "%Y%m%d%H%M%S")
            local = utc + UTC_OFFSET
            date, clock = row["at"].split("T") if "T" in row["at"] else (date or local.date().isoformat(), row["at"])
            assert datetime.fromisoformat(f"{date}T{clock}") == local, f"at and UTC differ: {row}"
            assert before is None or before <= local, f"goes back in time: {row}"
            before, price, volume = local, float(row["price"]), int(row["volume"])
            stamp = local.strftime("%Y%m%d%H%M%S")
            seen = series.get(row["symbol"])
            assert (seen is None) == (row["open"] != ""), f"the opening price belongs to the first tick alone: {row}"
            if seen is None:
                seen = series[row["symbol"]] = {"open": float(row["open"]), "high": price, "low": price, "volume": 0,
                                                "first time": stamp}
            assert volume == seen["volume"] + int(row["qty"]), f"the volume doesn't run: {row}"
            seen.update({"high": max(seen["high"], price), "low": min(seen["low"], price), "last": price,
                         "volume": volume, "last time": stamp})
    return series


def check_listing(day, data):
    """Every series of the exchange's list has a symbol row and a quote, with its last trading day."""
    rows, quotes = {}, {}
    with open(day) as file:
        for line in map(json.loads, file):
            for row in line.get("symbols", []):
                rows[row["Symbol"]] = row
            if "quote" in line:
                quotes[line["quote"]] = line
    listed = {symbol_of(row) for row in rows_of(data, "txo_delta_eod.csv")}
    assert listed == {symbol for symbol, row in rows.items() if row["Type"] == "O"}, "other series than the exchange lists"
    assert rows.keys() == quotes.keys(), "a symbol without a quote, or a quote without a symbol"
    for row in rows_of(data, "txo_series_summary_derived.csv"):
        symbol, last_day = symbol_of(row), row["last_trading_day"]
        assert rows[symbol]["ExpDate"] == last_day and quotes[symbol]["end_date"] == int(last_day), symbol
    assert all(quote["mcode"] == 1 for quote in quotes.values())
    return len(listed)


def main(program, data):
    for session in SESSIONS:
        with tempfile.TemporaryDirectory() as folder:
            day = Path(folder) / f"{session}.day.jsonl"
            import_session(program, data, session, day)
            listed = check_listing(day, data)
            found, expected = imported_series(day.with_name(f"{session}.ticks.csv")), expected_series(data, session)
            assert expected, "an empty summary"
            wrong = [symbol for symbol in sorted(found.keys() | expected.keys()) if found.get(symbol) != expected.get(symbol)]
            for symbol in wrong:
                print(f"{session} {symbol}: imported {found.get(symbol)}, expected {expected.get(symbol)}")
            if wrong:
                return 1
            print(f"{session}: {listed} series listed, {len(found)} traded, {sum(s['volume'] for s in found.values())} lots, "
                  "all as in the summaries")
    return 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
