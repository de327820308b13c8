#!/bin/sh
# Measures the release program: beside the other log analysers that are installed, whole runs
# beside `wc -l`, then the stages and structures apart.
# Usage: bench/run.sh BUILD-FOLDER [LINES]
set -eu

build=$1
lines=${2:-4000000}
here=$(dirname "$0")

python3 "$here/rivals.py" --build "$build"

python3 "$here/whole_runs.py" --build "$build" --lines "$lines"

python3 "$here/filters_bench.py" --build "$build" --lines $((lines / 4))

month=$(date +%Y-%m)
stage_logs=$build/bench/stages-$month
if [ ! -d "$stage_logs" ]; then
  "$build/sample_logs" bench "$stage_logs" --lines 1000000 --visitors 50000 --month "$month"
fi
HITWICK_BENCH_LOGS=$stage_logs HITWICK_BENCH_MONTH=$month "$build/hitwick_bench"
