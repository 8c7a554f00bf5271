"""What the project's Python test servers share: the options every test server takes, the
switch of faults in force, an HTTP server that records each request, and the serving loop that
prints the port and stops on SIGTERM or when its standard input closes."""

import http.server
import os
import signal
import sys
import threading
import time


def add_common_arguments(parser):
    parser.add_argument("--port", type=int, default=0, help="port on 127.0.0.1 (0: a free one)")
    parser.add_argument("--log", help="file that receives each request's path and query")
    parser.add_argument("--fault", default="", help="faults in force from the start")
    parser.add_argument("--stop-with-stdin", action="store_true",
                        help="stop when standard input closes (a test that started it has ended)")
    parser.add_argument("--verbose", action="store_true", help="log requests to stderr")


class fault_switch:
    """The faults in force; switched by the control URL from any request thread."""

    def __init__(self, faults):
        self._lock = threading.Lock()
        self._faults = faults

    def set(self, faults):
        with self._lock:
            self._faults = faults

    def get(self):
        with self._lock:
            return dict(self._faults)

    def take(self, name):
        """Uses up one of a counted fault (such as "busy:2"); True while any was left."""
        with self._lock:
            left = self._faults.get(name, 0)
            if left <= 0:
                return False
            self._faults[name] = left - 1
            return True


class recording_http_server(http.server.ThreadingHTTPServer):
    """Records each request's target (to the log file, and counted), its headers and when it
    arrived (on the server's monotonic clock, so that tests can check a client's pacing by what
    the server saw rather than by their own clock)."""

    daemon_threads = True
    block_on_close = False

    def __init__(self, address, handler, options, faults):
        super().__init__(address, handler)
        self.options = options
        self.faults = faults
        self._log_lock = threading.Lock()
        self._log = open(options.log, "ab") if options.log else None
        self.last_headers = ""
        self.arrivals = []

    def record(self, request_target, headers):
        arrived = time.monotonic()
        with self._log_lock:
            self.last_headers = headers
            self.arrivals.append((arrived, request_target))
            if self._log:
                self._log.write(request_target.encode("latin-1") + b"\n")
                self._log.flush()

    def last_request_headers(self):
        with self._log_lock:
            return self.last_headers

    def request_arrivals(self):
        """(seconds on the monotonic clock, target) of each recorded request, in arrival order."""
        with self._log_lock:
            return list(self.arrivals)

    def server_close(self):
        super().server_close()
        if self._log:
            self._log.close()


class quiet_request_handler(http.server.BaseHTTPRequestHandler):
    """Logs only with --verbose; a subclass answers GET in `answer`."""

    def log_message(self, format, *args):
        if self.server.options.verbose:
            super().log_message(format, *args)

    def do_GET(self):
        try:
            self.answer()
        except (BrokenPipeError, ConnectionResetError):
            pass  # the client went away (an aborted test); nothing to tell it


# Faults of answers that never end or end far too late, shared by the servers; each server
# chooses the head and the repeated unit that make a valid answer of its kind.
STREAM_FAULTS = """\
  trickle         send a valid answer that never ends, 2 bytes a second
  stall           send the headers and the answer's first line, then nothing
  endless         send a valid answer that never ends, as fast as the client reads
  huge:MB         declare an answer of MB megabytes and send it, valid, in full"""


def parse_stream_fault(name, arg):
    """(name, argument) of a stream fault, None when `name` is not one; raises ValueError."""
    if name in ("trickle", "stall", "endless") and not arg:
        return name, None
    if name == "huge":
        if not arg.isdigit() or int(arg) == 0:
            raise ValueError("huge needs a whole number of megabytes")
        return name, int(arg)
    return None


def send_stream(handler, content_type, head, unit, faults):
    """Answers with `head` and then `unit` again and again, as the stream fault in `faults`
    says; returns False (sending nothing) when none is in force."""
    fault = next((f for f in ("trickle", "stall", "endless", "huge") if f in faults), None)
    if fault is None:
        return False
    handler.send_response(200)
    handler.send_header("Content-Type", content_type)
    total = faults["huge"] * 1024 * 1024 if fault == "huge" else None
    if total is not None:
        handler.send_header("Content-Length", str(total))
    # Without a declared length the answer ends when the connection does.
    handler.send_header("Connection", "close")
    handler.end_headers()
    handler.close_connection = True
    out = handler.wfile
    if fault == "stall":
        out.write(head.split(b"\n")[0] + b"\n")
        out.flush()
        time.sleep(300)  # a daemon thread: it ends with the server
        return True
    if fault == "trickle":
        data = head + unit * 1000
        while True:
            for i in range(0, len(data), 1):
                out.write(data[i:i + 1])
                out.flush()
                time.sleep(0.5)
    chunk = unit * max(1, 65536 // len(unit))
    out.write(head)
    sent = len(head)
    while total is None or sent < total:
        piece = chunk if total is None else chunk[:total - sent]
        out.write(piece)
        sent += len(piece)
    out.flush()
    return True


def serve(server, options):
    """Prints "PORT <n>" and serves until SIGTERM, SIGINT or (with --stop-with-stdin) the end of
    standard input; returns the exit status."""
    # The handler runs on the main thread, which is inside serve_forever: raising there ends
    # the loop at once, and request threads (daemons) end with the process.
    def stop(*_):
        raise SystemExit(0)
    signal.signal(signal.SIGTERM, stop)
    signal.signal(signal.SIGINT, stop)
    if options.stop_with_stdin:
        # A test that dies without stopping its server must not leave it behind.
        def watch_stdin():
            # The raw descriptor, not sys.stdin: a daemon thread blocked in a buffered read
            # makes the interpreter's shutdown fail on the buffer's lock.
            while os.read(sys.stdin.fileno(), 4096):
                pass
            os.kill(os.getpid(), signal.SIGTERM)
        threading.Thread(target=watch_stdin, daemon=True).start()
    print("PORT {}".format(server.server_address[1]), flush=True)
    try:
        server.serve_forever()
    except SystemExit:
        pass
    finally:
        server.server_close()
    return 0
