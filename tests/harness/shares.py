"""Shares of a suite for several workers: a file's tests in order, a few at a time.

A worker takes the next share when it is done with its last, and has a screen and Wine prefixes of its own.
"""

from xdist.scheduler.loadscope import LoadScopeScheduling

LARGEST = 24  # tests; a small share keeps all workers busy to the end, a large one starts Wine less often


class Shares(LoadScopeScheduling):
    def __init__(self, config, log=None):
        super().__init__(config, log)
        self.tests_of = {}
        self.share_of = {}

    def _split_scope(self, nodeid):
        """The scheduler asks in the order of the collection first, so every test keeps the share it got then."""
        if nodeid not in self.share_of:
            file = nodeid.split("::", 1)[0]
            self.tests_of[file] = self.tests_of.get(file, 0) + 1
            self.share_of[nodeid] = f"{file} {(self.tests_of[file] - 1) // LARGEST}"
        return self.share_of[nodeid]
