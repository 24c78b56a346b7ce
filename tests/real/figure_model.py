"""The figures of options as the terminal tells them: a second, independent statement of the rules.

Prices and figures are whole numbers of 10^-10, times milliseconds since the midnight before the day.
"""

from math import erfc, exp, log, pi, sqrt

SCALE = 10**10
PERIOD = 200  # ms between two looks at a chain
YEAR = 365 * 24 * 3600 * 1000.0
# Decimal places of each figure, and whether a position has it in money: times the contract weight. None: a position hasn't it at all.
FIELDS = {"ImpVol": (4, None), "Delta": (6, False), "Gamma": (10, False), "Vega": (6, False), "Theta": (6, False), "Vanna": (8, False),
          "$Delta": (4, True), "1Pct$Gamma": (4, True), "$Vega": (6, True), "$Theta": (6, True), "1Pct$Vanna": (4, True)}


def normal(x):
    return erfc(-x / sqrt(2)) / 2


def density(x):
    return exp(-x * x / 2) / sqrt(2 * pi)


def value(is_call, forward, strike, deviation):
    """By Black's model, without interest."""
    d1 = log(forward / strike) / deviation + deviation / 2
    sign = 1 if is_call else -1
    return sign * (forward * normal(sign * d1) - strike * normal(sign * (d1 - deviation)))


def implied_volatility(is_call, forward, strike, price, years):
    """In percent a year, to four places; None for a price that the model can't give."""
    time_value = price - max(forward - strike if is_call else strike - forward, 0)
    if time_value <= 0 or time_value >= min(forward, strike):
        return None
    # Out of the money an option is all time value.
    outside, low, high = strike >= forward, 0.0, 20.0
    while high - low > 1e-14 * high:
        middle = (low + high) / 2
        if middle in (low, high):
            break
        low, high = (middle, high) if value(outside, forward, strike, middle) < time_value else (low, middle)
    return int(100 * (low + high) / 2 / sqrt(years) * 10**4 + 0.5) / 10**4


def figure(field, is_call, forward, strike, volatility, years):
    """One figure of an option, as the record tells it."""
    s = volatility / 100
    deviation = s * sqrt(years)
    d1 = log(forward / strike) / deviation + deviation / 2
    delta = normal(d1) if is_call else normal(d1) - 1
    vanna = -density(d1) * (d1 - deviation) / s / 100
    number = {"ImpVol": lambda: volatility,
              "Delta": lambda: delta * 100,
              "Gamma": lambda: density(d1) / (forward * deviation),
              "Vega": lambda: forward * density(d1) * sqrt(years) / 100,
              "Theta": lambda: -forward * density(d1) * s / (2 * sqrt(years)) / 365,
              "Vanna": lambda: vanna,
              "$Delta": lambda: delta * forward,
              "1Pct$Gamma": lambda: density(d1) / deviation * forward / 100,
              "1Pct$Vanna": lambda: vanna * forward}[{"$Vega": "Vega", "$Theta": "Theta"}.get(field, field)]()
    steps = 10 ** FIELDS[field][0]
    return int(abs(number) * steps + 0.5) * (1 if number > 0 else -1) * (SCALE // steps)


class Option:
    def __init__(self, chain, symbol):
        self.chain, self.symbol = chain, symbol
        self.is_call, self.strike = symbol.split(".")[5] == "C", float(symbol.split(".", 6)[6])
        self.price = None  # price, its time, and the future's price by then, where that was known
        self.is_wanted = False
        self.worked_out = None  # the price, and the forward and time at which it was worked out last by itself
        self.known = None, None  # a price and the volatility that it implies

    def volatility(self, price):
        """It belongs to the moment of the price, however the market moves on."""
        if self.known[0] is not price:
            amount, at, forward = price
            years = (self.chain.expiry - at) / YEAR
            self.known = price, implied_volatility(self.is_call, forward / SCALE, self.strike, amount / SCALE, years)
        return self.known[1]


class Chain:
    """The options of a month, all valued by one future. While options are wanted, those that have moved are worked out as a price of the
    chain changes, but at most once in the period."""

    def __init__(self, expiry):
        self.expiry, self.moved, self.is_wanted = expiry, set(), False
        self.future = self.forward = self.due = None
        self.last = -PERIOD
        self.all_worked_out = None  # forward and time at which all were worked out last

    def schedule(self, due):
        self.due = due if self.due is None else min(self.due, due)

    def on_move(self, now):
        if self.is_wanted:
            self.schedule(max(now, self.last + PERIOD))

    def look(self, now):
        assert self.future is not None, "the model knows no forward but the future"
        self.due, self.last = None, now
        if self.future != self.forward:
            self.forward, self.all_worked_out = self.future, (self.future, now)
        for option in self.moved:
            option.worked_out = option.price, self.forward, now
        self.moved.clear()


class MarketFigures:
    """Figures that the terminal works out from the tape. `months`: the end of the last day (ms) and the future by product and month."""

    def __init__(self, months, symbols):
        self.chains = {month: Chain(expiry) for month, (expiry, _) in months.items()}
        self.futures = {future: self.chains[month] for month, (_, future) in months.items()}
        self.options = {}
        for symbol in symbols:
            chain = self.chains.get(month_of(symbol))
            if chain:
                self.options[symbol] = Option(chain, symbol)

    def exists(self, symbol):
        return symbol in self.options

    def want(self, now, symbol):
        option = self.options[symbol]
        option.is_wanted = option.chain.is_wanted = True
        option.chain.moved.add(option)
        option.chain.schedule(now)

    def trade(self, now, symbol, price):
        if symbol in self.futures:
            chain = self.futures[symbol]
            if chain.future is None:
                self.take_first_forward(chain, price)
            if chain.future != price:
                chain.future = price
                chain.on_move(now)
        elif symbol in self.options:
            option = self.options[symbol]
            option.price = price, now, option.chain.future
            if option.is_wanted:
                option.chain.moved.add(option)
                option.chain.on_move(now)

    def take_first_forward(self, chain, forward):
        """What was told before the future had a price is held against its first."""
        for option in self.options.values():
            if option.chain is chain and option.price:
                option.price = *option.price[:2], forward

    def next_look(self):
        return min((chain.due for chain in self.chains.values() if chain.due is not None), default=None)

    def look(self, now):
        for chain in self.chains.values():
            if chain.due is not None and chain.due <= now:
                chain.look(now)

    def field(self, symbol, name):
        """What the record of an option holds; None: nothing."""
        option = self.options.get(symbol)
        if option is None or option.worked_out is None or option.worked_out[0] is None or name not in FIELDS:
            return None
        price, forward, at = option.worked_out
        volatility = option.volatility(price)
        if volatility is None:
            return None
        if option.chain.all_worked_out and option.chain.all_worked_out[1] > at:
            forward, at = option.chain.all_worked_out
        return figure(name, option.is_call, forward / SCALE, option.strike, volatility, (option.chain.expiry - at) / YEAR)


class GivenFigures:
    """Figures that the lines of the day give."""

    def __init__(self):
        self.records = {}

    def exists(self, symbol):
        return symbol in self.records

    def give(self, symbol, fields):
        self.records.setdefault(symbol, {}).update(fields)

    def want(self, now, symbol):
        pass

    def trade(self, now, symbol, price):
        pass

    def next_look(self):
        return None

    def field(self, symbol, name):
        return self.records.get(symbol, {}).get(name)


def month_of(symbol):
    """The product and month of an option's symbol."""
    return ".".join(symbol.split(".")[3:5])
