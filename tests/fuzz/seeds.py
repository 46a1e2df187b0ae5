#!/usr/bin/env python3
"""seeds.py FUZZER FOLDER: writes the inputs from which a fuzzer starts, one file each: the golden answers of
tests/data/reference, and small ones made by hand."""

import json
import pathlib
import struct
import sys

REFERENCE = pathlib.Path(__file__).resolve().parent.parent / "data" / "reference"


def golden(name, *keys):
    values = []
    for case in json.loads((REFERENCE / name).read_text(encoding="utf-8")):
        values += [case[key] for key in keys if isinstance(case.get(key), str)]
    return [value.encode("utf-8", "surrogatepass") for value in values]


def announcement():
    yield from golden("decode_daemon.json", "body")
    for port in ("1", "80", "443", "65535", "65536", "0", "-1"):
        yield ('{"httpPort": %s, "csrfToken": "abc"}' % port).encode()
    yield b'{"httpsPort": 443, "csrfToken": "a\\r\\nHost: b", "pid": 1, "lsVersion": "1"}'


def answer():
    bucket = '{"bucketId":"%s","displayName":"%s","window":"%s","remainingFraction":%s,"resetTime":"%s"}'
    group = '{"displayName":"%s","buckets":[%s]}'
    buckets = ",".join(
        bucket % (i, "B %d" % i, w, f, t)
        for i, (w, f, t) in enumerate([("5h", 0.42, "2026-11-16T09:00:00Z"), ("weekly", 1, ""), ("x", -1, "2026")]))
    groups = ",".join(group % (name, buckets) for name in ("Gemini", "Argon 3P", "Claude", "very secret /home/somebody"))
    for settings in (b"\x19", b"\xff", b"\x3f"):
        yield settings + ('{"groups":[%s],"description":"d"}' % groups).encode()
        yield settings + ('{"response":{"groups":[%s]},"code":"c","message":"m"}' % groups).encode()
    for body in golden("decode_summary.json", "body"):
        yield b"\xff" + body


def bus_properties():
    for sent in (b"\0", b"\1"):
        yield sent + bytes(range(256))
        yield sent + bytes((i * 7 + 3) % 256 for i in range(400))
        yield sent + bytes((i * i) % 253 for i in range(400))


def date_styles():
    for locale in golden("dates.json", "locale") + [b"", b"C", b"th_TH", b"ar_EG@calendar=islamic", b"sr_RS@latin", b"\xff\xfe"]:
        for by_environment in (b"\0", b"\1"):
            yield struct.pack("<qh", 1794823164, 19800) + by_environment + locale


def desktop_entry():
    yield b"\1usr/bin/brimwatch\0--a b\0%f\0\"quoted\" \\ $x `y`\0\0;&|"
    yield b"\0N\xc3\xa4me \\;\0\2XFCE\0a;b\0[Desktop Entry]\nType=Application\nExec=sh -c \"a b\" %U\nOnlyShowIn=XFCE;GNOME;\n" \
        b"Hidden=true\n# x\nName[de]=y\n[Other]\nName=z\n"
    yield b"\0v\0\0[Desktop Entry]\nType=Application\nTryExec=/bin/sh\nExec=/bin/sh\nHidden=1\nOnlyShowIn=a\\;b\\\\;c"


def desktop_texts():
    def setting(kind, name, value):
        padded = name + b"\0" * (-len(name) % 4)
        return bytes([kind, 0]) + struct.pack("<H", len(name)) + padded + struct.pack("<I", 7) + value

    text = b"Adwaita-dark"
    settings = [setting(0, b"Gtk/EnableAnimations", struct.pack("<i", 0)),
                setting(1, b"Net/ThemeName", struct.pack("<I", len(text)) + text),
                setting(2, b"Xft/C", b"\0" * 8)]
    yield b"x\0\0\0\0" + struct.pack("<II", 1, len(settings)) + b"".join(settings)
    yield b"x\1\0\0\0" + struct.pack(">II", 1, 1)
    yield b"k[General]\nAccentColor=61,174,233\nfont=Noto Sans,10,-1,5,50,0,0,0,0,0\n[KDE]\nAnimationDurationFactor=0\n" \
        b"[Colors:Window]\nBackgroundNormal=#202326\n"
    for font in (b"Noto Sans Bold 10", b"Cantarell 11", b"A,b", b"Bold Italic 12", b"", b"10"):
        yield b"f" + font
    for release in (b'PRETTY_NAME="Debian GNU/Linux 12 (bookworm)"\nID=debian\n', b"PRETTY_NAME='a \\\"b'\\'c\n", b""):
        yield b"o" + release


def http_reader():
    answers = [
        b"HTTP/1.1 200 OK\r\nContent-Length: 5\r\n\r\nhello",
        b"HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n5;x=y\r\nhello\r\n0\r\nA: b\r\n\r\n",
        b"HTTP/1.0 404\nServer: x\n\nuntil the end",
        b"HTTP/1.1 100 Continue\r\n\r\nHTTP/1.1 204 No\r\n\r\n",
        b"HTTP/1.1 200 OK\r\nContent-Length: 5, 5\r\nX: a\r\n b\r\nContent-Length: 5\r\n\r\nhellohello",
        b"HTTP/1.1 200 OK\r\nContent-Length: 99999999999999999999\r\n\r\n",
        b"HTTP/1.1 101 Switch\r\nUpgrade: x\r\n\r\n",
        b"HTTP/1.1 200 OK\r\nTransfer-Encoding: gzip\r\n\r\n",
        b"HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\nffffffffffffffffff\r\n",
    ]
    for text in answers:
        yield b"\0\1" + text
        yield b"\1\5" + text


def history():
    head = b"\x3c" + struct.pack("<I", 1794915000)
    rows = "time,bucket,left,reset\n"
    for day in range(6):
        for step in range(6):
            time = 1793869200 + day * 86400 + step * 1800
            rows += "%d,five,%g,%d\n" % (time, 1 - step * (0.02 + day % 5 * 0.03), time - step * 1800 + 18000)
            rows += "%d,week,%g,%d\n" % (time, 1 - (day * 8 + step) / 60, 1793869200 + (1 + day // 7) * 604800)
    kept = {"buckets": {"five": {"kind": "5h"}, "week": {"kind": "weekly"}}}
    window = {"start": 1793869200, "reset": 1793887200, "used": 0.5, "lastReading": 1793876400, "notBefore": 1793869200,
              "steadied": 0.3, "isWarned": True, "wasWarned": True, "judged": 1793876400, "lastRise": 1793876400,
              "samples": [[1793869200, 0], [1793876400, 0.5]]}
    five = {"finalUses": [0.5, 1], "smallestRise": 0.01, "window": window}
    week = five | {"ownHours": {"window": [0] * 168, "use": [0.1] * 168, "weight": [1] * 168, "weeks": 3}}
    for json_kept in ({}, kept, five, week):
        yield head + json.dumps(json_kept).encode() + b"\0" + rows.encode()
    yield head + b"\0" + b'1793869200,"a ""b"", c",0.5,\r\n1793869200,x,0.5,1793869200\n1,x,1,5\n0,x,0,253402300799\n253402300799,x,0.5,0\n'
    yield b"\0" * 5 + b"\0" + rows.encode()[:700] + b"1793869200,fi"


def outputs():
    for text in (b"{title}", b"{gemini.5h}", b"{gemini.5h.color} {{}} \\n", b"{lowest}", b"{", b"}", b"{state} {error} {port}",
                 b"{percentage} {tier} {countdown} {reset} {name} {fraction}", b"{updated}{source}"):
        yield text + b"\0\1\x10\2\0\0\0\x6a" + bytes((i * 7 + 3) % 256 for i in range(300))


def placement():
    for kind in range(3):
        yield bytes([kind]) + bytes(range(200))
        yield bytes([kind]) + b"\0\0\0\0" + struct.pack("<HH", 1919, 1079) + struct.pack("<HH", 1919, 1079) \
            + b"\1" + struct.pack("<12I", 0, 0, 30, 0, 0, 0, 0, 0, 0, 1919, 0, 0) \
            + b"\1" + struct.pack("<hhHH", 0, 1040, 1920, 40) + b"\4" \
            + struct.pack("<4I", 0, 30, 1920, 1050) + struct.pack("<2I", 1920, 1080)


def settings():
    head = struct.pack("<B", 1) + struct.pack("<d", 12.5) + b"\1icon\0"
    files = [
        b"[General]\nrefreshInterval=30\ntoolbarLabelStyle=shortName\nshowIconInMenuBar=false\nlowQuotaThreshold=nan\n",
        b"refreshInterval=1e999\n[Other]\nlowQuotaThreshold=5\n;c\n[General]\nlowQuotaThreshold=\"\\x41 \\n\"\n",
        b"\xef\xbb\xbf[General]\nuseColoredStatusIndicator=@Variant(\\0\\0)\ntoolbarLabelStyle=a, b\n",
        b"[General]\ntoolbarLabelStyle=@@x\\\n y\nlowQuotaThreshold=20",
        b"",
    ]
    for file in files:
        yield head + file
        yield b"\0" + head[1:] + file


def texts():
    samples = golden("contains.json", "name", "upper") + golden("upper.json", "text") + golden("iso8601.json", "text")
    samples += ["👩‍👩‍👧 e\u0301 \u2028 a\tb \x1b[31m".encode(), b"secretsecret", b"/home/somebody/x"]
    for sample in samples:
        yield b"\0\x08secret\0" + sample
    yield b"\1\x04ab\0" + "a👩‍👧é".encode("utf-16-le") + b"\x00\xd8"


def bus_calls():
    for member in range(40):
        yield bytes([member]) + bytes((i * 7 + member) % 256 for i in range(60))


def main():
    name, folder = sys.argv[1], pathlib.Path(sys.argv[2])
    folder.mkdir(parents=True, exist_ok=True)
    for number, seed in enumerate(globals()[name]()):
        (folder / ("seed%04d" % number)).write_bytes(seed)


main()
