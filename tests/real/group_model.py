"""Conditional group orders from their command to their last cycle: a second, independent statement of the rules.

Figures are whole numbers of 10^-10, times milliseconds since the midnight before the day.
"""

import heapq
import json
import re
from collections import namedtuple

NO_VALUE, LARGEST = -2**63, 2**63 - 1
UNHELD = LARGEST // 10  # nearer than this a held position must be to belong to a leg
ENDS, FAILURES = (2, 3, 5, 7, 8, 10), (5, 8)
SCALE = 10**10

String = namedtuple("String", "at thread cycle group text")  # group: "A", "B", or "" if the string names none


def wrapped(number):
    """A 64-bit integer, as arithmetic that overflows leaves it."""
    return (number + 2**63) % 2**64 - 2**63


def distance(value, target):
    apart = wrapped(value - target)
    return wrapped(-apart) if apart < 0 else apart


def split(condition):
    name, sign, number = condition.partition("=")
    return (name, number) if sign else ("", "0")


class Clock:
    """What is due at later moments; of one moment, in the order in which it was planned."""

    def __init__(self):
        self.now, self.due, self.count = 0, [], 0

    def at(self, time, call):
        self.count += 1
        heapq.heappush(self.due, (time, self.count, call))

    def next(self):
        return self.due[0][0] if self.due else None

    def run_next(self):
        self.now, _, call = heapq.heappop(self.due)
        call()


class Leg:
    def __init__(self, order):
        self.right, self.quantity, self.group = order.get("CallPut", ""), order.get("Qty", 0), order.get("Group", "")
        self.field, number = split(order.get("Condition", ""))
        self.target = int(float(number) * 1e10) * (100 if self.field == "Delta" else 1)
        self.side = self.multiplier = 0
        self.symbol = ""


class GroupOrder:
    def __init__(self, command):
        self.command, self.strategy = command, command["StrategyID"]
        name, number = split(command["StopCondition"])
        self.stop_name, self.stop_value = "1Pct$Vanna" if name == "1%$Vanna" else name, float(number)
        self.checks = []
        for which in "12":
            name, number = split(command.get("CheckCondition" + which, ""))
            self.checks.append((name, int(re.match(r"[+-]?\d+", number).group()), command.get("CheckRange" + which, 0)))
        self.legs = [Leg(order) for order in (command["Order"] + [{}] * 4)[:4]]
        self.direction, self.children, self.has_failed = 0, [], False
        self.symbols = {"Call": [], "Put": []}

    def text(self, name):
        return self.command.get(name, "")


class GroupOrders:
    """The engine's part. `strings` is what it sends, `subscribed` what it asks for, `stops` how many orders have reached their target."""

    def __init__(self, clock, chains, figures, positions, subscription_delay):
        self.clock, self.chains, self.figures, self.positions = clock, chains, figures, positions
        self.subscription_delay, self.shown_from = subscription_delay, {}
        self.market = None  # gets the strings
        self.orders, self.known_children = {}, set()
        self.timer_orders, self.order_timers, self.timers, self.last_timer = {}, {}, {}, 3000
        self.settings, self.speed = {}, 0
        self.strings, self.subscribed, self.cycles, self.stops = [], [], 0, 0

    # ---- Acceptance ----

    def on_command(self, command):
        order = GroupOrder(command)
        if not self.goes_on(order):
            self.stops += 1
            return
        for leg, side in zip(order.legs, (1, 2, 2, 1) if order.direction == 1 else (2, 1, 1, 2)):
            leg.side = side
        self.apply_checks(order)
        rights = [leg.right for leg in order.legs]
        for call in self.chains(order.text("Security")):
            for right, symbol in (("Call", call), ("Put", call.replace(".C.", ".P."))):
                if right in rights:
                    self.subscribe(symbol)
                    order.symbols[right].append(symbol)
        self.submit(order, "OrderCommandThread")

    def subscribe(self, symbol):
        if symbol not in self.shown_from:
            self.shown_from[symbol] = self.clock.now + self.subscription_delay
            self.subscribed.append((self.clock.now, "OPT.REAL." + symbol))
            if self.figures.exists(symbol):
                self.figures.want(self.clock.now, symbol)

    # ---- Whether to go on, and with how much ----

    def goes_on(self, order):
        node = self.positions.nodes.get(order.strategy)
        if node is None:
            if order.direction == 0 and order.stop_value == 0:
                return False
            order.direction = order.direction or (1 if order.stop_value > 0 else 2)
            return True
        fields = [self.positions.field(item, order.stop_name) for item in node]
        total = wrapped(sum(field for field in fields if field is not None))
        value = total / 1e10 * order.command.get("StopFactor", 1.0)
        if order.direction == 0:
            order.direction = 1 if value < order.stop_value else 2
            return value != order.stop_value
        return value < order.stop_value if order.direction == 1 else value > order.stop_value

    def apply_checks(self, order):
        for leg in order.legs:
            leg.multiplier = 1
        held = [item for item in self.positions.nodes.get(order.strategy, ()) if item.lots != 0]
        if not held:
            return
        signs, is_out = [1, 1], False
        for which, (name, target, width) in enumerate(order.checks):
            if not name:
                continue
            fields = [self.positions.field(item, name) for item in held]
            x = wrapped(sum(NO_VALUE if field is None else field for field in fields)) / 1e10
            half = abs(target) * width if target else order.command.get("Cash", 0) * width
            is_out = is_out or x > target + half or x < target - half
            signs[which] = -1 if x >= target else 1
        if is_out:
            doubled = {(1, 1): (0, 1), (1, -1): (2, 3), (-1, -1): (1, 0), (-1, 1): (3, 2)}[tuple(signs)]
            order.legs[doubled[0 if order.direction == 1 else 1]].multiplier = 2

    # ---- A cycle ----

    def submit(self, order, thread):
        self.cycles += 1
        held = [[], [], [], []]
        calls, puts = [], []
        for item in self.positions.nodes.get(order.strategy, ()):
            (calls if ".C." in item.symbol else puts).append(item)
        self.scan(order, "Call", calls, self.take_first, held)
        self.scan(order, "Put", puts, self.take_last_reached, held)
        chosen = [leg.symbol for leg in order.legs if leg.symbol]
        if not chosen:
            return
        chase = self.chase_price(order, chosen[-1])
        strings = []
        for index, leg in enumerate(order.legs):
            if leg.symbol:
                strings += self.strings_of(order, leg, held[index] if index in (0, 2) else held[index][::-1], chase)
        self.orders[order.strategy] = order
        for group, fields in strings:
            text = ",".join(f"{key}={value}" for key, value in fields.items())
            self.strings.append(String(self.clock.now, thread, self.cycles, group, text))
            self.market.send(fields)

    def scan(self, order, right, positions, take, held):
        best = [LARGEST] * 4
        for symbol in order.symbols[right]:
            if not self.figures.exists(symbol):
                continue
            position = take(positions, symbol)
            nearest, nearest_distance = None, UNHELD
            for index, leg in enumerate(order.legs):
                if leg.right != right:
                    continue
                apart = distance(self.read(symbol, leg.field), leg.target)
                if position and apart < nearest_distance:
                    nearest, nearest_distance = index, apart
                if apart < best[index]:
                    best[index], leg.symbol = apart, symbol
            if position and nearest is not None:
                held[nearest].append(position)

    @staticmethod
    def take_first(positions, symbol):
        for index, item in enumerate(positions):
            if item.symbol == symbol:
                return positions.pop(index)
        return None

    @staticmethod
    def take_last_reached(positions, symbol):
        """Goes on behind each hit, but passes over the entry that moves up into its place."""
        found, index = None, 0
        while index < len(positions):
            if positions[index].symbol == symbol:
                found = positions.pop(index)
            index += 1
        return found

    def read(self, symbol, field):
        """As the engine reads a record: nothing shows before its subscription has brought data."""
        if self.clock.now < self.shown_from.get(symbol, LARGEST):
            return NO_VALUE
        value = self.figures.field(symbol, field)
        return NO_VALUE if value is None else value

    def strings_of(self, order, leg, held, chase):
        """The strings of a leg: what it takes back first, then what it opens. Only the last one names the group."""
        remaining, pieces = leg.multiplier * leg.quantity, []
        if remaining <= 0:
            return []
        for item in held:
            if item.side() != leg.side and item.lots:
                taken = min(abs(item.lots), remaining)
                remaining -= taken
                pieces.append((item.symbol, taken, remaining == 0))
            if remaining == 0:
                break
        if remaining > 0:
            pieces.append((leg.symbol, remaining, True))
        return [(leg.group if in_group and leg.group in ("A", "B") else "", self.fields(order, leg, symbol, quantity, in_group, chase))
                for symbol, quantity, in_group in pieces]

    @staticmethod
    def fields(order, leg, symbol, quantity, in_group, chase):
        group_type = order.command.get(f"Group{leg.group}Type", 0) if in_group and leg.group in ("A", "B") else 0
        return {"TYPE": leg.symbol.split(".")[1], "BROKERID": order.text("BrokerID"), "ACCOUNT": order.text("Account"), "SYMBOL": symbol,
                "SIDE": "S" if leg.side == 2 else "B", "QTY": quantity, "PRICE": 0, "ORDERTYPE": 10, "POSITIONEFFECT": 4,
                "TIMEINFORCE": 1, "SYNTHETIC": 1, "GROUPTYPE": group_type, "GROUPID": "*", "CHASEPRICE": chase,
                "STRATEGY": order.strategy, "STRATEGYNAME": order.text("StrategyName"), "USERKEY1": order.text("UserKey1"),
                "USERKEY2": order.text("UserKey2"), "USERKEY3": order.text("UserKey3"), "PROCESSID": "*"}

    def chase_price(self, order, symbol):
        tokens = symbol.split(".")
        names = [symbol] + [".".join(tokens[:count]) for count in (5, 4, 3, 2)]
        names += [{"O": "OPTION", "S": "STOCK"}.get(tokens[1], "FUTURE"), "ALL"]
        item = next((self.settings[name] for name in names if name in self.settings), {})
        text = item.get(f"1-{order.text('BrokerID')}-{order.text('Account')}") or item.get("1-ALL", "")
        setting = json.loads(text) if text else {}
        texts = {key: setting.get(key, default) for key, default in (("On", "0"), ("TimeOut", "100"), ("Times", "1"))}
        number = {key: int(text) if isinstance(text, str) else 0 for key, text in texts.items()}
        return f"0|{number['Times']}|{number['TimeOut']}|C|2" if number["On"] == 1 else ""

    # ---- Children, and the next cycle ----

    def on_announced(self, strategy, key):
        if strategy in self.orders and key not in self.known_children:
            self.orders[strategy].children.append(key)
            self.known_children.add(key)

    def on_child(self, strategy, key, state, client_modify=0):
        order = self.orders.get(strategy)
        if key not in self.known_children or order is None:
            return
        if state in FAILURES and client_modify == 0:
            order.has_failed = True
        if state in ENDS:
            if key in order.children:
                order.children.remove(key)
            self.known_children.remove(key)
        if not order.has_failed and not order.children:
            self.plan_recheck(order)

    def plan_recheck(self, order):
        if order.strategy not in self.order_timers:
            self.last_timer = self.last_timer + 1 if self.last_timer < 9000 else 3000
            self.order_timers[order.strategy] = self.last_timer
            self.timer_orders[self.last_timer] = order
        timer = self.order_timers[order.strategy]
        delay = max(2000 // self.speed, 50) if self.speed > 1 else 2000
        self.timers[timer] = due = self.clock.now + delay
        self.clock.at(due, lambda: self.on_recheck(timer, due))

    def on_recheck(self, timer, due):
        if self.timers.get(timer) != due:
            return  # it was put off
        del self.timers[timer]
        order = self.timer_orders.pop(timer)
        del self.order_timers[order.strategy]
        if order.children:
            return
        self.orders.pop(order.strategy, None)
        if self.goes_on(order):
            self.apply_checks(order)
            self.submit(order, f"timer {timer}")
        else:
            self.stops += 1
