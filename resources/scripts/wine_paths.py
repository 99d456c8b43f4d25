"""Names of files as a program under Wine knows them."""

import os


def windows_path(path):
    return "Z:" + os.path.abspath(path).replace("/", "\\")
