"""One cursor: found when it is out of view, put on the blank end column, told to screen readers, and not theirs to move
while a box is open."""

import pytest

from melody import C, D, E, G, R, Melody
from wine_paths import windows_path
from words import ASK, PREVIEW_TOOL
from xscreen import wait_until

STATE_UNAVAILABLE = 0x1
CB_SETCURSEL, CBN_SELCHANGE = 0x14E, 1
OF_A_LONG_MELODY = 60
COLUMNS_SHOWN = 30
SELECT = (0x33, 0x99, 0xFF)
POINTER_AREA = 20  # pixels at the lower corners of the staff


def system_colour(editor, name):
    """A colour of the system's, as the registry of the prefix has it or as is usual."""
    text = editor.prefix.ask("getreg", "Control Panel\\Colors", name)
    return tuple(map(int, text.split())) if text else SELECT


def picture_of(editor, rect):
    """What stands on the screen in a rectangle, the pointer of the mouse out of the way."""
    editor.screen.move(2, 2)
    editor.picture()  # waits until it looks the same for a while
    left, top, right, bottom = rect
    return editor.screen.picture(left, top, right - left, bottom - top)


def pixels_of(picture, colour):
    return dict((value, count) for count, value in picture.getcolors(picture.width * picture.height)).get(colour, 0)


def pointers(editor):
    """How much of the selection's colour the lower corners of the staff show, left and right."""
    left, _, right, bottom = editor.child("TonexStaff")["client"]
    colour = system_colour(editor, "Hilight")
    return [pixels_of(picture_of(editor, (x, bottom - POINTER_AREA, x + POINTER_AREA, bottom)), colour)
            for x in (left, right - POINTER_AREA)]


@pytest.fixture
def long_melody(start, melody):
    """The beginning in view, the cursor behind the last entry."""
    editor = start(windows_path(melody("LONG.SND", Melody.scale(OF_A_LONG_MELODY))))
    assert len(editor.cells()) == COLUMNS_SHOWN and editor.selected() == []
    return editor


def scroll_to_the_end(editor):
    _, _, right, bottom = editor.child("TonexGrid")["rect"]
    editor.screen.click(right - 30, bottom - 6)  # behind the thumb: a page
    editor.screen.click(right - 8, bottom - 6, times=OF_A_LONG_MELODY + 1 - 2 * COLUMNS_SHOWN)  # the arrow
    wait_until(lambda: editor.names()[-1] == "End", 5, "the end in view")


def test_a_pointer_shows_where_a_cursor_out_of_view_is(long_melody):
    left, right = pointers(long_melody)
    assert left == 0 and right > 30
    long_melody.screen.key("home")
    long_melody.wait_selected([0])
    assert pointers(long_melody) == [0, 0]
    scroll_to_the_end(long_melody)
    left, right = pointers(long_melody)
    assert left > 30 and right == 0


@pytest.mark.parametrize("key", ["left", "right", "pageup", "pagedown"])
def test_the_first_key_shows_a_cursor_out_of_view_and_the_next_one_moves_it(long_melody, key):
    long_melody.screen.key(key)
    long_melody.wait_selected([COLUMNS_SHOWN - 1])
    assert long_melody.names()[-1] == "End"
    long_melody.screen.key("left")
    long_melody.wait_selected([COLUMNS_SHOWN - 2])


def test_home_and_end_act_at_once_on_a_cursor_out_of_view(long_melody):
    long_melody.screen.key("home")
    long_melody.wait_selected([0])
    scroll_to_the_end(long_melody)
    long_melody.screen.key("end")
    long_melody.wait_selected([COLUMNS_SHOWN - 1])


def test_a_click_on_the_blank_end_column_of_the_strip_puts_the_cursor_there(five):
    end = five.item("TonexStaff", "End")
    under = five.cells()[-1]["rect"]
    five.screen.click((under[0] + under[2]) // 2, (end["rect"][1] + end["rect"][3]) // 2)
    five.wait_selected([5])
    five.click_key("c5")
    five.wait_names([C, D, E, R, G, "c5, Quarter note", "End"])


# --- what a screen reader is told


def told(editor):
    """The items of the grid that were told to have the keyboard since the last question."""
    return editor.prefix.ask("told", editor.child("TonexGrid")["hwnd"])


def assert_told(editor, item, name):
    """The grid's item, counted from 1, has the keyboard, the selection and its name, and a screen reader was told."""
    wait_until(lambda: editor.focused_item() == ("TonexGrid", name), 5, f"the keyboard on {name}")
    assert editor.selected() == [item - 1]
    assert editor.names()[item - 1] == name
    heard = []
    wait_until(lambda: heard.extend(told(editor)) or heard[-1:] == [item], 5, f"what is told of {name}")
    assert set(heard) == {item}


def test_after_plus_and_minus_the_keyboard_is_told_where_the_cursor_is(five):
    told(five)
    five.screen.key("+")
    assert_told(five, 2, D)
    five.screen.key("-")
    assert_told(five, 3, E)


def test_after_a_key_of_the_piano_the_keyboard_is_told_where_the_cursor_is(five):
    told(five)
    five.click_key("c8")
    assert_told(five, 2, D)


def test_after_insert_and_delete_the_keyboard_is_told_what_the_cursor_is_on(five):
    told(five)
    five.screen.key("ctrl+i")
    assert_told(five, 1, "Separator")
    five.screen.key("delete")
    assert_told(five, 1, C)
    five.screen.key("delete")
    assert_told(five, 1, D)
    five.screen.key("ctrl+z")
    assert_told(five, 1, C)


def test_after_scrolling_the_keyboard_is_told_the_cursors_new_place(long_melody):
    long_melody.screen.key("home")
    long_melody.wait_selected([0])
    long_melody.screen.key("pagedown")
    long_melody.wait_selected([COLUMNS_SHOWN - 1])
    name = long_melody.names()[-1]
    told(long_melody)
    _, _, right, bottom = long_melody.child("TonexGrid")["rect"]
    long_melody.screen.click(right - 8, bottom - 6)  # one column on
    assert_told(long_melody, COLUMNS_SHOWN - 1, name)
    scroll_to_the_end(long_melody)
    # Out of view none of the cells shown has the keyboard.
    wait_until(lambda: long_melody.focused_item() == ("TonexGrid", None), 5, "no cell with the keyboard")
    wait_until(lambda: told(long_melody)[-1:] == [0], 5, "that the keyboard is on no cell")


def test_a_tool_that_gives_a_cell_the_keyboard_moves_the_cursor(five):
    told(five)
    assert five.prefix.ask("focusitem", five.child("TonexGrid")["hwnd"], 4) == 0
    assert_told(five, 4, R)


# --- one place looks as if it had the keyboard


def press_until_focus(editor, key, kind):
    for _ in range(8):
        before = editor.focused_item()
        editor.screen.key(key)
        wait_until(lambda: editor.focused_item() != before, 5, f"what follows {before}")
        if editor.focused_item()[0] == kind:
            return
    raise AssertionError(f"{key} does not lead to {kind}")


def tool_pictures(editor):
    """The toolbar's buttons by their tooltips, as they look."""
    buttons = editor.toolbar()
    picture_of(editor, editor.child("ToolbarWindow32")["rect"])
    return {name: editor.screen.picture(left, top, right - left, bottom - top).tobytes()
            for name, (left, top, right, bottom) in ((name, button["rect"]) for name, button in buttons.items())}


def changed_tools(editor, before):
    now = tool_pictures(editor)
    return [name for name in now if now[name] != before[name]]


def test_the_toolbars_frame_goes_with_the_keyboard_and_comes_back_to_its_button(editor):
    plain = tool_pictures(editor)
    press_until_focus(editor, "F6", "ToolbarWindow32")
    editor.screen.key("right")
    assert changed_tools(editor, plain) == ["Open on PC"]
    press_until_focus(editor, "F6", "TonexGrid")
    assert changed_tools(editor, plain) == []
    press_until_focus(editor, "shift+F6", "ToolbarWindow32")
    assert changed_tools(editor, plain) == ["Open on PC"]


def test_the_tempo_is_not_left_marked(start, melody):
    editor = start(windows_path(melody("FAST.SND", "tempo 64\nc5 1/4\n")))
    assert editor.tempo_box()["marked"] == 0
    press_until_focus(editor, "F6", "Edit")
    editor.screen.key("ctrl+a")
    text = editor.tempo_box()["text"]
    wait_until(lambda: editor.tempo_box()["marked"] == len(text), 5, "the marked number")
    press_until_focus(editor, "F6", "TonexPiano")
    wait_until(lambda: editor.tempo_box()["marked"] == 0, 5, "nothing marked")
    # A melody with another tempo, and another size.
    editor.prefix.ask("drop", editor.hwnd, windows_path(melody("SLOW.SND", "tempo 60\nc5 1/4\n")))
    wait_until(lambda: editor.tempo_box()["text"].strip() == "60", 5, "the other tempo")
    assert editor.tempo_box()["marked"] == 0
    window = editor.screen.find("Sound Editor - ")
    _, _, width, height = editor.screen.rect_of(window)
    before = editor.child("ComboBox")["rect"]
    window.configure(width=round(width * 1.6), height=round(height * 1.6))
    editor.screen.display.sync()
    wait_until(lambda: editor.child("ComboBox")["rect"][3] - editor.child("ComboBox")["rect"][1] > before[3] - before[1],
               5, "the larger box")
    assert editor.tempo_box()["marked"] == 0


def test_the_picture_of_the_current_length_does_not_look_like_the_focus(editor):
    """Nothing beside the row of rests has the selection's colour."""
    left, top, _, bottom = editor.child("TonexLengths")["client"]
    first_rest = editor.item("TonexLengths", "Thirty-second rest")["rect"]
    editor.screen.key("F6")  # with the keyboard away from the grid, too
    picture = picture_of(editor, (left, first_rest[1], first_rest[0], bottom))
    assert len(picture.getcolors(picture.width * picture.height)) > 2, "the picture of the length"
    assert pixels_of(picture, system_colour(editor, "Hilight")) == 0


# --- disabled is disabled for all


PANELS = ["TonexGrid", "TonexStaff", "TonexLengths", "TonexPiano"]


def test_while_a_box_is_open_tools_enter_nothing_and_are_told_that_they_can_not(five):
    five.screen.key("end")
    five.wait_selected([5])
    five.click_key("c5")
    before = [C, D, E, R, G, "c5, Quarter note", "End"]
    five.wait_names(before)
    five.type_tempo("90")
    for panel in PANELS:
        states = [item["state"] for item in [five.accessible(panel), *five.items(panel)]]
        assert not any(state & STATE_UNAVAILABLE for state in states), panel
    five.choose("&New")
    box = five.wait_message(ASK)
    for panel in PANELS:
        states = [item["state"] for item in [five.accessible(panel), *five.items(panel)]]
        assert all(state & STATE_UNAVAILABLE for state in states), panel
        hwnd = five.child(panel)["hwnd"]
        assert five.prefix.ask("pressitem", hwnd, 2) == 1  # S_FALSE
        assert five.prefix.ask("focusitem", hwnd, 2) == 1
    assert five.names() == before and five.selected() == [6]
    # A command that another program sends.
    copy = five.menu()["&Copy"]["id"]
    delete = five.menu()["&Delete"]["id"]
    for command in (copy, delete):
        five.prefix.ask("post", five.hwnd, 0x111, command, 0)
    # A tempo that a tool chooses.
    combo = five.child("ComboBox")
    tempo = five.tempo_box()["text"]
    five.prefix.ask("post", combo["hwnd"], CB_SETCURSEL, 0, 0)
    five.prefix.ask("post", five.hwnd, 0x111, combo["id"] | CBN_SELCHANGE << 16, combo["hwnd"])
    wait_until(lambda: five.tempo_box()["text"] == tempo, 5, f"{tempo}, not {five.tempo_box()['text']}")
    five.answer(box, "Cancel")
    assert five.names() == before and five.tempo_box()["text"] == tempo
    # With the box closed they can again.
    five.prefix.ask("post", combo["hwnd"], CB_SETCURSEL, 0, 0)
    five.prefix.ask("post", five.hwnd, 0x111, combo["id"] | CBN_SELCHANGE << 16, combo["hwnd"])
    wait_until(lambda: five.tempo_box()["text"] == " 640" and "Moderato" not in
               [child["text"] for child in five.children()], 5, "the tempo that the tool chose")
    five.prefix.ask("pressitem", five.child("TonexPiano")["hwnd"], 1)
    five.wait_names([*before[:-1], "c4, Quarter note", "End"])


def test_while_a_preview_plays_tools_enter_nothing(slow_sound, start, melody):
    text = "tempo 60\n" + "c5 1/1\n" * 20
    editor = start(windows_path(melody("SLOW.SND", text)))
    before = editor.names()
    piano = editor.child("TonexPiano")["hwnd"]
    editor.click_tool(PREVIEW_TOOL)
    wait_until(slow_sound.sound, 20, "the sound")
    assert editor.accessible("TonexPiano")["state"] & STATE_UNAVAILABLE
    assert editor.prefix.ask("pressitem", piano, 1) == 1  # S_FALSE
    wait_until(lambda: editor.screen.focused_title().startswith("Sound Player"), 10, "the player in front")
    editor.screen.key("enter")
    wait_until(lambda: not editor.accessible("TonexPiano")["state"] & STATE_UNAVAILABLE, 10, "the preview's end")
    assert editor.names() == before
    assert editor.prefix.ask("pressitem", piano, 1) == 0
    editor.wait_names([*before[:-1], "c4, Quarter note", "End"])


# --- the input method


def test_no_input_method_takes_keys_from_the_panels(editor):
    for panel in PANELS:
        assert not editor.prefix.ask("inputmethod", editor.child(panel)["hwnd"]), panel
    assert editor.prefix.ask("inputmethod", editor.child("Edit")["hwnd"]), "the tempo box keeps its own"
