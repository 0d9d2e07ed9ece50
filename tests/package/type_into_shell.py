#!/usr/bin/env python3
"""Types a line into an interactive shell, tabs and all, and prints what the shell made of it.

usage: type_into_shell.py LINE SHELL [ARGUMENT]...

The shell runs on a terminal of its own and has 20 seconds. It says "shell is ready" as its prompt, and
"typed: ARGUMENTS." when the line ran. What stands between these two words is printed.
"""
import os
import pty
import select
import sys
import time

READY = b"shell is ready"
TYPED = b"typed:"


def read_until(terminal, heard, wanted, deadline):
    while not wanted(heard):
        left = deadline - time.monotonic()
        if left <= 0 or not select.select([terminal], [], [], left)[0]:
            sys.exit(f"the shell did not answer; it said: {bytes(heard)!r}")
        try:
            chunk = os.read(terminal, 4096)
        except OSError:
            chunk = b""
        if not chunk:
            sys.exit(f"the shell has gone; it said: {bytes(heard)!r}")
        heard += chunk


def answer(heard):
    """What follows TYPED up to the full stop; nothing while that has not come."""
    end = heard.find(b".\r\n", heard.find(TYPED)) if TYPED in heard else -1
    return heard[heard.find(TYPED) + len(TYPED) : end].strip() if end >= 0 else None


def main():
    line, shell = sys.argv[1], sys.argv[2:]
    child, terminal = pty.fork()
    if child == 0:
        os.execvp(shell[0], shell)
    deadline = time.monotonic() + 20
    heard = bytearray()
    try:
        read_until(terminal, heard, lambda text: READY in text, deadline)
        heard.clear()
        os.write(terminal, line.encode() + b"\n")
        read_until(terminal, heard, lambda text: answer(text) is not None, deadline)
        print(answer(heard).decode())
    finally:
        os.close(terminal)  # which hangs up on the shell
        os.waitpid(child, 0)


main()
