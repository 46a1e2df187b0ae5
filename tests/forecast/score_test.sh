#!/bin/bash
# score_test.sh BUILD   plays simulated users to the forecast and holds it to the thresholds of score.py.
# BRIMWATCH_TRACE_SEEDS names other users, as FIRST-LAST.
set -euo pipefail
tools=$(cd "$(dirname "${BASH_SOURCE[0]}")/../../tools/forecast" && pwd)
replay=$1/tools/forecast/brimwatch-forecast-replay
seeds=${BRIMWATCH_TRACE_SEEDS:-8000-8001}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir "$work/forecasts"
printf '%s\n' usual light heavy lumps days |
    xargs -P "$(nproc)" -I{} "$tools/simulate-users.py" --population {} --seeds "$seeds" --every 300 --out "$work/traces"
for trace in "$work"/traces/*.csv; do
    "$replay" <"$trace" >"$work/forecasts/${trace##*/}"
done
"$tools/score.py" --check "$work/traces" "$work/forecasts"
