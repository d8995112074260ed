# SPDX-License-Identifier: Apache-2.0


class Problem(Exception):
    """What the command cannot do, as a sentence for the person who asked: what, on which file, what to do."""
