#!/usr/bin/env python3
"""Helpers for the command line's contract tests.

cli_probe.py json SHAPE FILE parses FILE with Python's json module and checks it against SHAPE,
                             a JSON text: every key of an object in SHAPE must be in the document
                             with a value of the same kind ("" text, 0 integer, true boolean, [X]
                             a list whose items are X, {...} an object, null anything); a key
                             spelled "key?" may be missing. Prints what is wrong; exit 1.
cli_probe.py terminal TEXT BYTES PROGRAM ARGS...
                             runs PROGRAM on a pseudo-terminal, waits until it has written TEXT,
                             types BYTES (Python escapes: "\\x03" is Ctrl-C, "\\x04" end of input),
                             prints the program's exit status (128 + N for a signal N) on the
                             first line and then everything the program wrote to the terminal.
"""
import json
import os
import pty
import select
import sys
import time


def kind(value):
    if isinstance(value, bool):
        return "boolean"
    if isinstance(value, int):
        return "integer"
    return {str: "text", list: "list", dict: "object", type(None): "null", float: "number"}[type(value)]


def check(shape, value, where, problems):
    if shape is None:
        return
    if kind(shape) != kind(value):
        problems.append(f"{where}: expected {kind(shape)}, got {json.dumps(value)[:80]}")
        return
    if isinstance(shape, list):
        for i, item in enumerate(value):
            check(shape[0], item, f"{where}[{i}]", problems)
    elif isinstance(shape, dict):
        for key, sub in shape.items():
            optional = key.endswith("?")
            key = key.rstrip("?")
            if key in value:
                check(sub, value[key], f"{where}.{key}", problems)
            elif not optional:
                problems.append(f"{where}: no key \"{key}\"")


def json_command(shape_text, path):
    with open(path, encoding="utf-8") as f:
        text = f.read()
    try:
        document = json.loads(text)
    except json.JSONDecodeError as e:
        print(f"not JSON ({e}): {text[:200]!r}")
        return 1
    problems = []
    check(json.loads(shape_text), document, "$", problems)
    for p in problems:
        print(p)
    return 1 if problems else 0


def terminal_command(text, keys, argv):
    pid, fd = pty.fork()
    if pid == 0:
        os.execv(argv[0], argv)
    seen = b""
    deadline = time.monotonic() + 60
    typed = False
    while True:
        ready, _, _ = select.select([fd], [], [], 0.1)
        if ready:
            try:
                chunk = os.read(fd, 4096)
            except OSError:
                chunk = b""
            if not chunk:
                break
            seen += chunk
        if not typed and text.encode() in seen:
            os.write(fd, keys.encode().decode("unicode_escape").encode("latin-1"))
            typed = True
        if time.monotonic() > deadline:
            os.kill(pid, 9)
            break
    _, status = os.waitpid(pid, 0)
    if not typed:
        sys.stderr.write(f"never saw {text!r} in {seen[-400:]!r}\n")
    print(os.WEXITSTATUS(status) if os.WIFEXITED(status) else 128 + os.WTERMSIG(status))
    sys.stdout.write(seen.decode("utf-8", "replace"))
    return 0


if __name__ == "__main__":
    if sys.argv[1] == "json":
        sys.exit(json_command(sys.argv[2], sys.argv[3]))
    sys.exit(terminal_command(sys.argv[2], sys.argv[3], sys.argv[4:]))
