#!/usr/bin/env python3
"""simulate-users.py --out FOLDER [OPTION...]   writes traces of simulated users: what a program that asks for the quota now
and then sees of a five-hour and a weekly one. README.md has the format.

The same options give the same bytes. A seed is the same user at every rate and with every step.
"""
import argparse
import math
import random
from pathlib import Path

START = 1767571200  # Monday 2026-01-05 00:00 UTC
MINUTE, HOUR, DAY, WEEK = 60, 3600, 86400, 604800
FIVE_HOURS = 5 * HOUR
WEEK_IN_FIVE_HOURS = 9.0  # So many five-hour quotas are a weekly one.

# For each kind of user: the mean length of a spell of work in minutes, the mean use of a minute of work in five-hour quotas,
# the shape of the gamma distribution of one request, and how much days differ (sigma of a log-normal factor).
KINDS = {
    "office": (45, 0.0042, 0.5, 0.55),
    "evening": (50, 0.0045, 0.5, 0.6),
    "agent": (150, 0.0022, 0.9, 0.35),
    "sporadic": (90, 0.009, 0.5, 0.6),
    "sprint": (60, 0.0030, 0.5, 0.4),
}
POPULATIONS = {
    "usual": lambda spell, rate, shape, spread: (spell, rate, shape, spread),
    "light": lambda spell, rate, shape, spread: (spell, rate * 0.6, shape, spread),
    "heavy": lambda spell, rate, shape, spread: (spell, rate * 1.6, shape, spread),
    "lumps": lambda spell, rate, shape, spread: (spell * 0.5, rate * 1.8, 0.15, spread),
    "days": lambda spell, rate, shape, spread: (spell, rate, shape, min(1.1, spread * 2)),
}
CLOSED, OPEN, BUSY, ASLEEP, ELSEWHERE = range(5)


def eagerness(kind, hour):
    """How likely a spell of work begins in an idle minute of that hour of the week."""
    day, hour = divmod(hour, 24)
    weekday = day < 5
    if kind == "office":
        return 1 / 20 if weekday and (9 <= hour < 12 or 13 <= hour < 18) else 0
    if kind == "evening":
        return 1 / 70 if 19 <= hour or (not weekday and 10 <= hour) else 0
    if kind == "agent":
        return 1 / 60
    if kind == "sporadic":
        return 1 / 1500 if 8 <= hour < 23 else 0
    return (1 / 45 if weekday else 1 / 90) if 8 <= hour < 23 else 0


def live(kind, population, weeks, rng):
    """What the user does: a state for each minute, and {minute: (second, use)} for the requests, in five-hour quotas."""
    spell, rate, shape, spread = POPULATIONS[population](*KINDS[kind])
    eager = [eagerness(kind, hour) for hour in range(168)]
    person = math.exp(rng.gauss(0, 0.25))
    states, uses = bytearray(weeks * WEEK // MINUTE), {}
    busy = idle = asleep = 0
    elsewhere = False
    for minute in range(len(states)):
        if minute % 1440 == 0:
            day = math.exp(rng.gauss(-spread * spread / 2, spread))
        if minute % 10080 == 0:
            week = math.exp(rng.gauss(-0.03, 0.25))
            if kind == "sprint":
                week *= 2.2 if minute // 10080 % 4 == 3 else 0.45
        if asleep:
            asleep -= 1
            states[minute] = ASLEEP
        elif busy:
            busy -= 1
            idle = 40  # The IDE stays open for a while after the work, and the daemon with it.
            states[minute] = ELSEWHERE if elsewhere else BUSY
            if rng.random() < 0.33:
                uses[minute] = rng.randrange(60), rng.gammavariate(shape, rate * 3 / shape) * day * week * person
            if rng.random() < 1 / 400:
                asleep = rng.randint(10, 90)  # A suspend; the spell goes on after it.
        else:
            idle -= 1
            states[minute] = OPEN if idle > 0 and not elsewhere else CLOSED
            if rng.random() < eager[minute // 60 % 168]:
                busy = max(5, int(rng.expovariate(1 / spell)))
                elsewhere = rng.random() < 0.04  # With the same account on another machine.
    return states, uses


def readings(states, uses, every, step, rng, noise):
    """Yields the readings of both quotas. A five-hour window begins with its first use. When all is used the user waits."""
    week_end = rng.randrange(WEEK // MINUTE) * MINUTE + WEEK
    first = (week_end - WEEK) // MINUTE
    early_resets = {minute for minute in range(first, len(states)) if rng.random() < 1 / (8 * 10080)}
    five_end = 0
    five = week = 0.0
    shown = max(step, 0.0001)

    def left(used):
        return min(1.0, math.ceil((1 - used) / shown - 1e-9) * shown)  # Up, so that 0 means nothing.

    def jitter():
        return noise.randint(-300, 300) if noise.random() < 0.1 else 0

    for minute in range(first, len(states)):
        begin = minute * MINUTE
        if minute in early_resets:  # An early reset, half of the time with a new week.
            five_end, week = 0, 0.0
            if rng.random() < 0.5:
                week_end = begin + WEEK
        use_at, use = uses.get(minute, (MINUTE, 0.0))
        seen = states[minute] in (OPEN, BUSY)
        asked = [second for second in range(-begin % every, MINUTE, every)] if seen else []
        for second in sorted({*asked, use_at} - {MINUTE}):
            now = begin + second
            if now >= week_end:
                week, week_end = 0.0, week_end + WEEK
            running = now < five_end
            if second == use_at and week < 1 and not (running and five >= 1):
                if not running:
                    five, five_end, running = 0.0, now + FIVE_HOURS, True
                five = min(1.0, five + use)
                week = min(1.0, week + use / WEEK_IN_FIVE_HOURS)
            if second in asked:
                end = five_end if running else now + FIVE_HOURS
                yield now, "gemini-5h,5h", left(five if running else 0.0), end + jitter()
                yield now, "gemini-weekly,weekly", left(week), week_end + jitter()


def write(path, kind, population, seed, weeks, every, step):
    rng = random.Random(f"{population} {kind} {seed}")
    noise = random.Random(f"{population} {kind} {seed} noise")
    states, uses = live(kind, population, weeks, rng)
    with path.open("w") as out:
        out.write("time,bucket,window,left,reset\n")
        for now, bucket, left, reset in readings(states, uses, every, step, rng, noise):
            out.write(f"{START + now},{bucket},{left:.4f},{START + reset}\n")


def span(text):
    first, _, last = text.partition("-")
    return range(int(first), int(last or first) + 1)


def main():
    ask = argparse.ArgumentParser(description="Writes traces of simulated users.")
    ask.add_argument("--seeds", type=span, default=span("0-2"), help="FIRST-LAST; each seed is one user of each kind")
    ask.add_argument("--weeks", type=int, default=26)
    ask.add_argument("--population", choices=POPULATIONS, default="usual")
    ask.add_argument("--kinds", nargs="+", choices=KINDS, default=list(KINDS))
    ask.add_argument("--every", type=int, default=60, help="seconds between readings")
    ask.add_argument("--steps", type=float, default=0.0, help="the step of what is left, such as 0.01")
    ask.add_argument("--out", type=Path, required=True)
    how = ask.parse_args()
    how.out.mkdir(parents=True, exist_ok=True)
    for seed in how.seeds:
        for kind in how.kinds:
            name = f"{how.population}-{kind}-{seed}-{how.every}s-{how.steps:g}.csv"
            write(how.out / name, kind, how.population, seed, how.weeks, how.every, how.steps)


if __name__ == "__main__":
    main()
