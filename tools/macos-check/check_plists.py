#!/usr/bin/env python3
"""check_plists.py ROOT MINIMUM: whether Info.plist, filled in as CMake does, and the entitlements say what
a program of the menu bar needs, and whether the lowest version is the same everywhere."""

import plistlib
import re
import sys
from pathlib import Path

root, minimum = Path(sys.argv[1]), sys.argv[2]
complaints = []


def expect(holds, complaint):
    if not holds:
        complaints.append(complaint)


cmake = (root / "CMakeLists.txt").read_text()


def of_cmake(pattern):
    found = re.search(pattern, cmake)
    expect(found, f"CMakeLists.txt: nothing like {pattern}")
    return found[1] if found else ""


values = {
    "PROJECT_VERSION": of_cmake(r"VERSION ([0-9.]+)\s+DESCRIPTION"),
    "BRIMWATCH_IDENTIFIER": of_cmake(r'BRIMWATCH_IDENTIFIER "([^"]*)"'),
    "BRIMWATCH_BUNDLE_BUILD": "12",
    "CMAKE_OSX_DEPLOYMENT_TARGET": of_cmake(r'CMAKE_OSX_DEPLOYMENT_TARGET "([^"]*)"'),
}
expect(values["CMAKE_OSX_DEPLOYMENT_TARGET"] == minimum, "CMakeLists.txt and check.sh differ on the lowest version")

text = (root / "packaging/macos/Info.plist.in").read_text()
used = set(re.findall(r"\$\{(\w+)\}", text))
expect(used == set(values), f"Info.plist.in takes {sorted(used)} from CMake")
plist = plistlib.loads(re.sub(r"\$\{(\w+)\}", lambda name: values.get(name[1], ""), text).encode())

expected = {
    "CFBundleExecutable": "Brimwatch",
    "CFBundleIdentifier": values["BRIMWATCH_IDENTIFIER"],
    "CFBundleName": "Brimwatch",
    "CFBundlePackageType": "APPL",
    "CFBundleIconFile": "Brimwatch.icns",
    "CFBundleShortVersionString": values["PROJECT_VERSION"],
    "CFBundleVersion": "12",
    "LSMinimumSystemVersion": minimum,
    # No entry in the Dock, before the program says so itself.
    "LSUIElement": True,
    "NSHighResolutionCapable": True,
    "NSPrincipalClass": "NSApplication",
}
for key, value in expected.items():
    expect(plist.get(key) == value and type(plist.get(key)) is type(value), f"{key} is {plist.get(key)!r}")
expect(re.fullmatch(r"[A-Za-z0-9-]+(\.[A-Za-z0-9-]+){2,}", plist.get("CFBundleIdentifier", "")),
       "CFBundleIdentifier is no reverse domain")

bundle = (root / "cmake/BrimwatchBundle.cmake").read_text()
expect("OUTPUT_NAME Brimwatch" in bundle, "the program is not named as CFBundleExecutable says")
expect("Brimwatch.icns" in bundle, "the icon is not named as CFBundleIconFile says")

entitlements = plistlib.loads((root / "packaging/macos/Brimwatch.entitlements").read_bytes())
expect(entitlements == {"com.apple.security.cs.allow-jit": True}, f"the entitlements are {entitlements}")

print("\n".join(complaints))
sys.exit(bool(complaints))
