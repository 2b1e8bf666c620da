#!/usr/bin/env bash
# bench/RefreshBench.sh QUILLFEED_CLI: refreshes the same 100 feeds of 50 stories with
# `quillfeed-cli refresh --all` and with Debian's newsboat (`newsboat -x reload`, once with
# `reload-threads 4`, once with its defaults), in turns, each from a fresh cache and then twice
# more over the unchanged feeds. The feeds come from bench/feed_server.py on 127.0.0.1 ..
# 127.0.0.25 (four feeds per address), with no added latency and with 50 ms per request; the
# server answers conditional requests with 304 and compresses when asked, and counts what each
# refresh cost it.
#
# Prints, per latency, a table of each program's refreshes (requests, conditional requests,
# 304 answers, body and wire bytes sent by the server, most connections open to one address,
# median wall time and peak memory over QF_BENCH_RUNS runs, default 3), then quillfeed's
# figures beside the targets it has to meet. QF_BENCH_NEWSBOAT_DEFAULTS=0 leaves out newsboat
# with its defaults, whose one download at a time makes it the slow part of the run.
# Nothing leaves the machine: every address is a loopback one.
set -euo pipefail
cli=$(realpath "$1")
here=$(cd "$(dirname "$0")" && pwd)
feeds=100
items=50
hosts=25
runs=${QF_BENCH_RUNS:-3}
latencies=(0 50)
programs=(quillfeed newsboat-4)
[ "${QF_BENCH_NEWSBOAT_DEFAULTS:-1}" = 0 ] || programs+=(newsboat)
# newsboat keeps the validators of an answer only from its third refresh on, so each program
# refreshes three times; its third is "newsboat's conditional refresh".
refreshes=(first second third)

work=$(mktemp -d)
cleanup() {
  if [ -n "${SERVER_PID:-}" ]; then
    kill "$SERVER_PID" 2>/dev/null || true
    wait "$SERVER_PID" 2>/dev/null || true
  fi
  rm -rf "$work"
}
trap cleanup EXIT

# --- the feed server ---------------------------------------------------------------------------

# Starts feed_server.py as a co-process: its standard input takes commands, its output answers.
# Sets port and uncompressed (the sum of the feeds' sizes before compression).
start_server() {
  coproc SERVER { exec python3 "$here/feed_server.py" "$feeds" "$items" "$hosts"; }
  read -r port uncompressed <&"${SERVER[0]}"
}

# server COMMAND: sends one command to the feed server and prints its one-line answer.
server() {
  local reply
  echo "$1" >&"${SERVER[1]}"
  read -r reply <&"${SERVER[0]}"
  echo "$reply"
}

# The address of feed N: feed_server.py hands feed N to host N % hosts + 1.
feed_url() {
  echo "http://127.0.0.$(($1 % hosts + 1)):$port/feed$1.xml"
}

# Writes the subscriptions in each program's form: an OPML file to import and a newsboat urls file.
write_subscriptions() {
  local n url opml='<?xml version="1.0"?><opml version="1.0"><body><outline text="Bench">'
  : >"$work/urls"
  for ((n = 0; n < feeds; n++)); do
    url=$(feed_url "$n")
    echo "$url" >>"$work/urls"
    opml+="<outline text=\"Feed $n\" xmlUrl=\"$url\"/>"
  done
  echo "$opml</outline></body></opml>" >"$work/feeds.opml"
}

# --- the programs ------------------------------------------------------------------------------

# prepare PROGRAM HOME: a fresh home with the subscriptions, nothing cached.
prepare() {
  local program=$1 home=$2
  rm -rf "$home"
  mkdir -p "$home/config" "$home/data"
  case $program in
  quillfeed)
    env QUILLFEED_HOME="$home/data" XDG_CONFIG_HOME="$home/config" "$cli" import \
      "$work/feeds.opml" >/dev/null
    ;;
  newsboat-4) echo "reload-threads 4" >"$home/newsboat.conf" ;;
  newsboat) : >"$home/newsboat.conf" ;;
  esac
}

# refresh_command PROGRAM HOME: prints the command line (one word a line) of a refresh of all.
refresh_command() {
  local program=$1 home=$2
  case $program in
  quillfeed)
    printf '%s\n' env QUILLFEED_HOME="$home/data" XDG_CONFIG_HOME="$home/config" "$cli" \
      refresh --all
    ;;
  newsboat*)
    # Its own config file, so that no ~/.newsboat of the user's changes what is measured.
    printf '%s\n' env HOME="$home" XDG_CONFIG_HOME="$home/config" XDG_DATA_HOME="$home/data" \
      newsboat -C "$home/newsboat.conf" -u "$work/urls" -c "$home/cache.db" -x reload
    ;;
  esac
}

# --- measuring ---------------------------------------------------------------------------------

# measure LATENCY PROGRAM REFRESH COMMAND...: runs one refresh and appends a record to
# $work/records: latency, program, refresh, seconds, peak kilobytes, then the server's counts.
measure() {
  local latency=$1 program=$2 refresh=$3 start end pair values=()
  shift 3
  server stats >/dev/null # starts the counts afresh
  start=$EPOCHREALTIME
  /usr/bin/time -f "%M" -o "$work/rss" "$@" >"$work/log" 2>&1 ||
    { echo "failed: $*" >&2; tail -5 "$work/log" >&2; exit 1; }
  end=$EPOCHREALTIME
  # "requests=100 conditional=0 ..." -> "100 0 ..." in the server's order of the counts.
  for pair in $(server stats); do values+=("${pair#*=}"); done
  echo "$latency $program $refresh $(awk -v a="$start" -v b="$end" 'BEGIN {print b - a}')" \
    "$(cat "$work/rss")" "${values[*]}" >>"$work/records"
}

# The columns of a record, as measure writes them.
columns=(latency program refresh seconds kb requests conditional not_modified body_bytes
  wire_bytes max_conns max_active)

# median LATENCY PROGRAM REFRESH COLUMN: the median of that column over the runs.
median() {
  local column i
  for i in "${!columns[@]}"; do [ "${columns[i]}" = "$4" ] && column=$((i + 1)); done
  awk -v l="$1" -v p="$2" -v r="$3" -v c="$column" '$1 == l && $2 == p && $3 == r {print $c}' \
    "$work/records" | sort -g | awk '{v[NR] = $1} END {print v[int((NR + 1) / 2)]}'
}

# run_all LATENCY: every program's three refreshes, QF_BENCH_RUNS times; the programs take turns,
# starting one later in each run, so that none always comes first after the server warmed up.
run_all() {
  local latency=$1 run i program home refresh
  local -a command
  server "latency $latency" >/dev/null
  for ((run = 0; run < runs; run++)); do
    for ((i = 0; i < ${#programs[@]}; i++)); do
      program=${programs[(run + i) % ${#programs[@]}]}
      home=$work/home-$program
      prepare "$program" "$home"
      mapfile -t command < <(refresh_command "$program" "$home")
      for refresh in "${refreshes[@]}"; do
        measure "$latency" "$program" "$refresh" "${command[@]}"
      done
    done
  done
}

# --- the report --------------------------------------------------------------------------------

# ratio A B: A / B to two places.
ratio() {
  awk -v a="$1" -v b="$2" 'BEGIN {if (b > 0) printf "%.2f", a / b; else print "-"}'
}

# report_table LATENCY: one row per program and refresh, each figure the median over the runs.
report_table() {
  local latency=$1 program refresh column row=()
  local format='%-10s %-7s %8s %7s %5s %9s %9s %5s %5s %7s %8s\n'
  echo
  echo "$feeds feeds x $items stories on 127.0.0.1..$hosts ($((feeds / hosts)) per address)," \
    "$latency ms added per request, median of $runs runs;"
  echo "the feeds uncompressed: $uncompressed bytes"
  # shellcheck disable=SC2059 # one format for the heading and the rows
  printf "$format" program refresh requests condit. 304s "body B" "wire B" conns busy "time s" \
    "peak KB"
  for program in "${programs[@]}"; do
    for refresh in "${refreshes[@]}"; do
      row=("$program" "$refresh")
      for column in requests conditional not_modified body_bytes wire_bytes max_conns max_active \
        seconds kb; do
        row+=("$(median "$latency" "$program" "$refresh" "$column")")
      done
      row[9]=$(printf '%.3f' "${row[9]}")
      # shellcheck disable=SC2059
      printf "$format" "${row[@]}"
    done
  done
  echo "condit.: requests with If-None-Match or If-Modified-Since; wire B: status lines, headers"
  echo "and bodies the server sent; conns / busy: most connections open / answers under way at"
  echo "once to one address; newsboat-4 has reload-threads 4, newsboat its defaults."
}

# target NAME VALUE GOAL: one line of the targets block.
target() {
  printf '  %-56s %-22s %s\n' "$1" "$2" "$3"
}

# report_targets LATENCY: quillfeed's figures that the targets name, beside each target.
report_targets() {
  local latency=$1 refresh qf_time requests limit
  echo "quillfeed against its targets, $latency ms:"
  target "first refresh wire bytes / uncompressed feeds" \
    "$(ratio "$(median "$latency" quillfeed first wire_bytes)" "$uncompressed")" \
    "target <= 0.30 (newsboat-4: $(ratio "$(median "$latency" newsboat-4 first wire_bytes)" \
      "$uncompressed"))"
  target "second refresh: conditional requests / 304s / body B" \
    "$(median "$latency" quillfeed second conditional) / $(median "$latency" quillfeed second \
      not_modified) / $(median "$latency" quillfeed second body_bytes)" "target 100 / 100 / 0"
  # newsboat's own conditional refresh is its third (see refreshes above).
  target "second refresh time / newsboat-4 third refresh time" \
    "$(ratio "$(median "$latency" quillfeed second seconds)" \
      "$(median "$latency" newsboat-4 third seconds)")" "target <= 0.50"
  [ "$latency" -gt 0 ] || return 0
  for refresh in first second; do
    qf_time=$(median "$latency" quillfeed "$refresh" seconds)
    requests=$(median "$latency" quillfeed "$refresh" requests)
    # Four connections at a time, each answer waiting the latency: the best a reader with four
    # parallel downloads can do.
    limit=$(awk -v n="$requests" -v l="$latency" 'BEGIN {printf "%.3f", n * l / 1000 / 4}')
    target "$refresh refresh time / limit ($requests x $latency ms / 4 = $limit s)" \
      "$(ratio "$qf_time" "$limit")" "target <= 1.20"
    target "$refresh refresh time / newsboat-4 $refresh refresh time" \
      "$(ratio "$qf_time" "$(median "$latency" newsboat-4 "$refresh" seconds)")" "target <= 0.80"
  done
}

start_server
write_subscriptions
for latency in "${latencies[@]}"; do
  run_all "$latency"
done
for latency in "${latencies[@]}"; do
  report_table "$latency"
  report_targets "$latency"
done
