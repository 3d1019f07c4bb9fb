#!/usr/bin/env python3
"""Includes go one way: a folder includes itself, the folders before it and the public header. Exported routines
(api_*.cpp) start what lies below them and are free; engines know no environment, no file and no handle; the program
knows the public header only; no include leaves the root or climbs with `..`."""
import re

import house

ORDER = ["env", "param", "model", "fileio", "lp/linalg", "lp/factor", "lp/simplex", "lp/presolve", "lp/barrier",
         "lp/crossover", "lp/network", "mip/propagate", "mip/cuts", "mip/heuristics", "mip/search", "lp/dispatch", "mip"]
ENGINES = [f for f in ORDER if f.startswith("lp/") and f != "lp/dispatch"] + [f for f in ORDER if f.startswith("mip/")]
INCLUDE = re.compile(r'^\s*#\s*include\s*(["<])([^">]+)[">]', re.M)


def folder_of(path):
    found = [f for f in ORDER if path.startswith(f + "/")]
    return max(found, key=len) if found else None


def wrong(path, target):
    own, other = folder_of(path), folder_of(target)
    if ".." in target.split("/"):
        return "climbs out of its folder"
    if path.startswith("cli/"):
        return "the program includes tovik.h and itself only" if other or target.startswith("include/") else None
    if own is None:
        return None
    if not (house.ROOT / target).is_file():
        return "is not written from the root"
    if own in ENGINES and (target.startswith("include/") or (other and other not in ENGINES)):
        return "an engine knows nothing of environments, models or files"
    if other and ORDER.index(other) > ORDER.index(own) and not path.split("/")[-1].startswith("api_"):
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
