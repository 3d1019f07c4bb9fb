#!/usr/bin/env python3
"""Words that have no place in the project: references to outside documents, left-overs, paths of one machine."""
import re

import house

RULES = [
    (r"\b[Ss]pec(s|ification|ifications)?\b", "say what holds, not where it is written"),
    (r"\bParts?\s+\d+(\.\d+)?\b", "say what holds, not where it is written"),
    (r"\b(TODO|FIXME|XXX|HACK)\b", "do it, or leave it out"),
    (r"/(root|home|work)/\w", "a path of one machine"),
]
SOURCES = {".cpp", ".h", ".c"}
LITERAL = re.compile(r'"(?:[^"\\]|\\.)*"')  # texts of messages are the system's own
TEXT = {".cpp", ".h", ".c", ".py", ".md", ".cmake", ".txt", ".in", ".json", ".sh", ".lp", ".mps", ""}

complaints, count = [], 0
for path in house.files():
    if path.name == "check_words.py" or path.suffix not in TEXT:
        continue
    count += 1
    for number, line in enumerate(house.text(path).splitlines(), 1):
        bare = LITERAL.sub('""', line) if path.suffix in SOURCES else line
        for pattern, reason in RULES:
            if re.search(pattern, bare):
                complaints.append(f"{path}:{number}: {line.strip()[:90]}  ({reason})")
house.finish("words", complaints, count)
