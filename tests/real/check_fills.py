#!/usr/bin/env python3
"""Runs the real day from a command to its close-out, with orders that the terminal fills by the tape, and compares with a model: what each
order buys and when, what each report says, what is closed, what each total of profit is, and when a limit is reached.

    check_fills.py PROGRAM DATA
"""

import json
import re
import sys
import tempfile
from datetime import timedelta

from batch_model import first_batch
from fill_model import Run
from price_model import order_price
from real_day import Day, SESSIONS, command, milliseconds

LATENCY = 20
FIXED = {"Type": 0, "Price": 8}
CALENDAR = {"Type": 2, "PriceType": "L", "UnderlyingChange": 60, "Volatility": 18, "RF": 1, "DY": 0, "EndDate": "C", "CDays": 365,
            "PriceUp": 60, "PriceDn": 1}
TRADING = {"Type": 2, "PriceType": "O", "UnderlyingChange%": 0.1, "Volatility": 16, "RF": 0, "DY": 0, "EndDate": "T", "TDays": 250,
           "PriceUp": 60, "PriceDn": 1}

# Session, chain, right, price, how the run ends: ("time", hhmm), ("command", "HH:MM:SS.mmm") or ("profit"/"loss", "amount"/"percent", value).
CASES = [
    ("day", "ND.O.TWF.TX.HOT", "P", FIXED, ("time", 1330)),
    ("day", "ND.O.TWF.TX.HOT", "C", CALENDAR, ("time", 1100)),
    ("day", "ND.O.TWF.TX.202108", "P", FIXED, ("command", "12:00:00.500")),
    ("day", "ND.O.TWF.TX.HOT", "P", TRADING, ("command", "10:30:00.500")),
    ("day", "ND.O.TWF.TX.HOT", "P", FIXED, ("profit", "amount", 500)),
    ("day", "ND.O.TWF.TX.HOT", "P", TRADING, ("profit", "percent", 2)),
    ("day", "ND.O.TWF.TX.HOT", "C", FIXED, ("loss", "amount", 1500)),
    ("day", "ND.O.TWF.TX.HOT", "C", CALENDAR, ("loss", "percent", 10)),
    ("night", "ND.O.TWF.TX.HOT", "C", FIXED, ("time", 400)),
    ("night", "ND.O.TWF.TX.HOT", "P", CALENDAR, ("command", "23:15:00.500")),
    ("night", "ND.O.TWF.TX.HOT", "P", FIXED, ("loss", "amount", 400)),
    ("night", "ND.O.TWF.TX.HOT", "C", TRADING, ("loss", "percent", 5)),
]


class Seen:
    """What a trace shows of one strategy."""

    def __init__(self, trace, midnight):
        self.sent, self.cancels, self.reports, self.totals, self.limit, self.weight = [], [], [], [], None, None
        self.accepted, self.batch, told = [], None, set()
        for line in trace:
            at, text = milliseconds(line["at"], midnight), line.get("text") or ""
            topic = line.get("topic") if line["event"] == "command" else None
            if topic == "TRADE.NEWORDER":
                self.sent.append((at, dict(pair.split("=", 1) for pair in text.split(","))))
            elif topic == "TRADE.CANCELORDER":
                number = int(text.removeprefix("REPORTID=R"))
                self.cancels.append((at, number, number in told))
            elif topic == "API_MSG.NewStrategyOrder":
                self.message(at, json.loads(text), told)
            elif line["event"] == "log":
                self.log(at, text)

    def message(self, at, message, told):
        data = message.get("Data", {})
        if message["MsgType"] == "TotalProfit":
            self.totals.append((at, (data["Cost"], round(data["PnL"], 2))))
        elif message["MsgType"] == "Scanner" and data.get("OpenPriceOK") == 1:
            self.accepted.append(data["Symbol"])
        elif message["MsgType"] == "Order" and data.get("Action") == 3 and "Date" in data:
            told.update(number for number, (_, fields) in enumerate(self.sent, 1)
                        if fields["SYMBOL"] == data["Symbol"] and fields["POSITIONEFFECT"] == "0")

    def log(self, at, text):
        if self.batch is None and re.search(r"DoPlaceOrder\. arSymbol\.GetCount\(\)=[1-9]", text):
            self.batch = at, list(self.accepted)
        report = re.search(r"OnReportUpdate\. .*strReportID=R(\d+), lExecType=(\d+), .*llAvgPrice=(-?\d+), .*lCumQty=(\d+), "
                           r"lLeavesQty=(\d+),", text)
        if report:
            number, exec_type, average, filled, leaves = map(int, report.groups())
            self.reports.append((at, number, exec_type, filled, average if filled else None, leaves))
        limit = re.search(r"CalPositionProfit\.(PP|P|LP|L)\. strStrategyTag=REAL, dbTotalPnLP?=(-?[\d.]+),", text)
        if limit and self.limit is None:
            self.limit = (at, "profit" if limit.group(1)[0] == "P" else "loss", float(limit.group(2)))


def strategy_command(session, chain, right, price, ending):
    order = command(session, chain, right, run=1, cash=40000)
    order["Stop"].update(Cancel=1, ClosePos=1)
    if ending[0] == "time":
        order["Stop"]["Time"] = ending[1]
    order["OrderPrice"] = price
    return order


def commands_of(session, chain, right, price, ending):
    start = "09:00:00.500" if session == "day" else "15:30:00.500"
    commands = [(start, strategy_command(session, chain, right, price, ending))]
    if ending[0] in ("profit", "loss"):
        kind = "Value" if ending[1] == "amount" else "Value%"
        limit = {"StrategyType": "OpenLottery", "StrategyID": "REAL", "StrategySN": "1", "Action": 3,
                 ending[0].capitalize(): {"Enable": 1, kind: ending[2]}}
        commands.append((start, limit))
    elif ending[0] == "command":
        commands.append((ending[1], {"StrategyType": "OpenLottery", "StrategyID": "REAL", "StrategySN": "1", "Action": 0,
                                     "ManuStop": {"Cancel": 1, "ClosePos": 1}}))
    return commands


def time_of(day, session, clock):
    """Milliseconds of a local time of day within the session."""
    hours, minutes, seconds = clock.split(":")
    moment = day.midnight + timedelta(hours=int(hours), minutes=int(minutes), seconds=float(seconds))
    return milliseconds((moment if moment >= day.start else moment + timedelta(days=1)).isoformat(), day.midnight)


def deaf_from(day, session, ending):
    if ending[0] == "time":
        return time_of(day, session, f"{ending[1] // 100:02}:{ending[1] % 100:02}:00")
    return time_of(day, session, ending[1]) if ending[0] == "command" else float("inf")


def expected_batch(day, seen, chain, price):
    """The first batch by its own rules: the options that were accepted by then, each at its price."""
    at, accepted = seen.batch
    options = [(float(symbol.rsplit(".", 1)[1]), symbol.split(".")[5], symbol) for symbol in accepted]
    weight = 50 if chain.endswith(".HOT") else 1
    if price["Type"] != 2:
        prices = {symbol: price["Price"] for *_, symbol in options}
    else:
        prices = {symbol: order_price(day, at, symbol, price) for *_, symbol in options}
    return [(symbol, lots, round(prices[symbol] * 10**10)) for symbol, lots in first_batch(options, prices, weight, 40000)[0]]


def differences(seen, run, day, chain, price, ending):
    """What the trace shows and the model doesn't, or the other way round: (what, shown, expected)."""
    stamp = seen.sent[0][1]["USERKEY2"]
    batch = [(fields["SYMBOL"], int(fields["QTY"]), int(fields["PRICE"])) for _, fields in seen.sent
             if fields["USERKEY2"] == stamp and fields["POSITIONEFFECT"] == "0"]
    yield "first batch", batch, expected_batch(day, seen, chain, price)
    yield "reports", sorted(seen.reports, key=str), sorted(run.reports, key=str)
    yield "first total", seen.totals[0][1], (0, 0.0)
    yield "totals", seen.totals[1:], run.totals[1:]
    closes = {fields["SYMBOL"]: int(fields["QTY"]) for _, fields in seen.sent if fields["POSITIONEFFECT"] == "1"}
    moments = {at for at, fields in seen.sent if fields["POSITIONEFFECT"] == "1"}
    if ending[0] in ("profit", "loss"):
        assert run.limit_fired, "the case must reach its limit"
        yield "limit", seen.limit and seen.limit[:2], run.limit_fired[:2]
        yield "closes by the limit", (moments, closes), ({run.limit_fired[0]}, run.held_at_limit)
    else:
        assert closes, "the case must hold something at its end"
        yield "lots of the closes", closes, run.held_at(deaf_from(day, None, ending))
        yield "closes", moments, {deaf_from(day, None, ending)}
        yield "left at the end", run.valuation.held(), {}


def check(program, day, folder, session, chain, right, price, ending):
    lines = [{"at": at, "command": order} for at, order in commands_of(session, chain, right, price, ending)]
    trace = day.replay(program, lines, folder, orders={"fill": "touch", "latency_ms": LATENCY})
    seen = Seen(trace, day.midnight)
    name = f"{session} {chain} {right}, {'fixed' if price['Type'] != 2 else 'calculated ' + price['EndDate']}, ended by {ending[0]}"
    assert seen.sent, f"{name}: no order"
    limits = {ending[0]: ending[1:]} if ending[0] in ("profit", "loss") else {}
    run = Run(day.tape, seen.sent, seen.cancels, latency=LATENCY, weight=50, limits=limits,
              start=milliseconds(day.start.isoformat(), day.midnight), end=day.end, deaf_from=deaf_from(day, session, ending),
              deaf_for_good=ending[0] == "command")
    for what, shown, expected in differences(seen, run, day, chain, price, ending):
        if shown != expected:
            extra = [entry for entry in shown if entry not in expected][:5] if isinstance(shown, list) else shown
            missing = [entry for entry in expected if entry not in shown][:5] if isinstance(expected, list) else expected
            print(f"{name}: {what}:\n  shown, not expected: {extra}\n  expected, not shown: {missing}")
            return False
    fills = sum(1 for report in run.reports if report[2] in (3, 6))
    closed = sum(1 for _, fields in seen.sent if fields["POSITIONEFFECT"] == "1")
    print(f"{name}: {len(seen.sent)} orders, {closed} of them closes, {fills} fills, {len(seen.totals)} totals, "
          f"profit {run.totals[-1][1][1]:.2f}: as the model's")
    return True


def main(program, data):
    with tempfile.TemporaryDirectory() as folder:
        days = {session: Day(program, data, session, folder) for session in SESSIONS}
        return 0 if all([check(program, days[case[0]], folder, *case) for case in CASES]) else 1


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
