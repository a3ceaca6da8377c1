#!/usr/bin/python3
"""Runs clang-tidy over this project's sources, leaving out those that were clean before and have not changed.

    .ci/tidy.py BUILD-FOLDER

Most of the time goes into the toolkit's headers, so the sources of a folder are checked together, as one unit that
includes them all. Sources that define the same name outside any class go into different units. A unit counts as
unchanged when the texts of its sources, the texts of all project headers they were compiled with, the compile
commands, .clang-tidy, this script and clang-tidy itself are the same as at its last clean pass.
"""

import hashlib
import json
import os
import re
import shlex
import subprocess
import sys
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
LARGEST_UNIT = 30  # sources; a larger unit is checked again too often, and leaves a processor idle
# A name that stands at the beginning of a line: a definition inside no class and no function.
DEFINITION = re.compile(r"^(?!namespace|using namespace)(?:[A-Za-z][\w:<>,&*\s]*?[\s&*])?(\w+)(?:\[\w*\])?\s*(?:\(|=|\{|;|: public)", re.MULTILINE)
TYPE = re.compile(r"^(?:struct|class|enum class|enum) (\w+)[^;]*\{", re.MULTILINE)
MAIN = {"main", "QTEST_MAIN", "QTEST_GUILESS_MAIN", "QTEST_APPLESS_MAIN"}


def output_of(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def dependencies(build):
    """Object file -> files it was compiled from, as ninja remembers them."""
    result, current = {}, None
    for line in output_of("ninja", "-C", str(build), "-t", "deps").splitlines():
        if line.startswith("    "):
            current.append((build / line.strip()).resolve())
        elif ": #deps" in line:
            current = result.setdefault(line.split(": #deps")[0], [])
    return result


class Source:
    """One entry of the compile commands."""

    def __init__(self, entry, compiled_from, build):
        self.path = Path(entry["file"])
        words = shlex.split(entry["command"])
        self.options = [word for word in words if re.match("-[DI]|-std=|-W|-f", word)]
        for number, word in enumerate(words):
            if word == "-isystem":
                self.options.append(f"-isystem{words[number + 1]}")
        own = {path for path in compiled_from[words[words.index("-o") + 1]] if is_ours(path, build) and path.exists()}
        self.files = own | {self.path}
        self.names = {name: self.path for name in DEFINITION.findall(self.path.read_text()) if name not in MAIN}
        self.names |= {name: path for path in own if path.suffix == ".h" for name in TYPE.findall(path.read_text())}


class Unit:
    """Sources of one folder that are checked together."""

    def __init__(self, folder, sources):
        self.folder, self.sources = folder, sources
        self.names = {name: path for source in sources for name, path in source.names.items()}

    def takes(self, source):
        return len(self.sources) < LARGEST_UNIT and all(self.names.get(name, path) == path
                                                        for name, path in source.names.items())

    def add(self, source):
        self.sources.append(source)
        self.names |= source.names

    def options(self):
        """Those of all sources; of a macro that is defined in several ways the last."""
        return list({option.split("=")[0] if option.startswith("-D") else option: option
                     for source in self.sources for option in source.options}.values())

    def fingerprint(self, common):
        digest = hashlib.sha256(common + "\n".join(self.options()).encode())
        for path in sorted(set().union(*(source.files for source in self.sources))):
            digest.update(str(path).encode() + path.read_bytes())
        return digest.hexdigest()

    def text(self):
        """Each test has a main function; they are told apart."""
        return "".join(f"#define main main{number}\n"
                       f'#include "{source.path}"  // NOLINT(bugprone-suspicious-include)\n'
                       "#undef main\n" for number, source in enumerate(self.sources))

    def check(self, place):
        """What clang-tidy says about it; nothing when it is clean. Sources that do not compile together, because
        not every name they define was found, are checked in two halves."""
        file = place / f"{hashlib.sha256(self.text().encode()).hexdigest()}.cpp"
        file.write_text(self.text())
        run = subprocess.run(["clang-tidy", "--quiet", str(file), "--", *self.options()], capture_output=True, text=True)
        file.unlink()
        if "[clang-diagnostic-error" in run.stdout and len(self.sources) > 1:
            middle = len(self.sources) // 2
            return "".join(Unit(self.folder, half).check(place)
                           for half in (self.sources[:middle], self.sources[middle:]))
        return (run.stdout or run.stderr) if run.returncode else ""


def is_ours(path, build):
    return path.is_relative_to(ROOT) and not path.is_relative_to(build)


def units_of(build):
    compiled_from = dependencies(build)
    units = []
    for entry in json.loads((build / "compile_commands.json").read_text()):
        if not is_ours(Path(entry["file"]), build):
            continue
        source = Source(entry, compiled_from, build)
        folder = source.path.relative_to(ROOT).parts[0]
        unit = next((unit for unit in units if unit.folder == folder and unit.takes(source)), None)
        if unit:
            unit.add(source)
        else:
            units.append(Unit(folder, [source]))
    return units


def main():
    build = Path(sys.argv[1]).resolve()
    place = build / "tidy"
    place.mkdir(exist_ok=True)
    common = b"".join([(ROOT / ".clang-tidy").read_bytes(), Path(__file__).read_bytes(),
                       output_of("clang-tidy", "--version").encode()])
    pending = [(unit, stamp) for unit in units_of(build)
               if not (stamp := place / unit.fingerprint(common)).exists()]

    def check(job):
        unit, stamp = job
        said = unit.check(place)
        if said:
            print(said, end="", flush=True)
        else:
            stamp.touch()
        return not said

    with ThreadPoolExecutor(os.cpu_count()) as pool:
        clean = list(pool.map(check, sorted(pending, key=lambda job: -len(job[0].sources))))
    print(f"clang-tidy: {clean.count(True)} of {len(pending)} changed units are clean")
    return 0 if all(clean) else 1


if __name__ == "__main__":
    sys.exit(main())
