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
from group_days import HOT, given_lines, market_lines
from group_model import Clock, GroupOrders
from real_day import Day, SESSIONS, milliseconds

LATENCY, SUBSCRIPTION, WEIGHT = 20, 5, 50


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
    """The day as the model plays it; not to its end once there are more strings than that, so that a wrong one ends soon."""

    def __init__(self, day, lines, figures, chains, most_strings):
        self.clock, self.figures = Clock(), figures
        self.positions = Positions(figures, WEIGHT)
        self.engine = GroupOrders(self.clock, chains, figures, self.positions, SUBSCRIPTION)
        self.market = self.engine.market = ChildMarket(self.clock, self.engine, self.positions, LATENCY)
        for at, line in lines:
            self.clock.at(at, lambda line=line: self.act(line))
        for at, symbol, price, lots, _ in day.tape:
            self.run_until(at)
            if len(self.engine.strings) > most_strings:
                return
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
            for item in line["items"]:
                self.engine.settings.setdefault(item["name"], {}).update(item["fields"])
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
    strings, ids, subscribed = shown(trace, day.midnight)
    run = Run(day, lines, figures, Chains(option_rows(day.lines)), len(strings))
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
        results = [check(program, day, folder, f"{session}, figures from the market", market_lines(), market_figures(day))
                   for session, day in days.items()]
        results.append(check(program, days["day"], folder, "day, figures given", given_lines(days["day"]), GivenFigures()))
        return 0 if all(results) else 1


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
