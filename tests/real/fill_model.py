"""What the market does with the orders of a strategy, and what its positions are worth: a second, independent statement of the rules.

Prices are whole numbers of 10^-10 points, times milliseconds since the midnight before the day.
"""

import bisect
from collections import defaultdict

SCALE = 10**10
LADDER = [(0, SCALE // 10), (10 * SCALE, SCALE // 2), (50 * SCALE, SCALE), (500 * SCALE, 5 * SCALE), (1000 * SCALE, 10 * SCALE)]
NO_UPDATE = -1
CYCLE = 200  # ms between two looks of the publisher


def points(scaled):
    """A price in points, as the engine reckons."""
    return scaled / 1e10 + 5e-12 if scaled > 0 else scaled / 1e10 - 5e-12


def ticks_below(price, count):
    """The price so many ticks further down; each step is the tick of the prices just below."""
    for _ in range(count):
        price -= next(tick for floor, tick in reversed(LADDER) if price > floor)
    return price


class Order:
    def __init__(self, number, sent, fields):
        self.number, self.sent, self.symbol = number, sent, fields["SYMBOL"]
        self.stamp = fields["USERKEY2"].partition("@")[2]
        self.closes, self.left = fields["POSITIONEFFECT"] == "1", int(fields["QTY"])
        self.buys, self.words = fields["SIDE"] == "B", fields.get("PRICESTRING")
        self.at_market = fields["ORDERTYPE"] in ("1", "25")
        self.limit = None if self.at_market or self.words else int(fields["PRICE"])
        self.filled = self.value = self.told_at = 0
        self.works = False

    def report(self, exec_type):
        average = self.value // self.filled if self.filled else None
        return self, exec_type, self.filled, average, 0 if exec_type == 8 else self.left


class Market:
    """Answers orders by the rule "touch": a limit order is filled, at its own price, by later trades that reach it, as far as their
    lots go; an order at the market, or reckoned from a bid that isn't there, as it comes in."""

    def __init__(self):
        self.last, self.working = {}, defaultdict(list)

    def arrive(self, order):
        """Reports to send now, and reports that come one latency later."""
        acknowledged, fills = order.report(0), []
        last = self.last.get(order.symbol)
        if order.words:
            assert order.words.startswith("BID-") and not order.buys, order.words
            order.limit = ticks_below(last, int(order.words[4:-1]))
        if order.at_market or order.words:
            fills = [self.fill(order, last if order.at_market else order.limit, order.left)]
        else:
            order.works = True
            self.working[order.symbol].append(order)
            self.working[order.symbol].sort(key=lambda entry: (-entry.limit, entry.number))
        return [acknowledged], fills

    @staticmethod
    def fill(order, price, lots):
        order.left -= lots
        order.filled += lots
        order.value += price * lots
        order.works = order.works and order.left > 0
        return order.report(3 if order.left == 0 else 6)

    def trade(self, symbol, price, lots):
        self.last[symbol] = price
        fills = []
        for order in self.working.get(symbol, ()):
            if price <= order.limit and lots > 0:
                taken = min(lots, order.left)
                fills.append(self.fill(order, order.limit, taken))
                lots -= taken
        if fills:
            self.working[symbol] = [order for order in self.working[symbol] if order.left]
        return fills

    def cancel(self, order):
        if not order.works:
            return []
        order.works = False
        self.working[order.symbol].remove(order)
        return [order.report(8)]


class Position:
    def __init__(self):
        self.bought = self.sold = self.leaves = 0
        self.average = self.profit = None
        self.closed, self.close_total, self.close_average = None, 0, 0

    def net(self):
        return self.bought - self.sold

    def fold_close(self, order, filled, average, leaves):
        total = self.close_total + filled
        mean = (self.close_average * self.close_total + filled * average) // total
        if leaves == 0 and order.number == self.closed:
            total = self.close_total
        elif leaves == 0:
            self.closed, self.close_total, self.close_average = order.number, total, mean
        self.sold = total


class Valuation:
    """Positions and their profit, and the quotes that are let through to it."""

    def __init__(self, weight):
        self.weight, self.positions, self.seen, self.total, self.cost = weight, {}, {}, 0.0, 0.0
        self.last_quote, self.waiting = {}, []

    def on_report(self, order, exec_type, filled, average, leaves, cancel_was_told):
        position = self.positions.setdefault(order.symbol, Position())
        if exec_type == 8 and cancel_was_told:
            position.leaves = leaves
        elif not order.closes:
            if filled:
                position.bought, position.average = filled, average
                self.enqueue(order.symbol, NO_UPDATE)
            position.leaves = leaves
        elif filled:
            position.fold_close(order, filled, average, leaves)

    def enqueue(self, symbol, update):
        """A quote of a held symbol, or a snapshot after a fill (no update): waits for its valuation, unless it repeats the first."""
        price, volume = self.last_quote[symbol]
        first = self.seen.get(symbol)
        if first and first[0] != NO_UPDATE:
            if update == first[0] or volume == first[1]:
                return
        else:
            self.seen[symbol] = (update, volume)
        self.waiting.append((symbol, price, update))

    def value(self, symbol, price, update):
        """True if the totals were worked out anew."""
        position = self.positions.get(symbol)
        if position is None or position.average is None or position.net() <= 0:
            return False
        profit = 0.0 if price == position.average else (points(price) - points(position.average)) * position.net() * self.weight
        if profit == position.profit and update != NO_UPDATE:
            return False
        position.profit = profit
        self.total = self.cost = 0.0
        for name in sorted(self.positions):
            entry = self.positions[name]
            self.total += entry.profit if entry.profit is not None else 0.0
            self.cost += entry.bought * points(entry.average) * self.weight if entry.bought else 0.0
        return True

    def held(self):
        return {symbol: position.net() for symbol, position in self.positions.items() if position.net() > 0}


def reached(limits, cost, total):
    """Whether totals reach a limit ("profit" or "loss": ("amount" or "percent", value)), compared to two decimals."""
    if int(cost * 100.0) <= 0 or int(total * 100.0) == 0:
        return None
    side = "profit" if total > 0 else "loss"
    if side not in limits:
        return None
    kind, value = limits[side]
    amount = abs(total)
    if kind == "percent":
        return side if int(value * 100.0) <= int(amount / cost * 100.0 * 100.0) else None
    return side if value <= amount else None


def totals_message(cost, total):
    """Cost and profit as clients are told."""
    return int(cost), int(total * 100.0 + (0.05 if total > 0 else -0.05)) / 100.0


class Run:
    """One strategy from its orders to its end. `tape`: (time, symbol, price, lots, volume) in order; `sent`: (time, fields) of the orders,
    `cancels`: (time, order number, told), both as the engine sent them. From `deaf_from` on quotes are valued no more: for good, or until
    the next fill is reported."""

    def __init__(self, tape, sent, cancels, *, latency, weight, limits, start, end, deaf_from, deaf_for_good):
        self.market, self.valuation = Market(), Valuation(weight)
        self.orders = [Order(number, at, fields) for number, (at, fields) in enumerate(sent, 1)]
        self.told = {}
        self.limits, self.latency, self.deaf_from, self.deaf_for_good = limits, latency, deaf_from, deaf_for_good
        self.reports, self.totals, self.limit_fired, self.held_at_limit = [], [(None, (0, 0.0))], None, None
        self.holdings = []  # (time, lots by symbol)
        self.now, self.later = start, []  # (time, report): on their way to the engine
        arrivals = [(order.sent + latency, 0, order) for order in self.orders]
        arrivals += [(at + latency, 1, (self.orders[number - 1], told)) for at, number, told in cancels]
        self.run(tape, sorted(arrivals, key=lambda entry: entry[:2]), start, end)

    def run(self, tape, arrivals, start, end):
        cycle, position = start + CYCLE, 0
        while True:
            tick = tape[position][0] if position < len(tape) else end + 1
            arrival = arrivals[0][0] if arrivals else end + 1
            report = self.later[0][0] if self.later else end + 1
            now = min(cycle, tick, arrival, report)
            if now != report:
                self.value_waiting(self.now)  # the reports of one moment come before the valuation
            self.now = now
            if now > end:
                return
            if now == cycle:
                self.publish(cycle)
                cycle += CYCLE
            elif now == report:
                self.deliver(*self.later.pop(0))
            elif now == arrival:
                self.arrive(*arrivals.pop(0))
            else:
                self.trade(position, *tape[position])
                position += 1

    def held_at(self, moment):
        """What was held when the close-out of that moment began: lots by symbol."""
        return next((held for at, held in reversed(self.holdings) if at < moment), {})

    def arrive(self, now, kind, what):
        if kind == 0:
            at_once, later = self.market.arrive(what)
        else:
            order, told = what
            at_once, later = self.market.cancel(order), []
            if told:
                self.told.setdefault(order.number, now - self.latency)
        self.put(now, at_once)
        self.put(now + self.latency, later)

    def put(self, due, reports):
        for report in reports:
            # No report of an order overtakes an earlier one, nor do two come at one moment.
            order = report[0]
            order.told_at = max(due, order.told_at + 1)
            bisect.insort(self.later, (order.told_at, report), key=lambda entry: entry[0])

    def deliver(self, now, report):
        order, exec_type, filled, average, leaves = report
        stamp = next((other.stamp for other in reversed(self.orders) if not other.closes and other.sent < now), None)
        if order.stamp != stamp:
            return  # of an older batch
        self.reports.append((now, order.number, exec_type, filled, average, leaves))
        if 3 <= exec_type <= 7 and now >= self.deaf_from and not self.deaf_for_good:
            self.deaf_from = float("inf")
        told = self.told.get(order.number, now + 1) <= now
        self.valuation.on_report(order, exec_type, filled, average, leaves, told)
        self.holdings.append((now, self.valuation.held()))

    def trade(self, update, now, symbol, price, lots, volume):
        self.valuation.last_quote[symbol] = (price, volume)
        self.put(now + self.latency, self.market.trade(symbol, price, lots))
        position = self.valuation.positions.get(symbol)
        if now < self.deaf_from and position is not None and position.net() > 0:
            self.valuation.enqueue(symbol, update)
            self.value_waiting(now)

    def value_waiting(self, now):
        while self.valuation.waiting:
            if self.valuation.value(*self.valuation.waiting.pop(0)):
                self.check_limit(now)

    def check_limit(self, now):
        side = None if self.limit_fired else reached(self.limits, self.valuation.cost, self.valuation.total)
        if side:
            self.limit_fired, self.held_at_limit = (now, side, self.valuation.total), self.valuation.held()

    def publish(self, now):
        message = totals_message(self.valuation.cost, self.valuation.total)
        if message != self.totals[-1][1]:
            self.totals.append((now, message))
