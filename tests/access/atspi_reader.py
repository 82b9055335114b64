#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
# A screen reader's view of the viewer, through AT-SPI: the sheet is a table
# whose focused cell follows the keyboard cursor and names the answer shown
# there; a graph window describes the values it draws. Expected texts come
# from `kel`, which reads the document on its own.
# Usage: atspi_reader.py KELVIEWER KEL DOCUMENT   (inside a session bus, on X)
import json
import os
import subprocess
import sys
import tempfile
import time

SKIP = 77

try:
    import pyatspi
except ImportError:
    print("SKIP: python3-pyatspi is not installed")
    sys.exit(SKIP)

viewer, kel, document = sys.argv[1:4]


def wait_for(what, probe, seconds=20.0):
    deadline = time.time() + seconds
    while time.time() < deadline:
        try:
            value = probe()
        except Exception:  # objects come and go while windows open
            value = None
        if value:
            return value
        time.sleep(0.2)
    print("FAIL: " + what)
    sys.exit(1)


def find(node, predicate, depth=0):
    if node is None or depth > 14:
        return None
    try:
        if predicate(node):
            return node
        for i in range(node.childCount):
            if node.getRoleName() == "table":
                break  # its children are cells, thousands of them
            found = find(node.getChildAtIndex(i), predicate, depth + 1)
            if found is not None:
                return found
    except Exception:
        return None
    return None


def key(*names):
    subprocess.run(["xdotool", "key", "--delay", "80"] + list(names), check=True)
    time.sleep(0.4)


# What the document holds, read by the command-line tool.
dump = json.loads(subprocess.run([kel, "dump", document], capture_output=True, check=True).stdout)
shown = json.loads(subprocess.run([kel, "select", document], capture_output=True, check=True).stdout)
question = dump["overviewColumns"][1]
q = dump["questions"][question]
row = shown["rows"][1]
# The dump's answers hold the overview's questions only, in answerColumns'
# order, one list per row of everyone in document order.
column = dump["answerColumns"].index(question)
answer = dump["answers"][row][column]
expected_answer = dump["alternatives"][q["firstAlternative"] + answer]["text"]
expected_column = (q["code"] + " " + q["heading"]).strip()

home = tempfile.mkdtemp()
env = dict(os.environ, HOME=home, TMPDIR=home, XDG_CONFIG_HOME=os.path.join(home, ".config"), QT_QPA_PLATFORM="xcb",
           QT_LINUX_ACCESSIBILITY_ALWAYS_ON="1", KELVIEWER_LANG="en")
# The registry answers before the viewer starts, so the viewer's greeting
# on the bus is not lost while the registry is still on its way up.
desktop = pyatspi.Registry.getDesktop(0)
wait_for("the accessibility registry", lambda: desktop.childCount >= 0 and desktop.name is not None)
process = subprocess.Popen([viewer, document, "/AutoStart"], env=env)
try:
    app = wait_for("the viewer on the accessibility bus",
                   lambda: next((desktop.getChildAtIndex(i) for i in range(desktop.childCount)
                                 if desktop.getChildAtIndex(i).name == "KEL Viewer"), None))
    sheet = wait_for("the sheet as a table with rows",
                     lambda: find(app, lambda n: n.getRoleName() == "table" and n.queryTable().nRows > 0))
    table = sheet.queryTable()
    print("sheet:", sheet.name, table.nRows, "rows x", table.nColumns, "columns")
    if table.getColumnDescription(1) != expected_column:
        print("FAIL: column 1 is described as %r, not %r" % (table.getColumnDescription(1), expected_column))
        sys.exit(1)

    # The cursor to the second row of the second column, by keys: the
    # window takes the keyboard (there is no window manager to give it),
    # the sheet the focus.
    subprocess.run(["xdotool", "search", "--sync", "--name", "^KEL Viewer - ", "windowfocus", "--sync"], check=True)
    sheet.queryComponent().grabFocus()
    wait_for("the sheet to take the focus", lambda: sheet.getState().contains(pyatspi.STATE_FOCUSED), 5)
    key("ctrl+Home", "Right", "Down")
    cell = table.getAccessibleAt(1, 1)
    wait_for("the cursor's cell to be the focused one",
             lambda: table.getAccessibleAt(1, 1).getState().contains(pyatspi.STATE_FOCUSED), 5)
    print("current cell:", repr(cell.name), "-", cell.description)
    if cell.name != expected_answer:
        print("FAIL: the current cell reads %r, the document has %r" % (cell.name, expected_answer))
        sys.exit(1)
    if table.getAccessibleAt(0, 1).getState().contains(pyatspi.STATE_FOCUSED):
        print("FAIL: the cell the cursor left still says it is focused")
        sys.exit(1)

    # The question's histogram from the popup, by keys; its values are read.
    key("Menu", "h", "t")
    graph = wait_for("a histogram window",
                     lambda: find(desktop, lambda n: n.name.startswith("Question Histogram")))
    values = graph.description
    print("graph:", graph.name)
    print(values)
    # Under its heading line, one count per answer alternative ("No answer"
    # aside) over everyone shown, highest alternative first (the order
    # unless the options reverse it).
    counts = [str(sum(1 for r in shown["rows"] if dump["answers"][r][column] == i))
              for i in range(1, q["alternativeCount"])]
    lines = values.splitlines()
    counts.reverse()
    if not lines or q["text"] not in lines[0] or lines[1:] != counts:
        print("FAIL: the graph's values are not the counts %r" % counts)
        sys.exit(1)
    print("PASS")
finally:
    process.terminate()
    process.wait(10)
