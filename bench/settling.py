"""When a figure has been measured often enough."""

import statistics

LEAST, MOST = 9, 120  # pairs
CLOSE = 0.02  # of the ratio


def uncertainty(ratios):
    """How far the median of what was measured may be from the true one, as a part of it: from the median distance to
    the median, which a few pairs that the machine disturbed do not move."""
    middle = statistics.median(ratios)
    distance = statistics.median(abs(ratio - middle) for ratio in ratios)
    return 1.86 * distance / len(ratios) ** 0.5 / middle


def settled(ours, other):
    """Whether the ratio of two sides, measured in turn, is known to two hundredths, or there is no use in going on."""
    ratios = [a / b for a, b in zip(ours, other)]
    return len(ratios) >= MOST or (len(ratios) >= LEAST and uncertainty(ratios) <= CLOSE)


def ratio(ours, other):
    """The median of the pairs' ratios: what slows the machine for a while slows both sides of a pair."""
    return statistics.median(a / b for a, b in zip(ours, other))
