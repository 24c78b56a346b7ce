#!/usr/bin/env python3
"""Compares the program's prices with those that a textbook prints, and with the exact model.

    check_prices.py PROGRAM DATA

The engine looks the normal distribution up in a table and may be off by 1.0001e-7 in it. So a price may be off from the exact one by that part of the underlying
and the strike, both discounted; and from the printed one by the rounding of its four places as well.
"""

import csv
import json
import subprocess
import sys
from decimal import Decimal
from math import exp, log, sqrt
from pathlib import Path
from statistics import NormalDist

TABLE_ERROR = 1.0001e-7
PRINTED_ERROR = 0.00006  # what the exact model differs from the printed values
N = NormalDist().cdf


def exact(right, strike, spot, rate, years, volatility, carry):
    """The price, and what its two terms are worth before any probability."""
    d1 = (log(spot / strike) + (carry + volatility**2 / 2) * years) / (volatility * sqrt(years))
    d2 = d1 - volatility * sqrt(years)
    underlying, cash = spot * exp((carry - rate) * years), strike * exp(-rate * years)
    sign = 1 if right == "C" else -1
    return sign * (underlying * N(sign * d1) - cash * N(sign * d2)), underlying + cash


def percent(text):
    return str(Decimal(text) * 100)


def main(program, data):
    with open(Path(data) / "pricing_reference" / "haug_values.csv", newline="") as file:
        rows = list(csv.DictReader(file))
    furthest = 0
    for row in rows:
        run = subprocess.run([program, "price", "--json", "--right", row["right"], "--strike", row["strike"], "--underlying", row["spot"],
                              "--years", row["t_years"], "--vol", percent(row["vol"]), "--rate", percent(row["r"]),
                              "--carry", percent(row["b"])], capture_output=True, text=True, timeout=60, check=True)
        [priced] = json.loads(run.stdout)
        price, terms = exact(row["right"], *(float(row[name]) for name in ("strike", "spot", "r", "t_years", "vol", "b")))
        off = abs(priced["price"] - price)
        furthest = max(furthest, off / terms)
        if off > TABLE_ERROR * terms or abs(priced["price"] - float(row["value"])) > TABLE_ERROR * terms + PRINTED_ERROR:
            print(f"page {row['page']}: {priced}, printed {row['value']}, exactly {price}")
            return 1
    print(f"{len(rows)} printed values; from the exact ones at most {furthest:.3g} of the underlying and the strike, of {TABLE_ERROR} allowed")
    return 0 if rows else 1


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
