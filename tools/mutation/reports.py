"""What is said about mutants: their lines, the files they are kept in, which tests may go."""

import json
import os
import subprocess

from places import FOLDER, LEVELS, ROOT, Refused

NAMES = {"own": "the room's own tests", "unit": "other unit tests", "scenarios": "scenarios alone",
         "random": "the random driver alone"}


def file_of(room):
    """Where a room's verdicts are kept."""
    return os.path.join(FOLDER, room.replace("/", "-") + ".json")


def save(room, seed, verdicts, trials):
    """Writes the verdicts: the mutants, and the tests that the house had then."""
    commit = subprocess.run(["git", "rev-parse", "HEAD"], cwd=ROOT, stdout=subprocess.PIPE, text=True)
    content = {
        "room": room, "seed": seed, "commit": commit.stdout.strip(), "mutants": verdicts,
        "tests": {test.name: {"program": test.program, "file": test.file, "lines": test.lines,
                              "level": test.level, "seconds": test.seconds} for test in trials.tests.values()},
        "left out": trials.left_out}
    with open(file_of(room), "w", encoding="utf-8") as file:
        json.dump(content, file, indent=1, ensure_ascii=False)
        file.write("\n")


def load(path):
    """The verdicts of a file, or of a room by its name."""
    for each in (path, file_of(path)):
        if os.path.isfile(each):
            with open(each, encoding="utf-8") as file:
                content = json.load(file)
            if "mutants" not in content:
                raise Refused(f"{each} holds no mutants")
            return content
    raise Refused(f"there are no verdicts on {path}: run tools/mutants --all-catchers {path} first")


def level_of(verdict, tests):
    """The first level that catches a mutant, or nothing."""
    levels = [tests[name]["level"] for name in verdict["catchers"]]
    return min(levels, key=LEVELS.index) if levels else None


def line_of(verdict, tests):
    """A mutant and its fate."""
    names = sorted(verdict["catchers"], key=lambda name: LEVELS.index(tests[name]["level"]))
    if names:
        fate = f"caught by {names[0]}" + (f" (+{len(names) - 1})" if len(names) > 1 else "")
    else:
        fate = "SURVIVES" if verdict["reached"] else "NOT REACHED"
    return f"{verdict['file'].removeprefix('kalimkit/')}:{verdict['line']} {verdict['change']} {fate}"


def summary(content):
    """A room's verdicts in a line."""
    verdicts, tests = content["mutants"], content["tests"]
    levels = [level_of(verdict, tests) for verdict in verdicts]
    parts = [f"{levels.count(level)} caught by {NAMES[level]}" for level in LEVELS]
    unreached = sum(1 for verdict in verdicts if not verdict["reached"])
    missed = levels.count(None) - unreached
    return (f"{content['room']}: {len(verdicts)} mutants, {', '.join(parts)}, {missed} survive, "
            f"{unreached} not reached")


def print_report(content):
    for verdict in content["mutants"]:
        print(line_of(verdict, content["tests"]))
    for left_out in content["left out"]:
        print(f"not counted: {left_out}")
    print(summary(content))


def _merged(contents):
    """All mutants of several rooms, each with the tests that catch it, and all tests."""
    tests, mutants = {}, []
    for content in contents:
        tests.update(content["tests"])
        mutants += [(line_of(each, content["tests"]), set(each["catchers"])) for each in content["mutants"]
                    if each["catchers"]]
    return tests, mutants


def print_tests(contents):
    """For every test what it alone catches, and which tests catch nothing that another does not."""
    tests, mutants = _merged(contents)
    alone = {}
    for line, catchers in mutants:
        if len(catchers) == 1:
            alone.setdefault(next(iter(catchers)), []).append(line.split(" caught by ")[0])
    for name in sorted(alone):
        print(f"{name} ({tests[name]['file']}) alone catches {len(alone[name])}:")
        for line in alone[name]:
            print(f"    {line}")
    spare = sorted(name for name in tests if name not in alone)
    print(f"{len(spare)} tests catch nothing that another does not catch as well:")
    for name in spare:
        count = sum(1 for _, catchers in mutants if name in catchers)
        print(f"    {name} ({tests[name]['file']}, {tests[name]['lines']} lines, catches {count})")


def cover(contents):
    """Tests in greedy order, each with how many mutants it adds, and the tests that add none."""
    tests, mutants = _merged(contents)
    caught_by = {name: set() for name in tests}
    for index, (_, catchers) in enumerate(mutants):
        for name in catchers:
            caught_by[name].add(index)
    open_mutants, order = set(range(len(mutants))), []
    while open_mutants:
        # Of equals the shorter one.
        name = min(caught_by, key=lambda each: (-len(caught_by[each] & open_mutants), tests[each]["lines"], each))
        order.append((name, len(caught_by[name] & open_mutants)))
        open_mutants -= caught_by.pop(name)
    return tests, order, sorted(caught_by, key=lambda name: (tests[name]["file"], name))


def print_cover(contents):
    tests, order, removable = cover(contents)
    print(f"{sum(count for _, count in order)} mutants are caught by these {len(order)} tests:")
    for name, count in order:
        print(f"    +{count} {name} ({tests[name]['file']}, {tests[name]['lines']} lines)")
    lines = sum(tests[name]["lines"] for name in removable)
    print(f"{len(removable)} tests, {lines} lines, add nothing to them:")
    for name in removable:
        print(f"    {name} ({tests[name]['file']}, {tests[name]['lines']} lines)")


def print_replay(before, verdicts, tests, gone):
    """What was caught and is no more; whether nothing is lost."""
    lost, won, same = [], 0, 0
    for old, new in verdicts:
        if old["catchers"] and not new["catchers"]:
            lost.append((old, new))
        elif new["catchers"] and not old["catchers"]:
            won += 1
        else:
            same += 1
    for old in gone:
        print(f"no longer in the code: {line_of(old, before['tests'])}")
    for old, new in lost:
        fate = "SURVIVES" if new["reached"] else "NOT REACHED"
        print(f"LOST: {new['file'].removeprefix('kalimkit/')}:{new['line']} {new['change']} {fate}; "
              f"it was caught by {', '.join(sorted(old['catchers']))}")
    print(f"{before['room']}: {len(verdicts)} mutants replayed, {len(gone)} no longer in the code, "
          f"{same} as before, {won} caught now only, {len(lost)} lost")
    return not lost
