"""Judging runs against the known answers, and printing tables."""

import math

SHIFT_SECONDS = 0.1
OBJECTIVE_TOLERANCE = {True: 1e-6, False: 1e-4}  # keyed by "solved as an LP"
VIOLATION_LIMIT = 1e-5  # absolute, on the unscaled model: ten times the default feasibility tolerance
SLOW_RATIO = 4.0
SLOW_FLOOR_SECONDS = 0.1  # below this a ratio says nothing
HARD_SECONDS = 0.5
TIME_KINDS = {"total": "whole process, wall clock", "solve": "process less reading, wall clock", "cpu": "whole process, processor time"}
LARGE_COUNT = 10


def verdict(model, run):
    """'' when the run gives the known answer, else what is wrong in a few words."""
    if run.status == "limit":
        return "limit"
    if run.status in ("error", "numerical"):
        return run.status
    if run.check_failed:
        return "check failed"
    if run.violation is not None and run.violation > VIOLATION_LIMIT:
        return "violation"
    if not model.status:
        return ""
    if run.status != model.status:
        return "" if model.status == "infeasible" and run.status == "inf-or-unbd" else "wrong status"
    if model.objective is not None:
        error = objective_error(model, run)
        if error is None or error > OBJECTIVE_TOLERANCE[model.relaxed]:
            return "wrong objective"
    return ""


def objective_error(model, run):
    if model.objective is None or run.objective is None:
        return None
    return abs(run.objective - model.objective) / max(1.0, abs(model.objective))


def charged(model, run, settings, kind):
    """Seconds that count in a mean: a run without an answer counts as the whole limit."""
    return settings.limit if verdict(model, run) else min(run.time(kind), settings.limit)


def shifted_mean(values, shift=SHIFT_SECONDS):
    if not values:
        return math.nan
    return math.exp(sum(math.log(value + shift) for value in values) / len(values)) - shift


def header(solvers):
    line = f"{'model':<34}"
    for solver in solvers:
        line += f" {solver.name + ' status':>14} {'objective':>17} {'error':>8} {'seconds':>9} {'iterations':>10} {'MB':>7}"
    return line + (f" {'ratio':>7}" if len(solvers) == 2 else "")


def row(model, runs, settings, kind):
    line = f"{model.name:<34}"
    for run in runs.values():
        error = objective_error(model, run)
        line += f" {verdict(model, run) or run.status:>14}"
        line += f" {'' if run.objective is None else format(run.objective, '.10g'):>17}"
        line += f" {'' if error is None else format(error, '.1e'):>8} {run.time(kind):>9.3f}"
        line += f" {'' if run.iterations is None else run.iterations:>10} {run.memory_mb:>7.0f}"
    if len(runs) == 2:
        ours, peer = (charged(model, run, settings, kind) for run in runs.values())
        line += f" {ours / max(peer, 1e-4):>7.2f}"
    notes = [run.note for run in runs.values() if run.note]
    return line + (f"   {'; '.join(notes)}" if notes else "")


def summary(results, settings, kind):
    lines = _means(results, settings, kind)
    if results and len(results[0][1]) == 2:
        lines += _memory(results)
    return lines + _shortfalls(results, settings, kind)


def _means(results, settings, kind):
    lines = ["", f"{len(results)} models, limit {settings.limit:g} s, method {settings.method}, presolve {settings.presolve}, "
             f"{TIME_KINDS[kind]}"]
    if not results:
        return lines
    names = list(results[0][1])
    for name in names:
        times = [charged(model, runs[name], settings, kind) for model, runs in results]
        right = sum(not verdict(model, runs[name]) for model, runs in results)
        iterations = sum(runs[name].iterations or 0 for _, runs in results)
        lines.append(f"{name:>8}: {right} of {len(results)} answered right, shifted mean {shifted_mean(times):.4f} s, "
                     f"sum {sum(times):.1f} s, {iterations} iterations")
    if len(names) < 2:
        return lines
    # Several peers: the fastest of those that are right, model by model.
    fastest = {model.name: min(charged(model, runs[name], settings, kind) for name in names[1:]) for model, runs in results}
    comparable = [(model, runs) for model, runs in results
                  if any(verdict(model, runs[name]) in ("", "limit") for name in names[1:])]
    hard = [(model, runs) for model, runs in comparable if fastest[model.name] > HARD_SECONDS]
    peers = names[1] if len(names) == 2 else "the better of " + ", ".join(names[1:])
    for label, part in ((f"all models that {peers} answers right or runs out of time on", comparable), (f"models where {peers} needs > {HARD_SECONDS:g} s", hard)):
        if part:
            ours = [charged(model, runs[names[0]], settings, kind) for model, runs in part]
            peer = [fastest[model.name] for model, _ in part]
            lines.append(f"   ratio: {shifted_mean(ours) / max(shifted_mean(peer), 1e-9):.3f} over {label} ({len(part)})")
    return lines


def _memory(results):
    largest = sorted(results, key=lambda result: -result[0].nonzeros)[:LARGE_COUNT]
    ours, peer = list(results[0][1])
    lines = ["", f"Peak memory on the {len(largest)} largest models (MB)",
             f"{'model':<34} {'nonzeros':>10} {ours:>8} {peer:>8} {'ratio':>7}"]
    for model, runs in largest:
        a, b = runs[ours].memory_mb, runs[peer].memory_mb
        lines.append(f"{model.name:<34} {model.nonzeros:>10} {a:>8.0f} {b:>8.0f} {a / max(b, 1e-9):>7.2f}")
    return lines


def _shortfalls(results, settings, kind):
    lines = []
    for model, runs in results:
        name, run = next(iter(runs.items()))
        reason = verdict(model, run)
        if reason:
            lines.append(f"  {model.name:<34} {reason}{': ' + run.note if run.note else ''}")
        elif len(runs) == 2:
            peer = list(runs.values())[1]
            ours, theirs = run.time(kind), charged(model, peer, settings, kind)
            if peer.status != "error" and ours > SLOW_FLOOR_SECONDS and ours > SLOW_RATIO * theirs:
                lines.append(f"  {model.name:<34} {ours / theirs:.1f} times slower ({ours:.2f} s against {theirs:.2f} s)")
    solver = next(iter(results[0][1])) if results else ""
    return ["", f"What fell short ({solver}): {len(lines)}" if lines else f"Nothing fell short ({solver})", *lines]


def by_time(results, settings, kind):
    """The table again, the slowest first."""
    name = next(iter(results[0][1]))
    return sorted(results, key=lambda result: -charged(result[0], result[1][name], settings, kind))


def as_json(results, settings, kind):
    return {
        "settings": {"method": settings.method, "presolve": settings.presolve, "limit": settings.limit,
                     "threads": settings.threads, "extra": list(settings.extra), "time": kind},
        "models": {model.name: {name: run.as_dict() | {"verdict": verdict(model, run)} for name, run in runs.items()}
                   for model, runs in results},
    }


def comparison(old, new, time_change=1.25):
    """What changed for tovik between two JSON files: answers first, then times and iterations."""
    answers, times = [], []
    for name, runs in new["models"].items():
        before = old["models"].get(name, {}).get("tovik")
        after = runs.get("tovik")
        if before is None or after is None:
            continue
        was, now = before["verdict"] or before["status"], after["verdict"] or after["status"]
        if was != now:
            answers.append(f"  {name:<34} {was} -> {now}")
        key = {"total": "seconds", "solve": "solve_seconds", "cpu": "cpu_seconds"}[new["settings"]["time"]]
        ratio = (after[key] + SHIFT_SECONDS) / (before[key] + SHIFT_SECONDS)
        if ratio > time_change or ratio < 1 / time_change:
            times.append((ratio, f"  {name:<34} {before[key]:9.3f} s -> {after[key]:9.3f} s   "
                          f"{before['iterations']} -> {after['iterations']} iterations"))
    lines = ["", f"Changed answers: {len(answers)}", *answers, f"Changed times (more than {time_change:g} times): {len(times)}"]
    return lines + [line for _, line in sorted(times, reverse=True)]
