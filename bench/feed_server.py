#!/usr/bin/env python3
"""Serves generated RSS feeds on 127.0.0.1 for the refresh benchmark.

Usage: feed_server.py FEEDS ITEMS LATENCY_MS

Answers /feedN.xml (N from 0 to FEEDS-1), each a feed of ITEMS stories, after waiting
LATENCY_MS milliseconds per request. Prints the port it listens on, then serves until killed.
"""

import sys
import time
from http.server import BaseHTTPRequestHandler, ThreadingHTTPServer


def make_feed(number, items):
    stories = []
    for i in range(items):
        stories.append(
            f"<item><title>Story {i} of feed {number}</title>"
            f"<link>http://news.example/{number}/{i}</link>"
            f"<guid>http://news.example/{number}/{i}</guid>"
            f"<pubDate>Fri, 15 Mar 2024 {i % 24:02d}:{i % 60:02d}:00 GMT</pubDate>"
            f"<description>&lt;p&gt;{'A paragraph of story text. ' * 12}&lt;/p&gt;</description>"
            "</item>")
    return (f'<?xml version="1.0" encoding="UTF-8"?><rss version="2.0"><channel>'
            f"<title>Feed {number}</title><link>http://news.example/{number}</link>"
            f"<description>Feed number {number}</description>"
            + "".join(stories) + "</channel></rss>").encode()


def main():
    feeds, items, latency = int(sys.argv[1]), int(sys.argv[2]), int(sys.argv[3]) / 1000.0
    bodies = {f"/feed{n}.xml": make_feed(n, items) for n in range(feeds)}

    class Handler(BaseHTTPRequestHandler):
        protocol_version = "HTTP/1.1"
        # Head and body leave in separate writes; with Nagle's algorithm a kept-alive client
        # would wait for its delayed acknowledgement on every answer.
        disable_nagle_algorithm = True

        def log_message(self, *args):
            pass

        def do_GET(self):
            if latency:
                time.sleep(latency)
            body = bodies.get(self.path)
            self.send_response(200 if body else 404)
            body = body or b"not found"
            self.send_header("Content-Type", "application/rss+xml")
            self.send_header("Content-Length", str(len(body)))
            self.end_headers()
            self.wfile.write(body)

    class Server(ThreadingHTTPServer):
        daemon_threads = True
        request_queue_size = 128

    server = Server(("127.0.0.1", 0), Handler)
    print(server.server_address[1], flush=True)
    server.serve_forever()


if __name__ == "__main__":
    main()
