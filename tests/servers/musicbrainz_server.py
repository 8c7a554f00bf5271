#!/usr/bin/env python3
"""A small MusicBrainz web service (disc-id lookups, XML answers) for the tests and the demo.

It answers `GET /ws/2/discid/<id>` with the file `<id>.xml` from a folder of answers (the
query, such as "?inc=recordings+artist-credits", does not change the answer). An id that has
no file gets 404 with the service's own not-found body; a text that is not shaped like a disc
id gets 400 with its invalid-discid body.

An unknown id asked with "toc=1+N+LEADOUT+OFFSET..." (frames, the service's notation) gets the
releases of every disc of the folder's tocs.tsv that has N tracks, each within TOC_TOLERANCE
frames of the asked one's length, as a release list directly under metadata (as the service
answers a TOC search); no such disc gives an empty release list.

Every request except those to /control is recorded (path and query exactly as received, one
line each); GET /control?arrivals lists "<seconds> <path and query>" lines in arrival order
(seconds on the server's monotonic clock, for checking a client's pacing), and GET
/control?last-headers returns the header lines of the last recorded request. The server can be
told to misbehave (see the faults below) at start (--fault) or while it runs (GET
/control?fault=...).

With --port 0 it picks a free port; the first line on stdout is always "PORT <n>", so tests
can run many servers side by side. SIGTERM (or Ctrl-C) stops it cleanly.

Standard library only.
"""

import argparse
import os
import random
import re
import sys
import time
import urllib.parse

import test_server_base

CONTENT_TYPE = "application/xml; charset=UTF-8"

FAULTS = """\
faults (comma-separated; "none" clears):
  http-status:N   answer every lookup with HTTP status N (400..599) and an error body
  busy:N          answer the next N lookups with 503 Service Unavailable, then as usual
  retry-after:S   send "Retry-After: S" (seconds) with every 503 answer
  redirect        answer lookups with 301 to the same target under /moved (served as usual)
  redirect-loop   answer every lookup with 301 to itself
  truncate        answer with only the first half of the XML (a complete HTTP answer)
  slow:SECONDS    wait before sending the body (headers go out at once)
  garbage         answer 200 with 4 KiB of bytes that are no XML at all
""" + test_server_base.STREAM_FAULTS

# The service's bodies for an unknown disc id and for a text that is no disc id.
NOT_FOUND_BODY = (b'<?xml version="1.0" encoding="UTF-8"?><error><text>Not Found</text>'
                  b'<text>For usage, please see: http://musicbrainz.org/development/mmd</text></error>')
INVALID_BODY = (b'<?xml version="1.0"?>\n<error>\n  <text>Invalid discid.</text>\n'
                b'  <text>For usage, please see: https://musicbrainz.org/development/mmd</text>\n</error>\n')

LOOKUP_PATH = "/ws/2/discid/"
# Where the redirect fault sends lookups; requests there are answered like lookups.
MOVED_PREFIX = "/moved"
DISC_ID = re.compile(r"^[A-Za-z0-9._-]{28}$")
# How far (frames) each track of a TOC search may be from a known disc's track.
TOC_TOLERANCE = 150
TOC_ANSWER_HEAD = (b'<?xml version="1.0" encoding="UTF-8"?>\n'
                   b'<metadata xmlns="http://musicbrainz.org/ns/mmd-2.0#">')
RELEASE_LIST = re.compile(rb"<release-list[^>]*>(.*?)</release-list>", re.S)


# ---------------------------------------------------------------------------------------------
# Faults

def parse_faults(text):
    """Checks a fault list and returns it as {name: argument}; raises ValueError."""
    faults = {}
    for item in filter(None, (t.strip() for t in text.split(","))):
        name, _, arg = item.partition(":")
        if name == "none" and not arg:
            continue
        if name == "http-status":
            if not arg.isdigit() or not 400 <= int(arg) <= 599:
                raise ValueError("http-status must be between 400 and 599")
            faults[name] = int(arg)
        elif name in ("busy", "retry-after"):
            if not arg.isdigit():
                raise ValueError(name + " needs a whole number")
            faults[name] = int(arg)
        elif name == "slow":
            try:
                seconds = float(arg)
            except ValueError:
                raise ValueError("slow needs seconds") from None
            if seconds < 0:
                raise ValueError("slow needs seconds")
            faults[name] = seconds
        elif name in ("truncate", "redirect", "redirect-loop", "garbage") and not arg:
            faults[name] = None
        elif test_server_base.parse_stream_fault(name, arg):
            faults[name] = test_server_base.parse_stream_fault(name, arg)[1]
        else:
            raise ValueError("unknown fault: " + item)
    return faults


# ---------------------------------------------------------------------------------------------
# TOC search

def track_lengths(leadout, offsets):
    ends = offsets[1:] + [leadout]
    return [end - start for start, end in zip(offsets, ends)]


def parse_toc(text):
    """"1+N+LEADOUT+OFFSET..." as (leadout, offsets), or None when it is not one."""
    numbers = text.replace(" ", "+").split("+")
    if len(numbers) < 4 or not all(n.isdigit() for n in numbers):
        return None
    first, last, leadout, offsets = int(numbers[0]), int(numbers[1]), int(numbers[2]), [int(n) for n in numbers[3:]]
    if first != 1 or last != len(offsets):
        return None
    return leadout, offsets


def toc_search_answer(answers, toc):
    """The release list of the discs in answers/tocs.tsv close to `toc`, as one answer."""
    wanted = track_lengths(*toc)
    releases = []
    try:
        with open(os.path.join(answers, "tocs.tsv"), encoding="utf-8") as f:
            rows = [line.rstrip("\n").split("\t") for line in f][1:]
    except FileNotFoundError:
        rows = []
    for row in rows:
        disc_id, leadout, offsets = row[0], int(row[1]), [int(n) for n in row[2].split()]
        lengths = track_lengths(leadout, offsets)
        if len(lengths) != len(wanted) or any(abs(a - b) > TOC_TOLERANCE for a, b in zip(lengths, wanted)):
            continue
        with open(os.path.join(answers, disc_id + ".xml"), "rb") as f:
            found = RELEASE_LIST.search(f.read())
        if found and found.group(1) not in releases:
            releases.append(found.group(1))
    body = b"".join(releases)
    return (TOC_ANSWER_HEAD + b'<release-list count="' + str(body.count(b"<release ")).encode() + b'">' + body +
            b"</release-list></metadata>\n")


# ---------------------------------------------------------------------------------------------
# HTTP

def toc_parameter(query):
    """The toc= value exactly as sent ("+" kept: parse_qs would read it as a blank)."""
    for item in query.split("&"):
        name, _, value = item.partition("=")
        if name == "toc":
            return urllib.parse.unquote(value)
    return ""


class musicbrainz_http_server(test_server_base.recording_http_server):
    def __init__(self, address, options, faults):
        super().__init__(address, request_handler, options, faults)


class request_handler(test_server_base.quiet_request_handler):
    server_version = "tessellon-test-musicbrainz/0.9"
    protocol_version = "HTTP/1.1"

    def answer(self):
        path, _, query = self.path.partition("?")
        if path == "/control":
            return self.control(query)

        self.server.record(self.path, str(self.headers))
        faults = self.server.faults.get()
        moved = path.startswith(MOVED_PREFIX + LOOKUP_PATH)
        if moved:
            path = path[len(MOVED_PREFIX):]
        if not path.startswith(LOOKUP_PATH):
            return self.send_body(404, NOT_FOUND_BODY, {})
        if "redirect-loop" in faults:
            return self.send_redirect(self.path)
        if "redirect" in faults and not moved:
            return self.send_redirect(MOVED_PREFIX + self.path)
        disc_id = urllib.parse.unquote(path[len(LOOKUP_PATH):])
        if self.server.faults.take("busy"):
            return self.send_error_body(503, faults)
        if "http-status" in faults:
            return self.send_error_body(faults["http-status"], faults)
        if not DISC_ID.match(disc_id):
            return self.send_body(400, INVALID_BODY, faults)
        answer_path = os.path.join(self.server.options.answers, disc_id + ".xml")
        try:
            with open(answer_path, "rb") as f:
                body = f.read()
        except FileNotFoundError:
            toc = parse_toc(toc_parameter(query))
            if toc:
                return self.send_body(200, toc_search_answer(self.server.options.answers, toc), faults)
            return self.send_body(404, NOT_FOUND_BODY, faults)
        # A release document that never closes: its tracks repeat without end.
        first = re.search(rb"<track[ >]", body)
        start = first.start() if first else len(body)
        unit = body[start:body.find(b"</track>", start) + 8] if first else b" "
        if test_server_base.send_stream(self, CONTENT_TYPE, body[:start] + b"\n", unit + b"\n", faults):
            return
        if "garbage" in faults:
            body = random.Random(16).randbytes(4096)
        self.send_body(200, body, faults)

    def control(self, query):
        params = urllib.parse.parse_qs(query, keep_blank_values=True)
        if "arrivals" in params:
            lines = ["{:.6f} {}".format(at, target).encode("latin-1")
                     for at, target in self.server.request_arrivals()]
            return self.send_text(200, lines)
        if "last-headers" in params:
            headers = self.server.last_request_headers()
            return self.send_text(200, headers.encode("latin-1").splitlines())
        if "fault" not in params:
            return self.send_text(400, [b"expected fault=..., arrivals or last-headers"])
        try:
            faults = parse_faults(",".join(params["fault"]))
        except ValueError as e:
            return self.send_text(400, [str(e).encode()])
        self.server.faults.set(faults)
        return self.send_text(200, [b"fault=" + ",".join(params["fault"]).encode()])

    def send_text(self, code, lines):
        body = b"".join(l + b"\r\n" for l in lines)
        self.send_response(code)
        self.send_header("Content-Type", "text/plain; charset=UTF-8")
        self.send_header("Content-Length", str(len(body)))
        self.send_header("Connection", "close")
        self.end_headers()
        self.wfile.write(body)
        self.close_connection = True

    def send_redirect(self, target):
        self.send_response(301)
        self.send_header("Location", "http://{}{}".format(self.headers.get("Host", ""), target))
        self.send_header("Content-Length", "0")
        self.send_header("Connection", "close")
        self.end_headers()
        self.close_connection = True

    def send_error_body(self, code, faults):
        body = ('<?xml version="1.0" encoding="UTF-8"?><error><text>{} forced by the test server'
                '</text></error>').format(code).encode()
        self.send_body(code, body, faults)

    def send_body(self, code, body, faults):
        if "truncate" in faults:
            body = body[:len(body) // 2]
        self.send_response(code)
        if code == 503 and "retry-after" in faults:
            self.send_header("Retry-After", str(faults["retry-after"]))
        self.send_header("Content-Type", CONTENT_TYPE)
        self.send_header("Content-Length", str(len(body)))
        self.send_header("Connection", "close")
        self.end_headers()
        self.wfile.flush()
        self.close_connection = True
        if faults.get("slow"):
            time.sleep(faults["slow"])
        self.wfile.write(body)
        self.wfile.flush()


# ---------------------------------------------------------------------------------------------

def main(argv):
    here = os.path.dirname(os.path.abspath(__file__))
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0], epilog=FAULTS,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--answers", default=os.path.join(here, "musicbrainz_answers"),
                        help="folder of <disc id>.xml answers (default: the bundled one)")
    test_server_base.add_common_arguments(parser)
    options = parser.parse_args(argv)
    try:
        faults = parse_faults(options.fault)
    except ValueError as e:
        parser.error(str(e))
    if not os.path.isdir(options.answers):
        parser.error("no folder of answers at " + options.answers)

    server = musicbrainz_http_server(("127.0.0.1", options.port), options, test_server_base.fault_switch(faults))
    return test_server_base.serve(server, options)

if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
