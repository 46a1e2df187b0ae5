#!/usr/bin/env python3
"""tidy.py BUILD: clang-tidy's checks over our sources and headers of a built tree, as many at a time as there are cores.

The checks are run by clangd, which looks at one file's own lines; clang-tidy itself looks through every header of Qt for
each file too, at several times the cost. The static analyzer, which clangd leaves out, goes over the sources of the program
and its tools after that.

A file without findings leaves a stamp in build/tidy under a hash of all that its answer depends on: its text, our headers
that it includes, the generated ones, the configuration, the compile command and clangd itself. The same hash is not looked
at again. BRIMWATCH_TIDY_BUILD names another tree, for one that is built as a whole where BUILD is not.
"""

import concurrent.futures
import functools
import hashlib
import json
import os
import pathlib
import re
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parents[2]
ANALYZER = "-*,clang-analyzer-*,-clang-analyzer-cplusplus.NewDeleteLeaks"
# The compiler has read common headers before; here each file stands for itself.
PRECOMPILED = re.compile(r" -fpch-preprocess| -Winvalid-pch| -include [^ ]*cmake_pch\.hxx")


def output_of(*command):
    return subprocess.run(command, stdout=subprocess.PIPE, check=True, text=True).stdout


@functools.cache
def digest(path):
    try:
        return hashlib.sha256(pathlib.Path(path).read_bytes()).hexdigest()
    except OSError:
        return "none"


def sources_of(build):
    """Each source of ours: the object that it becomes, and the command. Generated sources are not ours."""
    sources = {}
    ours = tuple(f"{ROOT}/{folder}/" for folder in ("src", "tests", "tools"))
    for entry in json.loads((build / "compile_commands.json").read_text(encoding="utf-8")):
        command = PRECOMPILED.sub("", entry["command"])
        if entry["file"].startswith(ours):
            sources.setdefault(entry["file"], (re.search(r" -o (\S+)", command)[1], command))
    return sources


def dependencies_of(build):
    """What each object was made from, as the compiler said when it was built; system headers stay as they are."""
    dependencies = {}
    for line in output_of("ninja", "-C", str(build), "-t", "deps").splitlines():
        if match := re.match(r"(\S+): #deps ", line):
            paths = dependencies.setdefault(match[1], [])
        elif line.startswith(" "):
            path = os.path.normpath(build / line.strip())
            if path.startswith(f"{ROOT}/"):
                paths.append(path)
    return dependencies


def add_headers(sources, dependencies, build):
    """A header is looked at with what the first object made from it was made from, and by its command."""
    commands = dict(sources.values())
    for made, paths in dependencies.items():
        for path in paths if made in commands else ():
            if path.endswith(".h") and not path.startswith(f"{build}/") and path not in sources:
                sources[path] = (made, re.sub(r" -o .*", "", commands[made]) + f" -x c++ {path}")


def findings(file, database):
    """What is wrong with it; empty when nothing is."""
    name = os.path.relpath(file, ROOT)
    check = subprocess.run(
        ["clangd-19", f"--check={file}", "--check-locations=0", "--check-warnings", f"--compile-commands-dir={database}"],
        stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, errors="replace", check=False)
    # It must have come to its end with nothing found; what it says else is its own diary.
    if check.returncode or not re.search(r"All checks completed, 0 errors$", check.stdout, re.M):
        errors = re.findall(r"^E\[[^]]*\] (.*)", check.stdout, re.M)
        return "\n".join(f"{name}: {error}" for error in errors) or "\n".join(check.stdout.splitlines()[-5:]) or f"{name}: no answer"
    if re.match(r"(src|tools)/.*\.cpp$", name):
        analysis = subprocess.run(["clang-tidy-19", "--quiet", "-p", database, f"--checks={ANALYZER}", file],
            stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, errors="replace", check=False)
        if analysis.returncode:
            return analysis.stdout or f"{name}: the analyzer failed"
    return ""


def main():
    build = pathlib.Path(os.environ.get("BRIMWATCH_TIDY_BUILD") or sys.argv[1]).resolve()
    stamps = ROOT / "build/tidy/stamps"
    stamps.mkdir(parents=True, exist_ok=True)
    sources = sources_of(build)
    if not sources:
        sys.exit(f"tidy: no sources in {build}/compile_commands.json")
    dependencies = dependencies_of(build)
    add_headers(sources, dependencies, build)

    configuration = [digest(ROOT / name) for name in (".clang-tidy", "tests/.clang-tidy", ".clangd")] + [
        digest(__file__), output_of("clangd-19", "--version"), output_of("dpkg-query", "-W", "-f", "${Version}", "qt6-base-dev")]

    def stamp_of(file):
        made, command = sources[file]
        texts = [f"{path} {digest(path)}" for path in sorted({file, *dependencies.get(made, [])})]
        return stamps / hashlib.sha256("\n".join([*configuration, command, *texts, file]).encode()).hexdigest()

    current = {file: stamp_of(file) for file in sources}
    todo = [file for file, stamp in current.items() if not stamp.exists()]
    print(f"{len(sources)} files, {len(sources) - len(todo)} of them unchanged since they were found clean", flush=True)
    dirty = 0
    with tempfile.TemporaryDirectory(dir=ROOT / "build/tidy") as database:
        entries = [{"directory": str(build), "command": command, "file": file} for file, (_, command) in sources.items()]
        (pathlib.Path(database) / "compile_commands.json").write_text(json.dumps(entries), encoding="utf-8")

        def look(file):
            found = findings(file, database)
            if not found:
                current[file].touch()
            return found

        with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
            for found in filter(None, pool.map(look, todo)):
                dirty += 1
                print(found, flush=True)

    # Stamps of texts that are gone are of no more use.
    for stamp in set(stamps.iterdir()) - set(current.values()):
        stamp.unlink()
    return 1 if dirty else 0


if __name__ == "__main__":
    sys.exit(main())
