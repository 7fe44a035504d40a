"""Drives the gallery on an X server with a window manager, as its users do.

Input is what xdotool takes, with places among it:

    {Item}, {Item:x,y}     moves the mouse to the middle of an item, or to a place in it
    {Item!}                the same once the item is somewhere else than when it was last pointed at
    <Menu>, <Menu/Entry>   moves it to a title of the menu bar, or to an entry of the last one of the menus
    [Item], [Item=N/M]     waits until the item's window has the keyboard, or until its state is N, of at most M

Items of the library's own dialogs are in LIBRARY. A semicolon ends a text that is typed.
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
          11: "doc-activate", 12: "doc-deactivate", 15: "menu", 16: "menu-init", 22: "ask-close", 24: "action",
          26: "tab-activate", 27: "tab-deactivate"}
MODIFIERS = {0x1: "held", 0x8: "press", 0x10: "change", 0x20: "release", 0x40: "double", 0x80: "dragged",
             0x200: "control", 0x400: "shift", 0x4000: "key-up"}
KEYS = {288: "F1", 290: "F3", 297: "F10", 304: "Right", 305: "Up", 306: "Down", 313: "Tab", 316: "Escape", 317: "Return"}
MARKS = {f"F{number}": 287 + number for number in range(5, 13) if number != 10}  # F10 opens the menu bar

# Ids of palettes and items that the library makes. A requester inside another dialog has the next id.
LIBRARY = {"Yes": (32600, 1), "No": (32600, 2), "ScrollBox": (32600, 1000), "ScrollBar": (32600, 1001), "InnerYes": (32601, 1),
           "InnerNo": (32601, 2), "FileUp": (64999, 2), "FileRows": (64999, 5), "FileBar": (64999, 6),
           "FileName": (64999, 7), "FileKinds": (64999, 8), "FileCancel": (64999, 10), "FileAccept": (64999, 11),
           "Codec": (64999, 1), "Rate": (64999, 5), "HasKeyFrames": (64999, 6),
           "KeyFrames": (64999, 7), "FirstFrame": (64999, 5), "LastFrame": (64999, 6), "FrameCount": (64999, 8), "Confirm": (64999, 17),
           "Cancel": (64999, 18), "List": (9000, 1)}

# The entries of the gallery's menus, in the order of the bar; the last two are not in it.
MENUS = {
    "Gallery": ["About the gallery", "-", "Preferences", "-", "Quit"],
    "File": ["New", "Open", "Open recent", "Save as", "-", "Preferences", "Quit"],
    "View": ["Left", "Centre", "Right", "-", "Grid", "Rulers", "-", "Bold", "Italic", "Underlined", "All of them"],
    "Long": ["Entry 1"],
    "Help": ["Keys of the gallery"],
    "Open recent": ["harbour.mov", "R&D.eidi", "a long name", "More"],
    "Swatch": ["Red", "Green", "Blue"],
}
TITLES = list(MENUS)[:5]
FILES = "gallery-files"  # the user's own directory, which is left out of what is told
MENU_BORDER, MENU_LINE = 3, 7


def lines_of(text):
    return [line.strip() for line in text.strip("\n ").split("\n") if line.strip()]


def wait_until(condition, complaint):
    end = time.monotonic() + PATIENCE
    while not (result := condition()):
        if time.monotonic() > end:
            raise RuntimeError(complaint)
        time.sleep(0.005)
    return result


class Names:
    """The numbers of palettes and items, as the gallery's header has them."""

    def __init__(self, header):
        self.numbers, self.words = {}, {}
        with open(header, encoding="utf-8") as file:
            enumerations = re.findall(r"enum (\w+)Id : unsigned short \{(.*?)\}", file.read(), re.DOTALL)
        for kind, body in enumerations:
            number = -1
            for entry in body.split(","):
                name, _, value = (part.strip() for part in entry.partition("="))
                base, _, offset = value.partition(" + ")
                number = number + 1 if not value else self.numbers[base] + int(offset) if offset else int(base)
                self.numbers[name] = number
                self.words[kind, number] = name

    def in_words(self, line):
        """An event of the gallery's, or what came of a dialog, as the scenarios write it."""
        text = re.search(r' text (".*")', line)
        words = iter(line.replace(text[0], "").split() if text else line.split())
        fields = dict(zip(words, words))
        if "result" in fields:
            told = re.sub(r'^".*\\' + FILES + r"\\", '"', text[1])
            return " ".join(["result", self.words["Item", int(fields["result"])], told])
        event = [EVENTS.get(int(fields["event"]), fields["event"])]
        if event[0] == "gadget":
            event.append(self.words["Item", int(fields["item"])])
            event.append(text[1] if text else fields.get("value", fields["state"]))
        elif event[0] == "menu":
            event += [text[1], fields["state"]]
        else:
            key = int(fields.get("key", 0))
            event += [KEYS.get(key, chr(key))] if key else []
            event += [self.words["Action", int(fields["action"])]] if "action" in fields else []
            event += [self.words["Palette", int(fields["palette"])]] if "palette" in fields else []
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
        for command in re.split(r";|(?<=mousedown 1) |(?<=click \d) |(?<=0 1) ", words.strip()):
            if command:
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

    def windows(self, name):
        """Left, top, width and height of the visible windows of that name, the oldest one first."""
        try:
            told = self.tool("search", "--onlyvisible", "--name", f"^{name}$", "getwindowgeometry", "--shell", "%@")
        except subprocess.CalledProcessError:
            return []  # there is none, or one has just gone
        numbers = [int(number) for number in re.findall(r"=(\d+)$", told, re.MULTILINE)]
        return [place[1:5] for place in sorted(zip(*[iter(numbers)] * 6))]

    def has_keyboard(self, x, y):
        """Whether the window that gets the keys has that point."""
        told = self.tool("getwindowfocus", "getwindowgeometry", "--shell")
        left, top, width, height = (int(number) for number in re.findall(r"=(\d+)$", told, re.MULTILINE)[1:5])
        return left <= x < left + width and top <= y < top + height

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
        self.files = os.path.join(desk.home, FILES)
        os.makedirs(self.files, exist_ok=True)
        self.process = subprocess.Popen([program, "--events"], env=dict(desk.environment, HOME=self.files),
                                        stdout=subprocess.PIPE, stderr=self.complaints, text=True)
        self.lines = queue.Queue()
        self.places = {}
        self.pointed, self.titles = {}, {}
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
        if line is None or not line.startswith(("place", "gone")):
            return line
        palette, item, *place = map(int, line.split()[1:])
        if place:
            self.places[palette, item] = place
        else:
            del self.places[palette, item]
        return ""

    def ids(self, name):
        """A palette and an item in it; the tab of a palette counts as one."""
        if name in LIBRARY:
            return LIBRARY[name]
        number = self.names.numbers[name]
        if name.endswith("Palette"):
            return number, 0
        return next((ids for ids in self.places if ids[1] == number and ("Palette", ids[0]) in self.names.words), None)

    def wait_for_place(self, name, is_right):
        """Left, top, width, height, state and largest one of an item, once they are right. Events are kept."""
        while not is_right(place := self.places.get(self.ids(name))):
            try:
                event = self.next_event()
            except TimeoutError:
                raise TimeoutError(f"{name} stays {place}") from None
            if event is None:
                raise RuntimeError("the gallery has ended")
            self.unread += [self.names.in_words(event)] if event else []
        return place

    def place(self, name, old=None):
        """Where an item is, once it is somewhere or somewhere else than before."""
        return self.wait_for_place(name, lambda place: place and place[:4] != old)[:4]

    def point(self, place):
        """A place of the input on the screen."""
        name, _, inside = place.partition(":")
        last = self.pointed.get(name[:-1]) if name.endswith("!") else None
        name = name.rstrip("!")
        x, y, width, height = self.pointed[name] = self.place(name, old=last)
        inside = map(int, inside.split(",")) if inside else (width // 2, height // 2)
        return [base + offset for base, offset in zip((x, y), inside)]

    def entry(self, path):
        """The middle of a title of the menu bar, or of an entry in a menu that is open or about to be."""
        *menus, name = path.split("/")
        if not menus:
            return self.titles[name]
        entries = MENUS[menus[-1]]
        heights = [MENU_LINE if entry == "-" else self.row_height for entry in entries]
        is_it = lambda shown: shown[3] == sum(heights) + 2 * MENU_BORDER
        opened = wait_until(lambda: list(filter(is_it, self.desk.windows("Menu")[len(menus) - 1:])),
                            f"the menu of {path} does not open")
        left, top, width, _ = opened[0]
        row = entries.index(name)
        return [left + width // 2, top + MENU_BORDER + sum(heights[:row]) + heights[row] // 2]

    def give(self, words):
        for piece in re.split(r"(\{.*?\}|<.*?>|\[.*?\])", words):
            place = piece[1:-1]
            if piece.startswith("["):
                name, _, state = place.partition("=")
                wanted = [int(number) for number in state.split("/") if number]
                x, y, *_ = self.wait_for_place(name, lambda shown: shown and shown[4:][:len(wanted)] == wanted)
                if not wanted:
                    wait_until(lambda: self.desk.has_keyboard(x, y), f"{name} does not get the keyboard")
            elif piece.startswith(("{", "<")):
                at = self.point(place) if piece[0] == "{" else self.entry(place)
                self.desk.input("mousemove {} {}".format(*at))
            elif piece.strip():
                self.desk.input(piece)

    def learn_titles(self):
        """The places of the menu bar's titles: each menu opens below its own, and Right goes from one to the next."""
        left, top, _, height = wait_until(lambda: self.desk.windows("Menu bar"), "there is no menu bar")[0]
        self.row_height = height - 2
        self.desk.input(f"mousemove {left + 4} {top + height // 2} click 1")
        for title in TITLES:
            is_new = lambda menu: [menu[0] + 4, top + height // 2] not in self.titles.values()
            opened = wait_until(lambda: list(filter(is_new, self.desk.windows("Menu"))), f"{title} does not open")
            self.titles[title] = [opened[0][0] + 4, top + height // 2]
            self.desk.input("key Right")
        self.desk.input("key Escape")
        self.events_until_mark()

    def follow(self, scenarios, report):
        for title, words, expected in scenarios:
            report.title = title
            self.give(words)
            report.compare(title, self.events_until_mark(), expected)

    def settle(self):
        """Which of the two windows gets the focus first is the window manager's affair. Afterwards it is the main one."""
        self.place("ToolLast")
        self.start = self.unread
        self.unread = []
        self.give("{OpenDialog:-8,10} click 1")
        self.events_until_mark()

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


def run(*parts, first=None):
    """Runs each part with a gallery of its own. `first` needs no desk."""
    program, header = sys.argv[1:]
    missing = [tool for tool in ("Xvfb", "openbox", "xdotool") if not shutil.which(tool)]
    if missing:
        print("skipped: there is no", ", ".join(missing))
        sys.exit(SKIPPED)
    report = Report()
    with tempfile.TemporaryDirectory() as home:
        if first:
            first(program, home, report)
        try:
            desk = Desk(home)
        except NoServer:
            print("skipped: Xvfb does not start here")
            sys.exit(1 if report.failures else SKIPPED)
        try:
            desk.start_manager()
            for part in parts:
                run_part(part, desk, Gallery(desk, program, Names(header)), report)
        finally:
            desk.close()
    print("all as expected" if not report.failures else f"{report.failures} failures")
    sys.exit(1 if report.failures else 0)


def run_part(part, desk, gallery, report):
    report.title = f"the start of {part.__name__}"
    try:
        gallery.settle()
        part(desk, gallery, report)
    except (RuntimeError, TimeoutError, subprocess.CalledProcessError) as error:
        ended = gallery.process.poll() is not None
        report.fail(report.title, str(error), *(gallery.end() if ended else []))
    finally:
        gallery.process.kill()
        gallery.process.wait()
