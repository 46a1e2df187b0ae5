#!/usr/bin/env python3
"""commands.py ROOT BUILD   every command in README.md, CONTRIBUTING.md and docs/*.md is run, or at least looked at.

Commands stand in indented blocks, in fenced blocks of "sh", and between backticks where they begin with brimwatch, sudo or a
script of ours. Those of the program are run, with what the surroundings offer: a bus, a running program, an empty home. What builds, installs or needs
another machine is not run: its files, options and presets must exist. A command that nobody here knows is a failure.
"""

import json
import os
import pathlib
import re
import shlex
import subprocess
import sys

ROOT, BUILD = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2])
TIMEOUT_S = 60  # Seconds; nothing that works comes near it.
FOR_MACS = {"README.md", "docs/macos.md"}


class Wrong(Exception):
    """What is wrong with a command."""


def blocks(text):
    """The lines of the blocks that hold commands, with their numbers."""
    fence, before = None, ""
    for number, line in enumerate(text.split("\n"), 1):
        mark = re.match(r"```(\w*)", line)
        if mark:
            fence = None if fence is not None else mark.group(1)
        elif fence == "sh":
            yield number, line
        elif fence is None and line.startswith("    ") and (not before.strip() or before.startswith("    ")):
            yield number, line
        # A list goes on in indented lines.
        if line.strip() or not before.startswith("    "):
            before = line


def commands_of(name):
    """What the page tells to type: (line, command, whether it stands in running text)."""
    text = (ROOT / name).read_text(encoding="utf-8")
    pending = ""
    for number, line in blocks(text):
        line = pending + re.sub(r"\s+#\s.*$", "", line).strip()
        pending = ""
        if line.endswith("\\"):
            pending = line[:-1]
        elif line and not line.startswith("#"):
            yield number, line, False
    for inline in re.finditer(r"(?<!`)`([^`]+)`(?!`)", re.sub(r"^```.*?^```", lambda m: "\n" * m.group().count("\n"), text, flags=re.S | re.M)):
        said = re.search(r"\bbrimwatch(?:ctl)? [-a-z].*$|^sudo .*$|^(?:\./|tools/|benchmarks/)[\w./-]*(?:\.sh|/run|/test)(?: .*)?$",
                         inline.group(1).replace("\n", " "))
        if said:
            yield text.count("\n", 0, inline.start()) + 1, said.group(), True


def presets():
    data = json.loads((ROOT / "CMakePresets.json").read_text(encoding="utf-8"))
    return {preset["name"] for preset in data["configurePresets"] if not preset.get("hidden")}


def need(condition, what):
    if not condition:
        raise Wrong(what)


def run(command, statuses):
    """Runs it in a shell of its own, and is content with these exit statuses."""
    if "--watch" in command:
        # It goes on until nobody reads any more.
        done = subprocess.run(f"{command} | head -n 1", shell=True, capture_output=True, text=True, timeout=TIMEOUT_S, check=False)
        need(done.stdout.strip(), f"it says nothing: {done.stderr.strip()}")
        return "run"
    done = subprocess.run(command, shell=True, capture_output=True, text=True, timeout=TIMEOUT_S, check=False)
    need(done.returncode in statuses, f"exit status {done.returncode}: {done.stderr.strip()}")
    return "run"


def look_at_script(words):
    """One of ours: its usage, the comment at its top or the text that it prints, knows each option and word."""
    path = ROOT / words[0]
    need(path.is_file() and os.access(path, os.X_OK), f"there is no program {words[0]}")
    texts = re.findall(r"\A#!.*\n((?:#.*\n)+)|^ *cat <<'?END'?\n([\s\S]*?)^END$", path.read_text(encoding="utf-8"), re.M)
    usage = "\n".join(map("".join, texts))
    need(usage, f"{words[0]} has no usage")
    before = ""
    for word in words[1:]:
        is_value = before.startswith("--") and re.search(re.escape(before) + r" [A-Z]", usage)
        is_place = word.isupper() or word.rstrip(".").isupper()
        need(is_value or is_place or re.search(r"(?<![\w-])" + re.escape(word) + r"(?![\w-])", usage),
             f"{words[0]} does not mention {word}")
        before = word
    return "looked at"


def look_at_cmake(words):
    if "--install" in words:
        folder = words[words.index("--install") + 1]
        need(folder.removeprefix("build/") in presets(), f"no preset builds in {folder}")
        return run(" ".join([*map(shlex.quote, ["cmake", "--install", str(BUILD)]), *words[words.index("--install") + 2:]]), {0})
    need("--preset" in words, "it names no preset")
    name = words[words.index("--preset") + 1]
    need(name in presets(), f"there is no preset {name}")
    return "looked at"


def look_at_apt(words):
    need(words[:2] in (["apt", "install"], ["apt", "purge"]), "only apt install and apt purge are known")
    package = re.search(r"^Package: (.*)$", (ROOT / "packaging/debian/control.in").read_text(encoding="utf-8"), re.M).group(1)
    script = (ROOT / "packaging/debian/package.sh").read_text(encoding="utf-8")
    for word in words[2:]:
        if word.startswith("./"):
            need(word == f"./dist/{package}_*.deb" and "out=$root/dist" in script and f"$out/{package}_" in script,
                 f"packaging/debian/package.sh makes no {word}")
        else:
            need(word == package, f"the package is not named {word}")
    return "looked at"


def look_at_build(words):
    """A program that a build has made."""
    made = re.sub(r"^build/\w+/", "", words[0])
    need(words[0].split("/")[1] in presets() and (BUILD / made).is_file(), f"no build makes {words[0]}")
    return "looked at"


def look_at_mac(words, page):
    need(page in FOR_MACS, f"{words[0]} is a Mac's")
    if words[0] == "open":
        bundle = (ROOT / "cmake/BrimwatchBundle.cmake").read_text(encoding="utf-8")
        need(words[1] == "build/macos/src/app/Brimwatch.app" and "OUTPUT_NAME Brimwatch" in bundle, f"no build makes {words[1]}")
    elif words[0] == "brew":
        # Both pages tell the same.
        need(all(shlex.join(words) in (ROOT / name).read_text(encoding="utf-8") for name in FOR_MACS), "the pages differ")
    return "looked at"


def attempt(command, page, inline):
    if inline and re.search(r"\b[A-Z]{3,}\b", command):
        return "has a place to fill in"
    words = shlex.split(command)
    if words[0] == "brimwatchctl":
        return run(command, {0, 1})
    if words[0] in ("brimwatch", "busctl"):
        return run(command, {0})
    results = []
    for part in re.split(r"\s+&&\s+", command):
        words = shlex.split(part)
        if words[0] == "sudo":
            words = words[1:]
        if words[0] in ("cmake", "ctest"):
            results.append(look_at_cmake(words))
        elif words[0] in ("apt", "apt-get"):
            results.append(look_at_apt(words))
        elif words[0] in ("brew", "open", "export"):
            results.append(look_at_mac(words, page))
        elif words[0].startswith("build/"):
            results.append(look_at_build(words))
        elif "/" in words[0]:
            results.append(look_at_script(words))
        else:
            raise Wrong("nobody here knows how to try it")
    return ", ".join(results)


def main():
    wrong = tried = 0
    for page in ["README.md", "CONTRIBUTING.md", *sorted(str(p.relative_to(ROOT)) for p in (ROOT / "docs").glob("*.md"))]:
        for number, command, inline in commands_of(page):
            tried += 1
            try:
                print(f"ok      {page}:{number}: {command}: {attempt(command, page, inline)}")
            except (Wrong, ValueError, subprocess.TimeoutExpired) as error:
                wrong += 1
                print(f"FAILED  {page}:{number}: {command}: {error}")
    if tried < 30:
        print(f"FAILED  only {tried} commands were found: the search is broken")
        wrong += 1
    print(f"{tried - wrong} passed, {wrong} failed")
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main())
