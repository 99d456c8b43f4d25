"""What the process sets once at its start, as the system tells it inside the program."""

NO_DISK_BOX, NO_FILE_BOX = 0x1, 0x8000


def test_no_box_of_the_system_and_one_apartment(editor):
    process = editor.prefix.ask("process", editor.hwnd)
    assert process["error_mode"] & (NO_DISK_BOX | NO_FILE_BOX) == NO_DISK_BOX | NO_FILE_BOX
    assert process["apartment"], "what opens documents and shows file dialogs wants one"
