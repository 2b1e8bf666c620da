#!/usr/bin/env python3
"""A local HTTP and HTTPS server for the network tests, on 127.0.0.1 only.

Usage: http_test_server.py [NAME=CERT_FILE:KEY_FILE ...]

Prints "NAME PORT" for the plain listener ("http") and one HTTPS listener per certificate, then
"ready". Then answers each command line on standard input with one line, until the input ends.
Commands (every value in hexadecimal digits):
  route path= status= mode=fixed|close|endless|silent body= header=Name:value auth=user:password
  hits path=             requests that path had
  await path= count=     waits (at most 30 s) for that many requests; answers how many it had
  connections            connections accepted
  request path=          the head of the last request to that path, in hexadecimal digits
"""

import base64
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
never = threading.Event()
ENDLESS_BLOCK = b"x" * 1024
ENDLESS_PAUSE = 0.005
AWAIT_LIMIT = 30


class RecordingReader:
    """Keeps the raw lines a request head was read from."""

    def __init__(self, stream):
        self.stream, self.lines = stream, []

    def readline(self, *args):
        self.lines.append(self.stream.readline(*args))
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
        with lock:
            connections += 1

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
            self.answer(route["status"], route["headers"], route["body"], route["mode"])

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
             "auth": None}
    for key, value in fields:
        if key == "header":
            route["headers"].append(tuple(value.decode().split(":", 1)))
        elif key == "auth":
            route["auth"] = "Basic " + base64.b64encode(value).decode()
        elif key == "status":
            route[key] = int(value)
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
        if command == "request":
            return heads.get(path, b"").hex()
    return "unknown command"


class Server(ThreadingHTTPServer):
    daemon_threads = True

    def __init__(self, context):
        super().__init__(("127.0.0.1", 0), Handler)
        self.context = context

    def handle_error(self, request, client_address):
        pass  # a refused certificate or a client that went away is part of the tests


def serve(name, context=None):
    server = Server(context)
    print(name, server.server_address[1], flush=True)
    threading.Thread(target=server.serve_forever, daemon=True).start()


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
