"""What tools/mutants does with its arguments."""

import os

import reports
from house import House, Mutation, chosen_points
from places import LEVELS, tell
from trials import Trials


def run(chosen):
    """The exit status: 1 when a replay has lost a mutant, otherwise 0."""
    before = reports.load(chosen.replay) if chosen.replay else None
    house = House(chosen.preset)
    house.write({})
    house.configure()
    for room in chosen.rooms:
        house.sources(room)
    if before:
        return replay(house, before, chosen)
    for room in chosen.rooms:
        mutate(house, room.strip("/"), chosen)
    return 0


def mutate(house, room, chosen):
    """Chooses a room's mutants, tries them, prints and keeps the verdicts."""
    tell(f"{room}: reading the sources")
    finders = [house.points(name) for name in house.sources(room)]
    # Some cannot be compiled; others stand in for them.
    points, reserve = chosen_points(finders, chosen.count, chosen.seed)
    mutation = Mutation(house, finders, points, reserve)
    mutation.build()
    trials = Trials(house.programs(), room, chosen.jobs)
    verdicts = judged(mutation.points, trials, chosen.all_catchers)
    reports.save(room, chosen.seed, verdicts, trials)
    reports.print_report(reports.load(reports.file_of(room)))


def judged(points, trials, all_catchers, known=None):
    """The verdict on every point. `known` names the tests that noticed it before: they come first, and
    one that notices it is enough."""
    reached = trials.reach()
    tell(f"running {len(points)} mutants")
    done = 0

    def judge(point):
        nonlocal done
        tests = reached.get(point.number, [])
        catchers = {}
        for group, only_first in groups(tests, point, catchers):
            catchers.update(trials.catchers(point.number, group, only_first))
            if catchers and not all_catchers:
                break
        done += 1
        if done % 10 == 0:
            tell(f"{done} of {len(points)}")
        return {"file": point.file, "line": point.line, "column": point.column, "kind": point.kind,
                "change": point.change, "text": point.text, "function": point.function,
                "ordinal": point.ordinal, "reached": len(tests), "catchers": catchers}

    def groups(tests, point, noticed):
        """Which tests are asked together, and whether one that notices is enough."""
        if known is not None:
            yield [test for test in tests if test.name in known[point.number]], True
            tests = [test for test in tests if test.name not in known[point.number]]
        # The slowest tests are asked only when no other has noticed.
        quick = [test for test in tests if trials.is_quick(test)]
        others = [test for test in tests if not trials.is_quick(test)]
        if all_catchers:
            yield quick, False
            if not noticed:
                yield others, True
            return
        for level in LEVELS:
            for part in (quick, others):
                is_own = level == "own" and part is quick and known is None
                yield [test for test in part if test.level == level], not is_own

    verdicts = list(trials.pool.map(judge, points))
    return sorted(verdicts, key=lambda each: (each["file"], each["line"], each["column"]))


def replay(house, before, chosen):
    """Runs the same mutants again, wherever their lines have gone."""
    room = chosen.rooms[0].strip("/")
    first = house.sources(room)
    finders, found, gone = {}, [], []

    def points_of(name):
        if name not in finders:
            finders[name] = house.points(name)
        return finders[name].points

    for old in before["mutants"]:
        point = same_point(old, first, house, points_of, [each for _, each in found])
        if point:
            found.append((old, point))
        else:
            gone.append(old)
    mutation = Mutation(house, finders.values(), [point for _, point in found], [])
    mutation.build()
    trials = Trials(house.programs(), room, chosen.jobs)
    known = {point.number: old["catchers"] for old, point in found}
    verdicts = judged(mutation.points, trials, False, known)
    by_place = {(each["file"], each["line"], each["column"], each["kind"]): each for each in verdicts}
    pairs = []
    for old, point in found:
        new = by_place.get((point.file, point.line, point.column, point.kind))
        if new:
            pairs.append((old, new))
        else:
            gone.append(old)
    return 0 if reports.print_replay(before, pairs, trials.tests, gone) else 1


def same_point(old, first, house, points_of, taken):
    """Where an old mutant is now: in its file, in the room, or elsewhere in the house."""
    base = os.path.basename(old["file"])
    line = old["text"].encode()
    everywhere = sorted(house.compile_commands, key=lambda name: (
        name != old["file"], os.path.basename(name) != base, name not in first, name))
    holding = [name for name in everywhere
               if name.startswith(("kalimkit/", "cli/")) and line in house.content(name)]
    for has_function in (True, False):
        for name in holding:
            for point in points_of(name):
                same = (point.text, point.kind, point.change) == (old["text"], old["kind"], old["change"])
                if has_function:
                    same = same and (point.function, point.ordinal) == (old["function"], old["ordinal"])
                if same and not any(point is each for each in taken):
                    return point
    return None
