#!/usr/bin/env python3
"""The shared library exports exactly the routines that tovik.h declares."""
import re
import subprocess
import sys

import house

COMMENT = re.compile(r"/\*.*?\*/", re.S)
DECLARED = re.compile(r"\bTVK_API\b[^;{(]*?\b(\w+)\s*\(")

header = COMMENT.sub(" ", house.text("include/tovik.h"))
header = re.sub(r"^\s*#.*$", "", header, flags=re.M)
declared = set(DECLARED.findall(header))
unmarked = set(re.findall(r"^\s*(?!typedef)[\w \t*]+?\b(TVK\w+)\s*\(", header, flags=re.M)) - declared
output = subprocess.run(["nm", "-D", "--defined-only", sys.argv[1]], check=True, stdout=subprocess.PIPE).stdout.decode()
exported = {line.split()[-1] for line in output.splitlines() if line.strip()}

complaints = [f"declared, not exported: {n}" for n in sorted(declared - exported)]
complaints += [f"exported, not declared: {n}" for n in sorted(exported - declared)]
complaints += [f"declared without TVK_API: {n}" for n in sorted(unmarked)]
house.finish("exports", complaints, len(declared))
