#!/usr/bin/python3
"""usage: screen-reader.py PROGRAM [ARGUMENT...]
Starts a program on the session bus and walks through the inspector's screens as a screen reader does: from outside,
by what the program tells through AT-SPI, and by nothing else. Ends with the first screen that tells something wrong.
"""
import os
import subprocess
import sys
import time
import warnings

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi  # noqa: E402

LONGEST_WAIT = 20  # seconds
warnings.simplefilter("ignore", DeprecationWarning)  # the new names are not in Debian 12


class Wrong(Exception):
    pass


def children(element):
    try:
        found = [element.get_child_at_index(i) for i in range(element.get_child_count())]
        return [child for child in found if child]
    except gi.repository.GLib.Error:
        return []  # it has gone meanwhile


def is_shown(element):
    states = element.get_state_set()
    return states.contains(Atspi.StateType.SHOWING) and states.contains(Atspi.StateType.VISIBLE)


def shown(element):
    """All elements that a person could come to, in reading order."""
    for child in children(element):
        try:
            if is_shown(child):
                yield child
        except gi.repository.GLib.Error:
            continue
        yield from shown(child)


# Qt has no role of AT-SPI for the node of a tree. Debian 13 tells another name of a button.
ROLES = {"table cell": "tree item", "button": "push button"}


def line(element):
    name = (element.get_name() or "").split("\n")[0]
    role = ROLES.get(element.get_role_name(), element.get_role_name())
    return f"{role}: {name}"


def wait_for(what, find):
    end = time.monotonic() + LONGEST_WAIT
    while time.monotonic() < end:
        try:
            found = find()
            if found:
                return found
        except gi.repository.GLib.Error:
            pass
        time.sleep(0.05)
    raise Wrong(f"not there: {what}")


class Walk:
    def __init__(self, program):
        self.process = program
        self.application = wait_for("the program", self.find_application)

    def find_application(self):
        desktop = Atspi.get_desktop(0)
        for application in children(desktop):
            # A role that changes is not announced.
            application.set_cache_mask(Atspi.Cache.NONE)
            if application.get_process_id() == self.process.pid:
                return application
        return None

    def lines(self):
        return [line(element) for element in shown(self.application)]

    def find(self, wanted):
        """The last element that is told so: what comes last is in front."""
        found = [e for e in shown(self.application) if line(e).startswith(wanted)]
        return found[-1] if found else None

    def hears(self, screen, *wanted):
        """The lines are told in this order; others may be between them."""

        def told():
            rest = iter(self.lines())
            return all(any(told.startswith(part) for told in rest) for part in wanted)

        try:
            wait_for(screen, told)
        except Wrong:
            raise Wrong(f"{screen}: expected\n  " + "\n  ".join(wanted) + "\nheard\n  " + "\n  ".join(self.lines()))
        print(f"{screen}: {len(wanted)} elements in order")

    def does_not_hear(self, wanted):
        """What a sheet or a dialog covers is not told."""
        if told := [line for line in self.lines() if line.startswith(wanted)]:
            raise Wrong(f"told although it is covered: {told}")

    def presses(self, wanted):
        try:
            element = wait_for(wanted, lambda: self.find(wanted))
        except Wrong as wrong:
            raise Wrong(f"{wrong}, only\n  " + "\n  ".join(self.lines())) from None
        names = [Atspi.Action.get_action_name(element, i).lower() for i in range(element.get_n_actions())]
        chosen = next((i for i, name in enumerate(names) if name in ("press", "toggle")), None)
        if chosen is None:
            raise Wrong(f"cannot be pressed: {wanted}, only {names}")
        element.do_action(chosen)

    def has_state(self, wanted, state):
        wait_for(f"{wanted} with {state.value_nick}",
                 lambda: (e := self.find(wanted)) and e.get_state_set().contains(state))


def walk(reader):
    reader.presses("push button: Network Trace")
    reader.hears("list", "heading: Network Requests", "push button: Close", "push button: Breakpoints",
                 "push button: Clear requests", "push button: Export requests", "text: Search requests...",
                 "list: Network Requests", "list item: GET /v1/users/42, 200")
    reader.presses("list item: GET /v1/users/42")
    reader.hears("details", "heading: Request Details", "push button: Back", "push button: Share Request",
                 "heading: REQUEST", "label: URL, https://shop.test", "label: Method, GET",
                 "check box: Enable response breakpoint", "heading: RESPONSE", "label: Status Code, 200",
                 "heading: RESPONSE BODY", "push button: Show as tree", "label: {")
    reader.presses("push button: Show as tree")
    reader.hears("tree", "push button: Back", "heading: /v1/users/42", "push button: Share Swift Model",
                 "tree: /v1/users/42", "tree item: {2 keys}, Object")
    reader.presses("tree item: {2 keys}")
    reader.hears("expanded tree", "tree item: {2 keys}, Object", 'tree item: name, "Ada", String',
                 "tree item: tags, [2 items], Array")
    reader.presses("push button: Share Swift Model")
    reader.hears("share sheet", "dialog: ", "push button: Done", "heading: ", "push button: Copy",
                 "push button: Save As")
    reader.presses("push button: Done")
    reader.presses("push button: Back")
    reader.presses("push button: Share Request")
    reader.hears("share menu", "dialog: Share Request", "push button: Share cURL", "push button: Share HAR File",
                 "push button: Share Raw Details", "push button: Cancel")
    reader.does_not_hear("heading: Request Details")
    reader.presses("push button: Cancel")
    reader.presses("check box: Enable response breakpoint")
    reader.hears("editor", "push button: Continue", "heading: Breakpoint", "push button: Apply Changes",
                 "label: GET shop.test/v1/users/42", "text: Status Code", "push button: Copy", "push button: Delete",
                 "text: RESPONSE BODY")
    reader.has_state("text: Status Code", Atspi.StateType.EDITABLE)
    reader.has_state("text: RESPONSE BODY", Atspi.StateType.MULTI_LINE)
    reader.presses("push button: Continue")
    reader.has_state("check box: Enable response breakpoint", Atspi.StateType.CHECKED)


def main():
    environment = dict(os.environ, QT_LINUX_ACCESSIBILITY_ALWAYS_ON="1")
    program = subprocess.Popen(sys.argv[1:], env=environment)
    try:
        walk(Walk(program))
    except Wrong as wrong:
        print(wrong, file=sys.stderr)
        return 1
    finally:
        program.terminate()
        program.wait()
    return 0


if __name__ == "__main__":
    sys.exit(main())
