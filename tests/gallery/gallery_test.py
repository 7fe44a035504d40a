#!/usr/bin/env python3
"""The gallery as its users meet it: on an X server with a window manager, by mouse and keyboard.

    gallery_test.py GALLERY HEADER

A scenario gives input and then one of the keys F5 to F12, and compares the events that the gallery tells until it has
told of that key with the expected ones. So nothing waits longer than the machine takes.
"""
import difflib
import itertools
import os
import queue
import re
import shlex
import shutil
import struct
import subprocess
import sys
import tempfile
import threading
import time

SKIPPED = 77
PATIENCE = 30  # seconds that something may take on a busy machine

EVENTS = {1: "key", 3: "down", 4: "up", 5: "gadget", 7: "setup", 8: "cleanup", 9: "activate", 10: "deactivate",
          11: "doc-activate", 12: "doc-deactivate", 22: "ask-close", 26: "tab-activate"}
MODIFIERS = {0x1: "held", 0x8: "press", 0x10: "change", 0x20: "release", 0x40: "double", 0x80: "dragged",
             0x200: "control", 0x400: "shift", 0x4000: "key-up"}
KEYS = {304: "Right", 305: "Up", 306: "Down", 313: "Tab", 316: "Escape", 317: "Return"}
MARKS = {f"F{number}": 287 + number for number in range(5, 13)}

STARTED = """
    setup MainPalette
    doc-activate MainPalette
    activate MainPalette
    tab-activate MainPalette
    setup ToolsPalette
    deactivate MainPalette
    activate ToolsPalette
    tab-activate ToolsPalette
"""

# What is tried, the input, and the events. {Item} moves the mouse to the middle of an item, {Item:x,y} to a place in it;
# a semicolon ends a text that is typed. Of a key that closes the dialog the release may be lost with it: "?". Nothing is pressed twice in one place where that is not to be a double click.
OUTSIDE = "{OpenDialog:-8,10}"
SHOW_DIALOG = "{Push:9,9} click 1 {OpenDialog} click 1"
SHOWN_DIALOG = """
    up MainPalette
    gadget Push 0 release
    up MainPalette
    gadget OpenDialog 0 release
    setup DialogPalette
    tab-activate DialogPalette
"""
SHOWN_POP_UP = """
    up MainPalette
    gadget OpenPopUp 0 release
    setup PopUpPalette
    tab-activate PopUpPalette
"""
SCENARIOS = [
    ("a click on a button", "{Push} click 1", """
        up MainPalette
        gadget Push 0 release"""),
    ("a press that is dragged off and released there", "{PushDefault} mousedown 1 " + OUTSIDE + " mouseup 1", """
        up dragged"""),
    ("a press that is dragged off and on again", "{ToggleOff} mousedown 1 " + OUTSIDE + " {ToggleOff} mouseup 1", """
        up MainPalette dragged
        gadget ToggleOff 1 release dragged"""),
    ("disabled gadgets", "{PushDisabled} click 1 {ToggleDisabled} click 1 {CheckDisabled} click 1", """
        up MainPalette
        up MainPalette
        up MainPalette"""),
    ("a press on nothing", OUTSIDE + " click 1", """
        down held
        up"""),
    ("a toggle off and another off", "{ToggleOn} click 1 {ToggleOff} click 1", """
        up MainPalette
        gadget ToggleOn 0 release
        up MainPalette
        gadget ToggleOff 0 release"""),
    ("checks", "{CheckFirst} click 1 {CheckSecond} click 1", """
        up MainPalette
        gadget CheckFirst 1 release
        up MainPalette
        gadget CheckSecond 0 release"""),
    ("radios act on the press, and are off as soon as another is on",
     "{RadioFirst} click 1 {RadioSecond} click 1 {RadioFirst} click 1", """
        gadget RadioFirst 1 held press
        up MainPalette
        gadget RadioSecond 1 held press
        up MainPalette
        gadget RadioFirst 1 held press
        up MainPalette"""),
    ("a double click on a radio that is off, and a third click", "{RadioThird} click --repeat 3 --delay 10 1", """
        gadget RadioThird 1 held press
        up MainPalette
        gadget RadioThird 1 held press double
        up MainPalette double
        up MainPalette"""),
    ("a double click on a button is two clicks", "{Push} click --repeat 2 --delay 10 1", """
        up MainPalette
        gadget Push 0 release
        up MainPalette double
        gadget Push 0 release double"""),
    ("a custom gadget follows the mouse", "{Swatch:0,9} mousedown 1 {Swatch:59,9} mouseup 1", """
        gadget Swatch 0 held press
        gadget Swatch 255 held change dragged
        up MainPalette dragged
        gadget Swatch 255 release dragged"""),
    ("a text is replaced", "{TextField} click 1 keydown ctrl key a keyup ctrl key a key b", """
        key a control key-up
        gadget TextField "a" change
        key a key-up
        gadget TextField "ab" change
        key b key-up"""),
    ("Tab goes through fields and lists, and passes over what is disabled", "key Tab key Tab key Tab key Tab key Tab", """
        gadget TextField "ab" release
        key Tab key-up
        gadget IntegerField 42 release
        key Tab key-up
        gadget FloatField 2.5 release
        key Tab key-up
        gadget PasswordField "secret" release
        gadget RowList 3 press
        key Tab key-up
        gadget RowList 3 release
        key Tab key-up"""),
    ("an editor keeps Return and Tab; its old text was selected", "key x key Return key Tab", """
        gadget Editor "x" change
        key x key-up
        gadget Editor "x\\n" change
        key Return key-up
        gadget Editor "x\\n\t" change
        key Tab key-up"""),
    ("a press in another field reports the old one, and again when it loses the focus; an integer refuses a letter",
     "{IntegerField} click 1 keydown ctrl key a keyup ctrl key minus key 1 key x key 5 key minus", """
        gadget Editor "x\\n\t" held release
        gadget Editor "x\\n\t" held release
        key a control key-up
        gadget IntegerField 0 change
        key - key-up
        gadget IntegerField -1 change
        key 1 key-up
        key x key-up
        gadget IntegerField -15 change
        key 5 key-up
        key - key-up"""),
    ("Return ends a field; without a focus it is a key", "key Return key Return", """
        gadget IntegerField -15 release
        key Return key-up
        key Return
        key Return key-up"""),
    ("a real number, and Shift and Tab back", "{FloatField} click 1 keydown ctrl key a keyup ctrl type 1e2; "
     "keydown shift key Tab key Tab keyup shift", """
        key a control key-up
        gadget FloatField 1 change
        key 1 key-up
        gadget FloatField 1 change
        key e key-up
        gadget FloatField 100 change
        key 2 key-up
        gadget FloatField 100 release shift
        key Tab shift key-up
        gadget IntegerField -15 release shift
        key Tab shift key-up"""),
    ("rows of a list by mouse", "{RowList:20,6} click 1", """
        gadget TextField "ab" held release
        gadget TextField "ab" held release
        gadget RowList 3 held press
        gadget RowList 1 release"""),
    ("rows of a list by keys", "key Down key Down key Up key Right", """
        gadget RowList 2 release
        key Down key-up
        gadget RowList 3 release
        key Down key-up
        gadget RowList 2 release
        key Up key-up
        key Right key-up"""),
    ("the wheel over a list brings other rows there", "{RowList:20,9} click 5 click 1", """
        gadget RowList 2 held press
        gadget RowList 4 release"""),
    ("radios of a floater, which becomes active; the list loses the focus", "{ToolLast} click 1 {ToolFirst} click 1", """
        deactivate MainPalette
        activate ToolsPalette
        gadget ToolLast 1 held press
        gadget RowList 4 held release
        up ToolsPalette
        gadget ToolFirst 1 held press
        up ToolsPalette"""),
    ("a dialog", SHOW_DIALOG, """
        deactivate ToolsPalette
        activate MainPalette""" + SHOWN_DIALOG),
    ("a press behind the dialog is lost", "{Push} click 1", ""),
    ("Return ends the dialog's field, and accepts", "key o key k key Return", """
        gadget DialogName "o" change
        key o DialogPalette key-up
        gadget DialogName "ok" change
        key k DialogPalette key-up
        gadget DialogName "ok" release
        key Return DialogPalette
        doc-deactivate DialogPalette
        cleanup DialogPalette
        ? key Return key-up"""),
    ("a second dialog", SHOW_DIALOG, SHOWN_DIALOG),
    ("Escape cancels it", "key Escape", """
        key Escape DialogPalette
        doc-deactivate DialogPalette
        cleanup DialogPalette
        ? key Escape key-up"""),
    ("a third dialog", SHOW_DIALOG, SHOWN_DIALOG),
    ("its button", "{DialogCancel} click 1", """
        gadget DialogName "" held release
        gadget DialogName "" held release
        up DialogPalette
        gadget DialogCancel 0 release
        doc-deactivate DialogPalette release
        cleanup DialogPalette"""),
    ("a fourth dialog", SHOW_DIALOG, SHOWN_DIALOG),
    ("it has no close box, so the window manager does not close it", "key alt+F4", ""),
    ("Escape does", "key Escape", """
        key Escape DialogPalette
        doc-deactivate DialogPalette
        cleanup DialogPalette
        ? key Escape key-up"""),
    ("a pop-up", "{OpenPopUp} click 1", SHOWN_POP_UP),
    ("a press elsewhere closes it, and counts", "{ToggleOn} click 1", """
        doc-deactivate PopUpPalette held
        cleanup PopUpPalette held
        up MainPalette
        gadget ToggleOn 1 release"""),
    ("a second pop-up", "{OpenPopUp} click 1", SHOWN_POP_UP),
    ("its button", "{PopUpLast} click 1", """
        up PopUpPalette
        gadget PopUpLast 0 release
        doc-deactivate PopUpPalette release
        cleanup PopUpPalette"""),
]

CLOSED = """
    ask-close MainPalette
    doc-deactivate ToolsPalette
    cleanup ToolsPalette
    doc-deactivate MainPalette
    cleanup MainPalette
"""


def lines_of(text):
    return [line.strip() for line in text.strip("\n ").split("\n") if line.strip()]


def wait_until(condition, complaint):
    end = time.monotonic() + PATIENCE
    while not condition():
        if time.monotonic() > end:
            raise RuntimeError(complaint)
        time.sleep(0.005)


class Names:
    """The numbers of palettes and items, as the gallery's header has them."""

    def __init__(self, header):
        self.numbers = {}
        with open(header, encoding="utf-8") as file:
            enumerations = re.findall(r"enum (?:Palette|Item)Id : unsigned short \{(.*?)\}", file.read(), re.DOTALL)
        for body in enumerations:
            number = -1
            for entry in body.split(","):
                name, _, value = (part.strip() for part in entry.partition("="))
                base, _, offset = value.partition(" + ")
                number = number + 1 if not value else self.numbers[base] + int(offset) if offset else int(base)
                self.numbers[name] = number
        self.words = {number: name for name, number in self.numbers.items()}

    def in_words(self, line):
        """An event of the gallery's as the scenarios write it."""
        words = iter(shlex.split(line))
        fields = dict(zip(words, words))
        event = [EVENTS.get(int(fields["event"]), fields["event"])]
        if event[0] == "gadget":
            event.append(self.words[int(fields["item"])])
            text = re.search(r' text (".*")', line)
            event.append(text[1] if text else fields.get("value", fields["state"]))
        else:
            key = int(fields.get("key", 0))
            event += [KEYS.get(key, chr(key))] if key else []
            event += [self.words[int(fields["palette"])]] if "palette" in fields else []
        modifiers = int(fields["modifiers"], 16)
        return " ".join(event + [word for bit, word in MODIFIERS.items() if modifiers & bit])


class NoServer(Exception):
    """The machine lets no X server start."""


class Desk:
    """An X server of its own with a window manager."""

    def __init__(self, home):
        self.home, self.programs = home, []
        read, write = os.pipe()
        self.start(["Xvfb", "-displayfd", str(write), "-screen", "0", "1280x1024x24", "-nolisten", "tcp", "-fbdir", home],
                   pass_fds=[write])
        os.close(write)
        with os.fdopen(read) as pipe:
            display = pipe.readline().strip()
        if not display:
            raise NoServer()
        self.environment = dict(os.environ, DISPLAY=":" + display, HOME=home, XDG_CONFIG_HOME=home, XDG_CACHE_HOME=home,
                                KL_APP_DATA_DIR=home, ZV_HOST="sdl", LC_ALL="C.UTF-8")
        self.environment.pop("WAYLAND_DISPLAY", None)
        self.desktops = itertools.cycle("23")

    def start(self, words, **options):
        self.programs.append(subprocess.Popen(words, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, **options))

    def start_manager(self):
        started = os.path.join(self.home, "started")
        self.start(["openbox", "--startup", "touch " + started], env=self.environment)
        wait_until(lambda: os.path.exists(started), "openbox does not start")

    def input(self, words):
        """Gives input in pieces: a press ends one, and a semicolon, which ends a text that is typed."""
        for command in re.split(r";|(?<=mousedown 1) |(?<=click \d) |(?<=0 1) ", words):
            self.tool(*command.split())
            repeated = re.search(r"(?:--repeat (\d) .*|click|mousedown) \d$", command)
            for _ in range(int(repeated[1] or 1) if repeated else 0):
                self.let_manager_see()

    def tool(self, *words):
        return subprocess.run(["xdotool", *words], env=self.environment, check=True, capture_output=True, text=True).stdout

    def let_manager_see(self):
        """The window manager gets a press first, and until it has let it through, keys overtake it and movements are
        left out. So it is given a message, which it sees behind the press."""
        count = next(self.desktops)
        self.tool("set_num_desktops", count)
        wait_until(lambda: self.tool("get_num_desktops").strip() == count, "openbox does not answer")

    def pixel(self, x, y):
        """What the server shows, out of the dump that it keeps: header, colours, rows."""
        with open(os.path.join(self.home, "Xvfb_screen0"), "rb") as file:
            header = struct.unpack(">25I", file.read(100))
            file.seek(header[0] + 12 * header[19] + y * header[12] + 4 * x)
            return int.from_bytes(file.read(3), "little")

    def close(self):
        for process in reversed(self.programs):
            process.terminate()
            process.wait()


class Gallery:
    """The program under test, and what it has told."""

    def __init__(self, desk, program, names):
        self.desk, self.names = desk, names
        self.complaints = tempfile.TemporaryFile("w+")
        self.process = subprocess.Popen([program, "--events"], env=desk.environment, stdout=subprocess.PIPE,
                                        stderr=self.complaints, text=True)
        self.lines = queue.Queue()
        self.places = {}
        self.unread = []
        self.marks = itertools.cycle(MARKS)
        threading.Thread(target=self.read, daemon=True).start()

    def read(self):
        for line in self.process.stdout:
            self.lines.put(line.rstrip("\n"))
        self.lines.put(None)

    def next_event(self, patience=PATIENCE):
        """The next event, "" for the place of an item, which is noted, and None when the program has ended."""
        try:
            line = self.lines.get(timeout=patience)
        except queue.Empty:
            raise TimeoutError("the gallery tells nothing more") from None
        if line is None or not line.startswith("place"):
            return line
        number, *place = map(int, line.split()[1:])
        self.places[number] = place
        return ""

    def place(self, name, old=None):
        """Where an item is, once it is somewhere or somewhere else than before. Events on the way are kept."""
        number = self.names.numbers[name]
        while self.places.get(number) in (None, old):
            event = self.next_event()
            if event is None:
                raise RuntimeError("the gallery has ended")
            self.unread += [self.names.in_words(event)] if event else []
        return self.places[number]

    def point(self, match):
        x, y, width, height = self.place(match[1])
        inside = map(int, match[2].split(",")) if match[2] else (width // 2, height // 2)
        return [base + offset for base, offset in zip((x, y), inside)]

    def give(self, words):
        self.desk.input(re.sub(r"\{(\w+):?([-\d,]*)\}", lambda match: "mousemove {} {}".format(*self.point(match)), words))

    def events_until_mark(self):
        """All events until a key that is pressed now. A key that comes while the focus is on its way is lost."""
        mark = next(self.marks)
        told, self.unread = self.unread, []
        end = time.monotonic() + PATIENCE
        self.desk.input("key " + mark)
        while time.monotonic() < end:
            try:
                event = self.next_event(patience=1)
            except TimeoutError:
                self.desk.input("key " + mark)
                continue
            if event is None:
                raise RuntimeError(f"the gallery has ended; events: {told}")
            key = re.search(r" key (\d+)", event)
            if key and int(key[1]) in MARKS.values():
                if int(key[1]) == MARKS[mark] and event.endswith("4000"):
                    return told
            elif event:
                told.append(self.names.in_words(event))
        raise RuntimeError(f"the key {mark} does not come; events: {told}")

    def end(self):
        """How the program has ended, and what it has complained of."""
        status = self.process.wait(PATIENCE)
        self.complaints.seek(0)
        return [f"exit status {status}", *self.complaints.read().split("\n")] if status else []

    def rest(self):
        """The events until the program has ended."""
        return [self.names.in_words(event) for event in iter(self.next_event, None) if event]


class Report:
    def __init__(self):
        self.failures, self.title = 0, "the start"

    def compare(self, title, got, expected):
        wanted = [line.removeprefix("? ") for line in lines_of(expected) if line[0] != "?" or line[2:] in got]
        if got != wanted:
            self.fail(title, *difflib.unified_diff(wanted, got, "expected", "told", lineterm="", n=99))

    def fail(self, title, *lines):
        self.failures += 1
        print(f"FAILED: {title}", *lines, sep="\n    ")


def try_theme(desk, gallery, report):
    """The pixels on the screen become dark, and light again."""
    ground = [base + offset for base, offset in zip(gallery.place("OpenDialog"), (-8, 10))]
    for theme, is_dark in (("DarkTheme", True), ("LightTheme", False)):
        gallery.give("{%s} click 1" % theme)
        report.compare(theme, gallery.events_until_mark(), f"""
            gadget {theme} 1 held press
            up MainPalette""")
        wait_until(lambda: (desk.pixel(*ground) & 0xFF < 0x60) == is_dark, f"{theme}: the ground keeps its colour")


def try_resizing(desk, gallery, report):
    """The list grows with its window, and what lies below moves and can be pressed there."""
    small, button = gallery.place("RowList"), gallery.place("MoreRows")
    desk.input("search --name ^Gallery$ windowsize %1 900 700")
    large = gallery.place("RowList", old=small)
    gallery.place("MoreRows", old=button)
    if large[3] < small[3] + 100:
        report.fail("a larger window", f"a list of {small} has become {large}")
    gallery.give("{MoreRows} click 1")
    report.compare("a button that has moved", gallery.events_until_mark(), """
        up MainPalette
        gadget MoreRows 0 release""")
    desk.input("search --name ^Gallery$ windowsize %1 10 10")
    smallest = gallery.place("RowList", old=large)
    if smallest != small:
        report.fail("the smallest window", f"a list of {small} has become {smallest}")


def drive(desk, gallery, report):
    gallery.place("ToolLast")
    report.compare("the palettes are shown", gallery.unread[:len(lines_of(STARTED))], STARTED)
    # Which of the two windows gets the focus first is the window manager's affair.
    gallery.give(OUTSIDE + " click 1")
    gallery.events_until_mark()
    for title, words, expected in SCENARIOS:
        report.title = title
        gallery.give(words)
        report.compare(title, gallery.events_until_mark(), expected)
    try_theme(desk, gallery, report)
    try_resizing(desk, gallery, report)
    desk.input("key alt+F4")
    report.compare("the window manager closes the document", gallery.rest(), CLOSED)
    complaints = gallery.end()
    if complaints:
        report.fail("the end", *complaints)


def try_pictures(program, home, report):
    """What the gallery draws without a display, on a monitor of the size that is told."""
    picture = os.path.join(home, "gallery.png")
    for size, status in (("1280x1024", 0), ("2560x1440", 0), ("99x1024", 1), ("1280x1024x24", 1), ("wide", 1)):
        environment = dict(os.environ, KL_APP_DATA_DIR=home, ZV_HEADLESS_SIZE=size)
        run = subprocess.run([program, "--screenshot", picture], env=environment, stderr=subprocess.DEVNULL)
        if run.returncode != status:
            report.fail(f"a picture of {size}", f"exit status {run.returncode}")
        elif status == 0:
            with open(picture, "rb") as file:
                report.compare("the size of a picture", ["{}x{}".format(*struct.unpack(">II", file.read(24)[16:]))], size)


def main():
    program, header = sys.argv[1:]
    missing = [tool for tool in ("Xvfb", "openbox", "xdotool") if not shutil.which(tool)]
    if missing:
        print("skipped: there is no", ", ".join(missing))
        return SKIPPED
    report = Report()
    with tempfile.TemporaryDirectory() as home:
        try_pictures(program, home, report)
        gallery = None
        try:
            desk = Desk(home)
        except NoServer:
            print("skipped: Xvfb does not start here")
            return 1 if report.failures else SKIPPED
        try:
            desk.start_manager()
            gallery = Gallery(desk, program, Names(header))
            drive(desk, gallery, report)
        except (RuntimeError, TimeoutError) as error:
            ended = gallery and gallery.process.poll() is not None
            report.fail(report.title, str(error), *(gallery.end() if ended else []))
        finally:
            if gallery:
                gallery.process.kill()
                gallery.process.wait()
            desk.close()
    print("all as expected" if not report.failures else f"{report.failures} failures")
    return 1 if report.failures else 0


if __name__ == "__main__":
    sys.exit(main())
