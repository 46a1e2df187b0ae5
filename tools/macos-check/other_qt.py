#!/usr/bin/env python3
"""other_qt.py TREE SRC INCLUDE [WORD...]: whether the sources below SRC compile with the headers of another Qt.

TREE is the folder that `check.sh sources` has configured for a Mac; INCLUDE the folder of the other Qt's headers
(the one that holds QtCore). Only the syntax is checked, of our own files alone: what moc and the QML tools make is
made by one Qt for that Qt. With WORDs only the files whose paths contain one of them. Fails when one does not compile.
"""

import json
import re
import shlex
import subprocess
import sys
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

tree, src, include = (Path(word).resolve() for word in sys.argv[1:4])
words = sys.argv[4:]
if not (include / "QtCore/qglobal.h").exists():
    sys.exit(f"other_qt.py: there is no QtCore in {include}")
database = subprocess.run(["ninja", "-C", tree, "-t", "compdb"], capture_output=True, text=True, check=True)
commands = {}
for entry in json.loads(database.stdout):
    file = Path(entry["file"])
    if src in file.parents and file.suffix in (".cpp", ".mm") and (not words or any(word in str(file) for word in words)):
        commands.setdefault(file, entry["command"])
if len(commands) < (50 if not words else 1):
    sys.exit(f"other_qt.py: only {len(commands)} files")


version = re.search(r'QTCORE_VERSION_STR "([\d.]+)"', (include / "QtCore/qtcoreversion.h").read_text())[1]


def compile_one(file):
    # Private headers are in folders named after the version.
    command = re.sub(r"/usr/include/\S*/qt6(\S*)", lambda path: str(include) + re.sub(r"/\d+\.\d+\.\d+\b", "/" + version, path[1]), commands[file])
    arguments = shlex.split(command)
    # Warnings of a newer Qt are no errors: they stop nobody's build.
    kept = [word for word in arguments if word not in ("-c", "-Werror") and not word.startswith("-M")]
    if "-o" in kept:
        at = kept.index("-o")
        del kept[at:at + 2]
    kept = [word for word in kept if not word.endswith(".d") and not word.endswith(".o")]
    answer = subprocess.run([*kept, "-fsyntax-only", "-w"], cwd=tree, capture_output=True, text=True)
    return (file, answer.stderr) if answer.returncode else None


with ThreadPoolExecutor(2) as pool:
    failed = [result for result in pool.map(compile_one, sorted(commands)) if result]
for file, said in failed:
    print(f"{file}:\n{said}")
print(f"{len(commands) - len(failed)} of {len(commands)} files compile")
sys.exit(bool(failed))
