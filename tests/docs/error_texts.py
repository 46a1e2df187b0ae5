#!/usr/bin/env python3
"""error_texts.py ROOT   every text with which the program says that something is wrong stands in docs/troubleshooting.md,
and every text there is one of the program's.

In the document a text is the first cell of a row of a table, in backticks; what differs from time to time is an ellipsis in it.
"""

import pathlib
import re
import sys

LITERAL = re.compile(r'''(?:u8|[uUL])?(?:"((?:[^"\\]|\\.)*)"(?:_s|_L1)?|'([^'\\])')''')

# What panels, not people, are told; what only a Mac says; why an answer of the daemon counts as none.
NOT_FOR_PEOPLE = ("src/platform/macos/", "src/app/main_macos.cpp", "src/platform/linux/tray/dbus_menu.cpp", "src/model/",
                  "src/core/json_fields.cpp")

# Calls whose texts are shown, written or logged because something is wrong.
CALLS = re.compile(
    r"\b(?:fail|failed|wrong|writeError|offlineStatus|sendErrorReply|qFatal|qCCritical|qCWarning|std::fputs|std::fprintf)\s*\(")
# Functions and tables that are nothing but such texts.
ALL_TEXTS = {"src/discovery/daemon_error.cpp": re.compile(r"\breturn\s"),
             "src/service/transport_error_text.cpp": re.compile(r"\breturn\s|\.text\s*="),
             "src/service/tls/tls_errors.cpp": re.compile(r"\breturn\s|\.text\s*=|notTrusted\s*=")}
MESSAGES = re.compile(r"(?:\.message|\.error|\.requiresApproval)\s*=(?!=)")
STREAMS = re.compile(r"\bqC(?:Critical|Warning)\(\w+\)(?:\.\w+\(\))*\s*<<")
# What the views say where there is something missing.
QML_TEXTS = {"src/views/dashboard/OfflineState.qml": None, "src/views/settings/DiagnosticsSection.qml": ("noDaemonNote",),
             "src/views/settings/LabelSection.qml": ("noStatsNote",)}
# The same call also says what is no error, and names what is no sentence.
NO_ERROR = {"Never", "Retry Connection", "brimwatch: already running; its popover is open now", "try 'brimwatchctl --help'",
            "Requires approval in macOS System Settings."}


def expression_at(text, start, opened):
    """From there to the end of the call or statement."""
    depth, position = opened, start
    while position < len(text):
        literal = LITERAL.match(text, position)
        if literal:
            position = literal.end()
            continue
        character = text[position]
        if character in "({[":
            depth += 1
        elif character in ")}]":
            depth -= 1
            if depth < 0 or (opened and depth == 0):
                break
        elif depth == 0 and character in ";,":
            break
        position += 1
    return text[start:position]


def text_of(expression):
    """The text that an expression makes, with an ellipsis for what it fills in; empty when it makes none of its own."""
    parts, end = [], 0
    for literal in LITERAL.finditer(expression):
        between = expression[end:literal.start()]
        if re.search(r"[+<]\s*$", between) and re.search(r"[\w)]\s*[+<%]+\s*$", between):
            parts.append("…")
        elif parts and "," in between:
            break  # Another argument.
        parts.append(literal.group(1) or literal.group(2) or "")
        end = literal.end()
    if not parts:
        return ""
    if re.match(r"\s*(?:\.arg|[+%]\s*\w)", expression[end:]) and re.match(r"\s*[+%]", expression[end:]):
        parts.append("…")
    if "<<" in expression[end:]:
        parts.append(" …")
    text = re.sub(r"%(?:ls|\d|s)", "…", "".join(parts)).replace("\\n…", "").replace("\\n", "").replace('\\"', '"')
    text = re.sub(r"(?:…\s*)+", lambda m: "… " if m.group().endswith(" ") else "…", text)
    return text.strip() if re.search(r"[A-Za-z]{2}.*\s.*[A-Za-z]{2}", text) else ""


def source_texts(root):
    found = {}
    for path in sorted((root / "src").rglob("*.cpp")):
        name = str(path.relative_to(root))
        if name.startswith(NOT_FOR_PEOPLE):
            continue
        # Comments hold apostrophes and calls.
        text = re.sub(r"^\s*//.*$|\s//[^\"\n]*$", "", path.read_text(encoding="utf-8"), flags=re.M)
        starts = [(m.end(), 1) for m in CALLS.finditer(text)]
        starts += [(m.end(), 0) for pattern in (MESSAGES, STREAMS) for m in pattern.finditer(text)]
        if name in ALL_TEXTS:
            starts += [(m.end(), 0) for m in ALL_TEXTS[name].finditer(text)]
        for start, opened in starts:
            expression = expression_at(text, start, opened)
            # Arguments before the text: the stream, the category, the kind of error.
            said = text_of(re.sub(r"^\s*(?:stderr|\w+Log|logger|log\w+|QDBusError::\w+)\s*,", "", expression))
            if said and not said.startswith("Usage:"):
                found.setdefault(said, name)
    for name, objects in QML_TEXTS.items():
        text = (root / name).read_text(encoding="utf-8")
        for block in re.finditer(r'(?:objectName: "(\w+)"\s*\n(?:\s*(?!text:)\w[\w.]*:.*\n)*)?\s*text: "([^"]*)"', text):
            if objects is None or block.group(1) in objects:
                found.setdefault(block.group(2), name)
    return {text: name for text, name in found.items() if text not in NO_ERROR}


def documented_texts(root):
    page = (root / "docs/troubleshooting.md").read_text(encoding="utf-8")
    return re.findall(r"^\| `([^`]+)` \|", page, flags=re.M)


def main():
    root = pathlib.Path(sys.argv[1])
    in_sources, documented = source_texts(root), documented_texts(root)
    if len(in_sources) < 30:
        print(f"only {len(in_sources)} texts were found in the sources: the search is broken")
        return 1
    missing = [f"{name}: not in docs/troubleshooting.md: {text}" for text, name in in_sources.items() if text not in documented]
    invented = [f"docs/troubleshooting.md: no text of the program: {text}" for text in documented if text not in in_sources]
    twice = [f"docs/troubleshooting.md: twice: {text}" for text in set(documented) if documented.count(text) > 1]
    print("\n".join(missing + invented + twice) or f"{len(in_sources)} texts, each of them explained")
    return 1 if missing or invented or twice else 0


if __name__ == "__main__":
    sys.exit(main())
