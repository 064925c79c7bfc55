"""A copy of the sources that is mutated, built and tested."""

import os
import re
import resource
import shutil
import signal
import subprocess
import sys
import tempfile
from collections import defaultdict
from dataclasses import dataclass
from pathlib import Path

CONFIGURATION = [
    "-DCMAKE_BUILD_TYPE=Debug",
    # A mutation may cause a warning, and its build is not debugged.
    "-DCMAKE_CXX_FLAGS=-w",
    "-DCMAKE_CXX_FLAGS_DEBUG=-O0",
    "-DCMAKE_EXPORT_COMPILE_COMMANDS=ON",
    "-DVESTRA_UNITE_TESTS=ON",
    # Each mutant links the test programs anew.
    *(["-DCMAKE_EXE_LINKER_FLAGS=-fuse-ld=gold"] if shutil.which("ld.gold") else []),
]

ADDRESS_SPACE = 8 << 30
# Ends what waits for ever, which uses no processor time.
SECONDS_ASLEEP = 600


@dataclass(frozen=True)
class Check:
    """A test program as it is run against a mutation.

    Its seconds are of processor time, so that a busy machine is not taken for a failure.
    """

    name: str
    targets: tuple
    command: tuple
    seconds: int
    limits_memory: bool = True
    is_quick: bool = True


def unit_check(program):
    return Check(program, (program,), (f"tests/{program}",), 30)


RELIABILITY = ("vestra", "reliability_tests")
MEMCHECK = (
    "valgrind",
    "--quiet",
    "--error-exitcode=99",
    "--leak-check=full",
    "--errors-for-leak-kinds=definite,indirect",
    "--vgdb=no",
)

# From the quickest to the slowest. The tests that kill a host at each system call are left out:
# they take minutes, and no mutation is of the kind that they alone would notice.
CHECKS = (
    unit_check("unit_tests"),
    unit_check("out_of_memory_tests"),
    unit_check("first_use_tests"),
    unit_check("first_use_thread_tests"),
    Check("end_to_end_tests", ("vestra", "end_to_end_tests"), ("tests/end_to_end/end_to_end_tests",), 120),
    Check(
        "reliability_tests",
        RELIABILITY,
        ("tests/reliability/reliability_tests", "--gtest_filter=-*KilledHost*:*HostsAtOnce*"),
        240,
        is_quick=False,
    ),
    # Blocks that are lost, used too late or never set show here only.
    Check(
        "reliability_tests under valgrind",
        RELIABILITY,
        (*MEMCHECK, "tests/reliability/reliability_tests", "--gtest_filter=Lifecycle.*"),
        240,
        limits_memory=False,
        is_quick=False,
    ),
    Check(
        "unit_tests under valgrind",
        ("unit_tests",),
        (*MEMCHECK, "tests/unit_tests"),
        600,
        limits_memory=False,
        is_quick=False,
    ),
)

DOES_NOT_COMPILE = "does not compile"


class Workshop:
    """Applies one mutation at a time."""

    def __init__(self, root, directory, quick):
        self.root = Path(root)
        self.tree = Path(directory) / "tree"
        self.build = Path(directory) / "programs"
        self.database = self.build / "compile_commands.json"
        self.checks = [check for check in CHECKS if check.is_quick or not quick]
        # The tests that noticed mutants of a file: they run before the others.
        self.noticed = defaultdict(dict)

    def configure(self):
        """Brings the copy up to date."""
        subprocess.run([self.root / "scripts/checks/copy-sources", self.tree], check=True)
        # A run that was cut off may have left objects of a mutated source.
        for source in (self.tree / "src").rglob("*.*"):
            source.touch()
        subprocess.run(
            ["cmake", "-S", self.tree, "-B", self.build, "-G", "Ninja", *CONFIGURATION],
            check=True,
            stdout=subprocess.DEVNULL,
        )

    def build_unmutated(self):
        """Ends the program when a check fails though nothing is wrong."""
        for check in self.checks:
            if not self.builds(check.targets):
                sys.exit(f"mutate: {' '.join(check.targets)} do not build without any mutation")
            if self.failure_of(check):
                sys.exit(f"mutate: {check.name} fails without any mutation")

    def builds(self, targets):
        command = ["ninja", "-C", self.build, "-j2", *targets]
        return subprocess.run(command, capture_output=True, check=False).returncode == 0

    def outcome_of(self, mutant):
        """The check that noticed the mutation, None if none did, and what it said."""
        path = self.tree / mutant.file
        source = path.read_text(encoding="latin-1")
        try:
            path.write_text(mutant.applied_to(source), encoding="latin-1")
            return self.first_failure(mutant.file)
        finally:
            path.write_text(source, encoding="latin-1")

    def first_failure(self, file):
        for check in self.checks:
            if not self.builds(check.targets):
                return DOES_NOT_COMPILE, ""
            noticed = self.noticed[file, check.name]
            failure = (noticed and self.failure_of(check, noticed)) or self.failure_of(check)
            if failure:
                if not failure.startswith("exit status"):
                    noticed[failure] = True
                return check.name, failure
        return None, ""

    def failure_of(self, check, tests=()):
        """What a check says that fails; only these tests are run, if any are named."""
        with tempfile.TemporaryDirectory() as room:
            # Tests that act as another user look in here too.
            Path(room).chmod(0o777)
            return self.run_in(room, check, [f"--gtest_filter={':'.join(tests)}"] if tests else [])

    def run_in(self, room, check, options):
        output = Path(room) / "output"
        environment = dict(os.environ, TMPDIR=room, HOME=room, RC_PARAMS="seed=1")
        with output.open("wb") as out:
            process = subprocess.Popen(
                [*check.command, "--gtest_brief=1", "--gtest_fail_fast", *options],
                cwd=self.build,
                env=environment,
                stdin=subprocess.DEVNULL,
                stdout=out,
                stderr=subprocess.STDOUT,
                start_new_session=True,
                preexec_fn=lambda: limit(check),
            )
            status = wait(process)
        return "" if status == 0 else summary(output, status)


def limit(check):
    resource.setrlimit(resource.RLIMIT_CPU, (check.seconds, check.seconds))
    if check.limits_memory:
        resource.setrlimit(resource.RLIMIT_AS, (ADDRESS_SPACE, ADDRESS_SPACE))


def wait(process):
    """The program's exit status, after its end or when it was ended."""
    try:
        return process.wait(SECONDS_ASLEEP)
    except subprocess.TimeoutExpired:
        os.killpg(process.pid, signal.SIGKILL)
        return process.wait()


def summary(output, status):
    text = output.read_text(encoding="utf-8", errors="replace")
    failed = re.search(r"^\[  FAILED  \] ([^ ,]+)", text, re.MULTILINE)
    return failed.group(1) if failed else f"exit status {status}"
