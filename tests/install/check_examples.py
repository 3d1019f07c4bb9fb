#!/usr/bin/env python3
"""Solves the example models with the program and runs the example of the interface; each must reach the optimal value
that stands in the model's comment."""
import argparse
import json
import math
import re
import subprocess
import sys
from pathlib import Path

parser = argparse.ArgumentParser()
parser.add_argument("--program", required=True)
parser.add_argument("--example", required=True)
parser.add_argument("models", nargs="+", type=Path)
options = parser.parse_args()


def expected(model):
    return float(re.search(r"Optimal value: (\S+)", model.read_text())[1])


def run(*command):
    done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.PIPE, timeout=120)
    return done.returncode, done.stdout.decode(), done.stderr.decode()


wrong = 0
for model in options.models:
    code, output, log = run(options.program, "--json", str(model))
    answer = json.loads(output or "{}")
    good = code == 0 and answer.get("status") == 1 and math.isclose(answer["objective"], expected(model), rel_tol=1e-6)
    print(f"{model.name}: exit {code}, objective {answer.get('objective')}, {'good' if good else 'WRONG'}")
    if not good:
        wrong += 1
        print(output, log, sep="\n")

code, output, log = run(options.example)
optimum = expected(next(m for m in options.models if m.name == "production.lp"))
good = code == 0 and f"Least cost: {optimum:g}" in output
print(f"example program: exit {code}, {'good' if good else 'WRONG'}")
if not good:
    print(output, log, sep="\n")
sys.exit(1 if wrong or not good else 0)
