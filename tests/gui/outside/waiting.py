"""Waiting for what the program does at its own pace."""

import os
import time

# Seconds. A busy machine with an instrumented build may need most of it; nothing waits this long
# when all is well.
PATIENCE = float(os.environ.get("CLIPFIX_PATIENCE", "60"))
GAP = 0.03


class Failure(Exception):
    """What was awaited did not come, or something came that was not awaited."""


class Skipped(Exception):
    """This machine does not have what the scenario takes."""


def until(look, what, patience=PATIENCE):
    """Looks again and again until `look` gives something true, and gives that back. `what` tells in
    a failure what was waited for; a function is called at the end."""
    end = time.monotonic() + patience
    while True:
        found = look()
        if found:
            return found
        if time.monotonic() > end:
            raise Failure("not come: " + (what() if callable(what) else what))
        time.sleep(GAP)


def comes(look, patience):
    """Whether it comes that soon."""
    try:
        return bool(until(look, "", patience))
    except Failure:
        return False
