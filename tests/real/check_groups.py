#!/usr/bin/env python3
"""Holds greeks near their targets through the real day, and compares with a model, cycle by cycle: which options each command subscribes,
whether and when a cycle comes, which option each leg chooses, what is taken back, and every string to the last letter.

    check_groups.py PROGRAM DATA

The model plays the day by itself, from its tape and its lines: it works out the figures, the fills and the positions on its own, and sees
the trace only to compare.
"""

import json
import re
import sys
import tempfile
from datetime import timedelta

from child_model import ChildMarket, Positions
from figure_model import GivenFigures, MarketFigures, month_of
from group_model import Clock, GroupOrders
from real_day import Day, SESSIONS, milliseconds

LATENCY, SUBSCRIPTION, WEIGHT = 20, 5, 50
MONTH, HOT = "ND.O.TWF.TX.202108", "ND.O.TWF.TX.HOT"


def leg(right, condition, quantity, group="A"):
    return {"CallPut": right, "Condition": condition, "Qty": quantity, "Group": group}


def order(strategy, stop, legs, **more):
    return {"StrategyType": "GroupOrder", "StrategyID": strategy, "BrokerID": "B1", "Account": "A1", "StrategyName": "Real",
            "UserKey1": "1", "UserKey2": strategy + "@2", "UserKey3": "3", "ProcessID": "77", "Security": MONTH,
            "StopCondition": stop, "GroupAType": 2, "GroupBType": 0, "Order": legs, **more}


def chase(name, **settings):
    """An item of the order settings; every setting is a text."""
    return {"name": name, "fields": {key: json.dumps(setting) for key, setting in settings.items()}}


HOLD = [leg("Call", "Delta=0.5", 2), leg("Put", "Delta=-0.4", 3)]
VANNA = [leg("Call", "Delta=0.25", 1, "A"), leg("Put", "Delta=-0.25", 1, "A"),
         leg("Call", "Delta=0.5", 2, "B"), leg("Put", "Delta=-0.45", 1, "B")]
CHECKS = {"CheckCondition1": "Delta=0", "CheckRange1": 0.5, "CheckCondition2": "$Vega=0", "CheckRange2": 1, "Cash": 300}
WEEKLY = [leg("Call", "1Pct$Vanna=200", 2, "B"), leg("Put", "Vega=3.5", 1, ""), leg("Call", "ImpVol=13.5", 1, "B"), leg("Put", "Gamma=0.0004", 1)]


def held(symbol, quantity, side, **figures):
    return {"Symbol": f"{MONTH}.{symbol}", "Quantity": quantity, "Side": side, **{name: {"int64": value} for name, value in figures.items()}}


def accounts(*names):
    return {"accounts": [{"BrokerID": "B1", "Account": name, "ConnectStatus": 2} for name in names]}


def market_lines():
    """Seconds since the opening, and what happens: in every strategy at moments of its own, and none on a whole second."""
    yield 200, {"record": "TRADE.EXTENDORDER.SETUP", "items": [
        chase(MONTH, **{"1-B1-A1": {"On": "1", "Times": "2", "TimeOut": "400"}}),
        chase(MONTH + ".P.16900", **{"1-ALL": {"On": "0"}}), chase("OPTION", **{"1-ALL": {"On": "1"}})]}
    yield 300.502, {"command": order("FIRST", "Delta=60", [leg("Call", "Delta=0.5", 1), leg("Put", "Delta=-0.5", 1, "B")])}
    yield 310.504, {"command": order("WEEKLY", "1%$Vanna=60000", WEEKLY, Security=HOT)}
    for minute, target in enumerate([500, 900, -400, 0, 300, -800, 250.5, 1200, -100, -100.25, 600, 0, 800, -1000]):
        yield 420.506 + minute * 1200, {"command": order("HOLD", f"Delta={target}", HOLD)}
    for minute, target in enumerate([200000, 60000, 300000, -150000, 100000, -50000, 0]):
        yield 480.508 + minute * 2400, {"command": order("VANNA", f"1%$Vanna={target}", VANNA, **CHECKS, Account="A2")}
    # Until then its orders are rejected.
    yield 485, accounts("A1", "A2")
    for minute, target in enumerate([-20000, 150000, 0, 90000]):
        yield 2000.510 + minute * 3600, {"command": order("WEEKLY", f"1%$Vanna={target}", WEEKLY, Security=HOT, StopFactor=0.75)}


def option_rows(lines):
    return [row for line in lines if '"symbols"' in line for row in json.loads(line)["symbols"] if row["Type"] == "O"]


class Chains:
    """The calls of a chain in the order of their strikes; of the special chain those that expire first."""

    def __init__(self, rows):
        self.rows = sorted((row for row in rows if ".C." in row["Symbol"]), key=lambda row: int(row["SearchName"]))

    def __call__(self, security):
        _, _, exchange, product, month = security.split(".")
        if security == HOT:
            rows = [row for row in self.rows if row["Symbol"].startswith(f"ND.O.{exchange}.{product}")]
            first = min(int(row["ExpDate"]) for row in rows)
            return [row["Symbol"] for row in rows if int(row["ExpDate"]) == first]
        return [row["Symbol"] for row in self.rows if row["Symbol"].startswith(f"{security}.") and row["product"] == product]


class Run:
    """The day as the model plays it."""

    def __init__(self, day, lines, figures, chains):
        self.clock, self.figures = Clock(), figures
        self.positions = Positions(figures, WEIGHT)
        self.engine = GroupOrders(self.clock, chains, figures, self.positions, SUBSCRIPTION)
        self.market = self.engine.market = ChildMarket(self.clock, self.engine, self.positions, LATENCY)
        for at, line in lines:
            self.clock.at(at, lambda line=line: self.act(line))
        for at, symbol, price, lots, _ in day.tape:
            self.run_until(at)
            self.clock.now = at
            self.market.trade(symbol, price, lots)
            figures.trade(at, symbol, price)
        self.run_until(day.end)

    def run_until(self, end):
        """What is due by then; a look at the figures comes behind what the engine has waited for."""
        while True:
            event, look = self.clock.next(), self.figures.next_look()
            if event is not None and event <= end and (look is None or event <= look):
                self.clock.run_next()
            elif look is not None and look <= end:
                self.figures.look(look)
            else:
                return

    def act(self, line):
        if "command" in line:
            self.engine.on_command(line["command"])
        elif "position" in line:
            self.positions.set(line["position"]["strategy"], line["position"]["items"])
        elif "accounts" in line:
            self.market.accounts = {(account["BrokerID"], account["Account"]) for account in line["accounts"]}
        elif "child" in line:
            child = line["child"]
            self.market.end_from_outside(child["order"], child["ExecType"], child["ClientModify"])
        elif line["record"] == "TRADE.EXTENDORDER.SETUP":
            self.engine.settings.update((item["name"], item["fields"]) for item in line["items"])
        elif line["record"] == "NordoSystemTime":
            self.engine.speed = line["fields"]["Speed"]
        else:
            symbol = line["record"].removeprefix("OPT.REAL.")
            self.figures.give(symbol, {name: field and field["int64"] for name, field in line["fields"].items()})


def shown(trace, midnight):
    """Strings (moment, thread, text with stars) with the group ids that stars stand for, and subscriptions of figures."""
    strings, ids, subscribed = [], [], []
    for line in trace:
        at = milliseconds(line["at"], midnight)
        if line["event"] == "command" and line["topic"] == "TRADE.NEWORDER":
            group, process = re.search(r",GROUPID=([^,]*),", line["text"])[1], re.search(r",PROCESSID=(-?\d+)$", line["text"])[1]
            text = line["text"].replace(f",GROUPID={group},", ",GROUPID=*,").removesuffix(process) + "*"
            strings.append((at, line["thread"], text))
            ids.append(group)
        elif line["event"] == "subscribe" and line["topic"].startswith("OPT."):
            subscribed.append((at, line["topic"]))
    return strings, ids, subscribed


def ids_are_right(strings, ids):
    """A string has an id if it names a group; each group of each cycle has its own."""
    found = {}
    for string, group in zip(strings, ids):
        if bool(string.group) != bool(re.fullmatch(r"\{[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}\}", group)):
            return False
        if string.group:
            found.setdefault((string.cycle, string.group), set()).add(group)
    return all(len(group) == 1 for group in found.values()) and len(set.union(*found.values())) == len(found)


def check(program, day, folder, name, lines, figures):
    lines = sorted(((round(seconds * 1000) + day.opens, line) for seconds, line in lines), key=lambda entry: entry[0])
    timed = [{"at": (day.midnight + timedelta(milliseconds=at)).isoformat(timespec="milliseconds"), **line} for at, line in lines]
    trace = day.replay(program, timed, folder, orders={"fill": "touch", "latency_ms": LATENCY}, subscription_ms=SUBSCRIPTION,
                       figures="market" if isinstance(figures, MarketFigures) else "given")
    run = Run(day, lines, figures, Chains(option_rows(day.lines)))
    strings, ids, subscribed = shown(trace, day.midnight)
    expected = [(string.at, string.thread, string.text) for string in run.engine.strings]
    for what, seen, wanted in (("strings", strings, expected), ("subscriptions", subscribed, run.engine.subscribed)):
        first = next((index for index, pair in enumerate(zip(seen, wanted)) if pair[0] != pair[1]), min(len(seen), len(wanted)))
        if seen != wanted:
            print(f"{name}: {what}, {first} as the model's, then:\n  shown {seen[first:first + 3]}\n  expected {wanted[first:first + 3]}")
            return False
    if not ids_are_right(run.engine.strings, ids):
        print(f"{name}: the ids of groups aren't as the model's")
        return False
    print(f"{name}: {run.engine.cycles} cycles, {len(strings)} strings, {len(subscribed)} subscriptions, "
          f"{run.engine.stops} targets reached: as the model's")
    return True


def market_figures(day):
    rows = option_rows(day.lines)
    months = {}
    for row in rows:
        product, month = month_of(row["Symbol"]).split(".")
        date = row["ExpDate"]
        end = milliseconds(f"{date[:4]}-{date[4:6]}-{date[6:]}T00:00:00", day.midnight) + 24 * 3600 * 1000
        months[f"{product}.{month}"] = end, f"ND.F.TWF.{product.replace('TX4', 'MX4')}.{month}"
    return MarketFigures(months, [row["Symbol"] for row in rows])


def main(program, data):
    with tempfile.TemporaryDirectory() as folder:
        days = {session: Day(program, data, session, folder) for session in SESSIONS}
        return 0 if all([check(program, day, folder, f"{session}, figures from the market", market_lines(), market_figures(day))
                         for session, day in days.items()]) else 1


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
