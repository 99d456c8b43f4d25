"""Whether everything in the main window has its place: nothing over something else, nothing cut."""

# Every length and rest, a separator, sharps, and pitches over the whole keyboard.
SHOWCASE = ("tempo 120\nc4 1/4\nd4# 1/8\ne4 1/8.\nf4# 1/16\ng4 1/16..\na4# 1/32\nb4 1/8t\nc5 1/8t\nd5 1/8t\n|\n"
            "e5 1/2\nf5# 1/2.\ng5 1/1\na5 1/4t\nb5 1/4.\nc6# 1/4..\nr 1/4\nr 1/8\nr 1/16.\nr 1/32\nr 1/2\nr 1/1\n|\n"
            "d6 1/8\ne6 1/16\nf6 1/32\ng7# 1/4\nb7 1/2..\nc8 1/4\n")
PANELS = ["TonexStaff", "TonexGrid", "TonexLengths", "TonexPiano"]


def overlap(a, b):
    return a[0] < b[2] and b[0] < a[2] and a[1] < b[3] and b[1] < a[3]


def inside(a, b):
    return b[0] <= a[0] and b[1] <= a[1] and a[2] <= b[2] and a[3] <= b[3]


def controls(editor):
    return [child for child in editor.children() if child["visible"] and child["parent"] == editor.hwnd]


def place_of(editor, control):
    """Where a control shows something: the lengths' panel reaches round the tempo box to the current length."""
    if control["class"] != "TonexLengths":
        return control["rect"]
    rects = [item["rect"] for item in editor.items("TonexLengths")]
    return [min(r[0] for r in rects), min(r[1] for r in rects), max(r[2] for r in rects), max(r[3] for r in rects)]


def expect_tidy_controls(editor):
    """No controls overlap, and all lie inside the window."""
    client = editor.main()["client"]
    found = [(control["class"], place_of(editor, control)) for control in controls(editor)]
    assert len(found) >= 8
    for i, (name, rect) in enumerate(found):
        assert inside(rect, client), f"{name} {rect} leaves the window {client}"
        for other_name, other in found[i + 1:]:
            assert not overlap(rect, other), f"{name} {rect} lies over {other_name} {other}"


def expect_tidy_items(editor):
    """Items lie inside their panels and beside each other."""
    for kind in PANELS:
        panel = editor.child(kind)["client"]
        items = editor.items(kind)
        assert items, kind
        for item in items:
            assert inside(item["rect"], panel), f"{kind}: {item['name']} {item['rect']} leaves {panel}"
        if kind in ("TonexGrid", "TonexLengths"):
            for i, one in enumerate(items):
                for other in items[i + 1:]:
                    assert not overlap(one["rect"], other["rect"]), f"{one['name']} lies over {other['name']}"


def expect_columns_under_strip(editor):
    cells, pictures = (editor.items(kind) for kind in ("TonexGrid", "TonexStaff"))
    for cell, picture in zip(cells, pictures):
        assert abs(cell["rect"][0] - picture["rect"][0]) <= 2


def staff_space(editor):
    """Pixels between two staff lines, from the width of the staff's panel: 12480 twips where a space has 120."""
    left, _, right, _ = editor.child("TonexStaff")["rect"]
    return (right - left) * 120 / 12480
