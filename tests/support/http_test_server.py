#!/usr/bin/env python3
"""A local HTTP and HTTPS server for the network tests.

Usage: http_test_server.py [NAME=CERT_FILE:KEY_FILE ...]

Listens on 127.0.0.1 only: one plain HTTP listener and one HTTPS listener per certificate given,
each on a port the system picks. Prints "NAME PORT" for every listener ("http" for the plain one),
then "ready". Then reads commands from standard input, one per line, and answers each with one
line; the end of input ends the server. A command is a word followed by KEY=VALUE fields, every
value in hexadecimal digits:

  route path=/feed status=200 mode=fixed body=... header=Name:value auth=user:password
        gzip=1 delay=0.2
        modes: fixed (Content-Length), close (no length, the connection closes after the body),
        endless (a small block every few milliseconds, never ending),
        silent (the request is read and never answered)
        A route with an ETag or Last-Modified header answers 304 to a request that sends it
        back (If-None-Match, If-Modified-Since); gzip compresses the body when the request asks
        for it; delay waits that many seconds before answering.
  listen address=127.0.0.2
                         -> starts another plain listener on that address, answers its port
  peak address=127.0.0.1 -> the most connections that address had open at once
  hits path=/feed        -> how many requests that path had
  await path=/feed count=2
                         -> waits (at most 30 s) until that path had as many requests, then
                            answers how many it had
  connections            -> how many connections were accepted
  request path=/feed     -> the head of the last request to that path, in hexadecimal digits
"""

import base64
import gzip
import ssl
import sys
import threading
import time
from http.server import BaseHTTPRequestHandler, ThreadingHTTPServer

lock = threading.Lock()
arrived = threading.Condition(lock)
routes = {}
hits = {}
heads = {}
connections = 0
open_connections = {}
peak_connections = {}
never = threading.Event()
ENDLESS_BLOCK = b"x" * 1024
ENDLESS_PAUSE = 0.005
AWAIT_LIMIT = 30


class RecordingReader:
    """Keeps the raw lines a request head was read from."""

    def __init__(self, stream):
        self.stream = stream
        self.lines = []

    def readline(self, *args):
        line = self.stream.readline(*args)
        self.lines.append(line)
        return line

    def read(self, *args):
        return self.stream.read(*args)

    def take(self):
        head, self.lines = b"".join(self.lines), []
        return head


class Handler(BaseHTTPRequestHandler):
    protocol_version = "HTTP/1.1"

    def setup(self):
        global connections
        if self.server.context is not None:
            # The handshake happens here, on the connection's own thread.
            self.request = self.server.context.wrap_socket(self.request, server_side=True)
        super().setup()
        self.rfile = RecordingReader(self.rfile)
        address = self.server.server_address[0]
        with lock:
            connections += 1
            open_connections[address] = open_connections.get(address, 0) + 1
            peak_connections[address] = max(peak_connections.get(address, 0),
                                            open_connections[address])

    def finish(self):
        try:
            super().finish()
        finally:
            address = self.server.server_address[0]
            with lock:
                open_connections[address] -= 1

    def log_message(self, *args):
        pass

    def do_GET(self):
        with lock:
            hits[self.path] = hits.get(self.path, 0) + 1
            heads[self.path] = self.rfile.take()
            route = routes.get(self.path)
            arrived.notify_all()
        if route is None:
            self.answer(404, [], b"no such route", "fixed")
        elif route["auth"] and self.headers.get("Authorization") != route["auth"]:
            self.answer(401, [("WWW-Authenticate", 'Basic realm="test"')], b"", "fixed")
        elif route["mode"] == "silent":
            never.wait()
        else:
            time.sleep(route["delay"])
            self.answer(*self.shaped(route), route["mode"])

    def shaped(self, route):
        """The status, headers and body as the request's own headers shape them."""
        headers = dict((name.lower(), value) for name, value in route["headers"])
        for validator, header in (("if-none-match", "etag"),
                                  ("if-modified-since", "last-modified")):
            if header in headers and self.headers.get(validator) == headers[header]:
                return 304, route["headers"], b""
        if route["gzip"] and "gzip" in self.headers.get("Accept-Encoding", ""):
            return (route["status"], route["headers"] + [("Content-Encoding", "gzip")],
                    gzip.compress(route["body"]))
        return route["status"], route["headers"], route["body"]

    def answer(self, status, headers, body, mode):
        self.send_response(status)
        for name, value in headers:
            self.send_header(name, value)
        if mode == "fixed":
            self.send_header("Content-Length", str(len(body)))
        else:
            self.send_header("Connection", "close")
            self.close_connection = True
        self.end_headers()
        try:
            self.wfile.write(body)
            self.wfile.flush()
            while mode == "endless":
                time.sleep(ENDLESS_PAUSE)
                self.wfile.write(ENDLESS_BLOCK)
                self.wfile.flush()
        except (BrokenPipeError, ConnectionResetError, ssl.SSLError):
            self.close_connection = True


def add_route(fields):
    route = {"path": "/", "status": 200, "mode": "fixed", "body": b"", "headers": [],
             "auth": None, "gzip": False, "delay": 0.0}
    for key, value in fields:
        if key == "header":
            route["headers"].append(tuple(value.decode().split(":", 1)))
        elif key == "auth":
            route["auth"] = "Basic " + base64.b64encode(value).decode()
        elif key == "status":
            route[key] = int(value)
        elif key == "gzip":
            route[key] = value == b"1"
        elif key == "delay":
            route[key] = float(value)
        else:
            route[key] = value if key == "body" else value.decode()
    with lock:
        routes[route["path"]] = route
    return "ok"


def run_command(line):
    command, *words = line.split()
    fields = [(key, bytes.fromhex(value)) for key, value in (w.split("=", 1) for w in words)]
    if command == "route":
        return add_route(fields)
    if command == "listen":
        return str(serve(None, None, dict(fields)["address"].decode()))
    fields = dict(fields)
    path = fields.get("path", b"").decode()
    with lock:
        if command == "await":
            count = int(fields.get("count", b"1"))
            arrived.wait_for(lambda: hits.get(path, 0) >= count, AWAIT_LIMIT)
            return str(hits.get(path, 0))
        if command == "hits":
            return str(hits.get(path, 0))
        if command == "connections":
            return str(connections)
        if command == "peak":
            return str(peak_connections.get(fields.get("address", b"").decode(), 0))
        if command == "request":
            return heads.get(path, b"").hex()
    return "unknown command"


class Server(ThreadingHTTPServer):
    daemon_threads = True

    def __init__(self, context, address):
        super().__init__((address, 0), Handler)
        self.context = context

    def handle_error(self, request, client_address):
        pass  # a refused certificate or a client that went away is part of the tests


def serve(name, context=None, address="127.0.0.1"):
    server = Server(context, address)
    if name is not None:
        print(name, server.server_address[1], flush=True)
    threading.Thread(target=server.serve_forever, daemon=True).start()
    return server.server_address[1]


def main():
    serve("http")
    for argument in sys.argv[1:]:
        name, files = argument.split("=", 1)
        cert, key = files.split(":", 1)
        context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
        context.load_cert_chain(cert, key)
        serve(name, context)
    print("ready", flush=True)
    for line in sys.stdin:
        if line.strip():
            print(run_command(line), flush=True)


if __name__ == "__main__":
    main()
