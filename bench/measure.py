#!/usr/bin/python3
"""Measures the library relative to its baselines: docs/performance.md says how and why.

    measure.py PROGRAMS SUPPORT_LIBRARY_DIRECTORY SUBJECT...

PROGRAMS is the directory of the programs that are started; the subjects are adding, sending
and starting.
"""

import os
import statistics
import subprocess
import sys
import tempfile
from pathlib import Path

PROGRAMS = Path(sys.argv[1])
ITEMS = 100
LARGE = (10_000, 100_000, 1_000_000)

SETTINGS = "RandomID=0d7bb6a4-9d36-4b0e-8a44-3b8e7a8c4f52\n"
# The time of the last report.
DUE = 0
NOT_DUE = 9999999999


def numbers(program, *arguments):
    """What a program measures and prints."""
    command = [PROGRAMS / program, *map(str, arguments)]
    printed = subprocess.run(command, check=True, stdout=subprocess.PIPE, text=True).stdout
    return [float(word) for word in printed.split()]


def heading():
    print(f"{'what':50}{'relative to':44}{'goal':>6}{'median':>8}{'quartiles':>15}  met", flush=True)


def row(what, baseline, goal, rounds):
    """`rounds` are pairs of the library's figure and the baseline's, in any unit."""
    below, median, above = statistics.quantiles([ours / theirs for ours, theirs in rounds], method="inclusive")
    met = "-" if goal is None else "yes" if median <= goal else "NO"
    spread = f"{below:.2f} - {above:.2f}"
    print(f"{what:50}{baseline:44}{goal or '-':>6}{median:8.2f}{spread:>15}  {met}", flush=True)


def adding():
    def compare(first, key, value, count):
        for _ in range(101 if count == ITEMS else 31):
            yield [numbers("add_items", side, first, key, value, count)[0] for side in ("library", "vector")]

    vector = "vector of two strings and a number"
    for key, value in ((16, 24), (10, 8)):
        for count in (ITEMS, 10_000, 1_000_000):
            what = f"add, {count} items of {key} + {value} bytes"
            row(what, vector, 1.25, compare("with-first", key, value, count))
        what = f"add, {ITEMS} items of {key} + {value} bytes, after the first"
        row(what, vector, None, compare("after-first", key, value, ITEMS))


class Project:
    """A project with the files of a report of so many items."""

    def __init__(self, directory, items):
        self.directory = Path(directory)
        self.files = self.directory / "vestra"
        self.files.mkdir()
        self.texts = {}
        self.send(items, NOT_DUE)
        self.texts = {
            name: (self.files / name).read_bytes()
            for name in ("kelvo_vestra.tcl", "usage_statistics_ext_kelvo.wdm")
        }

    def restore(self, last_sent):
        for name, text in self.texts.items():
            (self.files / name).write_bytes(text)
        identity = f"{last_sent}\n0\n42\n0\n5f0c2a39-3a57-4d4e-9f0b-6d6d2f9f4d11\n"
        (self.files / ".kelvo_vestrra.info").write_text(identity, encoding="ascii")

    def send(self, items, last_sent):
        """Nanoseconds, those of processor time, bytes of the items, bytes at the peak."""
        self.restore(last_sent)
        return numbers("send_report", items, self.directory)

    def send_in_c(self, last_sent):
        self.restore(last_sent)
        command = ["true"] if last_sent == DUE else []
        return numbers("send_baseline", self.directory, *command)[0]

    def append_in_c(self, items):
        self.restore(NOT_DUE)
        return numbers("append_items", items, self.files / "kelvo_vestra.tcl")[0]


def sending():
    with tempfile.TemporaryDirectory() as directory:
        project = Project(directory, ITEMS)
        for what, last_sent, goal in (("that is not due", NOT_DUE, 1.4), ("that is due", DUE, 1.1)):
            rounds = [(project.send(ITEMS, last_sent)[0], project.send_in_c(last_sent)) for _ in range(101)]
            row(f"send {what}, {ITEMS} items", "the same files, one write each", goal, rounds)
    for items in LARGE:
        with tempfile.TemporaryDirectory() as directory:
            project = Project(directory, items)
            script = len(project.texts["kelvo_vestra.tcl"])
            times = []
            memory = []
            for _ in range(9):
                _, processor, item_bytes, peak = project.send(items, NOT_DUE)
                times.append((processor - project.send(ITEMS, NOT_DUE)[1], project.append_in_c(items)))
                memory.append((peak, script + item_bytes))
        row(f"send, {items} items, beyond that of {ITEMS}", "both texts appended, zlib, one file", 1.3, times)
        row(f"peak memory, {items} items", "the script's text and the items", 1.15, memory)


def starting():
    both = (PROGRAMS / "start_with_library", PROGRAMS / "start_with_empty_library")
    rounds = [numbers("start_in_turn", 1000, *both) for _ in range(11)]
    row("1000 starts, private Boost", "an empty library", 1.05, rounds)


def main():
    subjects = {subject.__name__: subject for subject in (adding, sending, starting)}
    with tempfile.TemporaryDirectory() as home:
        settings = Path(home, ".Calvix/Common/2018.2/vestra")
        settings.parent.mkdir(parents=True)
        settings.write_text(SETTINGS, encoding="ascii")
        # The support library's answers take no time, and the main design tool is `true`.
        os.environ.update(
            HOME=home,
            LD_LIBRARY_PATH=sys.argv[2],
            VESTRA_TESTKIT_EXEC_PATH="true",
            VESTRA_TESTKIT_REGID="registration",
            VESTRA_TESTKIT_ENVIRONMENT="os#Linux#cpu#fast#ram#16 GB#a#1#b#2#c#3#date_generated#2026-11-21#beta#FALSE",
        )
        heading()
        for subject in sys.argv[3:]:
            subjects[subject]()


main()
