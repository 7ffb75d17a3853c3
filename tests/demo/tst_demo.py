#!/usr/bin/env python3
# Copyright (C) 2026 The kivcamui authors
# SPDX-License-Identifier: BSD-3-Clause
"""The demo host end to end, in a real X window driven by real input events.

Starts a private Xvfb, runs kivcamui-demo --trace on it over the test's own emulated world and
with a private data folder, clicks through it with xdotool and checks what it reports on standard
output: the popup scans once and lists the cameras, a camera that can connect connects and its
live panel counts frames, the popup then shows it as the last camera, a camera that cannot
connect gets the "Can't Connect" dialog, Disconnect disconnects, a failed connect is reported,
a second run remembers the last camera and connects it from there, then connects a camera
chosen in the "Find cameras..." dialog, and a third assembles a camera by hand in the custom
camera dialog and connects it, and a fourth connects the GenICam camera, switches its feature
tree to Expert, enters an exposure time and drags the sensor window smaller, and sees the picture
shrink with it; a fifth connects a camera that falls silent, sees the reason, and reconnects it
when a search finds it again. A sixth run, in an 800 x 500 window, connects a camera with the
keyboard alone (Tab to the camera button, Enter, Down to a camera, Enter), closes the popup with
Escape and sees the focus back on the camera button, edits a description on the Cameras page,
keeps the edit through a new search, saves it, loads it back and connects it, and accepts the
custom camera dialog with nothing chosen. Screenshots of each step, and of every page at 800 x
500, are saved in the output folder for a person to look at.

    tst_demo.py --demo BINARY --world WORLD.xml --out FOLDER

Exits 77 (skipped) when Xvfb, xdotool or ImageMagick's import is missing.
"""

import argparse
import functools
import os
import queue
import re
import shutil
import subprocess
import sys
import tempfile
import threading
import time

SKIP = 77
# Generous: the sanitizer build on a busy machine starts slowly.
WAIT = 120
WINDOW_TITLE = "kivcamui demo"
OLD_CAMERA_MESSAGE = "The camera runs firmware 1.0; update it to 2.0 and search again."


class Failure(Exception):
    pass


class Display:
    """A private Xvfb on a free display number, which it picks itself."""

    def __init__(self):
        read_end, write_end = os.pipe()
        self.process = subprocess.Popen(
            ["Xvfb", "-displayfd", str(write_end), "-screen", "0", "1280x1024x24",
             "-nolisten", "tcp"],
            pass_fds=(write_end,), stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        os.close(write_end)
        with os.fdopen(read_end) as pipe:
            number = pipe.readline().strip()
        if not number:
            self.process.kill()
            raise Failure("Xvfb did not start")
        self.name = ":" + number

    def close(self):
        self.process.terminate()
        self.process.wait(timeout=30)


class Demo:
    """The demo process, its trace as it comes, and the places it reports ("at" lines)."""

    def __init__(self, binary, env, log_folder, run, options=()):
        self.env = env
        self.lines = queue.Queue()
        self.trace = []
        self.places = {}
        self.trace_log = open(os.path.join(log_folder, f"run{run}-trace.log"), "w")
        self.error_log = open(os.path.join(log_folder, f"run{run}-stderr.log"), "w")
        self.process = subprocess.Popen([binary, "--trace", *options], env=env, stdin=subprocess.DEVNULL,
                                        stdout=subprocess.PIPE, stderr=self.error_log, text=True)
        threading.Thread(target=self._read, daemon=True).start()
        self.window = None

    def _read(self):
        for line in self.process.stdout:
            self.lines.put(line.rstrip("\n"))
        self.lines.put(None)

    def expect(self, pattern, timeout=WAIT):
        """Waits for the next line that matches pattern; returns its match and the lines read
        before it."""
        expression = re.compile(pattern)
        skipped = []
        deadline = time.monotonic() + timeout
        while True:
            try:
                line = self.lines.get(timeout=max(0.0, deadline - time.monotonic()))
            except queue.Empty:
                raise Failure(f"no line matching {pattern!r} within {timeout} s")
            if line is None:
                raise Failure(f"the demo ended (code {self.process.wait()}) before a line "
                              f"matching {pattern!r}")
            self.trace.append(line)
            print(line, file=self.trace_log, flush=True)
            place = re.fullmatch(r"at (-?\d+) (-?\d+) (\d+) (\d+) (.+)", line)
            if place:
                x, y, width, height = (int(n) for n in place.groups()[:4])
                self.places[place.group(5)] = (x + width // 2, y + height // 2)
            match = expression.fullmatch(line)
            if match:
                return match, skipped
            skipped.append(line)

    def expect_without(self, pattern, forbidden, failure):
        """Waits for the next line that matches pattern, as expect does, and fails with failure
        when a line before it is forbidden; returns the match."""
        match, before = self.expect(pattern)
        if any(forbidden(line) for line in before):
            raise Failure(failure)
        return match

    def expect_all(self, *patterns, timeout=WAIT):
        """Waits until each pattern has matched a line, in any order; returns the lines read."""
        waiting = list(patterns)
        lines = []
        deadline = time.monotonic() + timeout
        while waiting:
            match, skipped = self.expect("|".join(f"(?:{p})" for p in waiting),
                                         max(0.0, deadline - time.monotonic()))
            lines += skipped + [match.group(0)]
            waiting = [p for p in waiting if not re.fullmatch(p, match.group(0))]
        return lines

    def find_window(self):
        self.window = xdotool(self.env, "search", "--sync", "--onlyvisible", "--name",
                              "^" + WINDOW_TITLE + "$").split()[0]

    def focus(self):
        """Gives the window the keyboard focus, as a window manager would."""
        xdotool(self.env, "windowfocus", "--sync", self.window)

    def press_until_focus(self, keys, name, tries):
        """Presses keys until the demo says name has the keyboard focus; the lines said before
        the first press do not count."""
        try:
            while True:
                self.expect("(?!)", timeout=0.5)
        except Failure:
            pass
        for _ in range(tries):
            self.key(keys)
            if self.expect(r"focus (.*)")[0].group(1) == name:
                return
        raise Failure(f"{keys} did not bring the focus to {name!r} in {tries} presses")

    def click(self, what):
        if what not in self.places:
            raise Failure(f"the demo has not said where {what!r} is")
        x, y = self.places[what]
        xdotool(self.env, "mousemove", "--window", self.window, str(x), str(y), "click", "1")

    def drag(self, what, dx, dy):
        """Presses the mouse on what, moves it by dx, dy in steps, and releases it."""
        if what not in self.places:
            raise Failure(f"the demo has not said where {what!r} is")
        x, y = self.places[what]
        xdotool(self.env, "mousemove", "--window", self.window, str(x), str(y), "mousedown", "1")
        steps = 8
        for step in range(1, steps + 1):
            time.sleep(0.05)
            xdotool(self.env, "mousemove", "--window", self.window, str(x + dx * step // steps),
                    str(y + dy * step // steps))
        time.sleep(0.05)
        xdotool(self.env, "mouseup", "1")

    def key(self, keys):
        xdotool(self.env, "key", keys)

    def type(self, text):
        xdotool(self.env, "type", "--delay", "20", text)

    def screenshot(self, file):
        subprocess.run(["import", "-window", self.window, file], env=self.env, check=True,
                       timeout=60)

    def quit(self):
        """Ctrl+Q, and the process's exit code."""
        self.key("ctrl+q")
        self.expect("quit")
        return self.process.wait(timeout=WAIT)

    def close(self):
        if self.process.poll() is None:
            self.process.kill()
            self.process.wait()
        self.trace_log.close()
        self.error_log.close()


def xdotool(env, *arguments):
    return subprocess.run(["xdotool", *arguments], env=env, check=True, timeout=WAIT,
                          capture_output=True, text=True).stdout


def connect_from_dialog(demo, identity):
    """"Find cameras...": the dialog scans, and the camera chosen there is connected on
    "Connect"."""
    demo.click("find cameras")
    demo.expect_all("dialog opened", "scanning")
    demo.expect("cameras 5")
    demo.expect(r"at .* dialog connect")
    demo.click("dialog row " + identity)
    demo.click("dialog connect")
    demo.expect_all(f"dialog accepted {identity}", f"connecting {identity}")


def first_run(demo, shot):
    demo.expect("ready")
    demo.find_window()

    # Nothing found yet and no last camera: opening the popup scans, once.
    demo.click("camera button")
    demo.expect_all("popup opened", "scanning")
    demo.expect("cameras 5")
    demo.expect_without(r"at .* row Bench camera", lambda line: " last " in line,
                        "a first run shows a last camera")
    demo.expect(r"at .* row Broken camera")
    shot("1-popup-found")

    # A connect that fails is reported as such; the popup keeps the camera all the same.
    demo.click("row Broken camera")
    demo.expect_all("popup closed", "connecting Broken camera")
    demo.expect(r'error The camera B64-3 did not answer the controller "Thermal"\.')
    demo.expect_without("connect-failed Broken camera", lambda line: line.startswith("connected"),
                        "a failing camera was reported connected")
    shot("2-connect-failed")

    # A camera that can connect: connected, with its live panel counting frames.
    demo.click("camera button")
    demo.expect("popup opened")
    demo.expect(r"at .* last Broken camera")
    demo.expect(r"at .* row Broken camera")
    demo.click("row Bench camera")
    demo.expect_all("popup closed", "connecting Bench camera")
    demo.expect("connected Bench64")
    demo.expect("panel loaded")
    frames = [int(demo.expect(r"frames (\d+)")[0].group(1)) for _ in range(3)]
    if not frames[0] < frames[1] < frames[2]:
        raise Failure(f"the live panel's frame counter does not count up: {frames}")
    shot("3-live")

    # The popup now shows it as the last camera, and does not scan by itself.
    demo.click("camera button")
    demo.expect("popup opened")
    demo.expect_without(r"at .* last Bench camera", lambda line: line == "scanning",
                        "the popup scanned although it had cameras to show")
    demo.expect(r"at .* row Broken camera")
    shot("4-popup-last")

    # A camera that cannot connect: the "Can't Connect" dialog, and the connection stays.
    demo.click("row Old camera")
    message = demo.expect_without("cant-connect (.*)",
                                  lambda line: line.startswith(("connecting", "disconnect")),
                                  "a camera that cannot connect was handed on")
    if message.group(1) != OLD_CAMERA_MESSAGE:
        raise Failure(f"the Can't Connect dialog says {message.group(1)!r}")
    demo.expect(r"at .* ok")
    shot("5-cant-connect")
    demo.click("ok")
    demo.expect("cant-connect closed")
    demo.expect(r"frames \d+")

    # Disconnect.
    demo.click("disconnect")
    demo.expect("disconnecting")
    demo.expect("disconnected")
    shot("6-disconnected")


def second_run(demo, shot):
    demo.expect("ready")
    demo.find_window()

    # The last camera of the first run is there, and the popup does not scan for it.
    demo.click("camera button")
    demo.expect("popup opened")
    demo.expect_without(r"at .* last Bench camera", lambda line: line == "scanning",
                        "the popup scanned although it had a last camera to show")
    shot("7-popup-remembered")

    demo.click("last Bench camera")
    demo.expect_all("popup closed", "connecting Bench camera")
    demo.expect("connected Bench64")
    demo.expect(r"frames [1-9]\d*")
    shot("8-live-again")

    # "Find cameras...": the dialog scans; a camera chosen there is connected on "Connect", after
    # the one connected is disconnected.
    demo.click("find cameras")
    demo.expect_all("dialog opened", "scanning")
    demo.expect("cameras 5")
    demo.expect(r"at .* dialog connect")
    demo.click("dialog row Bench camera")
    shot("9-dialog")
    demo.click("dialog connect")
    demo.expect_all("dialog accepted Bench camera", "disconnected", "connecting Bench camera")
    demo.expect("connected Bench64")
    demo.expect(r"frames [1-9]\d*")
    shot("10-live-from-dialog")
    # The demo quits with the camera connected.


def third_run(demo, shot):
    demo.expect("ready")
    demo.find_window()

    # "Custom camera...": the dialog searches the devices; the custom type, a device that carries
    # both control and video, an identity typed in, and Connect.
    demo.click("custom camera")
    demo.expect("custom opened")
    demo.expect(r"at .* custom connect")
    demo.click("custom type Custom")
    demo.expect("custom camera ")
    demo.expect(r"at .* custom identity")
    demo.click("custom device Emu : Port 0")
    demo.expect("custom camera ")
    demo.expect(r"at .* custom connect")
    demo.click("custom identity")
    demo.key("ctrl+a")
    demo.type("Hand built")
    demo.key("Return")
    shot("11-custom-camera")
    demo.click("custom connect")
    demo.expect_all("custom accepted Hand built", "connecting Hand built")
    # A camera of the custom type names no camera type of the catalogue, so the connection model
    # has no controller for it: its device is opened and closed again, and the connect fails.
    demo.expect_without("connect-failed Hand built", lambda line: line.startswith("connected"),
                        "a camera of the custom type was reported connected")
    shot("12-custom-not-connected")


def fourth_run(demo, shot):
    demo.expect("ready")
    demo.find_window()

    # The GenICam camera, chosen in "Find cameras...": its panel with a live picture and the
    # camera's feature tree.
    connect_from_dialog(demo, "GenICam camera")
    demo.expect("connected Emulated GenICam camera")
    demo.expect("panel loaded")
    lines = demo.expect_all(r"picture \d+ x \d+, .*", r"sensor \d+ \d+ \d+ \d+",
                            r"features [1-9]\d* hidden \d+", r"at .* visibility", r"at .* filter",
                            r"at .* sensor corner", r"frames [1-9]\d*")
    first_picture = next(line for line in lines if line.startswith("picture"))
    beginner = next(line for line in lines if line.startswith("features"))
    shown, hidden = (int(n) for n in beginner.split()[1::2])
    shot("13-genicam")

    # Expert: the features of that level come into the tree.
    demo.click("visibility")
    time.sleep(0.5)
    demo.key("Down")
    demo.key("Return")
    expert = demo.expect(r"features (\d+) hidden (\d+)")[0]
    if not (int(expert.group(1)) > shown and int(expert.group(2)) < hidden):
        raise Failure(f"Expert shows {expert.group(0)!r}, after Beginner's {beginner!r}")

    # The exposure, found with the filter and entered in its row: the camera takes it.
    demo.click("filter")
    demo.type("ExposureTime")
    demo.expect(r"features 1 hidden 0")
    demo.expect(r"at .* edit ExposureTime")
    demo.click("edit ExposureTime")
    demo.key("ctrl+a")
    demo.type("25000")
    demo.key("Return")
    demo.expect(r"feature ExposureTime 25000")
    shot("14-genicam-exposure")

    # The sensor window's corner dragged up and left: the camera takes the smaller window, and
    # the picture shrinks with it.
    width, height = (int(n) for n in re.findall(r"\d+", first_picture)[:2])
    demo.drag("sensor corner", -40, -40)
    # The window and the picture are said as each comes, in either order.
    sensor = picture = None
    while not (picture and sensor and sensor[2:] == picture):
        line = demo.expect(r"(sensor|picture) .*")[0].group(0)
        numbers = [int(n) for n in re.findall(r"\d+", line)]
        if line.startswith("sensor"):
            sensor = numbers
        elif numbers[0] < width and numbers[1] < height:
            picture = numbers[:2]
    demo.expect(r"frames [1-9]\d*")
    shot("15-genicam-window")


def fifth_run(demo, shot):
    demo.expect("ready")
    demo.find_window()

    # A camera that falls silent while connected: the status says why, a search finds it again,
    # and Reconnect connects it.
    connect_from_dialog(demo, "Fading camera")
    demo.expect("connected Bench64")
    demo.expect("error The camera B64-4 stopped answering.")
    demo.expect_all("disconnecting", "disconnected")
    demo.expect(r"at .* reconnect")
    shot("16-lost")
    demo.click("reconnect")
    demo.expect_all("connecting Fading camera", "error ")
    demo.expect("connected Bench64")
    shot("17-reconnected")


def sixth_run(demo, shot, description):
    demo.expect("ready")
    demo.find_window()
    demo.focus()
    shot("18-small-live")

    # The keyboard alone: Tab to the camera button, Enter opens the popup, which scans; the focus
    # is on its first row, Down moves it to a camera that can connect, Enter connects that.
    demo.press_until_focus("Tab", "camera button", 12)
    demo.key("Return")
    demo.expect_all("popup opened", "scanning")
    # The first row takes the focus as the search ends, said before or after its result.
    lines = demo.expect_all("cameras 5", r"focus row .*")
    if [line for line in lines if line.startswith("focus row")][-1] != "focus row Bench camera":
        demo.press_until_focus("Down", "row Bench camera", 5)
    demo.key("Return")
    demo.expect_all("popup closed", "connecting Bench camera", "focus camera button")
    demo.expect_all("connected Bench64", "page mark Bench camera")
    demo.expect(r"frames [1-9]\d*")
    shot("19-small-keyboard-connected")

    # Space opens the popup again, on its last camera; Escape closes it, and the focus is back
    # on the camera button.
    demo.key("space")
    demo.expect_all("popup opened", "focus last Bench camera")
    demo.key("Escape")
    demo.expect_all("popup closed", "focus camera button")

    # The Cameras page: an edit of the selected camera outlives a new search, is saved, and
    # comes back with Load... after another camera was selected; the loaded one connects.
    demo.click("tab cameras")
    demo.expect(r"at .* page row Old camera")
    demo.click("page row Bench camera")
    demo.expect("page camera Bench camera")
    shot("20-small-cameras")
    demo.expect(r"at .* page identity")
    demo.click("page identity")
    demo.key("ctrl+a")
    demo.type("Edited bench")
    demo.key("Return")
    demo.expect("page camera Edited bench")
    demo.click("page scan")
    demo.expect("scanning")
    demo.expect("cameras 5")
    kept = demo.expect(r"page camera (.*)")[0].group(1)
    if kept != "Edited bench":
        raise Failure(f"a new search replaced the edited description with {kept!r}")
    demo.expect(r"at .* page save")
    demo.click("page save")
    demo.expect(r"page message Saved the description of Edited bench in .*\.")
    with open(description) as saved:
        if "Edited bench" not in saved.read():
            raise Failure(f"{description} does not hold the edited identity")
    demo.click("page row Old camera")
    demo.expect("page camera Old camera")
    demo.click("page load")
    demo.expect_all(r"page message Loaded Edited bench from .*\.", "page camera Edited bench")
    demo.expect(r"at .* page connect")
    demo.click("page connect")
    demo.expect_all("disconnected", "connecting Edited bench")
    demo.expect("connected Bench64")
    shot("21-small-loaded")

    demo.click("tab sensor window")
    time.sleep(0.5)
    shot("22-small-editors")
    demo.click("tab devices")
    time.sleep(0.5)
    shot("23-small-devices")

    # The custom camera dialog accepted with nothing chosen: the status says so.
    demo.click("custom camera")
    demo.expect("custom opened")
    enabled = demo.expect(r"custom connect (enabled|disabled)")[0].group(1)
    if enabled == "enabled":
        demo.click("custom connect")
        demo.expect_all("custom accepted ", "status Could not connect: no camera was chosen in the "
                        "custom camera dialog.")
        shot("24-small-nothing-chosen")


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--demo", required=True)
    parser.add_argument("--world", required=True)
    parser.add_argument("--out", required=True)
    options = parser.parse_args()

    missing = [tool for tool in ("Xvfb", "xdotool", "import") if not shutil.which(tool)]
    if missing:
        print(f"skipped: {', '.join(missing)} not installed (scripts/bootstrap installs them)")
        return SKIP

    shutil.rmtree(options.out, ignore_errors=True)
    os.makedirs(options.out)
    home = tempfile.mkdtemp(prefix="tst_demo-")
    display = Display()
    env = dict(os.environ)
    for name in ("WAYLAND_DISPLAY", "DBUS_SESSION_BUS_ADDRESS", "XAUTHORITY"):
        env.pop(name, None)
    env.update({
        "DISPLAY": display.name,
        "QT_QPA_PLATFORM": "xcb",
        "QT_QUICK_BACKEND": "software",
        "KIVCAM_EMULATOR_WORLD": options.world,
        # Never the user's folders: the last camera is kept under XDG_DATA_HOME.
        "HOME": home,
        "XDG_DATA_HOME": os.path.join(home, "data"),
        "XDG_CONFIG_HOME": os.path.join(home, "config"),
        "XDG_CACHE_HOME": os.path.join(home, "cache"),
        "XDG_RUNTIME_DIR": os.path.join(home, "runtime"),
    })
    os.makedirs(env["XDG_RUNTIME_DIR"], mode=0o700)
    print(f"screenshots and traces in {options.out}")

    status = 0
    try:
        # The sixth run starts afresh, with no last camera, in a small window.
        description = os.path.join(home, "description.xml")
        small = ("--size", "800x500", "--description-file", description)
        small_env = dict(env, XDG_DATA_HOME=os.path.join(home, "data-small"))
        for run, steps, run_env, extra in (
                (1, first_run, env, ()), (2, second_run, env, ()), (3, third_run, env, ()),
                (4, fourth_run, env, ()), (5, fifth_run, env, ()),
                (6, functools.partial(sixth_run, description=description), small_env, small)):
            demo = Demo(options.demo, run_env, options.out, run, extra)

            def shot(name):
                demo.screenshot(os.path.join(options.out, name + ".png"))

            try:
                steps(demo, shot)
                code = demo.quit()
                if code != 0:
                    raise Failure(f"the demo exited with code {code}")
            except (Failure, subprocess.SubprocessError) as error:
                print(f"FAIL in run {run}: {error}")
                if demo.window:
                    try:
                        shot(f"run{run}-failure")
                    except subprocess.SubprocessError:
                        pass
                status = 1
            finally:
                demo.close()
                print(f"run {run} trace:\n  " + "\n  ".join(demo.trace))
                with open(os.path.join(options.out, f"run{run}-stderr.log")) as errors:
                    text = errors.read()
                if text.strip():
                    print(f"run {run} standard error:\n{text}")
            if status:
                break
        stored = os.path.join(env["XDG_DATA_HOME"], "kivcamui", "kivcamui-demo", "lastCamera.xml")
        if not status and not os.path.isfile(stored):
            print(f"FAIL: no {stored}")
            status = 1
    finally:
        display.close()
        shutil.rmtree(home, ignore_errors=True)
    print("PASS" if status == 0 else "FAIL")
    return status


if __name__ == "__main__":
    sys.exit(main())
