"""Random mixed-integer models of some twenty columns, as MPS files: the shapes that presolve, cuts and heuristics look for."""

_SHAPES = ("rows", "knapsacks", "partition", "charges", "lots", "big_m", "equations", "wide")


class _Model:
    def __init__(self, draws):
        self.draws = draws
        self.columns = []  # (cost, lower, upper, is_integer)
        self.rows = []     # (sense, side, range or None, {column: value})

    def column(self, cost, lower=0, upper=1, is_integer=True):
        self.columns.append((cost, lower, upper, is_integer))
        return len(self.columns) - 1

    def row(self, sense, side, entries, width=None):
        self.rows.append((sense, side, width, {j: v for j, v in entries.items() if v}))

    def text(self):
        lines = ["NAME random", "ROWS", " N cost"] + [f" {row[0]} r{i}" for i, row in enumerate(self.rows)] + ["COLUMNS"]
        for j, (cost, _, _, is_integer) in enumerate(self.columns):
            if is_integer:
                lines.append(f" M{j}a 'MARKER' 'INTORG'")
            lines.append(f" x{j} cost {cost:.12g}")
            lines += [f" x{j} r{i} {row[3][j]:.12g}" for i, row in enumerate(self.rows) if j in row[3]]
            if is_integer:
                lines.append(f" M{j}b 'MARKER' 'INTEND'")
        lines.append("RHS")
        lines += [f" rhs r{i} {row[1]:.12g}" for i, row in enumerate(self.rows)]
        lines.append("RANGES")
        lines += [f" rng r{i} {row[2]:.12g}" for i, row in enumerate(self.rows) if row[2] is not None]
        lines.append("BOUNDS")
        for j, (_, lower, upper, _) in enumerate(self.columns):
            lines.append(f" MI bnd x{j}" if lower is None else f" LO bnd x{j} {lower:.12g}")
            lines.append(f" PL bnd x{j}" if upper is None else f" UP bnd x{j} {upper:.12g}")
        return "\n".join(lines) + "\nENDATA\n"


def draw(draws):
    """The text of an MPS file. Some are infeasible, few unbounded."""
    model = _Model(draws)
    for shape in draws.sample(_SHAPES, draws.choice((1, 1, 2))):
        globals()["_" + shape](model, draws)
    if draws.random() < 0.3:
        _rows(model, draws, 0)
    if not any(column[3] for column in model.columns):
        model.column(draws.randint(-3, 3))
    return model.text()


def _rows(model, draws, columns=8):
    """Rows of any kind over columns of any kind."""
    for _ in range(draws.randint(2, columns) if columns else 0):
        kind = draws.random()
        lower = draws.choice((0, 0, -3, None if kind > 0.9 else 0))
        upper = draws.choice((1, 1, 4, 10, None))
        model.column(draws.randint(-9, 9), lower, upper, kind < 0.7)
    for _ in range(draws.randint(1, 4)):
        chosen = draws.sample(range(len(model.columns)), min(len(model.columns), draws.randint(2, 6)))
        sense = draws.choice("LLGGE")
        side = draws.randint(0, 12) if sense != "G" else draws.randint(-6, 4)
        model.row(sense, side, {j: draws.randint(-5, 9) for j in chosen}, draws.randint(1, 8) if draws.random() < 0.1 else None)


def _knapsacks(model, draws):
    items = [model.column(-draws.randint(1, 40), 0, draws.choice((1, 1, 1, 3))) for _ in range(draws.randint(6, 14))]
    for _ in range(draws.randint(1, 3)):
        weights = {j: draws.randint(3, 40) for j in items}
        model.row("L", sum(weights.values()) // draws.randint(2, 4), weights)


def _partition(model, draws):
    """Covering, packing and partitioning; equal columns give symmetries."""
    sets = [model.column(draws.choice((1, 1, 2, draws.randint(1, 9)))) for _ in range(draws.randint(6, 14))]
    for _ in range(draws.randint(4, 9)):
        model.row(draws.choice("GGLE"), 1, {j: 1 for j in draws.sample(sets, draws.randint(2, 4))})


def _charges(model, draws):
    """Flows on arcs that cost a fixed charge."""
    need = draws.randint(3, 12)
    total = {}
    for _ in range(draws.randint(3, 7)):
        capacity = draws.randint(2, 9)
        flow, opened = model.column(draws.randint(0, 4), 0, None, False), model.column(draws.randint(3, 20))
        model.row("L", 0, {flow: 1, opened: -capacity})
        total[flow] = 1
    model.row(draws.choice("GE"), need, total)


def _lots(model, draws):
    """Lot sizing: stock links the periods."""
    stock = None
    for _ in range(draws.randint(3, 6)):
        made, set_up = model.column(draws.randint(1, 3), 0, None, False), model.column(draws.randint(5, 25))
        rest = model.column(1, 0, None, False)
        model.row("L", 0, {made: 1, set_up: -draws.randint(8, 30)})
        model.row("E", draws.randint(0, 9), {made: 1, rest: -1, **({stock: 1} if stock is not None else {})})
        stock = rest


def _big_m(model, draws):
    """One of two rows holds: sequencing on a machine. Large constants, up to 1e6."""
    large = draws.choice((100, 1000, 1e4, 1e6))
    jobs = [(model.column(draws.randint(0, 3), 0, 60, False), draws.randint(1, 9)) for _ in range(draws.randint(2, 4))]
    for a, (start, length) in enumerate(jobs):
        for other, other_length in jobs[:a]:
            first = model.column(0)
            model.row("L", large - length, {start: 1, other: -1, first: large})
            model.row("L", -other_length, {other: 1, start: -1, first: -large})


def _equations(model, draws):
    """Equations in general integers: often infeasible."""
    some = [model.column(draws.randint(-5, 5), draws.choice((0, -5)), draws.choice((7, 20))) for _ in range(draws.randint(3, 6))]
    for _ in range(draws.randint(1, 2)):
        model.row("E", draws.randint(5, 60), {j: draws.randint(-4, 15) for j in some})


def _wide(model, draws):
    """Coefficients over many powers of ten."""
    some = [model.column(draws.randint(-9, 9), 0, draws.choice((1, 5)), draws.random() < 0.7) for _ in range(draws.randint(4, 8))]
    for _ in range(draws.randint(1, 4)):
        entries = {j: draws.choice((-1, 1, 1)) * draws.randint(1, 99) * 10.0 ** draws.randint(-2, 4) for j in draws.sample(some, 3)}
        model.row(draws.choice("LG"), sum(entries.values()) / 2, entries)
