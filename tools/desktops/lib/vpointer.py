#!/usr/bin/env python3
"""Virtual pointer for wlroots compositors (a headless seat has no pointer at all).

vpointer.py serve                 hold a zwlr_virtual_pointer_v1; run the commands that are written into $XDG_RUNTIME_DIR/vpointer
vpointer.py click X Y BUTTON      4 and 5 are the wheel, 0 only moves the pointer there
Places are those of sway's layout, in which an output may begin left of 0 or above it.
No dependency: speaks the Wayland wire protocol itself.
"""
import json, os, socket, struct, subprocess, sys, time

RUN = os.environ["XDG_RUNTIME_DIR"]
CTL = os.path.join(RUN, "vpointer")
BTN = {1: 0x110, 2: 0x112, 3: 0x111}            # BTN_LEFT, BTN_MIDDLE, BTN_RIGHT


def serve():
    s = socket.socket(socket.AF_UNIX)
    s.connect(os.path.join(RUN, os.environ["WAYLAND_DISPLAY"]))

    def req(obj, op, body=b""):
        s.sendall(struct.pack("=IHH", obj, op, 8 + len(body)) + body)

    def string(b):
        b += b"\0"
        return struct.pack("=I", len(b)) + b + b"\0" * (-len(b) % 4)

    req(1, 1, struct.pack("=I", 2))              # wl_display.get_registry -> 2
    req(1, 0, struct.pack("=I", 3))              # wl_display.sync -> 3
    buf, name = b"", None
    while True:
        buf += s.recv(65536)
        done = False
        while len(buf) >= 8:
            obj, op, size = struct.unpack_from("=IHH", buf)
            if len(buf) < size:
                break
            body, buf = buf[8:size], buf[size:]
            if obj == 2 and op == 0:
                n, ln = struct.unpack_from("=II", body)
                if body[8:8 + ln - 1] == b"zwlr_virtual_pointer_manager_v1":
                    name = n
            if obj == 3:
                done = True
        if done:
            break
    if name is None:
        sys.exit("compositor lacks zwlr_virtual_pointer_manager_v1")
    req(2, 0, struct.pack("=I", name) + string(b"zwlr_virtual_pointer_manager_v1") + struct.pack("=II", 1, 4))
    req(4, 0, struct.pack("=II", 0, 5))          # create_virtual_pointer(NULL seat) -> 5

    now = lambda: int(time.monotonic() * 1000) & 0xffffffff
    frame = lambda: req(5, 4)

    def move(x, y, w, h):
        req(5, 1, struct.pack("=IIIII", now(), x, y, w, h)); frame()

    def button(b, down):
        req(5, 2, struct.pack("=III", now(), BTN[b], down)); frame()

    def scroll(steps):
        req(5, 5, struct.pack("=I", 0))
        req(5, 7, struct.pack("=IIii", now(), 0, int(steps * 15 * 256), steps)); frame()

    move(1, 1, 2, 2)
    if os.path.exists(CTL):
        os.unlink(CTL)
    c = socket.socket(socket.AF_UNIX); c.bind(CTL); c.listen(4)
    s.setblocking(False)
    while True:
        k, _ = c.accept()
        a = k.recv(256).decode().split()
        try:
            while s.recv(65536):                 # drop events
                pass
            sys.exit("compositor went away")
        except BlockingIOError:
            pass
        x, y, number, *size = map(int, a)
        move(x - 3 if x > 3 else x + 3, y, *size); time.sleep(0.05); move(x, y, *size); time.sleep(0.15)
        if number in BTN:
            button(number, 1); time.sleep(0.05); button(number, 0)
        elif number in (4, 5):
            scroll(-1 if number == 4 else 1)
        k.sendall(b"ok"); k.close()


def layout():
    """Where sway's layout begins, and its size: a pointer's place is told as a part of it."""
    outputs = json.loads(subprocess.run(["swaymsg", "-r", "-t", "get_outputs"], check=True, capture_output=True).stdout)
    rects = [output["rect"] for output in outputs if output["active"]]
    left, top = min(r["x"] for r in rects), min(r["y"] for r in rects)
    return left, top, max(r["x"] + r["width"] for r in rects) - left, max(r["y"] + r["height"] for r in rects) - top


def click(x, y, number):
    left, top, width, height = layout()
    c = socket.socket(socket.AF_UNIX); c.connect(CTL)
    c.sendall(f"{x - left} {y - top} {number} {width} {height}".encode())
    return c.recv(8) == b"ok"


if __name__ == "__main__":
    if sys.argv[1:2] == ["serve"]:
        serve()
    sys.exit(0 if click(*map(int, sys.argv[2:5])) else 1)
