// Numbers that the player's program and its dialog share.
#pragma once

#define IDD_PLAYER 100
#define IDC_FILE_NAME 101
#define IDC_POSITION 102
#define IDC_STATE 103
#define IDC_STOP IDOK
