#!/usr/bin/env python3
"""A local HTTP and HTTPS server for the network tests, on 127.0.0.1 only.

Usage: http_test_server.py [NAME=CERT_FILE:KEY_FILE ...]

Prints "NAME PORT" for the plain listener ("http") and one HTTPS listener per certificate, then
"ready". Then answers each command line on standard input with one line, until the input ends.
Commands (every value in hexadecimal digits):
  route path= status= mode=fixed|close|endless|silent body= header=Name:value auth=user:password
        gzip=1 delay=SECONDS  (a route with an ETag or Last-Modified header answers 304 to a
        request that sends it back; gzip compresses when asked; delay waits before answering)
  listen address=        starts another plain listener on that 127.0.0.x address; its port
  peak address=          the most connections that address had open at once
  hits path=             requests that path had
  await path= count=     waits (at most 30 s) for that many requests; answers how many it had
  connections            connections accepted
  request path=          the head of the last request to that path, and a POST's body after it,
                         in hexadecimal digits (any method is answered as GET would be)
"""

import base64
import gzip
import socket
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
open_sockets = {}
peak_connections = {}
never = threading.Event()
ENDLESS_BLOCK = b"x" * 1024
ENDLESS_PAUSE = 0.005
AWAIT_LIMIT = 30


def still_open(sock):
    """Whether the client has not closed the socket. Its close reaches the kernel before its next
    connection does, so counting this way never sees a connection being replaced as two."""
    try:
        return sock.recv(1, socket.MSG_PEEK | socket.MSG_DONTWAIT) != b""
    except (BlockingIOError, ValueError):  # no data yet; or TLS, which cannot peek: kept
        return True
    except OSError:
        return False


class RecordingReader:
    """Keeps the raw lines a request head was read from."""

    def __init__(self, stream):
        self.stream, self.lines = stream, []

    def readline(self, *args):
        self.lines.append(self.stream.readline(*args))
        return self.lines[-1]

    def read(self, size):
        self.lines.append(self.stream.read(size))
        return self.lines[-1]

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
            open_now = {s for s in open_sockets.get(address, set()) if still_open(s)}
            open_now.add(self.request)
            open_sockets[address] = open_now
            peak_connections[address] = max(peak_connections.get(address, 0), len(open_now))

    def finish(self):
        try:
            super().finish()
        finally:
            with lock:
                open_sockets.get(self.server.server_address[0], set()).discard(self.request)

    def log_message(self, *args):
        pass

    def do_POST(self):
        length = int(self.headers.get("Content-Length") or 0)
        self.rfile.read(length)  # recorded after the head
        self.do_GET()

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
