#!/usr/bin/env python3
"""A small CDDB server (protocol level 6 carried in HTTP GET) for the tests and the demo.

It answers `cddb query`, `cddb read`, `cddb lscat` and `sites` from a folder of
`<category>/<discid>` files in xmcd format. A query matches exactly the entries with its disc
id (200 for one, 210 for several); when there is none, entries with as many tracks whose frame
offsets are all within 30 frames match inexactly (211); otherwise 202. Entries are
sent as their bytes, each line ended by CR LF.

Every request except those to /control is recorded (path and query exactly as received) so
that tests can assert the URL a client sent; GET /control?last-headers returns the header
lines of the last recorded request. The server can be told to misbehave (see the faults
below) at start (--fault) or while it runs (GET /control?fault=...).

With --port 0 it picks a free port; the first line on stdout is always "PORT <n>", so tests
can run many servers side by side. SIGTERM (or Ctrl-C) stops it cleanly.

Standard library only.
"""

import argparse
import os
import random
import re
import socket
import sys
import time
import urllib.parse

import test_server_base

CONTENT_TYPE = "text/plain; charset=UTF-8"

FAULTS = """\
faults (comma-separated; "none" clears):
  cddb-status:N   answer every command with the CDDB status N (402, 403, 409, 500, ...)
  read-status:N   answer only "cddb read" commands with the CDDB status N (queries still work)
  http-status:N   answer with HTTP status N (400..599) instead of a CDDB answer
  slow:SECONDS    wait before each line of the answer (headers go out at once)
  cut             declare the full length, then close the connection in the middle of a line
  long-line[:N]   put a line of N bytes (default 16385) after the status line
  empty-body      answer HTTP 200 with no bytes at all
  many:N          a complete, valid answer whose list or entry has N lines
  garbage         answer 4 KiB of bytes that are no CDDB answer at all
""" + test_server_base.STREAM_FAULTS

STATUS_TEXTS = {
    402: b"Server error.",
    403: b"Database entry is corrupt.",
    409: b"No handshake.",
    500: b"Command syntax error.",
}

DISCID = re.compile(rb"^[0-9a-f]{8}$")
TOLERANCE = 30  # frames each offset may differ by for an inexact match


# ---------------------------------------------------------------------------------------------
# Request text

def decode_cgi_value(raw):
    """Decodes one query-string value the way CDDB servers do: "+" is a space and %xx a byte.

    Clients that widen bytes of 0x80 and above as signed numbers send them as %ffffffXX; that
    form stands for the byte XX.
    """
    out = bytearray()
    data = raw.encode("latin-1")
    i = 0
    while i < len(data):
        c = data[i]
        if c == ord("+"):
            out.append(0x20)
            i += 1
        elif c == ord("%") and re.match(rb"ffffff[0-9a-fA-F]{2}", data[i + 1:i + 9], re.I):
            out.append(int(data[i + 7:i + 9], 16))
            i += 9
        elif c == ord("%") and re.match(rb"[0-9a-fA-F]{2}$", data[i + 1:i + 3]):
            out.append(int(data[i + 1:i + 3], 16))
            i += 3
        else:
            out.append(c)
            i += 1
    return bytes(out)


def parse_cgi_query(query):
    """name -> decoded bytes. Splits on "&" only: a client's command text is never re-escaped."""
    params = {}
    for part in query.split("&"):
        name, sep, value = part.partition("=")
        if sep:
            params[name] = decode_cgi_value(value)
    return params


# ---------------------------------------------------------------------------------------------
# Database

class entry:
    def __init__(self, category, discid, path):
        self.category = category
        self.discid = discid
        with open(path, "rb") as f:
            self.data = f.read()
        self.lines = self.data.splitlines()
        self.dtitle = b"".join(l[len(b"DTITLE="):] for l in self.lines if l.startswith(b"DTITLE="))
        self.offsets = read_offsets(self.lines)

    def match_line(self):
        return self.category.encode() + b" " + self.discid.encode() + b" " + self.dtitle


def read_offsets(lines):
    """The frame offsets listed in the entry's comment header."""
    offsets = []
    inside = False
    for line in lines:
        if re.match(rb"^#\s*Track frame offsets:", line):
            inside = True
            continue
        if inside:
            m = re.match(rb"^#\s*(\d+)\s*$", line)
            if not m:
                break
            offsets.append(int(m.group(1)))
    return offsets


class database:
    def __init__(self, folder):
        self.categories = []
        self.entries = {}  # (category, discid) -> entry
        for category in sorted(os.listdir(folder)):
            cat_path = os.path.join(folder, category)
            if category.startswith(".") or not os.path.isdir(cat_path):
                continue
            self.categories.append(category)
            for name in sorted(os.listdir(cat_path)):
                if DISCID.match(name.encode()):
                    self.entries[(category, name)] = entry(category, name, os.path.join(cat_path, name))

    def get(self, category, discid):
        return self.entries.get((category, discid))

    def with_discid(self, discid):
        return [e for (_, d), e in sorted(self.entries.items()) if d == discid]

    def near(self, offsets, tolerance):
        return [e for _, e in sorted(self.entries.items())
                if len(e.offsets) == len(offsets)
                and all(abs(a - b) <= tolerance for a, b in zip(e.offsets, offsets))]


# ---------------------------------------------------------------------------------------------
# CDDB answers: lists of lines without line ends

SYNTAX_ERROR = [b"500 Command syntax error: incorrect number of arguments."]


def query_answer(args, db):
    if len(args) < 3 or not args[1].isdigit():
        return SYNTAX_ERROR
    discid = args[0].lower()
    count = int(args[1])
    offsets = args[2:-1]
    if not DISCID.match(discid) or len(offsets) != count or not all(o.isdigit() for o in args[2:]):
        return SYNTAX_ERROR
    exact = db.with_discid(discid.decode())
    if len(exact) == 1:
        return [b"200 " + exact[0].match_line()]
    if exact:
        return ([b"210 Found exact matches, list follows (until terminating `.')"]
                + [e.match_line() for e in exact] + [b"."])
    near = db.near([int(o) for o in offsets], TOLERANCE)
    if near:
        return ([b"211 Found inexact matches, list follows (until terminating `.')"]
                + [e.match_line() for e in near] + [b"."])
    return [b"202 No match for disc ID " + discid + b"."]


def read_answer(args, db):
    if len(args) != 2:
        return SYNTAX_ERROR
    category = args[0].lower().decode("latin-1")
    discid = args[1].lower().decode("latin-1")
    found = db.get(category, discid)
    if found is None:
        return [b"401 Specified CDDB entry not found."]
    status = "210 {} {} CD database entry follows (until terminating `.')".format(category, discid)
    return [status.encode()] + found.lines + [b"."]


def cddb_answer(params, db, sites):
    hello = params.get("hello")
    if hello is None or len(hello.split()) != 4:
        return [b"409 No handshake."]
    words = params.get("cmd", b"").split()
    verb = [w.lower() for w in words[:2]]
    if verb[:2] == [b"cddb", b"query"]:
        return query_answer(words[2:], db)
    if verb[:2] == [b"cddb", b"read"]:
        return read_answer(words[2:], db)
    if verb[:2] == [b"cddb", b"lscat"]:
        return ([b"210 OK, category list follows (until terminating `.')"]
                + [c.encode() for c in db.categories] + [b"."])
    if verb == [b"sites"]:
        if sites is None:
            return [b"401 No site information available."]
        return [b"210 OK, site information follows (until terminating `.')"] + sites + [b"."]
    return [b"500 Unrecognized command."]


# ---------------------------------------------------------------------------------------------
# Faults

def parse_faults(text):
    """Checks a fault list and returns it as [(name, argument)]; raises ValueError."""
    faults = []
    for item in filter(None, (t.strip() for t in text.split(","))):
        name, _, arg = item.partition(":")
        if name == "none" and not arg:
            continue
        if name in ("cddb-status", "read-status", "http-status", "long-line"):
            if name == "long-line" and not arg:
                arg = "16385"
            if not arg.isdigit():
                raise ValueError("{} needs a number".format(name))
            value = int(arg)
            if name in ("cddb-status", "read-status") and not 100 <= value <= 999:
                raise ValueError("cddb-status must have three digits")
            if name == "http-status" and not 400 <= value <= 599:
                raise ValueError("http-status must be between 400 and 599")
            faults.append((name, value))
        elif name == "slow":
            try:
                seconds = float(arg)
            except ValueError:
                raise ValueError("slow needs seconds") from None
            if seconds < 0:
                raise ValueError("slow needs seconds")
            faults.append((name, seconds))
        elif name in ("cut", "empty-body", "garbage") and not arg:
            faults.append((name, None))
        elif name == "many" and arg.isdigit():
            faults.append((name, int(arg)))
        elif test_server_base.parse_stream_fault(name, arg):
            faults.append(test_server_base.parse_stream_fault(name, arg))
        else:
            raise ValueError("unknown fault: " + item)
    return faults


def apply_line_faults(lines, faults, command):
    code = faults.get("cddb-status")
    if code is None and command.startswith("cddb read"):
        code = faults.get("read-status")
    if code is not None:
        lines = [str(code).encode() + b" " + STATUS_TEXTS.get(code, b"Forced status.")]
    if "long-line" in faults:
        lines = lines[:1] + [b"x" * faults["long-line"]] + lines[1:]
    return lines


def listing(lines):
    """The answer as a status line and the lines of its list or entry, whatever its kind: an
    answer of one line becomes a one-line list of inexact matches, so that it can be repeated."""
    if len(lines) > 1:
        return lines[0], [l for l in lines[1:] if l != b"."]
    head = lines[0]
    match = head[4:] if head.startswith(b"200 ") else b"misc 00000000 Listed / Again and again"
    return b"211 Found inexact matches, list follows (until terminating `.')", [match]


def cut_position(chunks):
    """Byte offset in the middle of the second line (the first when there is only one)."""
    k = 1 if len(chunks) > 1 else 0
    start = sum(len(c) for c in chunks[:k])
    return start + max(1, (len(chunks[k]) - 2) // 2)


# ---------------------------------------------------------------------------------------------
# HTTP

class cddb_http_server(test_server_base.recording_http_server):
    def __init__(self, address, options, db, sites, faults):
        super().__init__(address, request_handler, options, faults)
        self.db = db
        self.sites = sites


class request_handler(test_server_base.quiet_request_handler):
    server_version = "tessellon-test-cddbd/0.9"

    def answer(self):
        path, _, query = self.path.partition("?")
        if path == "/control":
            return self.control(query)

        self.server.record(self.path, str(self.headers))
        options = self.server.options
        if path in options.redirect_from:
            self.send_response(302)
            self.send_header("Location", options.path + ("?" + query if query else ""))
            self.send_header("Content-Length", "0")
            self.end_headers()
            return
        if path != options.path:
            return self.send_text(404, [b"404 Not Found"])

        faults = self.server.faults.get()
        if "http-status" in faults:
            code = faults["http-status"]
            return self.send_text(code, [str(code).encode() + b" forced by the test server"])
        params = parse_cgi_query(query)
        lines = cddb_answer(params, self.server.db, self.server.sites)
        head, body = listing(lines)
        if test_server_base.send_stream(self, CONTENT_TYPE, head + b"\r\n", b"".join(l + b"\r\n" for l in body), faults):
            return
        if "many" in faults:
            lines = [head] + [body[i % len(body)] for i in range(faults["many"])] + [b"."]
        if "garbage" in faults:
            noise = random.Random(16).randbytes(4096)
            return self.send_text(200, [noise])
        command = b" ".join(params.get("cmd", b"").split()).lower().decode("latin-1")
        self.send_lines(apply_line_faults(lines, faults, command), faults)

    def control(self, query):
        params = urllib.parse.parse_qs(query, keep_blank_values=True)
        if "last-headers" in params:
            headers = self.server.last_request_headers()
            return self.send_text(200, headers.encode("latin-1").splitlines())
        if "fault" not in params:
            return self.send_text(400, [b"expected fault=... or last-headers"])
        try:
            faults = parse_faults(",".join(params["fault"]))
        except ValueError as e:
            return self.send_text(400, [str(e).encode()])
        self.server.faults.set(faults)
        return self.send_text(200, [b"fault=" + ",".join(params["fault"]).encode()])

    def send_text(self, code, lines):
        body = b"".join(l + b"\r\n" for l in lines)
        self.send_response(code)
        self.send_header("Content-Type", CONTENT_TYPE)
        self.send_header("Content-Length", str(len(body)))
        self.end_headers()
        self.wfile.write(body)

    def send_lines(self, lines, faults):
        chunks = [] if "empty-body" in faults else [l + b"\r\n" for l in lines]
        delay = faults.get("slow", 0)
        cut_at = cut_position(chunks) if "cut" in faults and chunks else None
        self.send_response(200)
        self.send_header("Content-Type", CONTENT_TYPE)
        # The full length even when the answer is cut, so that the client can tell a cut
        # from the end of the answer.
        self.send_header("Content-Length", str(sum(len(c) for c in chunks)))
        self.end_headers()
        self.wfile.flush()
        sent = 0
        for chunk in chunks:
            if delay:
                time.sleep(delay)
            if cut_at is not None and sent + len(chunk) > cut_at:
                self.wfile.write(chunk[:cut_at - sent])
                self.wfile.flush()
                self.connection.shutdown(socket.SHUT_RDWR)
                self.close_connection = True
                return
            self.wfile.write(chunk)
            self.wfile.flush()
            sent += len(chunk)


# ---------------------------------------------------------------------------------------------

def read_sites(path):
    if not path:
        return None
    with open(path, "rb") as f:
        return [l for l in f.read().splitlines() if l.strip()]


def main(argv):
    here = os.path.dirname(os.path.abspath(__file__))
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0], epilog=FAULTS,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--db", default=os.path.join(here, "cddb_db"),
                        help="folder of <category>/<discid> xmcd files (default: the bundled one)")
    parser.add_argument("--path", default="/~cddb/cddb.cgi", help="address of the CGI")
    parser.add_argument("--sites", help="file of site lines for the sites command")
    parser.add_argument("--redirect-from", action="append", default=[], metavar="PATH",
                        help="answer requests for PATH with a redirect to the CGI address")
    test_server_base.add_common_arguments(parser)
    options = parser.parse_args(argv)
    try:
        faults = parse_faults(options.fault)
    except ValueError as e:
        parser.error(str(e))

    server = cddb_http_server(("127.0.0.1", options.port), options, database(options.db),
                              read_sites(options.sites), test_server_base.fault_switch(faults))
    return test_server_base.serve(server, options)

if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
