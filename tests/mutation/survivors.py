"""Reads why a mutation that no test notices changes nothing that can be observed."""

import re
from pathlib import Path

ENTRY = re.compile(r"^- `(?P<before>.*)`\n  `(?P<after>.*)`\n(?P<reason>(?:  .+\n)+)", re.MULTILINE)


def explanations(document):
    """The reasons by file, line and mutated line, as `Mutant.before_and_after` gives them."""
    text = Path(document).read_text(encoding="utf-8")
    reasons = {}
    for section in text.split("\n## ")[1:]:
        file, _, body = section.partition("\n")
        for entry in ENTRY.finditer(body):
            key = (file.strip(), entry["before"], entry["after"])
            reasons[key] = " ".join(entry["reason"].split())
    return reasons
