"""Judging mixed-integer runs against the known answers, and printing tables."""

import math
from functools import partial

from . import report
from .mip_solvers import GAP

SHIFT_SECONDS = 1.0
shifted_mean = partial(report.shifted_mean, shift=SHIFT_SECONDS)
SMALL = 1e-6  # absolute, of objectives
PHASES = ("presolve", "root_lp", "cuts", "heuristics", "branching", "tree")


def is_proven(model):
    return model.status in ("optimal", "infeasible", "unbounded")


def sense(model):
    """1 to minimize, -1 to maximize. Only models whose optimum is not known say it by their bound."""
    return -1 if model.status == "best" and model.bound > model.objective else 1


def verdict(model, run):
    """'ok' for the known answer, 'limit' for none, else what is wrong; '?' where nothing is known."""
    if run.status in ("error", "numerical"):
        return run.status
    if run.check_failed:
        return "WRONG check"
    if not model.status:
        return "?" if run.status != "limit" else "limit"
    if model.objective is None:
        same = run.status == model.status or (model.status, run.status) == ("infeasible", "inf-or-unbd")
        return "ok" if same else "limit" if run.status == "limit" and run.objective is None else "WRONG status"
    allowed = 1.1 * GAP * abs(model.objective) + SMALL
    better = sense(model) * (model.objective - run.objective) if run.objective is not None else -math.inf
    # What is known to be best may be beaten where that is not proven, down to the bound.
    most = 1e-6 * abs(model.objective) + SMALL
    if not is_proven(model):
        most += abs(model.objective - model.bound)
    if better > most:
        return "WRONG objective"
    if run.status == "limit":
        return "WRONG bound" if _bound_too_good(model, run, allowed) else "limit"
    if run.status != "optimal":
        return "WRONG status"
    return "ok" if better >= -allowed else "WRONG objective"


def _bound_too_good(model, run, allowed):
    return run.bound is not None and sense(model) * (run.bound - model.objective) > allowed


def distance(model, objective):
    """Relative distance of a solution from the best known objective, at most 1; without a solution 1."""
    if objective is None:
        return 1.0
    if abs(objective - model.objective) <= SMALL:
        return 0.0
    if objective * model.objective < 0:
        return 1.0
    return abs(objective - model.objective) / max(abs(objective), abs(model.objective))


def primal_integral(model, run, settings, kind):
    """Seconds of the limit, or of the solve where it was over before, each weighed by the distance of the incumbent."""
    if model.objective is None:
        return None
    end = min(settings.limit, run.time(kind))
    total, last, height = 0.0, 0.0, 1.0
    for seconds, objective in run.incumbents:
        seconds = min(max(seconds, last), end)
        total += height * (seconds - last)
        last, height = seconds, min(height, distance(model, objective))
    if run.objective is not None and not run.incumbents:
        last, height, total = end, 0.0, end
    return total + height * (end - last)


def root_gap_closed(model, run):
    """Share of the gap between the first relaxation and the optimum that cuts have closed; None where there is none."""
    root = (run.statistics or {}).get("root") or {}
    before, after = root.get("bound_before_cuts"), root.get("bound_after_cuts")
    if model.objective is None or before is None or after is None or abs(model.objective - before) <= SMALL:
        return None
    return max(0.0, min(1.0, (after - before) / (model.objective - before)))


def charged(model, run, settings, kind):
    """Seconds that count in a mean: a run without the answer counts as the whole limit."""
    return min(run.time(kind), settings.limit) if verdict(model, run) in ("ok", "?") else settings.limit


def header(names):
    line = f"{'model':<26}"
    for name in names:
        line += f" | {name:<15} {'gap%':>6} {'user s':>7} {'wall s':>7} {'nodes':>8}"
    if "tovik" in names:
        line += " |" + "".join(f" {'/' + name:>7}" for name in names if name != "tovik")
    return line


def row(model, runs, settings, kind):
    line = f"{model.name:<26}"
    for run in runs.values():
        gap = "" if model.objective is None else "none" if run.objective is None else f"{100 * distance(model, run.objective):.3g}"
        line += f" | {verdict(model, run) + ('*' if run.reused else ''):<15} {gap:>6} {run.user_seconds:>7.2f} {run.seconds:>7.2f}"
        line += f" {'' if run.nodes is None else run.nodes:>8}"
    if "tovik" in runs:
        line += " |"
        ours = charged(model, runs["tovik"], settings, kind)
        for name, run in runs.items():
            if name != "tovik":
                line += f" {(ours + 0.01) / (charged(model, run, settings, kind) + 0.01):>7.2f}"
    notes = [run.note for run in runs.values() if run.note]
    return line + (f"   {'; '.join(notes)}" if notes else "")


def summary(results, settings, kind):
    names = list(results[0][1])
    lines = ["", f"{len(results)} models, limit {settings.limit:g} s, gap {GAP:g}, one thread, {kind} seconds, shifted geometric means "
             f"(shift {SHIFT_SECONDS:g} s) with the whole limit for a run without the answer"]
    for name in names:
        verdicts = [verdict(model, runs[name]) for model, runs in results]
        times = [charged(model, runs[name], settings, kind) for model, runs in results]
        integrals = [value for model, runs in results if (value := primal_integral(model, runs[name], settings, kind)) is not None]
        wrong = sum(v.startswith("WRONG") for v in verdicts)
        lines.append(f"{name:>8}: solved {sum(v in ('ok', '?') for v in verdicts)} of {len(results)}, wrong {wrong}, "
                     f"mean {shifted_mean(times):.3f} s, sum {sum(times):.1f} s, primal integral {shifted_mean(integrals):.3f} s, "
                     f"without solution {sum(runs[name].objective is None and model.objective is not None for model, runs in results)}"
                     + (" (of an earlier run)" if any(runs[name].reused for _, runs in results) else ""))
    lines += _ratios(results, settings, kind, names)
    if "tovik" in names:
        lines += _details([(model, runs["tovik"]) for model, runs in results], settings, kind)
    wrong = [f"  {model.name:<26} {name}: {v}, objective {run.objective}, bound {run.bound}, known {model.objective} ({model.status})"
             for model, runs in results for name, run in runs.items() if (v := verdict(model, run)).startswith("WRONG")]
    return lines + ["", f"Wrong answers: {len(wrong)}", *wrong]


def _ratios(results, settings, kind, names):
    lines = []
    for peer in [name for name in names if name != "tovik"] if "tovik" in names else []:
        for label, wanted in (("all", lambda a, b: True), ("solved by both", lambda a, b: a and b), ("solved by one", lambda a, b: a or b)):
            part = [(model, runs) for model, runs in results
                    if wanted(*(verdict(model, runs[name]) in ("ok", "?") for name in ("tovik", peer)))]
            if part:
                ours, theirs = ([charged(model, runs[name], settings, kind) for model, runs in part] for name in ("tovik", peer))
                lines.append(f"   tovik / {peer}, {label} ({len(part)}): {shifted_mean(ours) / max(shifted_mean(theirs), 1e-9):.2f}")
    return lines


def _details(results, settings, kind):
    lines = ["", "tovik: nodes a second, share of the gap that cuts close at the root, primal integral, seconds by phase",
             f"{'model':<26} {'nodes/s':>9} {'root %':>7} {'integral':>9}" + "".join(f" {phase:>10}" for phase in PHASES)]
    closed, rates = [], []
    for model, run in results:
        statistics = run.statistics or {}
        phases = statistics.get("phases") or {}
        root, rate = root_gap_closed(model, run), statistics.get("nodes_per_second")
        if root is not None:
            closed.append(root)
        if rate:
            rates.append(rate)
        integral = primal_integral(model, run, settings, kind)
        lines.append(f"{model.name:<26} {_cell(rate, '.0f'):>9} {_cell(None if root is None else 100 * root, '.1f'):>7} {_cell(integral, '.3f'):>9}"
                     + "".join(f" {_cell((phases.get(phase) or {}).get('seconds'), '.3f'):>10}" for phase in PHASES))
    if closed:
        lines.append(f"Gap closed at the root: {100 * sum(closed) / len(closed):.1f} % on the average of {len(closed)} models")
    if rates:
        lines.append(f"Nodes a second: {math.exp(sum(map(math.log, rates)) / len(rates)):.0f} in the geometric mean of {len(rates)} models")
    return lines


def _cell(value, form):
    return "" if value is None else format(value, form)


def as_json(results, settings, kind, machine):
    return {
        "machine": machine,
        "settings": {"limit": settings.limit, "gap": GAP, "time": kind, "extra": list(settings.extra)},
        "models": {model.name: {name: run.as_dict() | {"verdict": verdict(model, run)} for name, run in runs.items()}
                   for model, runs in results},
    }


def comparison(old, new, time_change=1.25):
    """What changed for tovik between two JSON files: answers first, then times and nodes."""
    answers, times = [], []
    for name, runs in new["models"].items():
        before, after = old["models"].get(name, {}).get("tovik"), runs.get("tovik")
        if before is None or after is None:
            continue
        if before["verdict"] != after["verdict"]:
            answers.append(f"  {name:<26} {before['verdict']} -> {after['verdict']}")
        was, now = before["user_seconds"], after["user_seconds"]
        ratio = (now + 0.1) / (was + 0.1)
        if ratio > time_change or ratio < 1 / time_change:
            times.append((ratio, f"  {name:<26} {was:8.2f} s -> {now:8.2f} s   {before['nodes']} -> {after['nodes']} nodes"))
    lines = ["", f"Changed answers: {len(answers)}", *answers, f"Changed times (more than {time_change:g} times): {len(times)}"]
    return lines + [line for _, line in sorted(times, reverse=True)]
