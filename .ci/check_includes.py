#!/usr/bin/env python3
"""Includes go one way, without exception: a folder includes itself, the folders that CMakeLists.txt lists before it and
the public header. Engines know no environment, no file and no handle. The program knows the public header only, and
each of its rooms the files of cli/ and its own. No include leaves the root or climbs with `..`."""
import re

import house

ORDER = re.findall(r"^tovik_folder\(([\w/]+)\)$", house.text("CMakeLists.txt"), re.M)
TOPS = {f.split("/")[0] for f in ORDER}
BINDING = {"lp/binding", "lp/presolve_record", "lp/run", "lp/basis_query", "mip/run"}
ENGINES = [f for f in ORDER if f.split("/")[0] in ("lp", "mip", "qp") and f not in BINDING]
INCLUDE = re.compile(r'^\s*#\s*include\s*(["<])([^">]+)[">]', re.M)


def folder_of(path):
    found = [f for f in ORDER if path.startswith(f + "/")]
    return max(found, key=len) if found else None


def wrong_in_program(path, target):
    if target == "tovik.h":
        return None
    if not target.startswith("cli/"):
        return "the program includes tovik.h and itself only"
    room = "/".join(target.split("/")[:-1])
    if path == "cli/main.cpp" or room == "cli" or path.startswith(room + "/"):
        return None
    return "a room of the program includes cli/ and itself only"


def wrong(path, target):
    own, other = folder_of(path), folder_of(target)
    if ".." in target.split("/"):
        return "climbs out of its folder"
    if path.startswith("cli/"):
        return wrong_in_program(path, target)
    if own is None:
        return "stands in no folder that CMakeLists.txt lists" if path.split("/")[0] in TOPS else None
    if not (house.ROOT / target).is_file():
        return "is not written from the root"
    if own in ENGINES and (target.startswith("include/") or (other and other not in ENGINES)):
        return "an engine knows nothing of environments, models or files"
    if other and ORDER.index(other) > ORDER.index(own):
        return f"{own} stands above {other}"
    if other is None and not target.startswith("include/"):
        return "is no folder of the library"
    return None


complaints, count = [], 0
for path in house.files(".cpp", ".h"):
    for kind, target in INCLUDE.findall(house.text(path)):
        if kind == '"':
            count += 1
            reason = wrong(path.as_posix(), target)
            if reason:
                complaints.append(f'{path}: "{target}" {reason}')
house.finish("includes", complaints, count)
