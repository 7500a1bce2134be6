# SPDX-License-Identifier: GPL-3.0-or-later
"""The texts of the user interface, by their keys."""

import csv
from pathlib import Path

TABLE = Path(__file__).resolve().parents[1] / "l10n/texts.tsv"


def _texts(language):
    with TABLE.open(encoding="utf-8", newline="") as table:
        rows = csv.DictReader(table, delimiter="\t", quoting=csv.QUOTE_NONE)
        return {row["key"]: row[language] for row in rows}


ENGLISH = _texts("english")
CHINESE = _texts("chinese")
