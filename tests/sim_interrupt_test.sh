#!/usr/bin/env bash
# quorvex-sim stopped by SIGINT or SIGTERM in the middle of a run removes
# its temporary folder, as a run that ends does, and ends by that signal.
#   sim_interrupt_test.sh QUORVEX_SIM SCENARIO WORK
set -uo pipefail
sim=$1 scenario=$2 work=$3
status=0
for sig in INT TERM; do
  tmp=$work/tmp-$sig
  rm -rf "$tmp" && mkdir -p "$tmp"
  TMPDIR=$tmp "$sim" "$scenario" --realtime --out "$work/interrupt-$sig.jsonl" &
  pid=$!
  # Wait (up to 10 s) for the run's folder to appear, then signal it.
  for _ in $(seq 100); do
    compgen -G "$tmp/quorvex-sim-*" >/dev/null && break
    sleep 0.1
  done
  if ! compgen -G "$tmp/quorvex-sim-*" >/dev/null; then
    echo "SIG$sig: the run made no temporary folder"; status=1
  fi
  sleep 0.5
  kill -"$sig" "$pid"
  wait "$pid"; rc=$?
  want=$((128 + $(kill -l "$sig")))
  [[ $rc == "$want" ]] || { echo "SIG$sig: exit status $rc, wanted $want"; status=1; }
  left=$(ls -A "$tmp")
  [[ -z $left ]] || { echo "SIG$sig: left behind: $left"; status=1; }
  rm -rf "$tmp"
done
exit $status
