"""What an MPS file of our own writer states, as plain data that two files can be compared by."""

import re
from dataclasses import dataclass, field

INFINITY = 1e20
_REWRITTEN = re.compile(r"#(\d+)$")  # a name that a format cannot hold ends with its position


@dataclass
class Column:
    integer: bool
    lower: float = 0.0
    upper: float = INFINITY
    semicontinuous: bool = False
    entries: dict = field(default_factory=dict)


@dataclass
class Data:
    sense: str = "MIN"
    rows: dict = field(default_factory=dict)  # name: [sense, right-hand side, range or None]
    columns: dict = field(default_factory=dict)
    objective: str = ""
    others: dict = field(default_factory=dict)  # section: its records, sorted
    nonzeros: int = 0


def read(path):
    data, section, integer, block = Data(), "", False, None
    with open(path, encoding="latin-1") as stream:
        for line in stream:
            words = line.split()
            if line[0] != " ":
                section = words[0]
                block = " ".join(words) if section not in ("NAME", "ENDATA") else None
                continue
            if section == "OBJSENSE":
                data.sense = words[0]
            elif section in ("ROWS", "USERCUTS", "LAZYCONS"):
                if words[0] == "N" and not data.objective:
                    data.objective = words[1]
                else:
                    data.rows[words[1]] = [section + " " + words[0], 0.0, None]
            elif section == "COLUMNS":
                if words[1] == "'MARKER'":
                    integer = words[2] == "'INTORG'"
                    continue
                column = data.columns.get(words[0])
                if column is None:
                    column = data.columns[words[0]] = Column(integer)
                if (value := float(words[2])) != 0:
                    column.entries[words[1]] = value
                    data.nonzeros += words[1] != data.objective
            elif section == "RHS":
                data.rows[words[1]][1] = float(words[2])
            elif section == "RANGES":
                data.rows[words[1]][2] = float(words[2])
            elif section == "BOUNDS":
                _bound(data.columns[words[2]], words[0], float(words[3]) if len(words) > 3 else 0.0)
            else:
                data.others.setdefault(block, []).append(tuple(words))
    return data


def _bound(column, kind, value):
    if kind in ("FX", "LO"):
        column.lower = value
    if kind in ("FX", "UP", "SC"):
        column.upper = value
    if kind in ("MI", "FR"):
        column.lower = -INFINITY
    if kind == "BV":
        column.integer, column.lower, column.upper = True, 0.0, 1.0
    column.semicontinuous |= kind == "SC"


def row_limits(row):
    kind, value, width = row
    sense = kind[-1]
    if sense == "E":
        return value, value
    if sense == "L":
        return (-INFINITY if width is None else value - width), value
    return value, (INFINITY if width is None else value + width)


def differences(old, new):
    """Where two files state something else, numbers compared by 15 digits; at most a few lines."""
    found = []
    if old.sense != new.sense:
        found.append(f"objective sense {old.sense} becomes {new.sense}")
    for what, first, second in (("rows", old.rows, new.rows), ("columns", old.columns, new.columns)):
        if len(first) != len(second):
            return found + [f"{len(first)} {what} become {len(second)}"]
    row_of, column_of = _renaming(old.rows, new.rows), _renaming(old.columns, new.columns)
    if row_of is None or column_of is None:
        return found + ["names differ"]
    row_of[new.objective] = old.objective
    for name, row in new.rows.items():
        before = old.rows[row_of[name]]
        if row[0].split()[0] != before[0].split()[0] or not all(map(_equal_limit, row_limits(before), row_limits(row))):
            found.append(f"row {row_of[name]}: {before} becomes {row}")
    for name, column in new.columns.items():
        found += _column_differences(column_of[name], old.columns[column_of[name]], column, row_of)
    found += _other_differences(old, new, {**row_of, **column_of})
    return found


def _column_differences(name, before, after, row_of):
    found = []
    if before.integer != after.integer or before.semicontinuous != after.semicontinuous:
        found.append(f"column {name}: its type changes")
    if not _equal(before.lower, after.lower) or not _equal(before.upper, after.upper):
        found.append(f"column {name}: bounds [{before.lower}, {before.upper}] become [{after.lower}, {after.upper}]")
    entries = {row_of[row]: value for row, value in after.entries.items()}
    for row in sorted(set(before.entries) | set(entries)):
        if not _equal(before.entries.get(row, 0.0), entries.get(row, 0.0)):
            found.append(f"column {name}, row {row}: {before.entries.get(row)} becomes {entries.get(row)}")
    return found


def _other_differences(old, new, renamed):
    def plain(records):
        return sorted(tuple(_number(renamed.get(word, word)) for word in record) for record in records)

    if sorted(old.others) != sorted(renamed_section(section, renamed) for section in new.others):
        return [f"sections {sorted(old.others)} become {sorted(new.others)}"]
    return [
        f"section {section} differs"
        for section, records in new.others.items()
        if plain(records) != sorted(tuple(map(_number, r)) for r in old.others[renamed_section(section, renamed)])
    ]


def renamed_section(section, renamed):
    return " ".join(renamed.get(word, word) for word in section.split())


def _renaming(old, new):
    """New name to old name: equal, or rewritten with the old position at its end. None when there is no such map."""
    if all(name in old for name in new):
        return {name: name for name in new}
    names, result = list(old), {}
    for name in new:
        match = _REWRITTEN.search(name)
        if not match or int(match[1]) >= len(names):
            return None
        result[name] = names[int(match[1])]
    return result if len(set(result.values())) == len(names) else None


def _number(word):
    try:
        return f"{float(word):.15g}"
    except ValueError:
        return word


def _equal(a, b):
    return a == b or float(f"{a:.15g}") == float(f"{b:.15g}")


def _equal_limit(a, b):
    return _equal(a, b) or abs(a - b) <= 1e-14 * max(abs(a), abs(b))
