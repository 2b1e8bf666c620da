#!/usr/bin/env python3
"""Serves generated RSS feeds from several loopback addresses for the refresh benchmark.

Usage: feed_server.py FEEDS ITEMS HOSTS

Listens on one port on 127.0.0.1 .. 127.0.0.HOSTS and answers /feedN.xml (N from 0 to FEEDS-1),
each a feed of ITEMS stories. Host 127.0.0.K serves the feeds N with N % HOSTS == K - 1, so
every host has its share and a reader's per-host limit matters as it would on the real web.

Answers behave like a well-run feed server's: every feed has a weak ETag with a space in it and
a Last-Modified date; a request whose If-None-Match (or, without it, If-Modified-Since) matches
gets 304 and no body; a request that accepts gzip gets the body compressed.

Prints "PORT UNCOMPRESSED_BYTES" (the port and the sum of the feeds' uncompressed sizes), then
reads commands on standard input, one a line, answering each with one line:
  latency MS   every later request waits MS milliseconds before its answer; answers "ok"
  stats        answers the counts since the last "stats" and starts them again:
               requests=.. conditional=.. not_modified=.. body_bytes=.. wire_bytes=..
               max_conns=.. max_active=..
               (conditional requests carry If-None-Match or If-Modified-Since; wire
               bytes are status line, headers and bodies as sent; max_conns is the most
               connections open at once to one address, max_active the most answers under way
               at once on one address)
Ends when its standard input closes.
"""

import email.utils
import gzip
import hashlib
import random
import sys
import threading
import time
from http.server import BaseHTTPRequestHandler, ThreadingHTTPServer

LAST_MODIFIED = "Fri, 15 Mar 2024 12:00:00 GMT"


# Story text is drawn from a vocabulary of made-up words, so that it compresses about as well as
# real prose does; one sentence said over and over would make compression look ten times better.
def make_vocabulary():
    rng = random.Random(0)
    return ["".join(rng.choice("aeiou" if k % 2 else "bcdfghklmnprstvw")
                    for k in range(rng.randint(2, 10))) for _ in range(2000)]


VOCABULARY = make_vocabulary()


# Some words are far more common than others, as in any language.
WEIGHTS = [1 / (rank + 1) ** 1.2 for rank in range(len(VOCABULARY))]


def story_text(rng, words):
    return " ".join(rng.choices(VOCABULARY, WEIGHTS, k=words)).capitalize() + "."


def make_feed(number, items):
    # Seeded by the feed's number: the same feeds, byte for byte, in every run.
    rng = random.Random(number)
    stories = []
    for i in range(items):
        stories.append(
            f"<item><title>{story_text(rng, 6)}</title>"
            f"<link>http://news.example/{number}/{i}</link>"
            f"<guid>http://news.example/{number}/{i}</guid>"
            f"<pubDate>Fri, 15 Mar 2024 {i % 24:02d}:{i % 60:02d}:00 GMT</pubDate>"
            f"<description>&lt;p&gt;{story_text(rng, 45)}&lt;/p&gt;&lt;p&gt;"
            f"{story_text(rng, 45)}&lt;/p&gt;</description>"
            "</item>")
    return (f'<?xml version="1.0" encoding="UTF-8"?><rss version="2.0"><channel>'
            f"<title>Feed {number}</title><link>http://news.example/{number}</link>"
            f"<description>Feed number {number}</description>"
            + "".join(stories) + "</channel></rss>").encode()


class Feed:
    def __init__(self, body):
        self.body = body
        # mtime=0 keeps the compressed bytes the same from one run to the next.
        self.gzipped = gzip.compress(body, mtime=0)
        # Weak, quoted and with a space: readers must echo it byte for byte.
        self.etag = f'W/"v1 {hashlib.sha1(body).hexdigest()[:12]}"'


class Stats:
    """Counts shared by every handler thread."""

    def __init__(self):
        self.lock = threading.Condition()
        self.open = {}
        self.active = {}
        self.reset()

    def reset(self):
        self.requests = self.conditional = self.not_modified = self.body_bytes = self.wire_bytes = 0
        self.max_conns = self.max_active = 0

    def take(self):
        with self.lock:
            # The client has exited, but the threads serving its connections may not have
            # seen them close yet; they would count towards the next client's peak.
            self.lock.wait_for(lambda: not any(self.open.values()), timeout=5)
            line = (f"requests={self.requests} conditional={self.conditional} "
                    f"not_modified={self.not_modified} "
                    f"body_bytes={self.body_bytes} wire_bytes={self.wire_bytes} "
                    f"max_conns={self.max_conns} max_active={self.max_active}")
            self.reset()
        return line

    def change(self, table, host, delta):
        with self.lock:
            table[host] = table.get(host, 0) + delta
            if table is self.open:
                self.max_conns = max(self.max_conns, table[host])
                self.lock.notify_all()
            else:
                self.max_active = max(self.max_active, table[host])

    def add(self, **counts):
        with self.lock:
            for name, value in counts.items():
                setattr(self, name, getattr(self, name) + value)


class CountingWriter:
    """Wraps a connection's writer so that every byte sent is counted, headers included."""

    def __init__(self, inner, stats):
        self.inner, self.stats = inner, stats

    def write(self, data):
        # Counted before sending: the client may read the last byte and exit, and the script
        # ask for the counts, before this thread runs again.
        self.stats.add(wire_bytes=len(data))
        return self.inner.write(data)

    def __getattr__(self, name):
        return getattr(self.inner, name)


def accepts_gzip(header):
    """Whether an Accept-Encoding header allows gzip (named, or "*", and not at q=0)."""
    for part in header.split(","):
        name, _, params = part.strip().partition(";")
        if name.strip().lower() in ("gzip", "x-gzip", "*"):
            quality = params.strip().lower()
            return not (quality.startswith("q=") and float(quality[2:] or 0) == 0)
    return False


def not_modified(headers, feed):
    """Whether the request's validators match the feed; If-None-Match wins when both are sent."""
    if_none_match = headers.get("If-None-Match")
    if if_none_match is not None:
        # Weak comparison, as a GET allows: the W/ prefix does not matter.
        tags = [t.strip().removeprefix("W/") for t in if_none_match.split(",")]
        return "*" in tags or feed.etag.removeprefix("W/") in tags
    since = headers.get("If-Modified-Since")
    if since is None:
        return False
    try:
        return email.utils.parsedate_to_datetime(since) >= email.utils.parsedate_to_datetime(
            LAST_MODIFIED)
    except (TypeError, ValueError):
        return False


def make_handler(feeds, stats, settings):
    class Handler(BaseHTTPRequestHandler):
        protocol_version = "HTTP/1.1"
        # Head and body leave in separate writes; with Nagle's algorithm a kept-alive client
        # would wait for its delayed acknowledgement on every answer.
        disable_nagle_algorithm = True

        def log_message(self, *args):
            pass

        def setup(self):
            super().setup()
            self.wfile = CountingWriter(self.wfile, stats)
            self.host = self.connection.getsockname()[0]
            stats.change(stats.open, self.host, +1)

        def finish(self):
            try:
                super().finish()
            finally:
                stats.change(stats.open, self.host, -1)

        def do_GET(self):
            stats.change(stats.active, self.host, +1)
            try:
                self.answer()
            finally:
                stats.change(stats.active, self.host, -1)

        def answer(self):
            if settings["latency"]:
                time.sleep(settings["latency"])
            feed = feeds.get((self.host, self.path))
            if feed is None:
                self.send(404, [("Content-Type", "text/plain")], b"not found")
            elif not_modified(self.headers, feed):
                self.send(304, [("ETag", feed.etag), ("Last-Modified", LAST_MODIFIED)], None)
            else:
                headers = [("Content-Type", "application/rss+xml"), ("Vary", "Accept-Encoding"),
                           ("ETag", feed.etag), ("Last-Modified", LAST_MODIFIED)]
                body = feed.body
                if accepts_gzip(self.headers.get("Accept-Encoding", "")):
                    headers.append(("Content-Encoding", "gzip"))
                    body = feed.gzipped
                self.send(200, headers, body)

        def send(self, status, headers, body):
            """Sends one answer; a body of None means none at all, as a 304 has."""
            # Counted before sending, for the same reason as the wire bytes.
            conditional = "If-None-Match" in self.headers or "If-Modified-Since" in self.headers
            stats.add(requests=1, conditional=int(conditional), not_modified=int(status == 304),
                      body_bytes=len(body) if body else 0)
            self.send_response(status)
            for name, value in headers:
                self.send_header(name, value)
            if body is not None:
                self.send_header("Content-Length", str(len(body)))
            self.end_headers()
            if body:
                self.wfile.write(body)

    return Handler


class Server(ThreadingHTTPServer):
    daemon_threads = True
    request_queue_size = 128


def listen_everywhere(hosts, handler):
    """Binds 127.0.0.1 on a free port, then the other addresses on the same port; starts over
    when another program holds that port on one of them."""
    while True:
        servers = [Server(("127.0.0.1", 0), handler)]
        port = servers[0].server_address[1]
        try:
            for k in range(2, hosts + 1):
                servers.append(Server((f"127.0.0.{k}", port), handler))
            return port, servers
        except OSError:
            for server in servers:
                server.server_close()


def main():
    count, items, hosts = int(sys.argv[1]), int(sys.argv[2]), int(sys.argv[3])
    feeds = {(f"127.0.0.{n % hosts + 1}", f"/feed{n}.xml"): Feed(make_feed(n, items))
             for n in range(count)}
    stats = Stats()
    settings = {"latency": 0.0}
    port, servers = listen_everywhere(hosts, make_handler(feeds, stats, settings))
    for server in servers:
        threading.Thread(target=server.serve_forever, daemon=True).start()
    print(port, sum(len(feed.body) for feed in feeds.values()), flush=True)

    for line in sys.stdin:
        command, _, argument = line.strip().partition(" ")
        if command == "latency":
            settings["latency"] = int(argument) / 1000.0
            print("ok", flush=True)
        elif command == "stats":
            print(stats.take(), flush=True)
        else:
            print(f"unknown command: {line.strip()}", flush=True)


if __name__ == "__main__":
    main()
