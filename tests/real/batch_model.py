"""What the first batch of a strategy with a fixed price must be: a second, independent statement of the rule."""

MOST_LOTS = 100


def first_batch(options, price, weight, cash):
    """The orders (symbol, lots) in the order that they go out, and the cash that they take.

    `options` are (strike, right, symbol). One lot goes to each in turn, those furthest out of the money first, for as long as it
    can be paid. A lot that costs less than 1 ends it all, and the cash counts as one overdrawn.
    """
    calls = sorted((option for option in options if option[1] == "C"), reverse=True)
    puts = sorted(option for option in options if option[1] == "P")
    order = [symbol for _, _, symbol in calls + puts]
    cost, left, lots = int(price * weight), cash, dict.fromkeys(order, 0)
    if order and cost < 1:
        return [], cash + 1
    for _ in range(MOST_LOTS):
        for symbol in order:
            if cost <= left:
                lots[symbol] += 1
                left -= cost
    return [(symbol, lots[symbol]) for symbol in order if lots[symbol]], cash - left
