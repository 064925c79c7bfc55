#!/usr/bin/env python3
"""A host that is a script, with the functions of the shim.

    ctypes_host.py PROJECT_DIRECTORY SHIM
"""
import ctypes
import os
import sys

project, shim = sys.argv[1:]
vestra = ctypes.CDLL(shim)


def expect(what, answer, expected):
    print(f"host: {what}: {answer}")
    if answer != expected:
        sys.exit(1)


expect("an item is added", vestra.vestra_add(b"runs", b"2", 3), 1)
expect("the report is sent", vestra.vestra_send(os.fsencode(project), 0), 1)
expect("a second one is not due", vestra.vestra_send(os.fsencode(project), 0), 0)
expect("without a directory, there is an exception", vestra.vestra_send(None, 0), -1)
