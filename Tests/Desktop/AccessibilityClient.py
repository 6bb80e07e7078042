#!/usr/bin/python3
"""What a user of a screen reader does with Vistrel, through the desktop's accessibility bus.

Each argument is one step, carried out in order; the first that fails ends the run with status 1.
  expect ROLE NAME [STATE | !STATE]...   a control in sight has this role and name, and these states
  press ROLE NAME [ACTION]               does its action, the first one unless named
  write ROLE NAME TEXT                   puts the text into it
  page NAME                              opens the page, where whatever takes the keyboard has a name
                                         and no two things answer to the same key
Parts of a step are separated by "/".
"""
import sys
import time

import pyatspi

PATIENCE = 30


def controls():
    desktop = pyatspi.Registry.getDesktop(0)
    for application in desktop:
        if application is not None and application.name.lower() == "vistrel":
            yield from descendants(application)


def descendants(parent):
    for child in parent:
        if child is None:
            continue
        yield child
        yield from descendants(child)


def find(role, name):
    for control in controls():
        # A control may go away while it is asked.
        try:
            if control.name == name and control.getRoleName() == role \
                    and control.getState().contains(pyatspi.STATE_SHOWING):
                return control
        except Exception:
            continue
    return None


def until(what, condition):
    end = time.monotonic() + PATIENCE
    while time.monotonic() < end:
        pyatspi.clearCache()
        found = condition()
        if found:
            return found
        time.sleep(0.05)
    sys.exit(f"waited in vain: {what}\n" + "\n".join(
        f"  {c.getRoleName()} / {c.name}" for c in controls() if c.name))


def has_states(control, wanted):
    states = {pyatspi.stateToString(s) for s in control.getState().getStates()}
    return all((w[1:] not in states) if w.startswith("!") else (w in states) for w in wanted)


def check_page(name):
    until(name, lambda: find("page tab", name)).queryAction().doAction(0)
    # The list is called like the page that it shows.
    until(name, lambda: find("page tab list", name))
    keys = []
    for control in controls():
        if not has_states(control, ["showing"]) or control.getRoleName() == "page tab list":
            continue
        if has_states(control, ["focusable"]) and not control.name:
            sys.exit(f"{name} has a {control.getRoleName()} without a name")
        actions = control.get_action_iface()
        count = actions.get_n_actions() if actions else 0
        keys += {actions.get_key_binding(i) for i in range(count)} - {""}
    if len(keys) != len(set(keys)) or not keys:
        sys.exit(f"{name} has these keys: {keys}")


def perform(step):
    if step.startswith("page/"):
        return check_page(step.removeprefix("page/"))
    verb, role, name, *rest = step.split("/")
    if verb == "expect":
        until(step, lambda: (c := find(role, name)) and has_states(c, rest))
        return
    control = until(step, lambda: find(role, name))
    if verb == "press":
        action = control.queryAction()
        names = [action.getName(i) for i in range(action.nActions)]
        action.doAction(names.index(rest[0]) if rest else 0)
    elif verb == "write":
        control.queryEditableText().setTextContents(rest[0])
    else:
        sys.exit(f"unknown step: {step}")


for argument in sys.argv[1:]:
    perform(argument)
