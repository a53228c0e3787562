#!/usr/bin/env bash
# Runs fuzz targets one after the other, each for SECONDS (default 60),
# built with clang, libFuzzer, AddressSanitizer and UndefinedBehaviorSanitizer
# (the fuzz preset). New inputs go to build/fuzz/corpus/TARGET (the seed
# corpus in fuzz/TARGET/corpus is read, never written); a crash is left in
# build/fuzz/artifacts and ends the script with an error.
#   scripts/fuzz.sh [TARGET...|all] [SECONDS | runs=N]
# runs=N runs each target N inputs from a fixed seed instead of for a time:
# the same inputs every time, which is what the test command wants.
# Targets: request_parser profile_file scenario inserts chat_scanner
set -euo pipefail
cd "$(dirname "$0")/.."
all=(request_parser profile_file scenario inserts chat_scanner)
targets=()
seconds=60
runs=""
for arg in "$@"; do
  if [[ $arg =~ ^[0-9]+$ ]]; then seconds=$arg
  elif [[ $arg =~ ^runs=([0-9]+)$ ]]; then runs=${BASH_REMATCH[1]}
  elif [[ $arg == all ]]; then targets+=("${all[@]}")
  else targets+=("$arg"); fi
done
((${#targets[@]})) || targets=("${all[@]}")

cmake --preset fuzz >/dev/null
cmake --build --preset fuzz -j2 --target "${targets[@]/#/fuzz_}" >/dev/null
mkdir -p build/fuzz/artifacts
for t in "${targets[@]}"; do
  work=build/fuzz/corpus/$t
  mkdir -p "$work"
  if [[ -n $runs ]]; then
    bound=(-runs="$runs" -seed=1)
    echo "=== fuzz $t for $runs inputs"
  else
    bound=(-max_total_time="$seconds")
    echo "=== fuzz $t for ${seconds}s"
  fi
  log=build/fuzz/$t.log
  if ! build/fuzz/fuzz/fuzz_$t "$work" "fuzz/$t/corpus" \
      -dict="fuzz/$t.dict" "${bound[@]}" -timeout=10 \
      -rss_limit_mb=2048 -max_len=4096 -print_final_stats=1 \
      -artifact_prefix="build/fuzz/artifacts/$t-" >"$log" 2>&1; then
    tail -40 "$log"
    echo "fuzz $t: FAILED (input in build/fuzz/artifacts)" >&2
    exit 1
  fi
  # Executions, coverage and corpus at the end of the run.
  grep -E '^#[0-9]+.*(DONE|pulse|NEW|REDUCE)' "$log" | tail -1
  grep -E 'stat::number_of_executed_units|stat::peak_rss_mb' "$log" || true
done
