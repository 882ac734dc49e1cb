#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""four_copies.py LIBRARY: one process loads four copies of the library while it runs and attaches each, on another thread."""
import ctypes
import os
import shutil
import sys
import tempfile
import threading

ATTACH, DETACH = 1, 0

with tempfile.TemporaryDirectory() as folder:
    copies = []
    for number in range(4):
        place = os.path.join(folder, f"libcore_{number}.so")
        shutil.copy(os.path.realpath(sys.argv[1]), place)
        copies.append(ctypes.CDLL(place))
    entries = [copy["_ZN4core12library_mainEPKvNS_12LibraryEventE"] for copy in copies]
    answers = []

    def tell(event):
        for entry in entries:
            entry.restype = ctypes.c_bool
            answers.append(entry(None, event))

    thread = threading.Thread(target=tell, args=[ATTACH])
    thread.start()
    thread.join()
    tell(DETACH)
    assert answers == [True] * 8, answers
