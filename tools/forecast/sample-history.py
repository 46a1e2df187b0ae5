#!/usr/bin/env python3
"""sample-history.py [--kind KIND] [--population NAME] [--seed N] [--weeks N] FOLDER   writes the history of a simulated user,
who is in the middle of a five-hour window now, as the program would have: for pictures, and to measure how long it takes to
read. FOLDER is that of the history, $XDG_STATE_HOME/brimwatch/history.

Prints the rows and bytes that were written.
"""

import argparse
import csv
import datetime
import subprocess
import sys
import tempfile
import time
from pathlib import Path

FLAT = 300  # Seconds; a longer stretch without a change has a row at both its ends.
JITTER = 600
KEPT_IN_FULL = 35 * 86400


def busy(row):
    """Whether that is the middle of a window in use."""
    return row["bucket"] == "gemini-5h" and 0.15 < float(row["left"]) < 0.62 and 4000 < int(row["reset"]) - int(row["time"]) < 9000


def recorded(trace, shift, end):
    """The rows of a trace that the program writes, moved by `shift` seconds, until `end`."""
    last, seen = {}, {}
    for row in trace:
        if int(row["time"]) > end:
            return
        bucket = row["bucket"]
        now = (int(row["time"]) + shift, bucket, float(row["left"]), int(row["reset"]) + shift)
        before = last.get(bucket)
        if before and abs(before[2] - now[2]) < 1e-6 and (now[2] >= 1 or abs(now[3] - before[3]) <= JITTER):
            seen[bucket] = now
            continue
        stretch = seen.pop(bucket, None)
        if stretch and stretch[0] - before[0] > FLAT:
            yield stretch
        yield now
        last[bucket] = now


def thinned(rows, limit):
    """Of what is older than that, the row with least left of each hour."""
    lowest = {}
    for row in rows:
        if row[0] < limit:
            hour = (row[1], row[0] // 3600)
            if hour not in lowest or row[2] <= lowest[hour][2]:
                lowest[hour] = row
    old = set(lowest.values())
    return (row for row in rows if row[0] >= limit or row in old)


def main():
    ask = argparse.ArgumentParser(description="Writes the history of a simulated user.")
    ask.add_argument("--kind", default="office")
    ask.add_argument("--population", default="heavy")
    ask.add_argument("--seed", type=int, default=8000)
    ask.add_argument("--weeks", type=int, default=26)
    ask.add_argument("--every", type=int, default=60)
    ask.add_argument("folder", type=Path)
    args = ask.parse_args()

    with tempfile.TemporaryDirectory() as work:
        subprocess.run([sys.executable, Path(__file__).with_name("simulate-users.py"), "--population", args.population, "--kinds",
                        args.kind, "--seeds", f"{args.seed}-{args.seed}", "--weeks", str(args.weeks), "--every", str(args.every),
                        "--out", work], check=True)
        with next(Path(work).glob("*.csv")).open(newline="") as file:
            trace = list(csv.DictReader(file))
    end = max(int(row["time"]) for row in trace if busy(row))
    months = {}
    now = int(time.time())
    rows = list(recorded(trace, now - end, end))
    for moment, bucket, left, reset in thinned(rows, now - KEPT_IN_FULL):
        month = datetime.datetime.fromtimestamp(moment, datetime.timezone.utc).strftime("%Y-%m")
        months.setdefault(month, []).append(f"{moment},{bucket},{left:g},{reset}\n")
    args.folder.mkdir(mode=0o700, parents=True, exist_ok=True)
    for month, lines in months.items():
        (args.folder / f"{month}.csv").write_text("time,bucket,left,reset\n" + "".join(lines))
    size = sum((args.folder / f"{month}.csv").stat().st_size for month in months)
    print(sum(map(len, months.values())), "rows,", size, "bytes")


main()
