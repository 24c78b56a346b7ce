"""What becomes of the child orders of group orders, and what positions they make: a second, independent statement of the rules.

Prices and figures are whole numbers of 10^-10, times milliseconds since the midnight before the day.
"""

from collections import defaultdict

from figure_model import FIELDS
from fill_model import LADDER

WORKING, PARTLY_FILLED, FILLED, REJECTED = 0, 6, 3, 10


def stepped(price, ticks):
    """The price so many ticks further up (or down); each as wide as the band that it crosses."""
    for _ in range(abs(ticks)):
        if ticks > 0:
            price += next(tick for floor, tick in reversed(LADDER) if price >= floor)
        else:
            price -= next(tick for floor, tick in reversed(LADDER) if price > floor)
    return price


class Child:
    def __init__(self, number, fields):
        self.key, self.strategy, self.symbol = f"C{number}", fields["STRATEGY"], fields["SYMBOL"]
        self.account = fields["BROKERID"], fields["ACCOUNT"]
        self.number, self.sign = number, 1 if fields["SIDE"] == "B" else -1
        self.left, self.filled, self.told_at, self.limit = int(fields["QTY"]), 0, 0, None
        chase = fields["CHASEPRICE"].split("|")
        self.times, self.timeout = (int(chase[1]), int(chase[2])) if len(chase) > 1 else (-1, 0)

    def priority(self):
        return self.limit is not None, -self.sign * (self.limit or 0), self.number


class ChildMarket:
    """Answers group orders of a tape that has no best prices: an order at the market is filled as it comes in, at the last price; one that
    follows the market begins there, waits for trades, gives way a tick at a time and goes to the market in the end."""

    def __init__(self, clock, engine, positions, latency):
        self.clock, self.engine, self.positions, self.latency = clock, engine, positions, latency
        self.last, self.working, self.children, self.accounts = {}, defaultdict(list), {}, {("B1", "A1")}

    def send(self, fields):
        number = len(self.children) + 1
        self.children[number] = child = Child(number, fields)
        was_connected = child.account in self.accounts
        self.clock.at(self.clock.now + self.latency, lambda: self.arrive(child, was_connected))

    def arrive(self, child, was_connected):
        self.tell(child, self.clock.now, lambda: self.engine.on_announced(child.strategy, child.key))
        if not was_connected or child.account not in self.accounts:
            self.tell_state(child, self.clock.now, REJECTED)
            return
        self.working[child.symbol].append(child)
        self.price(child, 0)

    def price(self, child, step):
        """Prices a child for the first time, or anew."""
        if not child.left:
            return
        last = self.last.get(child.symbol)
        child.limit = stepped(last, child.sign * step) if step <= child.times and child.timeout and last is not None else None
        if child.limit is not None:
            if step:
                self.tell_state(child, self.clock.now, WORKING if not child.filled else PARTLY_FILLED)
            self.clock.at(self.clock.now + child.timeout, lambda: self.price(child, step + 1))
        elif last is not None:
            self.fill(child, child.left)

    def trade(self, symbol, price, lots):
        self.last[symbol] = price
        if not self.working.get(symbol):
            return
        # The better price first, then the earlier order; a buy before a sell.
        for sign in (1, -1):
            for child in sorted((child for child in self.working[symbol] if child.sign == sign), key=Child.priority):
                reaches = child.limit is None or sign * price <= sign * child.limit
                taken = min(lots, child.left) if reaches else 0
                if taken:
                    lots -= taken
                    self.fill(child, taken)

    def fill(self, child, lots):
        child.left -= lots
        child.filled += lots
        self.clock.at(self.clock.now + self.latency, lambda: self.positions.fill(child.strategy, child.symbol, child.sign * lots))
        self.tell_state(child, self.clock.now + self.latency, PARTLY_FILLED if child.left else FILLED)
        if not child.left:
            self.working[child.symbol].remove(child)

    def tell_state(self, child, due, state):
        self.tell(child, due, lambda: self.engine.on_child(child.strategy, child.key, state))

    def tell(self, child, due, report):
        """No report of an order overtakes an earlier one, nor do two come at one moment."""
        child.told_at = max(due, child.told_at + 1)
        self.clock.at(child.told_at, report)

    def end_from_outside(self, number, state, client_modify):
        child = self.children[number]
        if not child.left:
            return
        child.left = 0
        self.working[child.symbol].remove(child)
        self.tell(child, self.clock.now, lambda: self.engine.on_child(child.strategy, child.key, state, client_modify))


class Item:
    """One item of a strategy's node: lots with a sign, or just what a line has written."""

    def __init__(self, symbol, lots, is_sold, written=None):
        self.symbol, self.lots, self.is_sold, self.written = symbol, lots, is_sold, written

    def side(self):
        return 2 if self.is_sold else 1


class Positions:
    def __init__(self, figures, weight):
        self.figures, self.weight, self.nodes = figures, weight, {}

    def fill(self, strategy, symbol, lots):
        node = self.nodes.setdefault(strategy, [])
        item = next((item for item in node if item.symbol == symbol), None)
        if item is None:
            node.append(item := Item(symbol, 0, False))
        item.lots += lots
        if item.lots:
            item.is_sold = item.lots < 0

    def set(self, strategy, items):
        """What a line says: the first item of a symbol lives on, a further one stays as it is written."""
        node = self.nodes[strategy] = []
        for item in items:
            is_first = all(other.symbol != item["Symbol"] for other in node)
            is_sold = item["Side"] == 2
            written = None if is_first else {name: int(field["int64"]) for name, field in item.items() if isinstance(field, dict)}
            node.append(Item(item["Symbol"], -item["Quantity"] if is_sold else item["Quantity"], is_sold, written))

    def field(self, item, name):
        """None: the item doesn't have it."""
        if item.written is not None:
            return item.written.get(name)
        figure = self.figures.field(item.symbol, name)
        if figure is None or FIELDS.get(name, (0, None))[1] is None:
            return None
        return figure * item.lots * (self.weight if FIELDS[name][1] else 1)
