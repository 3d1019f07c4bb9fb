"""The programs under test: their command lines, and what their output says."""

import json
import math
import os
import re
import resource
import shutil
import signal
import subprocess
import tempfile
import threading
import time
from dataclasses import asdict, dataclass, field
from pathlib import Path

from . import models

GRACE_SECONDS = 5.0  # a program that overruns its own limit by this much is killed
BUSY_FACTOR = 20  # wall clock seconds that one second of processor time may take on a busy machine


# A BLAS that starts threads of its own would give one program more processors than the other.
_THREAD_VARIABLES = ("OPENBLAS_NUM_THREADS", "OMP_NUM_THREADS", "MKL_NUM_THREADS")


def find_program(given, root):
    """The program `tovik`: as given, $TOVIK, in the usual build folders below `root`, on the PATH; None when nowhere."""
    candidates = [given, os.environ.get("TOVIK"), root / "build" / "release" / "tovik", root / "build" / "tovik", shutil.which("tovik")]
    return next((str(Path(c).resolve()) for c in candidates if c and Path(c).is_file()), None)


@dataclass
class Run:
    """One model solved once. Seconds are wall clock of the whole process unless the name says otherwise."""

    status: str = "error"  # optimal, infeasible, unbounded, inf-or-unbd, limit, numerical, error
    objective: float | None = None
    seconds: float = 0.0
    cpu_seconds: float = 0.0
    user_seconds: float = 0.0  # processor time without the system's
    read_seconds: float | None = None
    iterations: int | None = None
    memory_mb: float = 0.0
    exit_code: int = 0
    violation: float | None = None  # largest violation on the original model, as the program states it
    check_failed: bool = False
    note: str = ""
    # Of mixed-integer models.
    nodes: int | None = None
    bound: float | None = None
    incumbents: list = field(default_factory=list)  # pairs of seconds and objective, as the program tells them
    statistics: dict | None = None
    reused: bool = False  # of an earlier run

    @property
    def solve_seconds(self):
        return max(0.0, self.seconds - (self.read_seconds or 0.0))

    def time(self, kind):
        return {"total": self.seconds, "solve": self.solve_seconds, "cpu": self.cpu_seconds,
                "user": self.user_seconds}[kind]

    def as_dict(self):
        return asdict(self) | {"solve_seconds": self.solve_seconds}


@dataclass
class Settings:
    method: str = "default"  # default, dual, primal, barrier
    presolve: str = "default"  # default, on, off
    limit: float = 60.0
    threads: int = 1
    cpu_clock: bool = False  # the limit is processor time, not wall clock
    extra: tuple = ()  # further arguments for tovik


class Solver:
    """A program under test. command() names the limit; read() takes what was printed into the run."""

    stops_itself = True  # at a limit of processor time; else it is stopped, and what it has printed counts


class Tovik(Solver):
    name = "tovik"

    def __init__(self, program):
        self.program = program

    def command(self, path, model, settings):
        command = [self.program, str(path), "--json", "-q", "-t", f"{settings.limit:g}", "--threads", str(settings.threads)]
        if model.relaxed:
            command.append("--relax")
        if settings.cpu_clock:
            command += ["--set", "CLOCKTYPE=1"]
        if settings.method != "default":
            command += ["--method", settings.method]
        if settings.presolve != "default":
            command += ["--set", f"PREIND={1 if settings.presolve == 'on' else 0}"]
        return command + list(settings.extra)

    def read(self, run, out, err):
        try:
            report = json.loads(out)
        except json.JSONDecodeError:
            run.note = _last_line(err) or _last_line(out) or f"no report, exit code {run.exit_code}"
            return
        self.take(run, report)

    def take(self, run, report):
        run.status = _TOVIK_STATUS.get(report["status"], "limit" if report["status"] else "error")
        run.objective = report["objective"]
        run.iterations = (report["simplex_iterations"] or 0) + (report["barrier_iterations"] or 0)
        run.read_seconds = report["read_seconds"]
        run.violation = _largest(report["primal_infeasibility"], report["integrality"])
        run.check_failed = run.exit_code == 9
        run.note = report["error"] or ""


_TOVIK_STATUS = {1: "optimal", 2: "unbounded", 3: "infeasible", 4: "inf-or-unbd", 5: "optimal", 6: "numerical", 20: "unbounded",
                 101: "optimal", 102: "optimal", 103: "infeasible", 109: "numerical", 110: "numerical", 115: "optimal",
                 116: "numerical", 117: "numerical", 118: "unbounded", 119: "inf-or-unbd"}


class Clp(Solver):
    """The distribution's clp, run as a peer. It solves the relaxation: integer marks are read and ignored."""

    name = "clp"
    ACTIONS = {"dual": "-dualsimplex", "primal": "-primalsimplex", "barrier": "-barrier", "default": "-solve"}

    def __init__(self, program):
        self.program = program

    def command(self, path, model, settings):
        clock = "cpu" if settings.cpu_clock else "elapsed"
        command = [self.program, str(path), "-timeMode", clock, "-seconds", f"{settings.limit:g}"]
        if settings.presolve != "default":
            command += ["-presolve", settings.presolve]
        return command + [self.ACTIONS[settings.method]]

    def read(self, run, out, err):
        found = re.search(r"imported from .* in ([-+.\deE]+) seconds", out)
        run.read_seconds = float(found.group(1)) if found else None
        found = re.search(r"^(\w+) objective ([-+.\deE]+|nan|-?inf) - (\d+) iterations", out, re.MULTILINE)
        if found:
            words = {"Optimal": "optimal", "PrimalInfeasible": "infeasible", "DualInfeasible": "unbounded", "Stopped": "limit"}
            run.status = words.get(found.group(1), "numerical")
            run.iterations = int(found.group(3))
            if run.status == "optimal":
                run.objective = float(found.group(2))
        elif re.search(r"infeasible or unbounded|Analysis indicates", out):
            run.status = "inf-or-unbd"
        elif re.search(r"problem (is )?(primal )?infeasible", out, re.IGNORECASE):
            run.status = "infeasible"
        elif not run.note:
            run.note = _last_line(out)


class Highs(Solver):
    """HiGHS with one of its LP solvers; integer marks are ignored. Its time limit is wall clock: where processor time counts it is stopped from outside."""

    stops_itself = False
    _STATUS = {"Optimal": "optimal", "Infeasible": "infeasible", "Unbounded": "unbounded",
               "Primal infeasible or unbounded": "inf-or-unbd", "Time limit reached": "limit"}

    def __init__(self, program, algorithm):
        self.program = program
        self.name = self.algorithm = algorithm
        handle, self.options = tempfile.mkstemp(prefix="highs-", suffix=".options")
        with os.fdopen(handle, "w") as stream:
            stream.write(f"threads = 1\nparallel = off\nsolve_relaxation = true\nlog_file = {os.devnull}\n")

    def command(self, path, model, settings):
        command = [self.program, "--options_file", self.options, "--solver", self.algorithm]
        if not settings.cpu_clock:
            command += ["--time_limit", f"{settings.limit:g}"]
        if settings.presolve != "default":
            command += ["--presolve", settings.presolve]
        return command + [str(path)]

    def read(self, run, out, err):
        found = re.search(r"^Model status\s*: (.*?)\s*$", out, re.MULTILINE)
        run.status = self._STATUS.get(found.group(1), "numerical") if found else "error"
        found = re.search(r"^Objective value\s*:\s*(\S+)", out, re.MULTILINE)
        if found and run.status == "optimal":
            run.objective = float(found.group(1))
        counts = re.findall(r"^(?:Simplex|IPM|Crossover)\s+iterations: (\d+)", out, re.MULTILINE)
        run.iterations = sum(map(int, counts)) if counts else None


def find_highs(given, folder):
    """As given, $HIGHS, in a folder `peers` beside one that holds the models, on the PATH."""
    beside = [parent / "peers" / "highs" for parent in Path(folder).resolve().parents]
    candidates = [given, os.environ.get("HIGHS"), *beside, shutil.which("highs")]
    return next((str(Path(c).resolve()) for c in candidates if c and Path(c).is_file()), None)


def find_solvers(names, tovik_path, folder):
    """Those of `names` that are installed, in their order; the names of those that are not."""
    solvers, missing = [], []
    for name in names:
        if name == "tovik":
            solvers.append(Tovik(tovik_path))
            continue
        program = shutil.which("clp") if name == "clp" else find_highs(None, folder)
        if program:
            solvers.append(Clp(program) if name == "clp" else Highs(program, name))
        else:
            missing.append(name)
    return solvers, missing


def solve(model, programs, settings, repeat, kind):
    """Each program `repeat` times, taking turns and swapping who goes first; the fastest run of each counts."""
    path = models.uncompressed(model)
    if path.suffix.lower() == ".mps":
        model.ignored_constant = models.objective_constant(path)
    best = {}
    for turn in range(repeat):
        for program in programs if turn % 2 == 0 else reversed(programs):
            run = execute(program, path, model, settings)
            known = best.get(program.name)
            if known is None or run.time(kind) < known.time(kind):
                best[program.name] = run
    return {program.name: best[program.name] for program in programs}


def execute(solver, path, model, settings):
    """Runs `solver` once and measures the process from start to end."""
    run = Run()
    with tempfile.TemporaryFile() as out, tempfile.TemporaryFile() as err:
        started = time.perf_counter()
        process = subprocess.Popen(solver.command(path, model, settings), stdin=subprocess.DEVNULL, stdout=out, stderr=err,
                                   env=os.environ | dict.fromkeys(_THREAD_VARIABLES, str(settings.threads)))
        stopped_by_limit = settings.cpu_clock and not solver.stops_itself
        if stopped_by_limit:
            seconds = math.ceil(settings.limit)
            resource.prlimit(process.pid, resource.RLIMIT_CPU, (seconds, seconds + 5))
        killed = threading.Event()

        def kill():
            killed.set()
            process.kill()

        patience = settings.limit * (BUSY_FACTOR if settings.cpu_clock else 1) + GRACE_SECONDS
        timer = threading.Timer(patience, kill)
        timer.start()
        _, wait_status, usage = os.wait4(process.pid, 0)
        timer.cancel()
        run.seconds = time.perf_counter() - started
        process.returncode = run.exit_code = os.waitstatus_to_exitcode(wait_status)
        run.cpu_seconds = usage.ru_utime + usage.ru_stime
        run.user_seconds = usage.ru_utime
        run.memory_mb = usage.ru_maxrss / 1024
        texts = []
        for stream in (out, err):
            stream.seek(0)
            texts.append(stream.read().decode(errors="replace"))
    if killed.is_set():
        run.status, run.note = "limit", f"killed after {patience:g} s"
    elif stopped_by_limit and run.exit_code == -signal.SIGXCPU:
        solver.read(run, *texts)
        run.status, run.note = "limit", ""
    elif run.exit_code < 0:
        run.note = f"ended by signal {signal.Signals(-run.exit_code).name}"
    else:
        solver.read(run, *texts)
        if isinstance(solver, Tovik) and run.objective is not None and model.ignored_constant:
            run.objective += model.ignored_constant
            run.note = f"objective row's constant {model.ignored_constant:g} added, which the reader ignores"
    return run


def _largest(*values):
    known = [value for value in values if value is not None]
    return max(known) if known else None


def _last_line(text):
    lines = [line.strip() for line in text.splitlines() if line.strip()]
    return lines[-1][:200] if lines else ""
