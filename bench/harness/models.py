"""Models to run, their known answers, and the cache of uncompressed copies."""

import bz2
import csv
import gzip
import os
import re
import shutil
import tempfile
from dataclasses import dataclass
from pathlib import Path

MODEL_NAME = re.compile(r"\.(mps|lp|mpsx|rlp)(\.(bz2|gz))?$", re.IGNORECASE)


@dataclass
class Model:
    name: str  # path below the folder, without extensions: what tables print
    source: Path
    status: str = ""  # known status, empty when unknown; "best": the best objective that is known, with the best bound
    objective: float | None = None
    bound: float | None = None
    relaxed: bool = False  # solve as an LP: integer marks are ignored
    nonzeros: int = 0
    ignored_constant: float = 0.0  # objective constant that tovik's reader ignores, see objective_constant


def default_folder(root, kind):
    """The models of one kind that lie beside the repository, or beside a folder that holds it."""
    candidates = [parent / "shared" / "models" / kind for parent in root.parents]
    return next((folder for folder in candidates if folder.is_dir()), candidates[0])


def find(folder, pattern=None, names=None):
    """The models below `folder` whose name matches `pattern` and, when given, stands in the list `names`."""
    folder = Path(folder)
    sources = [folder] if folder.is_file() else sorted(p for p in folder.rglob("*") if MODEL_NAME.search(p.name))
    root = folder.parent if folder.is_file() else folder
    references = {}
    models = []
    for source in sources:
        name = MODEL_NAME.sub("", source.relative_to(root).as_posix())
        if pattern and not re.search(pattern, name):
            continue
        if names is not None and name not in names and Path(name).name not in names:
            continue
        models.append(_with_answer(Model(name, source), references))
    return models


def read_list(file):
    """One model name a line, with or without its folder; '#' starts a comment."""
    lines = (line.split("#")[0].strip() for line in Path(file).read_text().splitlines())
    return {MODEL_NAME.sub("", line) for line in lines if line}


def _with_answer(model, references):
    """From the nearest reference.csv that names the model, by its path below that folder or one above it."""
    path = model.source.resolve()
    for folder in path.parents:
        rows = _reference(folder, references)
        if rows is None:
            continue
        model.relaxed = path.relative_to(folder).as_posix().startswith("lp/")
        row = next((rows[key] for base in path.parents if (key := path.relative_to(base).as_posix()) in rows), None)
        if row:
            model.status = row["status"]
            model.objective = float(row["objective"]) if row["objective"] else None
            model.bound = float(row["bound"]) if row.get("bound") else None
            model.nonzeros = int(row["nonzeros"] or 0)
            break
    return model


def _reference(folder, known):
    if folder not in known:
        file = folder / "reference.csv"
        known[folder] = None
        if file.is_file():
            with open(file, newline="") as stream:
                known[folder] = {row["file"]: row for row in csv.DictReader(stream)}
    return known[folder]


def uncompressed(model):
    """The path of an uncompressed copy, made once, so that no program is charged for decompression."""
    suffix = model.source.suffix.lower()
    if suffix not in (".bz2", ".gz"):
        return model.source
    cache = Path(tempfile.gettempdir()) / "tovik-models"
    origin = model.source.resolve()
    target = cache / origin.parent.relative_to(origin.anchor) / origin.stem
    if not target.exists() or target.stat().st_mtime < origin.stat().st_mtime:
        target.parent.mkdir(parents=True, exist_ok=True)
        partial = target.with_suffix(f".part{os.getpid()}")
        opener = bz2.open if suffix == ".bz2" else gzip.open
        with opener(origin) as packed, open(partial, "wb") as plain:
            shutil.copyfileobj(packed, plain)
        partial.replace(target)
    return target


def objective_constant(path):
    """The constant that a right-hand side of the objective row stands for (its value, negated). References count it; the
    library's MPS reader ignores such a value with a warning, so its objective differs by just this much. Reads in pieces:
    the memory of this process shows in the peak of the programs it starts."""
    with open(path, "rb") as stream:
        objective = next((fields[1] for fields in map(bytes.split, stream) if fields[:1] == [b"N"] and len(fields) > 1), None)
        if objective is None or not _skip_to(stream, b"\nRHS"):
            return 0.0
        stream.readline()
        for line in stream:
            if line[:1] != b" ":
                break
            fields = line.split()
            # A name of the vector may stand first; then pairs of row and value.
            pairs = fields[len(fields) % 2 :]
            for row, value in zip(pairs[::2], pairs[1::2]):
                if row == objective:
                    return -float(value)
    return 0.0


def _skip_to(stream, mark, piece=1 << 20):
    """Places the stream just behind the next `mark`; False when there is none."""
    tail = b""
    while block := stream.read(piece):
        text = tail + block
        place = text.find(mark)
        if place >= 0:
            stream.seek(place + len(mark) - len(text), 1)
            return True
        tail = text[-len(mark) :]
    return False
