#!/usr/bin/env python3
"""pages.py ROOT   links between pages lead somewhere, files that they name are there, and docs/settings.md tells of the settings
that there are."""

import pathlib
import re
import sys

ROOT = pathlib.Path(sys.argv[1])


def anchors(page):
    """What headings are called in links."""
    headings = re.findall(r"^#+ (.*)$", page.read_text(encoding="utf-8"), flags=re.M)
    return {re.sub(r"[^\w\- ]", "", heading.lower()).replace(" ", "-") for heading in headings}


def broken_links():
    pages = [ROOT / "README.md", ROOT / "CONTRIBUTING.md", ROOT / "CHANGELOG.md", *sorted((ROOT / "docs").glob("*.md"))]
    links = 0
    for page in pages:
        for target in re.findall(r"\]\(([^)\s]+)\)", page.read_text(encoding="utf-8")):
            if re.match(r"[a-z]+:", target):
                continue
            links += 1
            path, _, anchor = target.partition("#")
            aim = (page.parent / path).resolve() if path else page
            if not aim.exists():
                yield f"{page.relative_to(ROOT)}: nothing at {target}"
            elif anchor and anchor not in anchors(aim):
                yield f"{page.relative_to(ROOT)}: no heading for {target}"
    if links < 20:
        yield f"only {links} links were found: the search is broken"
    for page in sorted((ROOT / "docs").glob("*.md")):
        if not any(f"{page.name}" in other.read_text(encoding="utf-8") for other in pages if other != page):
            yield f"no page leads to docs/{page.name}"


def missing_files():
    """Files of ours by their paths; NAME in one stands for any."""
    pages = [ROOT / "README.md", ROOT / "CONTRIBUTING.md", *sorted((ROOT / "docs").glob("*.md")), *sorted(ROOT.glob("[a-z]*/*/README.md"))]
    files = 0
    for page in pages:
        for path in re.findall(r"`((?:benchmarks|cmake|examples|packaging|src|tests|tools)/[\w./-]*\w)`", page.read_text(encoding="utf-8")):
            files += 1
            if not (ROOT / path).exists() and "NAME" not in path:
                yield f"{page.relative_to(ROOT)}: there is no {path}"
    if files < 30:
        yield f"only {files} files were found: the search is broken"


def wrong_settings():
    source = (ROOT / "src/service/settings.h").read_text(encoding="utf-8")
    known = {key: default.strip('"') for key, default in
             re.findall(r'\.key = "(\w+)",\s*\.defaultValue = ("?[\w.]+"?)', source)}
    page = (ROOT / "docs/settings.md").read_text(encoding="utf-8")
    told = {key: default for key, default in re.findall(r"^\| [^|]+ \| `(\w+)` \| ([^|]+) \|", page, flags=re.M)}
    if len(known) < 10:
        yield f"only {len(known)} settings were found: the search is broken"
    for key in known.keys() - told.keys():
        yield f"docs/settings.md does not tell of {key}"
    for key in told.keys() - known.keys():
        yield f"docs/settings.md: there is no setting {key}"
    for key in known.keys() & told.keys():
        if known[key].removesuffix(".0") != told[key].strip():
            yield f"docs/settings.md: the default of {key} is {known[key]}"
    # What is set in the file alone stands in a table of its own.
    page = page.split("| in the file alone |")[0]
    view = "".join(section.read_text(encoding="utf-8") for section in (ROOT / "src/views/settings").glob("*Section.qml"))
    for name in re.findall(r"^\| ([^|]+) \| (?:`\w+`)? ?\|", page, flags=re.M):
        if not re.search(rf'"{re.escape(name)}:?"', view):
            yield f"docs/settings.md: the settings show no {name}"


def main():
    wrong = [*broken_links(), *missing_files(), *wrong_settings()]
    print("\n".join(wrong) or "all links lead somewhere, all files are there, all settings are told of")
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main())
