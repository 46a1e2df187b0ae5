#!/usr/bin/env python3
"""score.py [--check] [--json] TRACES FORECASTS   compares forecasts with what happened. Both are folders with files of the
same names.

A window in which nothing was left at some time ran out. Left out are windows in which no forecast could be given, and those
that did not run out and were cut short or not followed to their end. README.md says what the columns mean.
"""
import argparse
import json
import statistics
import sys
from pathlib import Path

LENGTHS = {"5h": 18000, "weekly": 604800}
HEADER = "time,bucket,chance,verdict,runout"
VERDICTS = ("", "lasts", "close", "runs-out", "used-up")
IN_TIME = {"5h": 900, "weekly": 21600}  # Seconds; a later warning is of no use.
THIN = 300  # Seconds between two chances that count, so that frequent readings weigh no more.

# What --check demands of all populations together: the figure, the direction, the limits of five hours and week.
THRESHOLDS = (
    ("skill", ">=", 0.44, 0.64),
    ("calibration", "<=", 0.018, 0.05),
    ("false_alarms", "<=", 0.065, 0.065),
    ("in_time", ">=", 0.75, 0.85),
    ("lead_minutes", ">=", 44, 2400),
    ("moment_minutes", "<=", 24, 600),
    ("changes", "<=", 25, 46),
    ("silence", "<=", 0.005, 0.01),
)


class Window:
    """What was said in one window, and how it ended."""

    def __init__(self):
        self.chances, self.errors = [], []
        self.owed = self.silent = self.changes = self.thinned = 0
        self.warned, self.first_warning, self.ran_out, self.whole = False, None, None, False


class Bucket:
    """One bucket of one trace. `windows` are those that count."""

    def __init__(self, window):
        self.length, self.windows = LENGTHS[window], []
        self.now, self.reset, self.left = None, 0, 1.0

    def see(self, t, left, reset, chance, verdict, runout):
        if self.now and (left >= 1 or abs(reset - self.reset) > self.length / 4 or left - self.left >= 0.1 - 1e-9):
            self.now.whole = t >= self.reset - 600
            self.close()
        if self.now is None and left < 1:
            self.now = Window()
        self.reset, self.left = reset, left
        now = self.now
        if now is None or now.ran_out:
            return
        if left <= 0:
            now.ran_out = t
            return
        e = self.length - (reset - t)
        if 0.03 * self.length + 600 < e < self.length and left < 0.98 - 1e-6:
            now.owed += 1
            now.silent += chance == ""
        if t - now.thinned >= THIN:
            now.thinned = t
            if chance:
                now.chances.append(float(chance))
            if runout:
                now.errors.append(int(runout))
        warned = verdict == "runs-out"
        now.changes += warned != now.warned
        now.warned = warned
        if warned and now.first_warning is None:
            now.first_warning = t

    def close(self):
        if self.now and self.now.owed and (self.now.ran_out or self.now.whole):
            self.windows.append(self.now)
        self.now = None


def rows(trace, forecast):
    """The rows of both files together. Ends the program when one does not answer the other, or speaks where it must not."""
    with trace.open() as asked, forecast.open() as answered:
        next(asked)
        if next(answered, "").rstrip("\n") != HEADER:
            sys.exit(f"{forecast.name}: the first line is not {HEADER}")
        for number, row in enumerate(asked, 2):
            time, bucket, window, left, reset = row.rstrip("\n").split(",")
            answer = next(answered, "").rstrip("\n").split(",")
            if answer[:2] != [time, bucket] or len(answer) != 5 or answer[3] not in VERDICTS:
                sys.exit(f"{forecast.name}, line {number}: not an answer to {time},{bucket}: {','.join(answer)}")
            chance, verdict, runout = answer[2:]
            known = window in LENGTHS and reset
            if chance and not (known and 0 < float(left) <= 0.98 + 1e-6 and int(time) < int(reset)):
                sys.exit(f"{forecast.name}, line {number}: speaks where it must be silent: {','.join(answer)}")
            if known:
                yield bucket, window, (int(time), float(left), int(reset), chance, verdict, runout)
        if next(answered, None):
            sys.exit(f"{forecast.name}: goes on after the trace has ended")


def read(traces, forecasts):
    """The windows of all files by length and population, which is the first word of a file's name."""
    found = {window: {} for window in LENGTHS}
    for path in sorted(traces.glob("*.csv")):
        if not (forecasts / path.name).exists():
            sys.exit(f"{path.name}: no forecast")
        buckets = {}
        for bucket, window, row in rows(path, forecasts / path.name):
            if bucket not in buckets:
                buckets[bucket] = window, Bucket(window)
            buckets[bucket][1].see(*row)
        for window, bucket in buckets.values():
            bucket.close()
            found[window].setdefault(path.name.split("-")[0], []).extend(bucket.windows)
    return found


def measure(windows, in_time):
    """The figures of these windows; None where they tell nothing."""
    out = [w for w in windows if w.ran_out]
    lasted = [w for w in windows if not w.ran_out]
    spoken = [w for w in windows if w.chances]
    base = len(out) / len(windows)
    brier = statistics.fmean(
        statistics.fmean((chance - bool(w.ran_out)) ** 2 for chance in w.chances) for w in spoken
    ) if spoken else None
    leads = [w.ran_out - w.first_warning if w.first_warning else -1 for w in out]
    warned = [lead for lead in leads if lead >= 0]
    deciles = [[0, 0.0, 0] for _ in range(10)]
    for w in windows:
        for chance in w.chances:
            decile = deciles[min(9, int(chance * 10))]
            decile[0] += 1
            decile[1] += chance
            decile[2] += bool(w.ran_out)
    total = sum(n for n, _, _ in deciles)
    errors = [statistics.fmean(abs(runout - w.ran_out) for runout in w.errors) for w in out if w.errors]
    return {
        "windows": len(windows),
        "ran_out": base,
        "brier": brier,
        "base_brier": base * (1 - base),
        "skill": 1 - brier / (base * (1 - base)) if brier is not None and out and lasted else None,
        "false_alarms": sum(w.first_warning is not None for w in lasted) / len(lasted) if lasted else None,
        "in_time": sum(lead >= in_time for lead in leads) / len(out) if out else None,
        "lead_minutes": statistics.median(warned) / 60 if warned else None,
        "moment_minutes": statistics.median(errors) / 60 if errors else None,
        "changes": 100 * sum(w.changes for w in windows) / len(windows),
        "silence": sum(w.silent for w in windows) / sum(w.owed for w in windows),
        "calibration": sum(abs(said - came) for _, said, came in deciles) / total if total else None,
        "deciles": [{"count": n, "said": said / n, "happened": came / n} if n else None for n, said, came in deciles],
    }


COLUMNS = (
    ("windows", "windows", "{:.0f}"), ("ran_out", "ran out", "{:.0%}"), ("brier", "Brier", "{:.3f}"),
    ("base_brier", "base", "{:.3f}"), ("skill", "skill", "{:.2f}"), ("false_alarms", "false", "{:.1%}"),
    ("in_time", "in time", "{:.1%}"), ("lead_minutes", "lead min", "{:.0f}"),
    ("moment_minutes", "moment min", "{:.0f}"), ("changes", "changes", "{:.0f}"), ("silence", "silent", "{:.1%}"),
    ("calibration", "calibr.", "{:.3f}"),
)


def show(results):
    for window, populations in results.items():
        print(f"{window:10s}" + "".join(f"{title:>11s}" for _, title, _ in COLUMNS))
        for population, figures in populations.items():
            cells = ("–" if figures[key] is None else form.format(figures[key]) for key, _, form in COLUMNS)
            print(f"{population:10s}" + "".join(f"{cell:>11s}" for cell in cells))
        said = (f"{d['said']:.2f}→{d['happened']:.2f} ({d['count']})" for d in populations["all"]["deciles"] if d)
        print("said→happened (readings): " + ", ".join(said) + "\n")


def missed(results):
    """The limits that are missed, in words."""
    for key, direction, *limits in THRESHOLDS:
        for window, limit in zip(LENGTHS, limits):
            value = results[window]["all"][key] if window in results else None
            if value is None or (value < limit if direction == ">=" else value > limit):
                found = "missing" if value is None else f"{value:.3f}"
                yield f"{window}: {key} is {found}, to be {direction} {limit}"


def main():
    ask = argparse.ArgumentParser(description="Compares forecasts with what happened.")
    ask.add_argument("traces", type=Path)
    ask.add_argument("forecasts", type=Path)
    ask.add_argument("--json", action="store_true", help="for programs")
    ask.add_argument("--check", action="store_true", help="exit with 1 when a threshold is missed")
    how = ask.parse_args()
    results = {}
    for window, populations in read(how.traces, how.forecasts).items():
        if populations and any(populations.values()):
            populations["all"] = [one for windows in populations.values() for one in windows]
            results[window] = {name: measure(ws, IN_TIME[window]) for name, ws in populations.items() if ws}
    if not results:
        sys.exit("no window to score")
    print(json.dumps(results, indent=1)) if how.json else show(results)
    if how.check:
        faults = list(missed(results))
        print(*faults, sep="\n", end="\n" if faults else "", file=sys.stderr)
        sys.exit(bool(faults))


if __name__ == "__main__":
    main()
