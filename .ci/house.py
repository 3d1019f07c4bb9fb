"""What the house checks share: the files of the project, and one way to complain."""
import subprocess
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent


def files(*suffixes):
    """Tracked files with one of the suffixes (all files without any), as paths relative to the root."""
    names = subprocess.run(["git", "-c", f"safe.directory={ROOT}", "ls-files", "-z"], cwd=ROOT, check=True,
                           stdout=subprocess.PIPE).stdout.decode().split("\0")
    return [Path(n) for n in names if n and (not suffixes or Path(n).suffix in suffixes) and (ROOT / n).is_file()]


def text(path):
    return (ROOT / path).read_text(encoding="utf-8", errors="replace")


def finish(what, complaints, count):
    """Prints the complaints and ends the check."""
    for complaint in complaints:
        print(complaint)
    if count == 0:
        complaints = ["nothing was checked"]
        print(complaints[0])
    print(f"{what}: {count} checked, {len(complaints)} wrong")
    sys.exit(1 if complaints else 0)
