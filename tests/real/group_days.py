"""What happens in the days of check_groups: lines with their times, in seconds since the opening. Each strategy acts at moments of its
own, and none on a whole second, when the market moves."""

import json

from figure_model import SCALE, YEAR, figure, implied_volatility

MONTH, HOT = "ND.O.TWF.TX.202108", "ND.O.TWF.TX.HOT"


def leg(right, condition, quantity, group="A"):
    return {"CallPut": right, "Condition": condition, "Qty": quantity, "Group": group}


def order(strategy, stop, legs, **more):
    return {"command": {"StrategyType": "GroupOrder", "StrategyID": strategy, "BrokerID": "B1", "Account": "A1", "StrategyName": "Real",
                        "UserKey1": "1", "UserKey2": strategy + "@2", "UserKey3": "3", "ProcessID": "77", "Security": MONTH,
                        "StopCondition": stop, "GroupAType": 2, "GroupBType": 0, "Order": legs, **more}}


def accounts(*names):
    return {"accounts": [{"BrokerID": "B1", "Account": name, "ConnectStatus": 2} for name in names]}


def settings(name, **texts):
    """An item of the order settings."""
    items = [{"name": name, "fields": {key.replace("_", "-"): json.dumps(setting) for key, setting in texts.items()}}]
    return {"record": "TRADE.EXTENDORDER.SETUP", "items": items}


def speed(number):
    return {"record": "NordoSystemTime", "fields": {"Speed": number}, "fire": True}


def position(strategy, *items):
    """Items of (symbol, lots, side, figures as they are written)."""
    return {"position": {"strategy": strategy, "items": [
        {"Symbol": f"{MONTH}.{symbol}", "Quantity": lots, "Side": side, **{name: {"int64": number} for name, number in figures.items()}}
        for symbol, lots, side, figures in items]}}


HOLD = [leg("Call", "Delta=0.5", 2), leg("Put", "Delta=-0.4", 3)]
VANNA = [leg("Call", "Delta=0.25", 1, "A"), leg("Put", "Delta=-0.25", 1, "A"),
         leg("Call", "Delta=0.5", 2, "B"), leg("Put", "Delta=-0.45", 1, "B")]
CHECKS = {"CheckCondition1": "Delta=0", "CheckRange1": 0.5, "CheckCondition2": "$Vega=0", "CheckRange2": 1, "Cash": 300}
WEEKLY = [leg("Call", "1Pct$Vanna=200", 2, "B"), leg("Put", "Vega=3.5", 1, ""),
          leg("Call", "ImpVol=13.5", 1, "B"), leg("Put", "Gamma=0.0004", 1)]


def market_lines():
    """A delta held with two legs, and a vanna with four, two groups and checks; the same on the options that expire first."""
    yield 200, settings(MONTH, **{"1_B1_A1": {"On": "1", "Times": "2", "TimeOut": "400"}})
    yield 200, settings(MONTH + ".P.16900", **{"1_ALL": {"On": "0"}})
    yield 200, settings("OPTION", **{"1_ALL": {"On": "1"}})
    yield 300.502, order("FIRST", "Delta=60", [leg("Call", "Delta=0.5", 1), leg("Put", "Delta=-0.5", 1, "B")])
    yield 310.504, order("WEEKLY", "1%$Vanna=60000", WEEKLY, Security=HOT)
    for index, target in enumerate([500, 900, -400, 0, 300, -800, 250.5, 1200, -100, -100.25, 600, 0, 800, -1000]):
        yield 420.506 + index * 1200, order("HOLD", f"Delta={target}", HOLD)
    for index, target in enumerate([200000, 60000, 300000, -150000, 100000, -50000, 0]):
        yield 480.508 + index * 2400, order("VANNA", f"1%$Vanna={target}", VANNA, **CHECKS, Account="A2")
    # Until then its orders are rejected.
    yield 485, accounts("A1", "A2")
    for index, target in enumerate([-20000, 150000, 0, 90000]):
        yield 2000.510 + index * 3600, order("WEEKLY", f"1%$Vanna={target}", WEEKLY, Security=HOT, StopFactor=0.75)


# ---- Figures that the lines give ----

# Two legs of each kind want the same; and the quantities take back more than one position at a time.
ALIKE = [leg("Call", "Delta=0.4", 5, "A"), leg("Put", "Delta=-0.3", 7, "B"),
         leg("Call", "Delta=0.4", 1, "C"), leg("Put", "Delta=-0.3", 1, "B"), leg("Call", "Delta=0.1", 9)]
# Of what each lacks some options have none.
HOLES = [leg("Call", "Vanna=0.01", 6), leg("Put", "Vega=20", 1), leg("Put", "Vanna=-0.01", 1, "B"), leg("Call", "Vega=10", 4, "B")]


def given_lines(day):
    """Coarse figures, so that many options are equally near; figures and whole records that are missing; and what a market doesn't do."""
    yield from figure_lines(day)
    # The option that is first of all isn't traded all day, nor are its records shown when these come: both wait for a child.
    yield 300.502, order("FAILS", "Delta=60", [leg("Call", "Delta=0.5", 1)])
    yield 300.504, order("ENDED", "Delta=60", [leg("Call", "Delta=0.5", 1)])
    yield 305.706, {"child": {"order": 1, "ExecType": 8, "ClientModify": 0}}
    yield 306.706, {"child": {"order": 2, "ExecType": 8, "ClientModify": 1}}
    yield 310.506, order("NOTHING", "Delta=0", ALIKE)
    yield 311.506, order("NOBODY", "Delta=10", [leg("None", "Delta=0.5", 1)])
    yield 312.506, order("NO LOTS", "Delta=10", [leg("Put", "Delta=-0.5", 0)])
    yield 313.506, order("NO FIGURE", "Delta=10", [leg("Call", "Speed=0", 1), leg("Put", "Speed=0", 1)])
    for index, target in enumerate([800, -300, 500, -1500, 0, 900, -200, 100, 1500, -1000, 0, 700, 100, 1000, -500, 300]):
        yield 400.508 + index * 1000, order("ALIKE", f"Delta={target}", ALIKE, StopFactor=0.5)
    for index, target in enumerate([500, -250, 300, -600, 0, 500]):
        checks = {"CheckCondition1": ("Vanna=0", "Delta=-100", "Gamma=0")[index % 3], "CheckRange1": 0.5,
                  "CheckCondition2": ("$Vega=0", "Vanna=1", "Delta=200")[index % 3], "CheckRange2": 0.25, "Cash": 10}
        yield 500.510 + index * 2700, order("HOLES", f"Vega={target}", HOLES, **checks)
    # Symbols that stand twice, as a line wrote them.
    yield 600.512, position("TWICE", ("P.16800", 3, 1, {}), ("P.16800", 5, 1, {"Delta": 50 * SCALE}), ("P.16900", 1, 1, {}),
                            ("P.17000", 1, 1, {}), ("P.16900", 2, 1, {"Delta": 0}),
                            ("C.17600", 2, 2, {}), ("C.17700", 1, 2, {}), ("C.17600", 4, 2, {"Delta": -7 * SCALE}))
    yield 601.512, order("TWICE", "Delta=250",
                         [leg("Call", "Delta=0.4", 3), leg("Put", "Delta=-0.4", 6), leg("Put", "Delta=-0.2", 12, "B")])
    yield 701.512, order("TWICE", "Delta=-150", [leg("Call", "Delta=0.4", 9), leg("Put", "Delta=-0.4", 9, "B")])
    yield 801.512, order("TWICE", "Delta=900", [leg("Call", "Delta=0.4", 0), leg("Put", "Delta=-0.4", 0)])
    yield 802.512, order("TWICE", "Delta=-900", [leg("Call", "Delta=0.4", 0), leg("Put", "Delta=-0.4", 0)])
    # A second command while the orders of the first are under way.
    for index in range(4):
        yield 800.514 + index * 3000, order("AGAIN", f"Delta={200 if index % 2 == 0 else -200}", HOLD)
        yield 800.544 + index * 3000, order("AGAIN", f"Delta={300 if index % 2 == 0 else -150}", HOLD + VANNA[2:])
    # ... whose own orders still work when the first one's end has it look again.
    yield 1700.516, order("WAITS", "Delta=100", [leg("Call", "Delta=0.5", 1)])
    yield 1700.530, settings("ALL", **{"1_B1_A1": {"On": "1", "TimeOut": "3000"}})
    yield 1700.546, order("WAITS", "Delta=100", [leg("None", "", 1), leg("Put", "Delta=-0.3", 60)])
    yield 1700.800, settings("ALL", **{"1_B1_A1": {}})
    names = ["ALL", "OPTION", "ND.O", "ND.O.TWF", "ND.O.TWF.TX", MONTH, MONTH + ".P.16900"]
    for index, name in enumerate(names):
        yield 2200 + index * 2000, settings(name, **{"1_ALL": {"On": "1", "Times": str(index), "TimeOut": "60", "AddType": "1"}})
        yield 3300 + index * 2000, settings(name, **{"1_B1_A1": {"On": ("1", "0", 1)[index % 3], "Times": index % 4 and "1", "Ticks": "2"}})
    for index, strike in enumerate(range(16500, 18100, 200)):
        for right in "CP":
            timeout = 20 * (index + (2 if right == "C" else 20))
            yield 4000, settings(f"{MONTH}.{right}.{strike}", **{"1_ALL": {"On": "1", "TimeOut": str(timeout)}})
    for index, number in enumerate((4, 25, 1, 10)):
        yield 5000 + index * 3000, speed(number)


def figure_lines(day):
    """Every ten minutes the figures of all options that have traded by then, but for some that never have any record, or lack a field."""
    expiry, last, due = 24 * 86400000, {}, day.opens + 250700
    first = f"{MONTH}.C.13600"
    yield 250, {"record": f"OPT.REAL.{first}", "fields": {"Delta": {"int64": 100 * SCALE}}}
    for at, symbol, price, *_ in day.tape:
        while at > due:
            for option in sorted(symbol for symbol in last if symbol.startswith(MONTH + ".")):
                if fields := coarse_figures(option, last, due, expiry):
                    yield (due - day.opens) / 1000, {"record": "OPT.REAL." + option, "fields": fields}
            due += 600000
        last[symbol] = price


def coarse_figures(option, last, now, expiry):
    strike, is_call = float(option.split(".")[6]), ".C." in option
    if strike % 1000 == 700:
        return None
    forward, years = last["ND.F.TWF.TX.202108"] / SCALE, (expiry - now) / YEAR
    volatility = implied_volatility(is_call, forward, strike, last[option] / SCALE, years)
    fields = {}
    for name, step in (("Delta", 5), ("Vega", 2), ("$Vega", 2), ("Vanna", 0.002), ("Gamma", 0.0001)):
        lacks = volatility is None or (name == "Vanna" and strike % 500 == 300) or (name == "Vega" and strike % 700 == 0 and not is_call)
        number = None if lacks else round(figure(name, is_call, forward, strike, volatility, years) / SCALE / step) * step
        fields[name] = None if lacks else {"int64": round(number * SCALE)}
    return fields
