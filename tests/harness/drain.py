"""Reads samples from standard input at their own pace and keeps them: a sound device in real time.

Called by ALSA's file plugin: drain.py BYTES_A_SECOND FILE
"""

import fcntl
import os
import sys
import time

F_SETPIPE_SZ = 1031
CHUNK = 1024

rate, path = int(sys.argv[1]), sys.argv[2]
fcntl.fcntl(0, F_SETPIPE_SZ, 4096)  # a large pipe would take the sound at once
start = time.monotonic()
taken = 0
with open(path, "wb", buffering=0) as kept:
    while chunk := os.read(0, CHUNK):
        kept.write(chunk)
        taken += len(chunk)
        time.sleep(max(0.0, start + taken / rate - time.monotonic()))
