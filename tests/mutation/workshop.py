"""A copy of the sources that is mutated, built and tested."""

import os
import resource
import signal
import subprocess
import tempfile
from dataclasses import dataclass
from pathlib import Path

CONFIGURATION = [
    "-DCMAKE_BUILD_TYPE=Debug",
    # A mutation may cause a warning, and its build is not debugged.
    "-DCMAKE_CXX_FLAGS=-w",
    "-DCMAKE_CXX_FLAGS_DEBUG=-O0",
    "-DCMAKE_EXPORT_COMPILE_COMMANDS=ON",
]

ADDRESS_SPACE = 8 << 30
# Ends what waits for ever, which uses no processor time.
SECONDS_ASLEEP = 1800


@dataclass(frozen=True)
class Check:
    """A test program as it is run against a mutation, from the quickest to the slowest.

    Its seconds are of processor time, so that a busy machine is not taken for a failure.
    """

    name: str
    targets: tuple
    command: tuple
    seconds: int
    limits_memory: bool = True


MEMCHECK = (
    "valgrind",
    "--quiet",
    "--error-exitcode=99",
    "--leak-check=full",
    "--errors-for-leak-kinds=definite,indirect",
    "--vgdb=no",
)

# The sweeps that fail or kill a host at each system call are left out: they take
# minutes, and no mutation is of the kind that they alone would notice.
CHECKS = (
    Check("unit_tests", ("unit_tests",), ("tests/unit_tests",), 90),
    Check("out_of_memory_tests", ("out_of_memory_tests",), ("tests/out_of_memory_tests",), 60),
    Check("first_use_tests", ("first_use_tests",), ("tests/first_use_tests",), 60),
    Check(
        "first_use_thread_tests",
        ("first_use_thread_tests",),
        ("tests/first_use_thread_tests",),
        60,
    ),
    Check(
        "end_to_end_tests",
        ("vestra", "end_to_end_tests"),
        ("tests/end_to_end/end_to_end_tests",),
        120,
    ),
    Check(
        "reliability_tests",
        ("vestra", "reliability_tests"),
        (
            "tests/reliability/reliability_tests",
            "--gtest_filter=-*FailingCall*:*KilledHost*:*Together*",
        ),
        240,
    ),
    # Blocks that are lost, used too late or never set show here only.
    Check(
        "reliability_tests under valgrind",
        ("vestra", "reliability_tests"),
        (*MEMCHECK, "tests/reliability/reliability_tests", "--gtest_filter=Lifecycle.*"),
        240,
        limits_memory=False,
    ),
    Check(
        "unit_tests under valgrind",
        ("unit_tests",),
        (*MEMCHECK, "tests/unit_tests"),
        600,
        limits_memory=False,
    ),
)

DOES_NOT_COMPILE = "does not compile"


class Workshop:
    """Applies one mutation at a time; each workshop has a directory of its own."""

    def __init__(self, root, directory):
        self.root = Path(root)
        self.tree = Path(directory) / "tree"
        self.build = Path(directory) / "programs"

    @property
    def database(self):
        return self.build / "compile_commands.json"

    def open(self):
        """Brings the copy up to date and builds everything unmutated."""
        subprocess.run([self.root / "scripts/checks/copy-sources", self.tree], check=True)
        # A run that was cut off may have left objects of a mutated source.
        for source in (self.tree / "src").rglob("*.*"):
            source.touch()
        subprocess.run(
            ["cmake", "-S", self.tree, "-B", self.build, "-G", "Ninja", *CONFIGURATION],
            check=True,
            stdout=subprocess.DEVNULL,
        )
        targets = sorted({target for check in CHECKS for target in check.targets})
        if not self.builds(targets):
            raise RuntimeError(f"{self.tree} does not build")

    def check_unmutated(self):
        """Names the check that fails though nothing is wrong, if one does."""
        return next((c.name for c in CHECKS if self.failure_of(c)), None)

    def builds(self, targets):
        command = ["ninja", "-C", self.build, "-j2", *targets]
        return subprocess.run(command, capture_output=True, check=False).returncode == 0

    def outcome_of(self, mutant):
        """How the mutation was noticed: the check's name and what it said; None if it was not."""
        path = self.tree / mutant.file
        source = path.read_text(encoding="latin-1")
        try:
            path.write_text(mutant.applied_to(source), encoding="latin-1")
            return self.first_failure()
        finally:
            path.write_text(source, encoding="latin-1")

    def first_failure(self):
        for check in CHECKS:
            if not self.builds(check.targets):
                return DOES_NOT_COMPILE, ""
            failure = self.failure_of(check)
            if failure:
                return check.name, failure
        return None

    def failure_of(self, check):
        with tempfile.TemporaryDirectory() as room:
            # Tests that act as another user look in here too.
            Path(room).chmod(0o777)
            return self.run_in(room, check)

    def run_in(self, room, check):
        output = Path(room) / "output"
        environment = dict(os.environ, TMPDIR=room, HOME=room, RC_PARAMS="seed=1")
        with output.open("wb") as out:
            process = subprocess.Popen(
                [*check.command, "--gtest_brief=1", "--gtest_fail_fast"],
                cwd=self.build,
                env=environment,
                stdin=subprocess.DEVNULL,
                stdout=out,
                stderr=subprocess.STDOUT,
                start_new_session=True,
                preexec_fn=lambda: limit(check),
            )
            status = wait(process)
        if status is None:
            return f"no end within {SECONDS_ASLEEP} s"
        return "" if status == 0 else summary(output, status)


def limit(check):
    resource.setrlimit(resource.RLIMIT_CPU, (check.seconds, check.seconds))
    if check.limits_memory:
        resource.setrlimit(resource.RLIMIT_AS, (ADDRESS_SPACE, ADDRESS_SPACE))


def wait(process):
    """The program's exit status; None when it had to be ended."""
    try:
        return process.wait(SECONDS_ASLEEP)
    except subprocess.TimeoutExpired:
        os.killpg(process.pid, signal.SIGKILL)
        process.wait()
        return None


def summary(output, status):
    text = output.read_text(encoding="utf-8", errors="replace")
    failed = [line[13:] for line in text.splitlines() if line.startswith("[  FAILED  ] ")]
    return failed[0].split(" (")[0] if failed else f"exit status {status}"
