// Numbers of the program's resources.
#pragma once

#define IDI_TONEX 1
#define IDD_GLOBAL_VERSION 101
#define IDD_VERSION_SND 102
#define IDD_FORM_Z730_MSG 103
#define IDD_CONVERT 104
#define IDC_COMMAND1 201
#define IDC_MSG 202
#define IDC_MSG_CHECK 203
#define IDC_PROGRESS 204
#define IDC_APPLICATIONS 205
#define IDC_OWN_VERSION 206
#define IDC_DETAILS 207
