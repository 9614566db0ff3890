"""A copy of the house in build/mutants in which one room is mutated, and its build."""

import json
import os
import random
import re
import shlex
import shutil
import subprocess

from places import COPY, ROOT, Refused, tell
from points import KINDS, Finder
from rewriting import LISTENER, RUNTIME, points_at, rewritten

ADDED = {"kalimkit/gfx/KalimMutant.cpp": RUNTIME, "tests/KalimMutantListener.cpp": LISTENER}
# At the end of the copy's own rules.
RULES = """
get_property(programs DIRECTORY tests PROPERTY BUILDSYSTEM_TARGETS)
list(FILTER programs INCLUDE REGEX "^tests-")
foreach(program IN LISTS programs)
  target_sources(${program} PRIVATE ${PROJECT_SOURCE_DIR}/tests/KalimMutantListener.cpp)
endforeach()
"""
ERROR = re.compile(r"^(?P<file>/[^:\n]+):(?P<line>[0-9]+):[0-9]+: (?:fatal )?(?P<what>error|note)(?=:)", re.M)


class House:
    """The copy: its files are those of the checkout but for the mutated ones. It is compiled quickly, or as
    a preset of the project wants it, whose objects the compiler cache may have."""

    def __init__(self, preset=None):
        self.preset, self.compile_commands = preset, {}
        self.built = os.path.join(COPY, "build", preset or "debug")

    def write(self, mutated):
        """Brings the copy up to date, touching only what differs. `mutated` is {name: text}."""
        listed = subprocess.run(["git", "ls-files", "-coz", "--exclude-standard"], cwd=ROOT, check=True,
                                stdout=subprocess.PIPE, text=True).stdout
        wanted = {name for name in listed.split("\0") if name and os.path.isfile(os.path.join(ROOT, name))}
        for name in wanted:
            if name in mutated:
                content = mutated[name].encode("latin-1")
            else:
                with open(os.path.join(ROOT, name), "rb") as file:
                    content = file.read()
            if name == "CMakeLists.txt":
                content += (RULES + self._silence(mutated)).encode()
            self._put(name, content)
        for name, text in ADDED.items():
            self._put(name, text.encode())
        for folder, folders, names in os.walk(COPY):
            if folder == COPY and "build" in folders:
                folders.remove("build")
            for name in names:
                path = os.path.join(folder, name)
                if os.path.relpath(path, COPY) not in wanted | ADDED.keys():
                    os.remove(path)

    @staticmethod
    def _silence(mutated):
        """No warnings on mutants, and a number may be narrowed that was a constant before."""
        if not mutated:
            return ""
        files = " ".join(f"${{PROJECT_SOURCE_DIR}}/{name}" for name in sorted(mutated))
        return (f"\nset_source_files_properties({files}\n  DIRECTORY kalimkit cli\n"
                '  PROPERTIES COMPILE_OPTIONS "-w;-Wno-narrowing")\n')

    @staticmethod
    def _put(name, content):
        path = os.path.join(COPY, name)
        try:
            with open(path, "rb") as file:
                if file.read() == content:
                    return
        except FileNotFoundError:
            os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "wb") as file:
            file.write(content)

    def configure(self):
        """Makes the build's rules and reads how the files are compiled."""
        linker = ["-DCMAKE_EXE_LINKER_FLAGS=-fuse-ld=mold"] if shutil.which("mold") else []
        quick = [] if self.preset else ["-DCMAKE_CXX_FLAGS_DEBUG=-O1"]
        command = ["cmake", "--preset", self.preset or "debug", "-DCMAKE_EXPORT_COMPILE_COMMANDS=ON",
                   *quick, *linker]
        done = subprocess.run(command, cwd=COPY, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
        if done.returncode != 0:
            raise Refused(f"the copy cannot be configured:\n{done.stdout}")
        with open(os.path.join(self.built, "compile_commands.json")) as file:
            for entry in json.load(file):
                name = os.path.relpath(entry["file"], COPY)
                self.compile_commands[name] = shlex.split(entry["command"])

    def flags(self, name):
        """How clang is to read a file of the checkout."""
        words = [word.replace(COPY, ROOT) for word in self.compile_commands[name]]
        return ["-std=c++20", *(word for word in words if word.startswith(("-I", "-D"))),
                *(f"-I{words[index + 1]}" for index, word in enumerate(words) if word == "-isystem")]

    def sources(self, room):
        """The room's files that are compiled natively."""
        folder = room if room.split("/")[0] == "cli" else f"kalimkit/{room}"
        if not os.path.isdir(os.path.join(ROOT, folder)):
            raise Refused(f"there is no room {room}; rooms are folders of kalimkit, or cli")
        found = sorted(name for name in self.compile_commands
                       if name.startswith(folder + "/") and name not in ADDED)
        if not found:
            raise Refused(f"nothing in {room} is compiled natively")
        return found

    @staticmethod
    def content(name):
        """A file of the checkout, or nothing where it is made by the build."""
        path = os.path.join(ROOT, name)
        if not os.path.isfile(path):
            return b""
        with open(path, "rb") as file:
            return file.read()

    def points(self, name):
        """All that can be mutated in a file."""
        return Finder(name, os.path.join(ROOT, name), self.flags(name))

    def build(self):
        """Builds all test programs; what the compiler says when that fails, or nothing."""
        done = subprocess.run(["ninja", "-C", self.built, "-k", "0", f"-j{os.cpu_count()}"], text=True,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
        return "" if done.returncode == 0 else re.sub(r"\x1b\[[0-9;]*[mK]", "", done.stdout)

    def programs(self):
        """The names and paths of the test programs."""
        listed = subprocess.run(["ninja", "-C", self.built, "-t", "targets", "all"], check=True, text=True,
                                stdout=subprocess.PIPE).stdout
        found = re.findall(r"^(\S*/(tests-[^/ ]*)): CXX_EXECUTABLE_", listed, re.M)
        return {name: os.path.join(self.built, path) for path, name in found}


def chosen_points(finders, wanted, seed):
    """An order of points, file after file in proportion to their lines and kind after kind: the first
    `wanted` are to be mutated, the others stand in for those that do not compile."""
    lines = {finder.name: finder.source.count("\n") for finder in finders}
    queues, order = {}, []
    for finder in finders:
        chance = random.Random(f"{seed} {finder.name}")
        kinds = [[each for each in finder.points if each.kind == kind] for kind in KINDS]
        for points in kinds:
            chance.shuffle(points)
        mixed = []
        while any(kinds):
            mixed.extend(points.pop() for points in kinds if points)
        queues[finder.name] = mixed
    taken = dict.fromkeys(queues, 0)
    while any(queues.values()):
        # Whose turn it is: the file that has the fewest points for its lines.
        name = min((name for name in queues if queues[name]),
                   key=lambda each: (taken[each] + 1) / max(lines[each], 1))
        order.append(queues[name].pop(0))
        taken[name] += 1
    return order[:wanted], order[wanted:]


class Mutation:
    """The mutants of one room, written into the house and built."""

    def __init__(self, house, finders, points, reserve):
        self.house, self.points, self.reserve = house, points, reserve
        self.finders = {finder.name: finder for finder in finders}
        self.wanted = len(points)
        for number, point in enumerate(points + reserve):
            point.number = number

    def build(self):
        """Builds, leaving out the mutants that do not compile and bringing others in their place."""
        while True:
            mutated = {name: rewritten(finder.source, self._of(name))
                       for name, finder in self.finders.items() if self._of(name)}
            self.house.write(mutated)
            tell(f"building {len(self.points)} mutants")
            output = self.house.build()
            if not output:
                return
            dropped = self._named(output)
            if not dropped:
                said = "".join(part for part in re.split(r"^(?=\[\d+/\d+\] )", output, flags=re.M)
                               if "FAILED:" in part)
                raise Refused(f"the copy does not compile:\n{said[:4000]}")
            self.points = [point for point in self.points if point.number not in dropped]
            # One at a time costs a build each; a few more than wanted do no harm.
            missing = self.wanted - len(self.points)
            if missing > 0:
                missing += missing // 4
                self.points += self.reserve[:missing]
                self.reserve = self.reserve[missing:]

    def _of(self, name):
        return [point for point in self.points if point.file == name]

    def _named(self, output):
        """The numbers of the mutants that the compiler's words point at."""
        dropped, failed = set(), set()
        # A note tells where a constant stands that is none any more; it counts where no error does.
        for what in ("error", "note"):
            found = set()
            for hit in ERROR.finditer(output):
                name = os.path.relpath(hit.group("file"), COPY)
                if hit.group("what") == what and name in self.finders \
                        and not any(point.number in dropped for point in self._of(name)):
                    failed.add(name)
                    found.update(point.number for point in points_at(
                        int(hit.group("line")), self.finders[name].source, self._of(name)))
            dropped |= found
        for name in re.findall(r"^FAILED: \S*?\.dir/(\S+)\.o", output, re.M):
            failed.update(each for each in self.finders if each.endswith(name))
        for name in failed:
            mine = self._of(name)
            if not any(point.number in dropped for point in mine):
                # Constants whose use elsewhere is the error come first, then all of the file.
                wide = [point for point in mine if len(point.edits) > 1]
                dropped.update(point.number for point in wide or mine)
        return dropped
