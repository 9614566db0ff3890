"""Runs the test programs against the mutants: which tests reach which, and which notice."""

import json
import os
import re
import selectors
import shutil
import signal
import subprocess
import tempfile
import time
from concurrent.futures import ThreadPoolExecutor
from dataclasses import dataclass

from places import COPY, LEVELS, ROOT, tell

ARGUMENTS = {"tests-random": ["--seeds", "2"]}
STEP = re.compile(r"\[( RUN      |       OK |  FAILED  |  SKIPPED )\] ([^ ,(]+)(?:.*\((\d+) ms\))?")
SHUFFLED = ["--gtest_shuffle", "--gtest_random_seed=7"]
LEAST_PATIENCE = 5
# So many tests of a program may hang over a mutant before the others are left alone.
HANGS = 3
LIMITS = "ulimit -f 2000000; ulimit -c 0; exec \"$0\" \"$@\""
# Leaks would be looked for at every end; a mutant may want all memory there is.
SANITIZER = "detect_leaks=0:hard_rss_limit_mb=4000:allocator_may_return_null=1"


@dataclass(eq=False)
class Test:
    """A test of a program, where it is written and how long it takes."""
    program: str
    name: str
    file: str
    lines: int
    level: str
    seconds: float = 0.0


def own_tests(room):
    """The folder of the room's own tests, and whether it is that of the room above."""
    folder = room
    while folder and not os.path.isdir(os.path.join(ROOT, "tests", folder)):
        folder = os.path.dirname(folder)
    return (f"tests/{folder}/" if folder else None), folder != room


def lines_of_test(path, line):
    """How many lines the test that begins in this line takes, with the blank one behind it."""
    with open(path, encoding="utf-8") as file:
        lines = file.read().split("\n")[line - 1:]
    for count, text in enumerate(lines):
        if text.startswith("}") or count == 0 and text.rstrip().endswith("}"):
            return count + 2
    return len(lines)


def lines_of_scenario(name):
    """The file that a scenario's test is made from, and the lines of all that belong to it."""
    folder = os.path.join(ROOT, "tests", "scenarios")
    for file in sorted(os.listdir(folder)):
        stem, extension = os.path.splitext(file)
        title = "".join(word[:1].upper() + word[1:] for word in stem.split("-"))
        if extension == ".jsonl" and name.endswith(f".{title}GoesAsWrittenDown"):
            count = 0
            for ending in (".jsonl", ".expected", ".options"):
                path = os.path.join(folder, stem + ending)
                if os.path.exists(path):
                    with open(path, encoding="utf-8") as text:
                        count += sum(1 for _ in text)
            return f"tests/scenarios/{file}", count
    return "tests/scenarios/main.cpp", 0


class Trials:
    """The tests of all programs, seen from one room."""

    def __init__(self, programs, room, jobs):
        self.programs, self.tests, self.left_out, self.slow = programs, {}, [], 0
        self.pool = ThreadPoolExecutor(jobs)
        own, is_above = own_tests(room)
        for program in sorted(programs):
            for test in self._listed(program, own, is_above):
                self.tests[program, test.name] = test

    def _listed(self, program, own, is_above):
        with tempfile.TemporaryDirectory() as folder:
            path = os.path.join(folder, "tests.json")
            subprocess.run([self.programs[program], "--gtest_list_tests", f"--gtest_output=json:{path}"],
                           cwd=folder, stdout=subprocess.DEVNULL, check=True)
            with open(path, encoding="utf-8") as file:
                suites = json.load(file)["testsuites"]
        for suite in suites:
            for each in suite["testsuite"]:
                name = f"{suite['name']}.{each['name']}"
                # The compiler cache may name another checkout's folder.
                file = "tests/" + each["file"].rpartition("/tests/")[2]
                if program == "tests-scenarios":
                    yield Test(program, name, *lines_of_scenario(name), "scenarios")
                    continue
                rest = file[len(own):] if own and file.startswith(own) else None
                is_own = rest is not None and not (is_above and "/" in rest)
                level = "random" if program == "tests-random" else "own" if is_own else "unit"
                lines = lines_of_test(os.path.join(COPY, file), each["line"])
                yield Test(program, name, file, lines, level)

    # Which tests reach which mutants.

    def reach(self):
        """{number: [tests that come to it]}, from two runs in different orders; the slow tests go once."""
        tell(f"looking which of {len(self.tests)} tests reach what")
        straight = self._traces(lambda _: True, [])
        times = sorted(test.seconds for test in self.tests.values())
        self.slow = times[len(times) * 19 // 20]
        shuffled = self._traces(self.is_quick, SHUFFLED)
        found = {}
        for program in self.programs:
            tests = [test for test in self.tests.values() if test.program == program]
            quick = {test.name for test in tests if self.is_quick(test)}
            for number, names in straight[program].items():
                again = shuffled[program].get(number, set())
                # What only the first test comes to, whichever that is, is kept for all the others;
                # what is outside of all tests is so, too.
                is_for_all = "*" in names or names & quick != again - {"*"}
                found.setdefault(number, []).extend(
                    test for test in tests if is_for_all or test.name in names)
        return found

    def is_quick(self, test):
        """Whether it is not of the one in twenty that take longest."""
        return test.seconds <= self.slow

    def _traces(self, wanted, order):
        chosen = [[test for test in self.tests.values() if test.program == program and wanted(test)]
                  for program in self.programs]
        return dict(zip(self.programs, self.pool.map(
            lambda tests: self._traced(tests, order), chosen)))

    def _traced(self, tests, order):
        """{number: names of tests} of a program; what fails without any mutant is left out."""
        reached, left = {}, {test.name: test for test in tests}
        while left:
            program = tests[0].program
            with tempfile.TemporaryDirectory() as folder:
                trace = os.path.join(folder, "trace")
                outcome = self._run(program, ":".join(left), {"KALIM_MUTANT_TRACE": trace}, folder,
                                    lambda _: 600, order)
                if os.path.exists(trace):
                    with open(trace, encoding="utf-8") as file:
                        for line in file:
                            number, name = line.split()
                            reached.setdefault(int(number), set()).add(name)
            for name, (how, seconds) in outcome.items():
                test = left.pop(name, None)
                if test and how:
                    self._leave_out(test, how)
                elif test:
                    test.seconds = max(test.seconds, seconds)
            if left and not outcome:
                for test in left.values():
                    self._leave_out(test, "does not run")
                break
        return reached

    def _leave_out(self, test, how):
        if self.tests.pop((test.program, test.name), None):
            self.left_out.append(f"{test.name} {how} without any mutant")

    # Which tests notice a mutant.

    def catchers(self, number, tests, only_first=False):
        """{test: how} of those among the tests that a mutant does not pass."""
        caught, by_program = {}, {}
        for test in tests:
            by_program.setdefault(test.program, []).append(test)
        # The quickest first.
        for program, left in sorted(by_program.items(), key=lambda each: sum(test.seconds for test in each[1])):
            caught.update(self._caught(number, program, left, only_first))
            if only_first and caught:
                break
        if len(caught) == 1:
            # What a single test says is asked a second time: it may have been the machine.
            test = next(iter(caught))
            caught = self._caught(number, test.program, [test], True)
        return {test.name: how for test, how in caught.items()}

    def _caught(self, number, program, left, only_first):
        caught, hangs = {}, 0
        environment = {"KALIM_MUTANT": str(number)}
        if only_first:
            environment["GTEST_FAIL_FAST"] = "1"
        while left and hangs < HANGS and not (only_first and caught):
            by_name = {test.name: test for test in left}
            with tempfile.TemporaryDirectory() as folder:
                outcome = self._run(
                    program, ":".join(by_name), environment, folder,
                    lambda name: max(LEAST_PATIENCE, 10 * by_name[name].seconds if name else 0))
            for name, (how, _) in outcome.items():
                if how and name in by_name:
                    caught[by_name[name]] = how
                    hangs += how == "hangs"
            remaining = [test for test in left if test.name not in outcome]
            if len(remaining) == len(left):
                # The program does not even come to its first test.
                return {test: "crashes" for test in left}
            left = remaining
        return caught

    def _run(self, program, chosen, environment, folder, patience, order=()):
        """{test: (how it failed or nothing, seconds)} of one run, which ends where a test crashes or hangs."""
        command = ["bash", "-c", LIMITS, self.programs[program], f"--gtest_filter={chosen}",
                   "--gtest_color=no", *order, *ARGUMENTS.get(program, [])]
        scratch = os.path.join(folder, "scratch")
        os.mkdir(scratch)
        process = subprocess.Popen(
            command, cwd=scratch, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
            stderr=subprocess.DEVNULL, start_new_session=True,
            env={**os.environ, "TMPDIR": scratch, "ASAN_OPTIONS": SANITIZER, **environment})
        try:
            return self._followed(process, patience)
        finally:
            try:
                os.killpg(process.pid, signal.SIGKILL)
            except ProcessLookupError:
                pass
            process.stdout.close()
            process.wait()
            shutil.rmtree(scratch, ignore_errors=True)

    @staticmethod
    def _followed(process, patience):
        outcome, current, rest = {}, None, b""
        deadline = time.monotonic() + max(2 * LEAST_PATIENCE, patience(None))
        with selectors.DefaultSelector() as selector:
            selector.register(process.stdout, selectors.EVENT_READ)
            while True:
                if not selector.select(max(0, deadline - time.monotonic())):
                    if current:
                        outcome[current] = ("hangs", 0)
                    return outcome
                part = os.read(process.stdout.fileno(), 1 << 16)
                if not part:
                    break
                *lines, rest = (rest + part).split(b"\n")
                rest = rest[-4096:]
                for line in lines:
                    # What a test prints itself may stand before it.
                    step = STEP.search(line.decode("utf-8", "replace"))
                    if not step:
                        continue
                    what, name, milliseconds = step.group(1).strip(), step.group(2), step.group(3)
                    if what == "RUN":
                        current = name
                        deadline = time.monotonic() + patience(name)
                    elif name == current and milliseconds:
                        outcome[name] = ("fails" if what == "FAILED" else "", int(milliseconds) / 1000)
                        current = None
                        deadline = time.monotonic() + LEAST_PATIENCE
        status = process.wait()
        if current:
            outcome[current] = ("crashes", 0)
        elif status != 0 and outcome and not any(how for how, _ in outcome.values()):
            outcome[list(outcome)[-1]] = ("crashes at the end", 0)
        return outcome
