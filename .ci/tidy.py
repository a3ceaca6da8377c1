#!/usr/bin/python3
"""Runs clang-tidy over this project's sources, leaving out those that were clean before and have not changed.

    .ci/tidy.py BUILD-FOLDER

A source counts as unchanged when its text, the texts of all project headers it was compiled with, its compile
command, .clang-tidy and clang-tidy itself are the same as at its last clean pass.
"""

import hashlib
import json
import os
import shlex
import subprocess
import sys
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent


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


def is_ours(path, build):
    return path.is_relative_to(ROOT) and not path.is_relative_to(build)


def fingerprint(entry, files, common):
    digest = hashlib.sha256(common)
    digest.update(entry["command"].encode())
    for path in sorted(files):
        digest.update(str(path).encode())
        digest.update(path.read_bytes())
    return digest.hexdigest()


def main():
    build = Path(sys.argv[1]).resolve()
    stamps = build / "tidy"
    stamps.mkdir(exist_ok=True)
    common = (ROOT / ".clang-tidy").read_bytes() + output_of("clang-tidy", "--version").encode()
    known = dependencies(build)

    pending = []
    for entry in json.loads((build / "compile_commands.json").read_text()):
        source = Path(entry["file"])
        if not is_ours(source, build):
            continue
        words = shlex.split(entry["command"])
        compiled_from = known[words[words.index("-o") + 1]]
        headers = [path for path in compiled_from if is_ours(path, build) and path.exists()]
        stamp = stamps / fingerprint(entry, {source, *headers}, common)
        if not stamp.exists():
            pending.append((source, stamp))

    def check(job):
        source, stamp = job
        run = subprocess.run(["clang-tidy", "--quiet", "-p", str(build), str(source)],
                             capture_output=True, text=True)
        if run.returncode == 0:
            stamp.touch()
        else:
            print(run.stdout or run.stderr, end="", flush=True)
        return run.returncode == 0

    with ThreadPoolExecutor(os.cpu_count()) as pool:
        clean = list(pool.map(check, pending))
    print(f"clang-tidy: {clean.count(True)} of {len(pending)} changed files are clean")
    return 0 if all(clean) else 1


if __name__ == "__main__":
    sys.exit(main())
