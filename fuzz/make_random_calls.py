#!/usr/bin/env python3
"""Writes the table of random calls from the public header: for each exported routine a function that draws its arguments
by type and name, with arrays of exactly the size that the contract asks for, and calls it. A routine whose parameters have
no rule stops the build, so that what is exported tomorrow is called at random too.

Usage: make_random_calls.py HEADER OUTPUT"""
import re
import sys

# What the process itself would have to survive: memory of the caller, streams, the process environment, mutexes, and
# sorting an array of the caller's whose length nobody else knows.
LEFT_OUT = {
    "TVKfopen", "TVKfclose", "TVKfputs", "TVKmalloc", "TVKrealloc", "TVKfree", "TVKmemcpy", "TVKstrlen", "TVKstrcpy",
    "TVKputenv", "TVKEgeneric_lock", "TVKEgeneric_unlock", "TVKEisort", "TVKEinsort",
}

# Number of items that begin..end, indices and marks of a routine speak of.
ITEMS = [
    (r"NET.*(node|supply|getpi|getslack)", "nodes"), (r"NET", "arcs"), (r"sos", "sets"), (r"indconstr", "indicators"),
    (r"usercut", "user_cuts"), (r"lazyconstraint", "lazy_constraints"), (r"mipstart", "starts"),
    (r"qconstr", "quadratic_rows"), (r"(del|delset)solnpoolsolns", "pool_members"),
    (r"solnpool.*filter", "filters"),
    (r"solnpoolslack", "rows"),
    (r"(getpi|getslack|getax|rowinfeas|rows|getrhs|chgrhs|sense|rngval|rowname|rhssens|baseinv|tableaurow|origrowind|pivotin)$",
     "rows"),
    (r"", "columns"),
]

# Arrays by name: the ints that give their size, the first that the routine has.
COUNTED = {
    "colname": ["numcols", "ccnt"], "rowname": ["numrows", "rcnt"], "newname": ["cnt"], "sosname": ["numsos"],
    "nodename": ["numnodes", "ncnt"], "arcname": ["numarcs", "acnt"], "mipstartname": ["mcnt"],
    "matbeg": ["numcols"], "matcnt": ["numcols"], "obj": ["numcols", "numarcs", "ccnt", "acnt"],
    "lb": ["numcols", "numarcs", "ccnt", "acnt"], "ub": ["numcols", "numarcs", "ccnt", "acnt"],
    "rhs": ["numrows", "rcnt"], "rngval": ["numrows", "rcnt"], "sense": ["numrows", "rcnt", "cnt"],
    "cmatbeg": ["ccnt"], "cmatind": ["nzcnt", "cmatspace"], "cmatval": ["nzcnt", "cmatspace"], "rmatbeg": ["rcnt"],
    "rmatind": ["nzcnt", "rmatspace"], "rmatval": ["nzcnt", "rmatspace"], "ctype": ["ccnt", "cnt"],
    "rowlist": ["numcoefs"], "collist": ["numcoefs"], "vallist": ["numcoefs"],
    "indices": ["cnt", "space"], "lu": ["cnt"], "bd": ["cnt"], "values": ["nzcnt", "cnt", "startspace"],
    "sostype": ["numsos"], "sosbeg": ["numsos"], "sosind": ["numsosnz", "sosspace"], "soswt": ["numsosnz", "sosspace"],
    "linind": ["linnzcnt", "nzcnt", "linspace", "space"], "linval": ["linnzcnt", "nzcnt", "linspace", "space"],
    "quadrow": ["quadnzcnt", "quadspace"], "quadcol": ["quadnzcnt", "quadspace"], "quadval": ["quadnzcnt", "quadspace"],
    "beg": ["mcnt"], "varindices": ["nzcnt", "startspace"], "effortlevel": ["mcnt"], "mipstartindices": ["mcnt"],
    "priority": ["cnt", "space"], "direction": ["cnt", "space"], "qmatind": ["qmatspace"], "qmatval": ["qmatspace"],
    "supply": ["numnodes", "ncnt"], "tail": ["numarcs", "acnt", "cnt"], "head": ["numarcs", "acnt", "cnt", "len"],
    "arc": ["arcspace"], "namestore": ["storespace"], "numbers": ["space"], "ind": ["len", "nzcnt", "space"], "val": ["len", "nzcnt", "space"],
    "weight": ["nzcnt", "space"], "refval": ["nzcnt", "space"],
    "pind": ["plen"], "pval": ["plen"], "rlist": ["rlen"], "clist": ["clen"], "downobj": ["cnt"], "upobj": ["cnt"],
    "norm": ["len"], "cutind": ["nzcnt"], "cutval": ["nzcnt"], "varind": ["varcnt"], "varlu": ["varcnt"], "varbd": ["varcnt"],
}

# Arrays of one entry for each item of the problem; the first rule that fits.
SIZED = [
    (r"TVKgetstatistics|TVKgetreadwarnings|TVKget(prob|obj)name|TVKNETgetprobname", "buffer", "space"),
    (r"", "buffer|default_text", "TEXT"), (r"TVKgetparamname", "name", "TEXT"),
    (r"crushform", "pind|pval", "reduced_columns"), (r"uncrushform", "ind|val", "columns"),
    (r"TVKcrushx|TVKuncrushx", "prex", "reduced_columns"), (r"crushpi", "prepi", "reduced_rows"),
    (r"TVKgetprestat", "ocstat", "reduced_columns"), (r"TVKgetprestat", "orstat", "reduced_rows"),
    (r"TVKgetcallbackbranchconstraints", "rhs|sense|rmatbeg|rmatind|rmatval", "columns"),
    (r"TVKgetbasehead", "x|head", "rows"), (r"TVKgetdnorms", "norm|head", "rows"),
    (r"TVKNET", "astat|x|dj", "arcs"), (r"TVKNET", "nstat|pi|slack", "nodes"),
    (r"", "cstat|pcstat|cprim|cdual|dj|x|ray|columns|qsepvec|qmatbeg|qmatcnt|ctype", "columns"),
    (r"", "rstat|prstat|rprim|rdual|pi|slack|dnorm|row|column|slacks|vector|y", "rows"),
]

SCALARS = {"begin", "end"}


def parameters(text):
    parts, depth, current = [], 0, ""
    for c in text:
        depth += (c == "(") - (c == ")")
        if c == "," and depth == 0:
            parts.append(current)
            current = ""
        else:
            current += c
    parts.append(current)
    return [re.sub(r"\s+", " ", p).strip() for p in parts]


def routines(header):
    text = re.sub(r"/\*.*?\*/", "", header, flags=re.S)
    found = re.findall(r"^TVK_API\s+([^;(]*?)\s*\b(TVK\w+)\s*\((.*?)\)\s*(?:__attribute__\(\(.*?\)\))?\s*;", text,
                       flags=re.S | re.M)
    return [(result.strip(), name, parameters(arguments)) for result, name, arguments in found]


class Routine:
    def __init__(self, result, name, arguments):
        self.result, self.name = result, name
        self.arguments = arguments
        self.lines = []
        split = [re.match(r"(.*?)(\w+)$", a) for a in arguments]
        self.ints = {m.group(2) for m in split if m and m.group(1).strip() == "int"}
        self.items = next(items for pattern, items in ITEMS if re.search(pattern, name))

    def size(self, parameter, output):
        ranged = "begin" in self.ints
        for count in COUNTED.get(parameter, []):
            if count in self.ints:
                return f"c.size({count})"
        if output and ranged:
            return "c.extent(begin, end)"
        if parameter == "delstat":
            return f"c.{self.items}()"
        if parameter in ("matind", "matval"):
            return "c.counted_end(matbeg, matcnt, numcols)"
        if self.name == "TVKcopyquad" and parameter in ("qmatind", "qmatval"):
            return "c.counted_end(qmatbeg, qmatcnt, c.columns())"
        for routine, names, size in SIZED:
            if re.search(routine, self.name) and re.fullmatch(names, parameter):
                if size == "TEXT":
                    return "Caller::kText"
                return "c.size(space)" if size == "space" else f"c.{size}()"
        raise SystemExit(f"{self.name}: no rule for the size of {parameter}")

    def draw(self, kind, parameter):
        """The expression that draws one argument."""
        items = f"c.{self.items}()"
        if kind == "int":
            if parameter in SCALARS:
                return f'c.{parameter}_of({items})'
            return f'c.integer("{parameter}", {items})'
        if kind == "double":
            return "c.real()"
        simple = {
            "const char *": None, "volatile int *": "c.terminate_flag()", "FILE *": "c.file()",
            "ChannelHandle": "c.channel()", "ConstNetProbHandle": "c.network()", "NetProbHandle": "c.network()",
        }
        if simple.get(kind):
            return simple[kind]
        if parameter == "cbdata":
            return "c.callback_data()"
        if parameter == "result_p":
            return "c.out<double>(1)"
        if kind == "int *" and parameter.endswith("_p"):
            return "c.out<int>(1)"
        if kind == "void *":
            return "c.anything()"
        if kind == "double *" and parameter.endswith("_p"):
            return "c.out<double>(1)"
        if kind == "char *" and parameter.endswith("_p"):
            return "c.out<char>(1)"
        if kind in ("FILE **", "void **", "ChannelHandle *", "ConstProbHandle *", "ProbHandle *") and parameter != "channel_p":
            return f"c.out<{kind[:-1].strip()}>(1)"
        if kind == "const char *":
            if parameter in ("sense", "ctype", "lu", "varlu", "sostype"):
                return f'c.letters("{parameter}", {self.size(parameter, False)})'
            return f'c.text("{parameter}")'
        if kind == "char **" and parameter == "name":
            return "c.out<char*>(c.extent(begin, end))"
        if kind in ("char **", "TVKnames"):
            return f"c.names({self.size(parameter, False)})"
        if kind == "const int *":
            size = self.size(parameter, False)
            limit = next((n for n in ("numsosnz", "nzcnt") if n in self.ints), None)
            bound = f"c.size({limit})" if limit and parameter.endswith("beg") else items
            if parameter in ("cutind", "varind", "sosind", "linind", "varindices", "quadrow", "quadcol", "collist", "qmatind", "ind"):
                bound = "c.columns()"
            if parameter == "pind":
                bound = "c.reduced_columns()"
            if parameter in ("rowlist", "rmatind", "matind", "cmatind"):
                bound = {"rmatind": "c.columns() + c.small(\"ccnt\")", "rowlist": "c.rows()", "cmatind": "c.rows()",
                         "matind": "c.size(numrows)"}[parameter]
            if parameter in ("tail", "head") and self.name.startswith("TVKNET"):
                bound = "c.size(numnodes)" if "numnodes" in self.ints else "c.nodes()"
            return f'c.ints("{parameter}", {size}, {bound})'
        if kind == "const double *":
            return f"c.reals({self.size(parameter, False)})"
        if kind == "int *" and parameter == "delstat":
            return f'c.marks({self.size(parameter, True)})'
        if kind == "int *" and parameter == "keys":
            return f'c.marks({self.size(parameter, True)})'
        if kind == "double *" and parameter == "vector":
            return f"c.changing_reals({self.size(parameter, True)})"
        if kind in ("int *", "double *", "char *"):
            return f"c.out<{kind[:-1].strip()}>({self.size(parameter, True)})"
        raise SystemExit(f"{self.name}: no rule for {kind} {parameter}")

    def body(self):
        names, declared = [], {}
        for argument in self.arguments:
            if argument == "void":
                continue
            if argument == "...":
                names.append("1, 2.5, c.plain_text()")
                continue
            if "(*" in argument:
                parameter = re.search(r"\(\*+(\w+)\)", argument).group(1)
                which = "place_of_function()" if "(**" in argument else \
                    f"function({4 if parameter == 'msgfunction' else 40})"
                self.lines.append(f"  const auto {parameter} = c.{which};")
                names.append(parameter)
                continue
            kind, parameter = re.match(r"(.*?)(\w+)$", argument).groups()
            declared[parameter] = kind.strip()
            names.append(parameter)
        handles = {"ConstEnvHandle": "c.environment()", "EnvHandle": "c.environment()",
                   "ConstProbHandle": "c.problem()", "ProbHandle": "c.changing_problem()"}
        owners = {"env_p": "c.closed_environment()", "child_p": "c.closed_environment()", "lp_p": "c.freed_problem()", "net_p": "c.network()",
                  "channel_p": "c.channel()"}
        for parameter, kind in declared.items():
            if kind in handles:
                self.lines.append(f"  {kind} {parameter} = {handles[kind]};")
        for parameter, kind in declared.items():
            if parameter in owners:
                self.lines.append(f"  {kind[:-1].strip()} {parameter}_value = {owners[parameter]};")
                self.lines.append(f"  {kind} {parameter} = c.or_null(&{parameter}_value);")
        late = {"matind", "matval", "qmatind", "qmatval"}
        ordered = sorted(declared, key=lambda p: (declared[p] != "int", p == "end", p in late))
        for parameter in ordered:
            kind = declared[parameter]
            if kind in handles or parameter in owners:
                continue
            space = "" if kind.endswith("*") else " "
            self.lines.append(f"  {kind}{space}{parameter} = {self.draw(kind, parameter)};")
        call = f"{self.name}({', '.join(names)})"
        if self.result == "int":
            self.lines.append(f"  c.returned({call});")
        elif self.result in ("EnvHandle", "ProbHandle", "NetProbHandle", "ChannelHandle"):
            self.lines.append(f"  c.made({'env, ' if 'env' in declared else ''}{call});")
        else:
            self.lines.append(f"  static_cast<void>({call});" if self.result != "void" else f"  {call};")
        borrowed = {"TVKgetredlp": "redlp_p", "TVKgetcallbacknodelp": "nodelp_p", "TVKgetcallbacklp": "lp_p"}
        if self.name in borrowed:
            self.lines.append(f"  c.borrowed(env, {borrowed[self.name]});")
        return "\n".join(self.lines)


def main():
    header, output = sys.argv[1:]
    with open(header, encoding="utf-8") as file:
        chosen = [r for r in routines(file.read()) if r[1] not in LEFT_OUT]
    out = ['#include "fuzz/random_calls.h"', "", "namespace tovik::fuzz {", "namespace {", ""]
    for result, name, arguments in chosen:
        out += [f"void call_{name}(Caller& c) {{", Routine(result, name, arguments).body(), "}", ""]
    out += ["}  // namespace", "", "const std::vector<RandomCall>& random_calls() {",
            "  static const std::vector<RandomCall> kCalls = {"]
    out += [f'      {{"{name}", call_{name}}},' for _, name, _ in chosen]
    out += ["  };", "  return kCalls;", "}", "", "}  // namespace tovik::fuzz", ""]
    with open(output, "w", encoding="utf-8") as file:
        file.write("\n".join(out))


main()
