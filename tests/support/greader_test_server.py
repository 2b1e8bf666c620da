#!/usr/bin/env python3
"""A Google Reader API server for the sync tests, on 127.0.0.1 only, state kept in memory.

Usage: greader_test_server.py [NAME=CERT_FILE:KEY_FILE ...]

Prints "NAME PORT" for the plain listener ("http") and one HTTPS listener per certificate, then
"ready". Then answers each command line on standard input with one line, until the input ends.
Commands (every value in hexadecimal digits, as for http_test_server.py; "user" may be left out
and means the first user added):
  dialect ids=mixed|decimal|long streams=number|url continuation=numeric|opaque labels=dash|number
        how ids are written out; defaults mixed, number, numeric, dash (see greader_notes.md)
  user name= password=          adds a user
  feed user= url= title= label= adds a subscription (label may repeat); its number
  item user= feed= id= link= title= published= read=0|1 starred=0|1
        adds an item to the subscription whose address is feed=, or changes the item with that
        decimal id; its decimal id (published in seconds since the epoch)
  items user= feed= count= read=0|1   adds count items at once; the first and last decimal ids
  unsubscribe user= url=        removes a subscription and its items, as another device would
  subscriptions user=           one word per subscription: url,title,label... each in hex
  labels user=                  the label names in hex, one word each
  read user=                    the decimal ids of the read items
  state user= id=|link=         read, unread or missing
  expire user= what=token|auth  the edit (T) tokens, or the login tokens, stop being accepted
  fail count= status=           the next count requests answer status (500 when not given)
  hang count=                   the next count requests are read and never answered
  hits path=                    requests that path (without its query) had
  request path=                 the head and body of the last request to that path, in hex
"""

import gzip
import itertools
import json
import re
import secrets
import ssl
import sys
import threading
import time
from http.server import BaseHTTPRequestHandler, ThreadingHTTPServer
from urllib.parse import parse_qsl, unquote, urlsplit

LONG_PREFIX = "tag:google.com,2005:reader/item/"
READING_LIST = "reading-list"
PAGE_LIMIT = 1000  # the most items one answer carries, whatever n asks for
DEFAULT_PAGE = 20
TOKEN_LENGTH = 57

lock = threading.Lock()
never = threading.Event()
DIALECTS = {"ids": ("mixed", "decimal", "long"), "streams": ("number", "url"),
            "continuation": ("numeric", "opaque"), "labels": ("dash", "number")}
dialect = {key: choices[0] for key, choices in DIALECTS.items()}
users = {}  # name -> User
logins = {}  # auth token -> user name
continuations = {}  # opaque continuation -> offset
faults = []  # pending injected answers: a status, or None for a hang
hits = {}
heads = {}
feed_numbers = itertools.count(1)
item_numbers = itertools.count(1000)


class User:
    def __init__(self, name, password, number):
        self.name, self.password, self.number = name, password, number
        self.edit_tokens = set()
        self.subscriptions = {}  # feed number -> {"url", "title", "labels"}
        self.labels = []
        self.items = {}  # decimal id -> {"feed", "link", "title", "published", "read", ...}

    def feed_by_url(self, url):
        wanted = url.rstrip("/").lower()
        for number, sub in self.subscriptions.items():
            if sub["url"].rstrip("/").lower() == wanted:
                return number
        return None

    def add_label(self, label):
        if label and label not in self.labels:
            self.labels.append(label)


# ---- identifiers ------------------------------------------------------------------------------

def short_id(number):
    """The signed decimal form: ids of 2^63 and above are negative there."""
    return str(number - (1 << 64) if number >= 1 << 63 else number)


def long_id(number):
    return LONG_PREFIX + format(number, "016x")


def written_id(number, endpoint):
    form = dialect["ids"]
    if form == "mixed":  # both servers: decimal in the id lists, long in the contents
        form = "decimal" if endpoint == "ids" else "long"
    return short_id(number) if form == "decimal" else long_id(number)


def parse_item_id(text):
    """Either form, and the bare 16-digit hexadecimal some servers also take; None if neither."""
    text = text.strip()
    try:
        if text.startswith(LONG_PREFIX):
            return int(text[len(LONG_PREFIX):], 16)
        if re.fullmatch(r"-?\d+", text):
            return int(text) & ((1 << 64) - 1)
        if re.fullmatch(r"[0-9a-fA-F]{16}", text):
            return int(text, 16)
    except ValueError:
        pass
    return None


def stream_of_feed(user, number):
    return "feed/" + (str(number) if dialect["streams"] == "number"
                      else user.subscriptions[number]["url"])


def label_stream(user, label):
    owner = str(user.number) if dialect["labels"] == "number" else "-"
    return "user/%s/label/%s" % (owner, label)


def label_of(stream):
    match = re.fullmatch(r"user/[^/]+/label/(.+)", stream)
    return match.group(1) if match else None


def state_of(stream):
    match = re.fullmatch(r"user/[^/]+/state/com\.google/(.+)", stream)
    return match.group(1) if match else None


def feed_of(user, stream, numbers_only=False):
    """The subscription a feed/ stream names, by number or by address; None when none."""
    if not stream.startswith("feed/"):
        return None
    rest = stream[len("feed/"):]
    if rest.isdigit():
        return int(rest) if int(rest) in user.subscriptions else None
    return None if numbers_only else user.feed_by_url(rest)


# ---- answers ----------------------------------------------------------------------------------

class Reply(Exception):
    """Ends a request early with a status and a plain-text body."""

    def __init__(self, status, body, headers=()):
        super().__init__(body)
        self.status, self.body, self.headers = status, body, list(headers)


def unauthorized():
    # Both servers mark an unaccepted token this way (under one header name or the other); a
    # client cannot tell an expired edit token from an expired login by the answer alone.
    return Reply(401, "Unauthorized",
                 [("X-Reader-Google-Bad-Token", "true"), ("Google-Bad-Token", "true")])


def item_json(user, number, endpoint):
    item = user.items[number]
    sub = user.subscriptions[item["feed"]]
    categories = ["user/-/state/com.google/reading-list"]
    categories += [label_stream(user, label) for label in sub["labels"]]
    if item["read"]:
        categories.append("user/-/state/com.google/read")
    if item["starred"]:
        categories.append("user/-/state/com.google/starred")
    return {
        "id": written_id(number, endpoint),
        "crawlTimeMsec": str(item["published"] * 1000),
        "timestampUsec": str(item["published"] * 1000000),
        "published": item["published"],
        "updated": item["published"],
        "title": item["title"],
        "canonical": [{"href": item["link"]}],
        "alternate": [{"href": item["link"], "type": "text/html"}],
        "summary": {"direction": "ltr", "content": item["content"]},
        "categories": categories,
        "origin": {"streamId": stream_of_feed(user, item["feed"]), "title": sub["title"],
                   "htmlUrl": sub["url"]},
    }


def select_items(user, stream, query):
    """The ids of the stream's items that pass the filters, newest first unless r=o."""
    feed = feed_of(user, stream)
    label, state = label_of(stream), state_of(stream)
    if feed is not None:
        chosen = [n for n, item in user.items.items() if item["feed"] == feed]
    elif label is not None:
        chosen = [n for n, item in user.items.items()
                  if label in user.subscriptions[item["feed"]]["labels"]]
    elif state in (READING_LIST, "read", "starred"):
        chosen = [n for n, item in user.items.items()
                  if state == READING_LIST or item[state]]
    elif stream.startswith("feed/"):
        chosen = []
    else:
        raise Reply(400, "Unknown stream")
    for excluded in query.get("xt", []):
        flag = state_of(excluded)
        if flag in ("read", "starred"):
            chosen = [n for n in chosen if not user.items[n][flag]]
    for included in query.get("it", []):
        flag = state_of(included)
        if flag in ("read", "starred"):
            chosen = [n for n in chosen if user.items[n][flag]]
    older, newer = first(query, "ot"), first(query, "nt")
    if older:
        chosen = [n for n in chosen if user.items[n]["published"] >= int(older)]
    if newer:
        chosen = [n for n in chosen if user.items[n]["published"] < int(newer)]
    chosen.sort(key=lambda n: (user.items[n]["published"], n), reverse=first(query, "r") != "o")
    return chosen


def page(chosen, query):
    """One page of the ids and the continuation to the next, if there is more."""
    wanted = first(query, "n")
    count = min(int(wanted) if wanted and wanted.isdigit() else DEFAULT_PAGE, PAGE_LIMIT)
    offset = 0
    given = first(query, "c")
    if given:
        if dialect["continuation"] == "opaque":
            if given not in continuations:
                raise Reply(400, "Unknown continuation")
            offset = continuations[given]
        elif given.isdigit():
            offset = int(given)
        else:
            raise Reply(400, "Bad continuation")
    end = offset + max(count, 1)
    if end >= len(chosen):
        return chosen[offset:], None
    if dialect["continuation"] == "opaque":
        token = secrets.token_urlsafe(12)
        continuations[token] = end
        return chosen[offset:end], token
    return chosen[offset:end], str(end)


def first(values, key, default=""):
    return values.get(key, [default])[0]


def need_json_output(query):
    # Miniflux answers its lists only when asked for JSON; so does this server.
    if first(query, "output") != "json":
        raise Reply(400, "output=json is required")


# ---- API handlers (called with the lock held) -------------------------------------------------

def client_login(_user, form):
    user = users.get(first(form, "Email"))
    if user is None or user.password != first(form, "Passwd"):
        return 403, "text/plain", "Error=BadAuthentication\n"
    token = "%s/%s" % (user.name, secrets.token_hex(20))
    logins[token] = user.name
    if first(form, "output") == "json":
        return 200, "application/json", json.dumps({"SID": token, "LSID": token, "Auth": token})
    return 200, "text/plain", "SID=%s\nLSID=%s\nAuth=%s\n" % (token, token, token)


def edit_token(user, _query):
    token = secrets.token_hex(TOKEN_LENGTH)[:TOKEN_LENGTH]
    user.edit_tokens.add(token)
    return 200, "text/plain", token


def user_info(user, _query):
    number = str(user.number)
    return reply_json({"userId": number, "userName": user.name, "userProfileId": number,
                       "userEmail": user.name})


def subscription_list(user, query):
    need_json_output(query)
    subscriptions = []
    for number, sub in user.subscriptions.items():
        subscriptions.append({
            "id": stream_of_feed(user, number),
            "title": sub["title"],
            "categories": [{"id": label_stream(user, label), "label": label, "type": "folder"}
                           for label in sub["labels"]],
            "url": sub["url"],
            "htmlUrl": sub["url"],
            "iconUrl": "",
        })
    return reply_json({"subscriptions": subscriptions})


def tag_list(user, query):
    need_json_output(query)
    tags = [{"id": "user/-/state/com.google/starred"}]
    # No "label" member: one server leaves it out, so the name comes from the id.
    tags += [{"id": label_stream(user, label), "type": "folder"} for label in user.labels]
    return reply_json({"tags": tags})


def subscribe(user, url, title, labels):
    if not re.match(r"https?://", url):
        raise Reply(400, "Not a feed address")
    number = user.feed_by_url(url)
    if number is None:
        number = next(feed_numbers)
        user.subscriptions[number] = {"url": url, "title": title or url, "labels": []}
    for label in labels:
        user.add_label(label)
        if label not in user.subscriptions[number]["labels"]:
            user.subscriptions[number]["labels"].append(label)
    return number


def unsubscribe(user, number):
    del user.subscriptions[number]
    for item in [n for n, item in user.items.items() if item["feed"] == number]:
        del user.items[item]


def subscription_edit(user, form):
    action, streams = first(form, "ac"), form.get("s", [])
    added = [label_of(s) for s in form.get("a", []) if label_of(s)]
    removed = [label_of(s) for s in form.get("r", []) if label_of(s)]
    if not streams or action not in ("subscribe", "unsubscribe", "edit"):
        raise Reply(400, "Bad Request")
    if action == "subscribe":
        # Subscribing always names the address, whatever form the lists use.
        if feed_of(user, streams[0], numbers_only=True) is not None:
            raise Reply(400, "Subscribe takes feed/<address>")
        subscribe(user, streams[0][len("feed/"):], first(form, "t"), added)
        return 200, "text/plain", "OK"
    # Editing and removing take the id the list gave, as the numbering server demands.
    numbers = [feed_of(user, s, dialect["streams"] == "number") for s in streams]
    if None in numbers:
        raise Reply(400, "No such subscription")
    for number in numbers if action == "unsubscribe" else numbers[:1]:
        if action == "unsubscribe":
            unsubscribe(user, number)
            continue
        sub = user.subscriptions[number]
        sub["labels"] = [label for label in sub["labels"] if label not in removed]
        for label in added:
            user.add_label(label)
            if label not in sub["labels"]:
                sub["labels"].append(label)
        if first(form, "t"):
            sub["title"] = first(form, "t")
    return 200, "text/plain", "OK"


def quickadd(user, form):
    url = first(form, "quickadd")
    try:
        number = subscribe(user, url, "", [])
    except Reply:
        return reply_json({"numResults": 0})
    return reply_json({"numResults": 1, "query": url, "streamId": stream_of_feed(user, number),
                       "streamName": user.subscriptions[number]["title"]})


def items_ids(user, query):
    need_json_output(query)
    streams = query.get("s", [])
    if len(streams) != 1:
        raise Reply(400, "One s= is required")
    ids, more = page(select_items(user, streams[0], query), query)
    refs = [{"id": written_id(n, "ids"), "directStreamIds": [],
             "timestampUsec": str(user.items[n]["published"] * 1000000)} for n in ids]
    return reply_json(dict({"itemRefs": refs}, **({"continuation": more} if more else {})))


def stream_contents(user, query, stream):
    ids, more = page(select_items(user, stream or "user/-/state/com.google/reading-list", query),
                     query)
    answer = {"id": stream, "updated": int(time.time()),
              "items": [item_json(user, n, "contents") for n in ids]}
    if more:
        answer["continuation"] = more
    return reply_json(answer)


def items_contents(user, form):
    numbers = [parse_item_id(text) for text in form.get("i", [])]
    found = [n for n in dict.fromkeys(numbers) if n in user.items]
    return reply_json({"id": "user/-/state/com.google/reading-list", "updated": int(time.time()),
                       "items": [item_json(user, n, "contents") for n in found]})


def set_flags(user, numbers, changes):
    for number in numbers:
        if number in user.items:
            user.items[number].update(changes)


def edit_tag(user, form):
    numbers = [parse_item_id(text) for text in form.get("i", [])]
    if not numbers or None in numbers:
        raise Reply(400, "Bad item id")
    changes = {}
    for key, value in (("a", True), ("r", False)):
        for stream in form.get(key, []):
            flag = state_of(stream)
            if flag in ("read", "starred"):
                changes[flag] = value
            elif flag == "kept-unread":
                changes["read"] = not value
    set_flags(user, numbers, changes)
    return 200, "text/plain", "OK"


def mark_all_as_read(user, form):
    stream, stamp = first(form, "s"), first(form, "ts")
    # Sixteen digits and more are microseconds; fewer, seconds.
    limit = int(stamp) // 1000000 if len(stamp) >= 16 else int(stamp) if stamp else None
    chosen = select_items(user, stream, {})
    set_flags(user, [n for n in chosen if limit is None or user.items[n]["published"] <= limit],
              {"read": True})
    return 200, "text/plain", "OK"


def reply_json(value):
    return 200, "application/json", json.dumps(value)


# path -> (methods, handler, needs an edit token)
API = {
    "/reader/api/0/token": ("GET", edit_token, False),
    "/reader/api/0/user-info": ("GET", user_info, False),
    "/reader/api/0/subscription/list": ("GET", subscription_list, False),
    "/reader/api/0/tag/list": ("GET", tag_list, False),
    "/reader/api/0/subscription/edit": ("POST", subscription_edit, True),
    "/reader/api/0/subscription/quickadd": ("POST", quickadd, True),
    "/reader/api/0/stream/items/ids": ("GET", items_ids, False),
    "/reader/api/0/stream/items/contents": ("POST", items_contents, True),
    "/reader/api/0/edit-tag": ("POST", edit_tag, True),
    "/reader/api/0/mark-all-as-read": ("POST", mark_all_as_read, True),
}
CONTENTS_PREFIX = "/reader/api/0/stream/contents"


class Handler(BaseHTTPRequestHandler):
    protocol_version = "HTTP/1.1"

    def setup(self):
        if self.server.context is not None:
            self.request = self.server.context.wrap_socket(self.request, server_side=True)
        super().setup()

    def log_message(self, *args):
        pass

    def do_GET(self):
        self.serve("GET")

    def do_POST(self):
        self.serve("POST")

    def serve(self, method):
        length = int(self.headers.get("Content-Length") or 0)
        body = self.rfile.read(length) if length else b""
        parts = urlsplit(self.path)
        with lock:
            hits[parts.path] = hits.get(parts.path, 0) + 1
            heads[parts.path] = (self.requestline + "\r\n" + str(self.headers)).encode() + body
            fault = faults.pop(0) if faults else False
        if fault is None:
            never.wait()
        if fault:
            return self.answer(fault, [], "text/plain", "Injected failure")
        query = self.values(parts.query)
        # Servers read the repeated parameters of a POST from its body only.
        form = self.values(body.decode("utf-8", "replace")) if method == "POST" else query
        try:
            with lock:
                status, kind, text = self.dispatch(method, parts.path, query, form)
            self.answer(status, [], kind, text)
        except Reply as reply:
            self.answer(reply.status, reply.headers, "text/plain", reply.body)

    @staticmethod
    def values(text):
        result = {}
        for key, value in parse_qsl(text, keep_blank_values=True):
            result.setdefault(key, []).append(value)
        return result

    def dispatch(self, method, path, query, form):
        if path == "/accounts/ClientLogin":
            merged = dict(query, **form)
            return client_login(None, merged)
        user = self.authorised_user()
        if path.startswith(CONTENTS_PREFIX):
            stream = unquote(path[len(CONTENTS_PREFIX):].lstrip("/"))
            merged = dict(query, **form) if method == "POST" else query
            return stream_contents(user, merged, stream)
        if path not in API:
            raise Reply(404, "Not found")
        methods, handler, needs_token = API[path]
        if method not in methods:
            raise Reply(405, "Method not allowed")
        if needs_token:
            token = first(form, "T") or first(query, "T")
            if token not in user.edit_tokens:
                raise unauthorized()
        return handler(user, form if method == "POST" else query)

    def authorised_user(self):
        match = re.fullmatch(r"GoogleLogin auth=(\S+)", self.headers.get("Authorization", ""))
        if not match or match.group(1) not in logins:
            raise unauthorized()
        return users[logins[match.group(1)]]

    def answer(self, status, headers, kind, text):
        data = text.encode()
        self.send_response(status)
        for name, value in headers:
            self.send_header(name, value)
        self.send_header("Content-Type", kind + "; charset=utf-8")
        if "gzip" in self.headers.get("Accept-Encoding", ""):
            data = gzip.compress(data)
            self.send_header("Content-Encoding", "gzip")
        self.send_header("Content-Length", str(len(data)))
        self.end_headers()
        try:
            self.wfile.write(data)
        except (BrokenPipeError, ConnectionResetError, ssl.SSLError):
            self.close_connection = True


# ---- control ----------------------------------------------------------------------------------

def hexed(text):
    return text.encode().hex()


def control_user(fields):
    name = fields.get("user")
    if name is None:
        if not users:
            raise KeyError("no user")
        return next(iter(users.values()))
    return users[name]


def add_item(user, fields):
    feed = user.feed_by_url(fields["feed"])
    if feed is None:
        raise KeyError("no such feed")
    number = int(fields["id"]) if "id" in fields else next(item_numbers)
    item = user.items.setdefault(number, {
        "feed": feed, "link": "", "title": "", "published": int(time.time()), "read": False,
        "starred": False, "content": ""})
    for key in ("link", "title"):
        item[key] = fields.get(key, item[key])
    item["published"] = int(fields.get("published", item["published"]))
    for key in ("read", "starred"):
        if key in fields:
            item[key] = fields[key] == "1"
    item["content"] = "<p>%s</p>" % item["title"]
    return str(number)


def add_items(user, fields):
    feed_url, now = fields["feed"], int(time.time())
    numbers = []
    for index in range(int(fields["count"])):
        numbers.append(add_item(user, {
            "feed": feed_url, "link": "%s/item/%d" % (feed_url.rstrip("/"), index),
            "title": "Item %d" % index, "published": str(now - index),
            "read": fields.get("read", "0")}))
    return "%s %s" % (numbers[0], numbers[-1]) if numbers else ""


def item_state(user, fields):
    for number, item in user.items.items():
        if str(number) == fields.get("id") or item["link"] == fields.get("link"):
            return "read" if item["read"] else "unread"
    return "missing"


def run_command(line):
    command, *words = line.split()
    pairs = [(key, bytes.fromhex(value).decode()) for key, value in
             (word.split("=", 1) for word in words)]
    fields = dict(pairs)
    with lock:
        if command == "dialect":
            for key, value in fields.items():
                if value not in DIALECTS[key]:
                    raise ValueError("unknown dialect " + value)
            dialect.update(fields)
            return "ok"
        if command == "user":
            users[fields["name"]] = User(fields["name"], fields["password"], len(users) + 1)
            return "ok"
        if command in ("fail", "hang"):
            status = int(fields.get("status", "500")) if command == "fail" else None
            faults.extend([status] * int(fields.get("count", "1")))
            return "ok"
        if command == "hits":
            return str(hits.get(fields.get("path", ""), 0))
        if command == "request":
            return heads.get(fields.get("path", ""), b"").hex()
        user = control_user(fields)
        if command == "feed":
            labels = [value for key, value in pairs if key == "label"]
            return str(subscribe(user, fields["url"], fields.get("title", ""), labels))
        if command == "item":
            return add_item(user, fields)
        if command == "items":
            return add_items(user, fields)
        if command == "unsubscribe":
            unsubscribe(user, user.feed_by_url(fields["url"]))
            return "ok"
        if command == "subscriptions":
            return " ".join(",".join(hexed(part) for part in [sub["url"], sub["title"]] +
                                     sub["labels"]) for sub in user.subscriptions.values())
        if command == "labels":
            return " ".join(hexed(label) for label in user.labels)
        if command == "read":
            return " ".join(str(n) for n, item in sorted(user.items.items()) if item["read"])
        if command == "state":
            return item_state(user, fields)
        if command == "expire":
            if fields.get("what", "token") == "auth":
                for token in [t for t, name in logins.items() if name == user.name]:
                    del logins[token]
            else:
                user.edit_tokens.clear()
            return "ok"
    return "unknown command"


class Server(ThreadingHTTPServer):
    daemon_threads = True

    def __init__(self, context):
        super().__init__(("127.0.0.1", 0), Handler)
        self.context = context

    def handle_error(self, request, client_address):
        pass  # a client that went away is part of the tests


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
            try:
                print(run_command(line), flush=True)
            except (KeyError, ValueError) as error:
                print("error", error, flush=True)


if __name__ == "__main__":
    main()
