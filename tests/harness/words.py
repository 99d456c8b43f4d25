"""Texts of the editor that more than one test looks for."""

UNTITLED = "Sound Editor - Untitled"

ASK = "Do you want to save the changes?"
TOO_LONG = "File name cannot exceed 8 characters.  Change the file name."
NOT_SOUND = "This is not a sound file."
READ_ERROR = "Read error!"
WRITE_ERROR = "Write error!"
NO_PLAYER = "Can not run Sound Player!"
REFUSED = "File translate error when upload to Veloxa!"
REMINDER = "Transfer all data by PC Ferry to Corvane after close\r\n[Sound Editor]"
NOT_AGAIN = "Do not show this dialog in the next time."

DOREMI = "ﾄﾞﾚﾐ表示(&D)"
REMINDER_ITEM = "&Verify to transfer all data"
PREVIEW_ITEM, PREVIEW_TOOL = "Pre&view", "Preview Sound"

# Caption of the menu item and tooltip of the toolbar button that stand for the same command.
PAIRS = {
    "Cu&t": "Cut", "&Copy": "Copy", "&Paste": "Paste", "&Delete": "Delete", "&Insert": "Insert",
    PREVIEW_ITEM: PREVIEW_TOOL,
}
