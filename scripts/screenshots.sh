#!/usr/bin/env bash
# scripts/screenshots.sh [WIDTHxHEIGHT]: runs the GUI under Xvfb against feeds served on
# 127.0.0.1 and takes a screenshot of each state a user meets first: the welcome screen, a few
# hundred channels before and during and after a refresh of all of them (one channel fails),
# and a channel and a story. The pictures land in build-shots/.
set -euo pipefail
source "$(dirname "$0")/common.sh"
qf_ensure_packages "${QF_PACKAGES[@]}" xvfb xauth xdotool imagemagick
qf_build_main
size=${1:-480x800}
out="$QF_ROOT/build-shots"
work=$(mktemp -d)
trap 'kill $(jobs -p) 2>/dev/null || true; rm -rf "$work"' EXIT
mkdir -p "$out" "$work/feeds" "$work/cards"
export XDG_CONFIG_HOME="$work/config" QUILLFEED_HOME="$work/home" QUILLFEED_CARDS="$work/cards"

port=$(python3 -c 'import socket; s=socket.socket(); s.bind(("127.0.0.1",0)); print(s.getsockname()[1])')
python3 - "$work" "$port" <<'PY'
import sys
work, port = sys.argv[1], sys.argv[2]
topics = ["World", "Science", "Sports", "Business", "Technology", "Culture", "Travel", "Food",
          "Health", "Weather"]
outlines = []
for c, topic in enumerate(topics):
    channels = []
    for n in range(30):
        name = f"{topic.lower()}{n}"
        title = f"{topic} Daily {n + 1}" if n % 7 else f"The {topic} Review &#8212; a weekly digest of long reads {n + 1}"
        path = "missing" if (c, n) == (9, 1) else name
        channels.append(f'<outline text="{title.replace("&", "&amp;")}" xmlUrl="http://127.0.0.1:{port}/{path}.xml"/>')
        items = "".join(
            f"<item><title>{topic} story {i + 1}: what happened today</title>"
            f"<link>http://127.0.0.1:{port}/{name}/{i}</link>"
            f"<description>&lt;p&gt;The full text of story {i + 1} about {topic.lower()}, "
            f"with enough words to wrap over several lines on a narrow screen.&lt;/p&gt;</description>"
            f"<pubDate>Mon, 0{1 + i % 9} Jan 2024 10:00:00 GMT</pubDate></item>"
            for i in range(5 + (n * 7) % 40))
        with open(f"{work}/feeds/{name}.xml", "w") as feed:
            feed.write(f'<?xml version="1.0"?><rss version="2.0"><channel><title>{topic} {n}</title>'
                       f"<link>http://127.0.0.1:{port}/</link>{items}</channel></rss>")
    outlines.append(f'<outline text="{topic}">{"".join(channels)}</outline>')
with open(f"{work}/channels.opml", "w") as opml:
    opml.write(f'<?xml version="1.0"?><opml version="1.0"><head/><body>{"".join(outlines)}</body></opml>')
PY
python3 -m http.server --bind 127.0.0.1 "$port" --directory "$work/feeds" >/dev/null 2>&1 &

# The steps run inside the virtual display, from a file: a shell between here and there would
# drop exported functions.
cat >"$work/steps.sh" <<'STEPS'
shoot() { sleep "${2:-1.5}"; import -window root "$out/$1.png"; echo "$out/$1.png"; }
"$QF_ROOT/build/quillfeed" &
gui=$!
sleep 3
case $1 in
welcome)
  shoot welcome 0
  ;;
channels)
  shoot channels 0
  xdotool key F2; shoot menu 1
  xdotool key Down Return; shoot refreshing 0.3
  sleep 25; shoot refreshed 0
  xdotool key F2 Down Down Right Right; shoot categories 1
  xdotool key Escape Escape Escape
  xdotool key Return; shoot channel 2
  xdotool key Return; shoot story 2
  ;;
esac
kill "$gui"
wait "$gui" 2>/dev/null || true
STEPS
export out QF_ROOT
xvfb-run -a -s "-screen 0 ${size}x24" bash "$work/steps.sh" welcome
"$QF_ROOT/build/quillfeed-cli" import "$work/channels.opml" >/dev/null
xvfb-run -a -s "-screen 0 ${size}x24" bash "$work/steps.sh" channels
