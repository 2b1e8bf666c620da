#!/usr/bin/env bash
# bench/RefreshBench.sh QUILLFEED_CLI: times `quillfeed-cli refresh --all` and Debian's newsboat
# (`newsboat -x reload`, default settings, fresh cache) on the same 100 feeds of 50 stories
# served from 127.0.0.1, with no added latency and with 50 ms per request. Reports the median
# wall time and peak memory of each over QF_BENCH_RUNS runs (default 5).
set -euo pipefail
cli=$(realpath "$1")
here=$(cd "$(dirname "$0")" && pwd)
feeds=100
items=50
runs=${QF_BENCH_RUNS:-5}

work=$(mktemp -d)
server=""
cleanup() {
  [ -n "$server" ] && kill "$server" 2>/dev/null && wait "$server" 2>/dev/null
  rm -rf "$work"
}
trap cleanup EXIT

# measure OUTFILE COMMAND...: runs the command, appends "seconds kilobytes" to OUTFILE.
measure() {
  local out=$1 start end
  shift
  start=$EPOCHREALTIME
  /usr/bin/time -f "%M" -o "$work/rss" "$@" >"$work/log" 2>&1 ||
    { echo "failed: $*" >&2; tail -5 "$work/log" >&2; exit 1; }
  end=$EPOCHREALTIME
  echo "$(awk -v a="$start" -v b="$end" 'BEGIN {print b - a}') $(cat "$work/rss")" >>"$out"
}

# median FILE COLUMN
median() {
  sort -g -k"$2" "$1" | awk -v c="$2" '{v[NR]=$c} END {print v[int((NR+1)/2)]}'
}

run_quillfeed() {
  local home=$work/qf-$1
  mkdir -p "$home"
  env QUILLFEED_HOME="$home/data" XDG_CONFIG_HOME="$home/config" "$cli" import "$work/feeds.opml" \
    >/dev/null
  measure "$work/quillfeed.times" env QUILLFEED_HOME="$home/data" \
    XDG_CONFIG_HOME="$home/config" "$cli" refresh --all
  rm -rf "$home"
}

run_newsboat() {
  local home=$work/nb-$1
  mkdir -p "$home"
  measure "$work/newsboat.times" env HOME="$home" XDG_CONFIG_HOME="$home/config" \
    XDG_DATA_HOME="$home/data" newsboat -u "$work/urls" -c "$home/cache.db" -x reload
  rm -rf "$home"
}

for latency in 0 50; do
  exec 3< <(python3 "$here/feed_server.py" "$feeds" "$items" "$latency")
  server=$!
  read -r port <&3
  : >"$work/urls"
  opml='<?xml version="1.0"?><opml version="1.0"><body><outline text="Bench">'
  for ((n = 0; n < feeds; n++)); do
    echo "http://127.0.0.1:$port/feed$n.xml" >>"$work/urls"
    opml+="<outline text=\"Feed $n\" xmlUrl=\"http://127.0.0.1:$port/feed$n.xml\"/>"
  done
  echo "$opml</outline></body></opml>" >"$work/feeds.opml"
  rm -f "$work/quillfeed.times" "$work/newsboat.times"
  for ((run = 0; run < runs; run++)); do
    run_quillfeed "$run"
    run_newsboat "$run"
  done
  kill "$server" && wait "$server" 2>/dev/null || true
  server=""

  qf_time=$(median "$work/quillfeed.times" 1)
  qf_rss=$(median "$work/quillfeed.times" 2)
  nb_time=$(median "$work/newsboat.times" 1)
  nb_rss=$(median "$work/newsboat.times" 2)
  awk -v f="$feeds" -v i="$items" -v l="$latency" -v qt="$qf_time" -v qm="$qf_rss" \
    -v nt="$nb_time" -v nm="$nb_rss" 'BEGIN {
      printf "%d feeds x %d stories, %2d ms latency: quillfeed-cli %.3f s %d KB | newsboat %.3f s %d KB | time ratio %.2f, memory ratio %.2f\n",
        f, i, l, qt, qm, nt, nm, qt / nt, qm / nm }'
done
