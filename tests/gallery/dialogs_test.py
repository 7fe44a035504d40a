#!/usr/bin/env python3
"""The gallery's menus, dialogs and tabs as their users meet them, by mouse and keyboard.

    dialogs_test.py GALLERY HEADER

Each part has a gallery of its own, which it ends by the key of its Quit entry. In a requester and in the library's own
dialogs no key of the scenarios' end counts, so what is in their way is waited for by its place.
"""
import os

from driver import run

MENUS = [
    ("a press that is dragged to an entry", "<File> mousedown 1 <File/New> mouseup 1", """
        menu-init held
        menu "New" 0"""),
    ("two clicks, in a set of entries", "<View> click 1 <View/Right> click 1", """
        menu-init held
        menu "Right" 1"""),
    ("the mark has moved to it", "<View> click 1 <View/Right> click 1", """
        menu-init held
        menu "Right" 1"""),
    ("a check mark goes", "<View> click 1 <View/Grid> click 1", """
        menu-init held
        menu "Grid" 0"""),
    ("and comes back", "<View> mousedown 1 <View/Grid> mouseup 1", """
        menu-init held
        menu "Grid" 1"""),
    ("a disabled entry keeps the menu open", "<View> click 1 <View/Rulers> click 1 <View/Grid> key Escape",
     "menu-init held"),
    ("keys go down and into a submenu", "<File> click 1 key Down key Down key Down key Right key Down key Return", """
        menu-init held
        menu "R&D.eidi" 0"""),
    ("Left and Escape leave it, and another title is next", "<File> click 1 key Up key Up key Up key Up key Right "
     "key Left key Right key Escape key Down key Down key Right key End key Return", """
        menu-init held
        menu "All of them" 0"""),
    ("F10 opens the first menu", "key F10 key Right key Down key Return", """
        key F10
        menu-init
        menu "Open" 0"""),
    ("F10 and Escape close it", "key F10 key Right key F10 key F10 key Escape key n", """
        key F10
        menu-init
        key F10
        menu-init
        key n
        key n key-up"""),
    ("keys of a section", "key ctrl+n key F1 key ctrl+shift+s", """
        key n control
        action ActionNew control
        key n key-up
        key F1
        action ActionHelp
        key F1 key-up
        key s control shift
        action ActionSave control shift
        key s key-up"""),
    ("one of them opens a modal palette", "key shift+F3 [DialogName]", """
        key F3 shift
        action ActionPreferences shift
        setup DialogPalette shift
        tab-activate DialogPalette shift
        ? key F3 shift key-up
        ? key F3 key-up
        ? key F3 DialogPalette shift key-up
        ? key F3 DialogPalette key-up"""),
    ("which they are out of reach from", "key ctrl+n key F1 key Escape", """
        key n DialogPalette control
        key n DialogPalette key-up
        key F1 DialogPalette
        key F1 DialogPalette key-up
        key Escape DialogPalette
        doc-deactivate DialogPalette
        cleanup DialogPalette
        ? key Escape key-up"""),
    ("a contextual menu given up", "{Swatch} click 3 <Swatch/Blue> key Escape", ""),
    ("an entry of it", "{Swatch:9,9} click 3 <Swatch/Green> click 1", 'menu "Green" 0'),
    ("the menu of a gadget", "{MenuButton} click 1 key Down key Down key Down key Return", "gadget MenuButton 16 release"),
]


def opened(name, palette):
    return f"""
        up MainPalette
        gadget {name} 0 release
        setup {palette}
        deactivate MainPalette
        activate {palette}
        tab-activate {palette}"""


def asked(palette, button, told=""):
    """The palette that a dialog has come from is active up to then, and the main one afterwards."""
    return f"""
        ? deactivate MainPalette
        ? activate {palette}
        up {palette}
        gadget {button} 0 release
        {told}
        deactivate {palette}
        activate MainPalette"""


def requested(button, answer=""):
    return asked("RequestersPalette", button, answer and f'result RequestAnswer "the {answer} button"')


def file_asked(button, answer):
    return asked("FilesPalette", button, f'result AskResult "{answer}"')


def media_asked(button, answer):
    return asked("MediaPalette", button, f'result MediaResult "{answer}"')


REQUESTERS = [
    ("the requesters' palette", "{OpenRequesters} click 1", opened("OpenRequesters", "RequestersPalette")),
    ("a question answered by its first button", "{RequestQuestion} click 1 {Yes} click 1",
     requested("RequestQuestion", "first")),
    ("by its second", "{RequestButtons} click 1 {No} click 1", requested("RequestButtons", "second")),
    ("by Return", "{RequestQuestion} click 1 [Yes] key Return", requested("RequestQuestion", "first")),
    ("by Escape", "{RequestButtons} click 1 [Yes] key Escape", requested("RequestButtons", "second")),
    ("by a letter", "{RequestQuestion} click 1 [Yes] key o", requested("RequestQuestion", "first")),
    ("a message", "{RequestMessage} click 1 {Yes} click 1", requested("RequestMessage")),
    ("a question after a question", "{RequestAgain} click 1 {Yes} click 1 {Yes!} click 1",
     requested("RequestAgain", "first")),
    ("a question in front of a question, by buttons", "{RequestNested} click 1 {InnerNo} click 1 [Yes] {Yes} click 1",
     requested("RequestNested", "second button inside, the first")),
    ("by keys", "{RequestNested} click 1 [InnerYes] key Return [Yes] key Escape",
     requested("RequestNested", "first button inside, the second")),
    ("a long text scrolled to its end and back", "{RequestLongText} click 1 {ScrollBar:8,9} mousedown 1 "
     "{ScrollBar:8,400} [ScrollBar=42/60] [ScrollBox=43] mouseup 1 {ScrollBox} click 4 [ScrollBar=39/60] key Escape",
     asked("RequestersPalette", "RequestLongText", "up dragged")),
]

# The entries that tell what files are shown, by number, and how many are; two of them look into the files. After the
# second one there is a line.
KINDS = [(1, 6), (2, 9), (4, 2), (5, 2), (6, 2), (7, 2), (8, 1), (9, 1), (10, 2)]
NAMES = ["a.txt", "b.png", "c.pict", "d.pics", "e.fs", "f.eidi", "g.vpb", "h.xyz", "folder/inner.txt"]


def through_kinds():
    """Goes from each entry to the next one by Down, which passes over the line between them."""
    words, last = "", 1
    for number, shown in KINDS[1:]:
        words += "{FileKinds} click 1 [List=%d] key Down [List=%d] " % (last - 1, number - 1)
        words += f"key Return [FileKinds={number}] [FileBar=0/{shown}] "
        last = number
    return words


REPLACING = "keydown ctrl key a keyup ctrl type "
FILES = [
    ("the file dialogs' palette", "{OpenFiles} click 1", opened("OpenFiles", "FilesPalette")),
    ("a file by a letter and Return", "{AskOpenTable} click 1 [FileRows] [FileBar=0/3] key b key Return",
     file_asked("AskOpenTable", r"b.png\nKind: none chosen")),
    ("a name that is taken: no, and then yes", "{AskSaveTable} click 1 [FileRows] {FileName} click 1 " + REPLACING
     + "a; key Return {InnerNo} click 1 [FileName] key Return {InnerYes} click 1",
     file_asked("AskSaveTable", r"a.txt\nKind: none chosen")),
    ("a new name", "{AskSave} click 1 [FileRows] {FileName} click 1 " + REPLACING + "new.doc; {FileAccept} click 1",
     file_asked("AskSave", r"new.doc\nKind: none chosen")),
    ("a directory", "{AskDirectory} click 1 [FileRows] [FileBar=0/1] key Down {FileAccept} click 1",
     file_asked("AskDirectory", r"folder\\nKind: none chosen")),
    ("no directory", "{AskDirectory} click 1 [FileRows] key Escape",
     file_asked("AskDirectory", r"cancelled\nKind: none chosen")),
    ("every kind of file", "{AskOpenBoth} click 1 [FileRows] [FileBar=0/6] " + through_kinds() + "key Escape",
     file_asked("AskOpenBoth", r"cancelled\nKind: VPB Picture")),
    ("a file in a directory by two clicks each", "{AskOpenTable} click 1 [FileRows] [FileBar=0/3] "
     "{FileRows:60,28} click --repeat 2 --delay 10 1 [FileBar=0/1] key Home {FileAccept} click 1",
     file_asked("AskOpenTable", r"folder\inner.txt\nKind: VPB Picture")),
]

# A tab comes off by the way of the mouse, or on a slow machine by the time that it is held.
TABS = [
    ("the choices' palettes", "{OpenChoices} click 1", """
        up MainPalette
        gadget OpenChoices 0 release
        setup TextPalette
        deactivate MainPalette
        activate TextPalette
        tab-activate TextPalette
        setup IconPalette
        tab-deactivate TextPalette
        deactivate TextPalette
        activate IconPalette
        tab-activate IconPalette
        setup LongPalette
        tab-deactivate IconPalette
        deactivate IconPalette
        activate LongPalette
        tab-activate LongPalette
        tab-deactivate LongPalette
        deactivate LongPalette
        activate TextPalette
        tab-activate TextPalette"""),
    ("a tab", "{IconPalette:8,10} click 1", """
        up TextPalette
        tab-deactivate TextPalette
        deactivate TextPalette
        activate IconPalette
        tab-activate IconPalette"""),
    ("a tab that is dragged off", "{LongPalette} {IconPalette} mousedown 1 mousemove 300 750 mouseup 1 "
     "{LongPalette!} {IconPalette!}", """
        ? up dragged
        ? up
        deactivate IconPalette
        activate TextPalette
        tab-activate TextPalette
        deactivate TextPalette
        activate IconPalette
        tab-activate IconPalette"""),
    ("the window that it has left", "{LongPalette:19,10} click 1", """
        ? deactivate IconPalette
        ? activate TextPalette
        ? deactivate IconPalette held
        ? activate TextPalette held
        up TextPalette
        tab-deactivate TextPalette
        deactivate TextPalette
        activate LongPalette
        tab-activate LongPalette"""),
    ("back to the other tabs", "{IconPalette:15,10} mousedown 1 {TextPalette:25,10} mouseup 1 "
     "{IconPalette!}", """
        deactivate LongPalette
        activate IconPalette
        ? up LongPalette dragged
        ? up LongPalette
        tab-deactivate LongPalette
        tab-activate IconPalette
        deactivate IconPalette
        activate MainPalette"""),
    ("where it gives way to another one", "{LongPalette!:19,10} click 1", """
        deactivate MainPalette
        activate IconPalette
        up IconPalette
        tab-deactivate IconPalette
        deactivate IconPalette
        activate LongPalette
        tab-activate LongPalette"""),
]

MEDIA = [
    ("the media palette", "{OpenMedia} click 1", opened("OpenMedia", "MediaPalette")),
    ("a series that is not opened", "{OpenSeries} click 1 {Cancel} click 1",
     media_asked("OpenSeries", "Nothing opened: error 21")),
    ("a last frame ahead of the first one, which gives way", "{OpenSeries} click 1 [Confirm] {FirstFrame} click 1 "
     + REPLACING + "8; {LastFrame} click 1 [FrameCount=4] " + REPLACING + "5; {FrameCount} click 1 [FirstFrame=5] "
     "[FrameCount=1] " + REPLACING + "3; key Tab [LastFrame=7] {Confirm} click 1",
     media_asked("OpenSeries", "3 frames of 720 x 576 at 25.00")),
    ("settings of a movie", "{VideoSettings} click 1 [Confirm] {Codec} click 1 [List=0] key m key p key Return "
     "{HasKeyFrames} click 1 [HasKeyFrames=1] {KeyFrames} click 1 " + REPLACING + "12; {Rate} click 1 "
     + REPLACING + "12.5; {Confirm} click 1", media_asked("VideoSettings", "Settings chosen: MPEG-4, quality 512, key frame 12, 0 bytes, 12.50 fps")),
    ("no settings", "{SoundSettings} click 1 [Confirm] key Escape", media_asked("SoundSettings", "Nothing chosen")),
]


def follow(gallery, report, scenarios):
    gallery.follow(scenarios, report)
    gallery.give("key ctrl+q")
    gallery.rest()
    complaints = gallery.end()
    if complaints:
        report.fail("the end", *complaints)


def menus(desk, gallery, report):
    gallery.learn_titles()
    report.title = "a submenu entered across another entry"
    gallery.give("<File> click 1 <File/Open recent>")
    target, (x, y) = gallery.entry("File/Open recent/R&D.eidi"), gallery.entry("File/Save as")
    desk.input(f"mousemove {x + 90} {y} mousemove {target[0]} {target[1]} click 1")
    report.compare(report.title, gallery.events_until_mark(), """
        menu-init held
        menu "R&D.eidi" 0""")
    follow(gallery, report, MENUS)


def requesters(desk, gallery, report):
    follow(gallery, report, REQUESTERS)


def files(desk, gallery, report):
    for name in NAMES:
        path = os.path.join(gallery.files, name)
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "w", encoding="utf-8") as file:
            file.write(name)
    follow(gallery, report, FILES)


def tabs(desk, gallery, report):
    follow(gallery, report, TABS)


def media(desk, gallery, report):
    follow(gallery, report, MEDIA)


if __name__ == "__main__":
    run(menus, requesters, files, tabs, media)
