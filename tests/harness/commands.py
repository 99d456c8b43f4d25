"""The ways of giving a command: way(editor, caption of the menu item, tooltip of the tool, shortcut)."""


def letter_of(caption):
    return caption[caption.index("&") + 1].lower()


def by_menu(editor, caption, _tooltip=None, _shortcut=None):
    editor.choose(caption)


def by_toolbar(editor, _caption, tooltip, _shortcut=None):
    editor.click_tool(tooltip)


def by_shortcut(editor, _caption, _tooltip, shortcut):
    editor.screen.key(shortcut)


def by_popup_on(editor, item, caption):
    """The right button on an item of a panel, then the command's letter."""
    editor.screen.click(*editor.centre(item["rect"]), 3)
    editor.wait_popup()
    editor.screen.key(letter_of(caption))


def by_popup(editor, caption, _tooltip=None, _shortcut=None):
    """On the first selected cell of the grid."""
    by_popup_on(editor, editor.cells()[editor.selected()[0]], caption)


def by_strip_popup(editor, caption, _tooltip=None, _shortcut=None):
    """On the strip's first picture."""
    by_popup_on(editor, editor.items("TonexStaff")[0], caption)
