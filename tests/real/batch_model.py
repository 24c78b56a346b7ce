"""What the first batch of a strategy must be: a second, independent statement of the rule."""

MOST_LOTS = 100


def first_batch(options, price, weight, cash):
    """The orders (symbol, lots) in the order that they go out, and the cash that they take.

    `options` are (strike, right, symbol); `price` is one for all, or one for each symbol, where None buys nothing. One lot goes to
    each in turn, those furthest out of the money first, for as long as it can be paid. A lot that costs less than 1 ends it all, and the
    cash counts as one overdrawn.
    """
    calls = sorted((option for option in options if option[1] == "C"), reverse=True)
    puts = sorted(option for option in options if option[1] == "P")
    prices = price if isinstance(price, dict) else {symbol: price for *_, symbol in options}
    order = [symbol for _, _, symbol in calls + puts if prices[symbol] is not None]
    left, lots = cash, dict.fromkeys(order, 0)
    for _ in range(MOST_LOTS):
        for symbol in order:
            cost = int(prices[symbol] * weight)
            if cost < 1:
                left = -1
            elif cost <= left:
                lots[symbol] += 1
                left -= cost
    return [(symbol, lots[symbol]) for symbol in order if lots[symbol]], cash - left
