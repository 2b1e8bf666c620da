#!/usr/bin/python3
"""Prints what a screen reader hears of the running Quillfeed window: the accessible tree as
AT-SPI shows it (role, name, description, value), the parts that are showing only, with long
lists cut after a few rows. Run inside the GUI's session bus, with the accessibility bus up."""
import sys

import pyatspi

MAX_ROWS = 6


def value_text(node):
    try:
        value = node.queryValue()
    except NotImplementedError:
        return ""
    return f" value={value.currentValue:g}"


def describe(node):
    role = node.getRoleName()
    parts = [role]
    if node.name:
        parts.append(f'"{node.name}"')
    if node.description:
        parts.append(f'({node.description})')
    states = node.getState()
    if states.contains(pyatspi.STATE_FOCUSED):
        parts.append("[focused]")
    if states.contains(pyatspi.STATE_SELECTED):
        parts.append("[selected]")
    return " ".join(parts) + value_text(node)


def walk(node, depth, out):
    states = node.getState()
    if depth > 0 and not states.contains(pyatspi.STATE_SHOWING):
        return
    out.append("  " * depth + describe(node))
    children = [node.getChildAtIndex(i) for i in range(node.childCount)]
    shown = 0
    for child in children:
        if child is None:
            continue
        if child.getRoleName() in ("list item", "table cell") and shown >= MAX_ROWS:
            out.append("  " * (depth + 1) + f"... {len(children) - shown} more")
            break
        walk(child, depth + 1, out)
        if child.getRoleName() in ("list item", "table cell"):
            shown += 1


def main():
    desktop = pyatspi.Registry.getDesktop(0)
    for app in desktop:
        if app is not None and app.name and "quillfeed" in app.name.lower():
            out = []
            walk(app, 0, out)
            print("\n".join(out))
            return 0
    print("no Quillfeed application on the accessibility bus", file=sys.stderr)
    return 1


if __name__ == "__main__":
    sys.exit(main())
