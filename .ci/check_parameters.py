#!/usr/bin/env python3
"""The parameter table is honest: a parameter is marked `unused` exactly when nothing outside the table reads it."""
import re

import house

rows = {}
for path in house.files(".h"):
    if path.parent.as_posix() == "param" and path.name.endswith("_rows.h"):
        for word in re.finditer(r"(unused\(\s*)?(?:integer|real|text)\(\s*NAMED\((\w+)\)", house.text(path)):
            rows["TVK_PARAM_" + word.group(2)] = word.group(1) is not None

# Acts when it is set, inside param/.
read = {"TVK_PARAM_SCRIND"}
for path in house.files(".cpp", ".h"):
    top = path.parts[0]
    if top in ("env", "model", "fileio", "lp", "mip", "qp", "api"):
        read.update(re.findall(r"\bTVK_PARAM_\w+", house.text(path)))

complaints = [f"{n}: marked unused, but read" for n, unused in sorted(rows.items()) if unused and n in read]
complaints += [f"{n}: nothing reads it; mark it unused" for n, unused in sorted(rows.items()) if not unused and n not in read]
house.finish("parameters", complaints, len(rows))
