#!/usr/bin/env bash
# scripts/screenshots.sh [phone|desktop|all] [light|dark|all]: runs the GUI under Xvfb against
# feeds served on 127.0.0.1, phone-sized (480x800) and desktop-sized (1200x800), in the light and
# the dark theme, and takes a screenshot of each state a user meets: the welcome screen, a few
# hundred channels before, during and after a refresh of all of them (one channel fails), the
# menu, the categories, a channel, a story, the wizard and the dialogs. Beside the channels, the
# channel and the story it writes what a screen reader hears there (the accessible tree read
# through AT-SPI). Everything lands in build-shots/, named size-theme-state.
set -euo pipefail
source "$(dirname "$0")/common.sh"
qf_ensure_packages "${QF_PACKAGES[@]}" xvfb xauth xdotool imagemagick dbus at-spi2-core \
  python3-pyatspi
QF_BUILD_TARGETS="quillfeed quillfeed-cli" qf_build_main
sizes=${1:-all}
themes=${2:-all}
[ "$sizes" = all ] && sizes="phone desktop"
[ "$themes" = all ] && themes="light dark"
out="$QF_ROOT/build-shots"
work=$(mktemp -d)
trap 'kill $(jobs -p) 2>/dev/null || true; rm -rf "$work"' EXIT
mkdir -p "$out" "$work/feeds" "$work/cards"
export QUILLFEED_CARDS="$work/cards"

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

# The steps run inside the virtual display and a session bus of their own, from a file: a shell
# between here and there would drop exported functions.
cat >"$work/steps.sh" <<'STEPS'
shoot() { sleep "${2:-1.5}"; import -window root "$out/$prefix-$1.png"; echo "$out/$prefix-$1.png"; }
hear() { /usr/bin/python3 "$QF_ROOT/scripts/accessible_tree.py" >"$out/$prefix-$1.txt" 2>&1 || true; }
/usr/libexec/at-spi-bus-launcher --launch-immediately &
export QT_LINUX_ACCESSIBILITY_ALWAYS_ON=1
"$QF_ROOT/build/quillfeed" &
gui=$!
sleep 3
# Without a window manager the window keeps the size it asked for: give it the screen's.
xdotool search --sync --name '^Quillfeed$' windowmove 0 0 windowsize "$width" "$height" \
  windowfocus 2>/dev/null || true
sleep 1
case $1 in
welcome)
  shoot welcome 0
  ;;
channels)
  shoot channels 0
  hear channels
  xdotool key F2; shoot menu 1
  xdotool key Down Return; shoot refreshing 0.3
  sleep 25; shoot refreshed 0
  xdotool key F2 Down Down Down Right Right; shoot categories 1
  xdotool key Escape Escape Escape
  xdotool key Down Return; shoot channel 2
  hear channel
  xdotool key Down Return; shoot story 2
  hear story
  xdotool key Escape Escape; sleep 1
  xdotool key F2 Down Down Down Down Down Down Return; shoot properties 2
  xdotool key Escape; sleep 1
  xdotool key F2 Down Down Down Down Down Down Down Down Down Down Return; shoot options 2
  xdotool key Escape; sleep 1
  xdotool key F2 Down Down Return; shoot sync 1
  xdotool key Return; sleep 1
  xdotool key F1; shoot wizard 2
  xdotool key Escape
  ;;
esac
kill "$gui"
wait "$gui" 2>/dev/null || true
STEPS
export out QF_ROOT
for size in $sizes; do
  case $size in
  phone) width=480 height=800 ;;
  desktop) width=1200 height=800 ;;
  *) echo "unknown size $size (phone, desktop)" >&2; exit 2 ;;
  esac
  for theme in $themes; do
    case $theme in
    light) number=1 ;;
    dark) number=2 ;;
    *) echo "unknown theme $theme (light, dark)" >&2; exit 2 ;;
    esac
    export prefix="$size-$theme" width height
    export XDG_CONFIG_HOME="$work/config-$prefix" QUILLFEED_HOME="$work/home-$prefix"
    mkdir -p "$XDG_CONFIG_HOME/Orvelcraft"
    printf '[Options]\nTheme=%s\n' "$number" >"$XDG_CONFIG_HOME/Orvelcraft/Quillfeed.conf"
    xvfb-run -a -s "-screen 0 ${width}x${height}x24" dbus-run-session -- bash "$work/steps.sh" welcome
    "$QF_ROOT/build/quillfeed-cli" import "$work/channels.opml" >/dev/null
    xvfb-run -a -s "-screen 0 ${width}x${height}x24" dbus-run-session -- bash "$work/steps.sh" channels
  done
done
