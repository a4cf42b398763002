#!/usr/bin/python3
"""Looks at the running program as a screen reader does, over AT-SPI, and works it by keys alone.

access_test.py PROGRAM FOLDER, inside a display and a session bus of its own; FOLDER holds
demo-dual.dsd. Says what is wrong and ends with 1, or ends with 0.
"""

import os
import subprocess
import sys
import time

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # noqa: E402

PATIENCE = 30  # seconds, of which a quiet machine needs one
IMAGES = 12000  # enough that their listing can be looked at
KEYS = {"Down": 0xFF54, "Up": 0xFF52, "Right": 0xFF53, "Home": 0xFF50, "Tab": 0xFF09,
        "Return": 0xFF0D, "Escape": 0xFF1B, "F10": 0xFFC7, "Menu": 0xFF67}
HELD = {"Alt": 64, "Ctrl": 37}  # the codes of these on every X keyboard
# What a person can be told of only if it has a name.
NAMED = {"tree", "text", "combo box", "progress bar", "button", "push button", "radio button",
         "status bar", "label", "menu item", "frame", "dialog"}


def children(node):
    return [child for child in (node.get_child_at_index(i) for i in range(node.get_child_count()))
            if child is not None]


def everything(node):
    yield node
    for child in children(node):
        yield from everything(child)


def has(node, *states):
    node.clear_cache()
    held = node.get_state_set()
    return all(held.contains(getattr(Atspi.StateType, state)) for state in states)


def find(node, role, name=None, *states):
    for item in everything(node):
        if (item.get_role_name() == role and (name is None or item.get_name().startswith(name))
                and has(item, "SHOWING", *states)):
            return item
    return None


def wait(what, look):
    """What `look` gives, as soon as it gives something; a node that goes meanwhile is no answer."""
    until = time.monotonic() + PATIENCE
    while time.monotonic() < until:
        try:
            if result := look():
                return result
        except GLib.Error:
            pass
        time.sleep(0.05)
    raise AssertionError(what)


def press(*keys):
    """Presses the last key while the others are held."""
    *held, last = keys
    for key in held:
        Atspi.generate_keyboard_event(HELD[key], None, Atspi.KeySynthType.PRESS)
    Atspi.generate_keyboard_event(KEYS.get(last) or ord(last), None, Atspi.KeySynthType.SYM)
    for key in held:
        Atspi.generate_keyboard_event(HELD[key], None, Atspi.KeySynthType.RELEASE)


def write(text):
    Atspi.generate_keyboard_event(0, text, Atspi.KeySynthType.STRING)


class Program:
    def __init__(self, path, image):
        self.process = subprocess.Popen([path, image])
        self.node = wait("the program is to be seen", self.application)

    def application(self):
        return next((app for app in children(Atspi.get_desktop(0))
                     if app.get_process_id() == self.process.pid and app.get_child_count()), None)

    def find(self, role, name=None, *states):
        return wait(f"{role} {name or ''} {' '.join(states)}",
                    lambda: find(self.node, role, name, *states))

    def window(self, role, title):
        """The window in use, once it is that one."""
        return wait(f"{role} {title} in front", lambda: self.open_window(role, title, "ACTIVE"))

    def open_window(self, role, title, state):
        return next((window for window in children(self.node) if window.get_role_name() == role
                     and window.get_name().startswith(title) and has(window, state)), None)

    def leave(self, role, title, *keys):
        press(*keys)
        wait(f"{title} closed", lambda: self.open_window(role, title, "SHOWING") is None)

    def check_names(self, window):
        for item in everything(window):
            nameless = item.get_role_name() in NAMED and has(item, "SHOWING") and not item.get_name()
            assert not nameless, f"in {window.get_name()}: {item.get_role_name()} without a name"


def rows(table):
    """The texts of each row, and whether it is selected."""
    cells = [child for child in children(table) if child.get_role_name() == "table cell"]
    columns = table.get_n_columns()
    return [([cell.get_name().strip() for cell in cells[i:i + columns]], has(cells[i], "SELECTED"))
            for i in range(0, len(cells), columns)]


def lists(program):
    main = program.window("frame", "Quoravel - demo-dual.dsd")
    first, second = (program.find("tree", f"Files of drive {drive}") for drive in (0, 1))
    headings = [c.get_name() for c in children(first) if c.get_role_name() == "table column header"]
    assert headings == ["FileName", "Attr", "Load", "Exec", "Size", "Sector"], headings
    assert rows(second)[0][0] == ["$.SIEVE", "L", "FF1900", "FF8023", "000188", "006"], rows(second)
    status = program.find("status bar", "Status of drive 1")
    texts = [label.get_name() for label in children(status)]
    assert texts == ["Drive 1 : 3 files(s), 202752 Bytes Free, 2048 Bytes Used"], texts

    wait("the first list has the keyboard", lambda: has(first, "FOCUSED"))
    press("Down")
    wait("Down chooses the next row", 
         lambda: [texts[0] for texts, selected in rows(first) if selected] == ["$.TEXT"])
    press("Tab")
    wait("Tab goes to the other list", lambda: has(second, "FOCUSED"))
    program.check_names(main)


def dialogs(program):
    for keys, title, role, name in (
            (("Ctrl", "t"), "Set Disc Title", "text", "Title"),
            (("Ctrl", "b"), "Set Boot Attributes", "radio button", "Exec"),
    ):
        press(*keys)
        dialog = program.window("dialog", title)
        program.find(role, name, "FOCUSED")
        program.find("push button", "OK")
        program.check_names(dialog)
        program.leave("dialog", title, "Escape")


def menus(program):
    press("F10")
    program.find("menu item", "Open Disc Image...", "FOCUSED")
    press("Escape")
    press("Escape")
    press("Alt", "h")
    program.find("menu item", "About Quoravel...", "FOCUSED")
    press("Return")
    about = program.window("dialog", "About Quoravel")
    program.find("push button", "OK", "FOCUSED")
    program.check_names(about)
    program.leave("dialog", "About Quoravel", "Return")


def trace(program):
    program.window("frame", "Quoravel - demo-dual.dsd")
    press("Alt", "t")
    press("Up")
    press("Right")
    program.find("menu item", "Window", "FOCUSED")
    press("Return")
    window = program.window("frame", "Trace")
    program.check_names(window)
    program.leave("frame", "Trace", "Ctrl", "w")


def views(program):
    program.window("frame", "Quoravel - demo-dual.dsd")
    press("Home")
    press("Menu")
    program.find("menu item", "View As Text")
    press("Down")
    press("Return")
    view = program.window("frame", "View File - $.SIEVE")
    text = wait("the view has its text", lambda: find(view, "text", "Text", "FOCUSED"))
    assert text.get_character_count() == 0x188 - 1, "a line end is one character"
    program.check_names(view)
    press("Ctrl", "f")
    find_dialog = program.window("dialog", "Find")
    program.find("text", "Find", "FOCUSED")
    program.check_names(find_dialog)
    write("P.")
    program.leave("dialog", "Find", "Return")
    wait("what was found is selected", lambda: text.get_n_selections() == 1)
    program.window("frame", "View File - $.SIEVE")
    program.leave("frame", "View File", "Ctrl", "w")


def progress(program, folder):
    collection = os.path.join(folder, "collection")
    os.mkdir(collection)
    for i in range(IMAGES):
        os.link(os.path.join(folder, "demo-dual.dsd"), os.path.join(collection, f"{i}.dsd"))
    program.window("frame", "Quoravel - demo-dual.dsd")
    press("F10")
    press("Up")
    program.find("menu item", "*EX Drive", "FOCUSED")
    press("Return")
    for title, answer in (("Find Directory", collection),
                          ("Save As", os.path.join(folder, "exall.txt"))):
        program.window("dialog", title)
        program.find("text", None, "FOCUSED")
        press("Ctrl", "a")
        write(answer)
        program.leave("dialog", title, "Return")
    window = program.window("dialog", "*EX Progress")
    bar = find(window, "progress bar", "Images listed")
    assert bar is not None, "a progress bar with a name"
    wait("the progress bar has a value", lambda: 0 < bar.get_current_value() < 100)
    program.check_names(window)
    program.leave("dialog", "*EX Progress", "Escape")


def main():
    path, folder = sys.argv[1:]
    program = Program(path, os.path.join(folder, "demo-dual.dsd"))
    try:
        for part in (lists, dialogs, menus, trace, views):
            part(program)
        progress(program, folder)
    except AssertionError as wrong:
        sys.exit(f"Not so: {wrong}")
    finally:
        program.process.kill()


main()
