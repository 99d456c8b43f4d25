"""Reads samples from standard input at their own pace and keeps them: a sound device in real time.

Called by ALSA's file plugin: drain.py BYTES_A_SECOND FILE
"""

import errno
import fcntl
import os
import sys
import time

F_SETPIPE_SZ = 1031
CHUNK = 1024



def small_pipe():
    """A large pipe would take the sound at once. False while more is in it than a small one holds."""
    try:
        fcntl.fcntl(0, F_SETPIPE_SZ, 4096)
    except OSError as error:
        if error.errno != errno.EBUSY:
            raise
        return False
    return True


rate, path = int(sys.argv[1]), sys.argv[2]
small = small_pipe()
start = time.monotonic()
taken = 0
with open(path, "wb", buffering=0) as kept:
    while chunk := os.read(0, CHUNK):
        kept.write(chunk)
        taken += len(chunk)
        small = small or small_pipe()
        time.sleep(max(0.0, start + taken / rate - time.monotonic()))
