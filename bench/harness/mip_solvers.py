"""The programs that bench/mip runs: one thread, the same gap, the same limit."""

import os
import re
import shutil
import tempfile
from pathlib import Path

from .solvers import Solver, Tovik, find_highs

GAP = 1e-4
_NUMBER = r"[-+]?(?:\d[\d.]*(?:[eE][-+]?\d+)?|inf)"


class MixedTovik(Tovik):
    def command(self, path, model, settings):
        return super().command(path, model, settings) + ["--gap", f"{GAP:g}", "--statistics"]

    def take(self, run, report):
        super().take(run, report)
        run.nodes = report["nodes"]
        run.bound = report["best_bound"]
        run.statistics = (report.get("statistics") or {}).get("mip")
        if run.statistics:
            run.incumbents = [(found["seconds"], found["objective"]) for found in run.statistics["incumbents"]]


class Cbc(Solver):
    """The distribution's cbc."""

    name = "cbc"

    def __init__(self, program, gap=GAP):
        self.program = program
        self.gap = gap

    def command(self, path, model, settings):
        clock = "cpu" if settings.cpu_clock else "elapsed"
        return [self.program, str(path), "-timeMode", clock, "-seconds", f"{settings.limit:g}", "-ratioGap", f"{self.gap:g}", "-solve"]

    def read(self, run, out, err):
        result = re.search(r"^Result - (.*)$", out, re.MULTILINE)
        if result is None:
            run.status = "infeasible" if re.search(r"infeasible", out, re.IGNORECASE) else "error"
            run.note = "" if run.status == "infeasible" else out.strip().splitlines()[-1][:200] if out.strip() else "no output"
            return
        text = result.group(1).lower()
        run.status = ("optimal" if "optimal" in text else "infeasible" if "infeasible" in text
                      else "unbounded" if "unbounded" in text else "limit")
        run.objective = _last(r"^Objective value:\s+(" + _NUMBER + ")", out)
        run.bound = _last(r"^Lower bound:\s+(" + _NUMBER + ")", out)
        run.nodes = _count(r"^Enumerated nodes:\s+(\d+)", out)
        run.iterations = _count(r"^Total iterations:\s+(\d+)", out)
        found = r"(?:Integer solution of|improved solution from \S+ to) (" + _NUMBER + r").*\(([\d.]+) seconds\)"
        run.incumbents = [(float(seconds), float(value)) for value, seconds in re.findall(found, out)]


class Highs(Solver):
    """Its time limit is wall clock. Where processor time counts it is stopped from outside, and the last row of its log tells
    how far it was; the times of its incumbents are then shrunk by the share of the processor that it had."""

    name = "highs"
    stops_itself = False
    _ROW = re.compile(r"^ .\s+\S+\s+\S+\s+\S+\s+[\d.]+%\s+(\S+)\s+(\S+)\s+\S+\s+\S+\s+\S+\s+\S+\s+\S+\s+([\d.]+)s\s*$", re.MULTILINE)

    def __init__(self, program, gap=GAP):
        self.program = program
        handle, self.options = tempfile.mkstemp(prefix="highs-", suffix=".options")
        with os.fdopen(handle, "w") as stream:
            stream.write(f"threads = 1\nparallel = off\nmip_rel_gap = {gap:g}\nlog_file = {os.devnull}\n")

    def command(self, path, model, settings):
        command = [self.program, "--options_file", self.options]
        if not settings.cpu_clock:
            command += ["--time_limit", f"{settings.limit:g}"]
        return command + [str(path)]

    def read(self, run, out, err):
        words = {"Optimal": "optimal", "Infeasible": "infeasible", "Unbounded": "unbounded",
                 "Primal infeasible or unbounded": "inf-or-unbd", "Time limit reached": "limit"}
        status = re.findall(r"^  Status\s+(\S.*?)\s*$", out, re.MULTILINE)
        run.status = words.get(status[-1], "error") if status else "error"
        share = run.user_seconds / run.seconds if run.seconds > 0 else 1.0
        for bound, value, seconds in self._ROW.findall(out):
            run.bound = _value(bound)
            value = _value(value)
            if value is not None and (run.objective is None or value != run.objective):
                run.objective = value
                run.incumbents.append((float(seconds) * share, value))
        run.nodes = _rough_count(re.findall(r"^ .\s+(\d+k?)\s+\S+\s+\S+\s+[\d.]+%", out, re.MULTILINE))
        if status:
            run.objective = _last(r"^  Primal bound\s+(" + _NUMBER + ")", out)
            run.bound = _last(r"^  Dual bound\s+(" + _NUMBER + ")", out)
            run.nodes = _count(r"^  Nodes\s+(\d+)", out)
            run.iterations = _count(r"^  LP iterations\s+(\d+)", out)


def find_solvers(names, tovik, highs, folder, gap=GAP):
    """Those of `names` that are installed; an error text for those that are not."""
    solvers, missing = [], []
    for name in names:
        if name == "tovik":
            solvers.append(MixedTovik(tovik))
            continue
        program = shutil.which("cbc") if name == "cbc" else find_highs(highs, folder)
        if program:
            solvers.append((Cbc if name == "cbc" else Highs)(program, gap))
        else:
            missing.append(name)
    return solvers, missing


def _value(text):
    try:
        value = float(text)
    except ValueError:
        return None
    return value if abs(value) < 1e50 else None


def _last(pattern, text):
    found = re.findall(pattern, text, re.MULTILINE)
    return _value(found[-1]) if found else None


def _count(pattern, text):
    """The first: what comes before the reports of searches within."""
    found = re.search(pattern, text, re.MULTILINE)
    return int(found.group(1)) if found else None


def _rough_count(found):
    return int(found[-1].replace("k", "000")) if found else None
