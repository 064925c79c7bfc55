#!/usr/bin/env python3
"""A host that is a script, with the module that pybind11 made.

    pybind_host.py PROJECT_DIRECTORY DIRECTORY_OF_MODULE
"""
import os
import sys

project, modules = sys.argv[1:]
sys.path.insert(0, modules)
from vestra_module import ProductType, SectionType, add, getLogFileName, send


def expect(what, answer, expected):
    print(f"host: {what}: {answer}")
    if answer != expected:
        sys.exit(1)


def error_of(call, *arguments):
    try:
        call(*arguments)
    except RuntimeError as error:
        return str(error)
    return ""


add("runs", "2", SectionType.KELVO_USAGE)
expect("the report is sent", send(project, ProductType.KELVO), True)
expect("a second one is not due", send(project, ProductType.KELVO), False)
expect("the log's name", getLogFileName(), project + "/vestra/tavlo_vestra.log")
os.mkdir(project + "/gone")
os.chdir(project + "/gone")
os.rmdir(project + "/gone")
expect("an exception is an error", "current_path" in error_of(send, project, ProductType.KELVO), True)
