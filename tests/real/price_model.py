"""The calculated price of an option's order: a second, independent statement of the rule."""

from datetime import datetime, timedelta
from math import exp, log, sqrt
from statistics import NormalDist

NORMAL = NormalDist()
LADDER = [(0, 0.1), (10, 0.5), (50, 1), (500, 5), (1000, 10)]
EXPIRIES = {"TX4.202107": datetime(2021, 7, 28), "TX.202108": datetime(2021, 8, 18)}
UNDERLYINGS = {"TX4": "ND.F.TWF.MX4.", "TX": "ND.F.TWF.TX."}


def normal(x):
    return NORMAL.cdf(x)


def theory(right, volatility, strike, underlying, rate, years, carry):
    d1 = (log(underlying / strike) + (carry + volatility**2 / 2) * years) / (volatility * sqrt(years))
    d2 = d1 - volatility * sqrt(years)
    sign = 1 if right == "C" else -1
    return sign * (underlying * exp((carry - rate) * years) * normal(sign * d1) - strike * exp(-rate * years) * normal(sign * d2))


def days_left(now, expiry, calendar):
    """Whole days to the end of the expiry's day; or, without a record of holidays, each started day from now to the late evening of it."""
    if calendar:
        return int((expiry + timedelta(hours=23, minutes=59, seconds=59) - now).total_seconds() / 86400)
    return int((expiry + timedelta(hours=23) - now).total_seconds()) // 86400 + 1


def to_tick(price):
    """The nearest tick, a tie going up."""
    tick = next(step for floor, step in reversed(LADDER) if price >= floor)
    return round(int(price / tick + 0.5) * tick, 6)


def order_price(day, at, symbol, order):
    """The price at a time of the day (ms), or None."""
    _, _, _, product, month, right, strike = symbol.split(".")
    underlying = UNDERLYINGS[product] + month
    trades = [price / 1e10 for moment, name, price, *_ in day.tape if name == underlying and moment < at]
    spot = trades[0] if order["PriceType"] == "O" else trades[-1]
    sign = 1 if right == "P" else -1  # the move works against the buyer
    if "UnderlyingChange" in order:
        moved = spot + sign * order["UnderlyingChange"]
    else:
        moved = spot * (1 + sign * order["UnderlyingChange%"] / 100)
    now = day.midnight + timedelta(milliseconds=at)
    calendar = order["EndDate"] == "C"
    years = days_left(now, EXPIRIES[f"{product}.{month}"], calendar) / (order["CDays"] if calendar else order["TDays"])
    value = theory(right, order["Volatility"] / 100, float(strike), moved, order["RF"] / 100, years, order["DY"] / 100)
    return to_tick(value) if order["PriceDn"] <= value <= order["PriceUp"] else None
