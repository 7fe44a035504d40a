#!/usr/bin/env python3
"""The gallery's palettes and gadgets as their users meet them, by mouse and keyboard.

    gallery_test.py GALLERY HEADER

A scenario gives input and then one of the keys F5 to F12 other than F10, and compares the events that the gallery tells until it has
told of that key with the expected ones. So nothing waits longer than the machine takes.
"""
import os
import struct
import subprocess

from driver import lines_of, run, wait_until

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
    report.compare("the palettes are shown", gallery.start[:len(lines_of(STARTED))], STARTED)
    gallery.follow(SCENARIOS, report)
    try_theme(desk, gallery, report)
    try_resizing(desk, gallery, report)
    desk.input("key alt+F4")
    report.compare("the window manager closes the document", gallery.rest(), CLOSED)
    complaints = gallery.end()
    if complaints:
        report.fail("the end", *complaints)


def lose_server(desk, gallery, report):
    desk.programs[0].kill()
    told = gallery.end()
    if told[:1] != ["exit status 1"] or "is broken" not in told[1]:
        report.fail("the X server goes", *told)


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


if __name__ == "__main__":
    run(drive, lose_server, first=try_pictures)
