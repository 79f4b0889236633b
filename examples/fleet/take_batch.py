"""Takes the captures of a batch, and writes their rows as a table.

A capture whose row was made of the same file in the same way is not run again.
"""
import concurrent.futures
import csv
import io
import json
import os
import pathlib
import subprocess
import sys
import tempfile


def version(program):
    try:
        run = subprocess.run([program, "--version"], stdout=subprocess.PIPE, text=True, check=True)
    except OSError as error:
        sys.exit(f"can't run {program}: {error.strerror}")
    return run.stdout.partition("\n")[0]


def read_table(file):
    text = file.read_bytes().decode(errors="surrogateescape")
    return list(csv.reader(io.StringIO(text, newline="")))


def write_table(file, rows):
    with open(file, "w", encoding="utf-8", errors="surrogateescape", newline="") as table:
        csv.writer(table).writerows(rows)


def put(source, target):
    """Where there is no source, there is no target."""
    if source.exists():
        target.parent.mkdir(parents=True, exist_ok=True)
        os.replace(source, target)
    else:
        target.unlink(missing_ok=True)


class batch:
    def __init__(self, wanted, program, tshark_directory):
        self.folder = wanted["folder"]
        self.pages = wanted["pages"]
        self.command = [program, "--each", "--quiet", "--jobs=1", *wanted["options"]]
        if tshark_directory:
            self.command.append(f"--tshark-directory={tshark_directory}")
        self.way = [version(program), version(os.path.join(tshark_directory, "tshark")),
                    wanted["options"], self.pages]

    def take(self, name):
        """The names of the columns and the capture's cells; nothing when no row could be made."""
        row = pathlib.Path("rows", f"{name}.csv")
        stamp = pathlib.Path("rows", f"{name}.stamp")
        made_of = self.stamp_of(name)
        if not (stamp.exists() and stamp.read_text() == made_of):
            with tempfile.TemporaryDirectory(dir="scratch") as scratch:
                place = pathlib.Path(scratch)
                if not self.run(name, place):
                    return None
                base = pathlib.Path(name).name
                put(place / f"{base}.summary.json", pathlib.Path("summaries", f"{name}.summary.json"))
                put(place / "pages" / f"{base}.html", pathlib.Path("report", f"{name}.html"))
                put(place / "row.csv", row)
                # The last, so nothing counts before it is complete.
                (place / "stamp").write_text(made_of)
                put(place / "stamp", stamp)
        return read_table(row)

    def stamp_of(self, name):
        try:
            status = os.stat(os.path.join(self.folder, name))
        except OSError:
            # Its row will say so.
            return json.dumps(self.way)
        return json.dumps([status.st_size, status.st_mtime_ns, *self.way])

    def run(self, name, place):
        """Whether it made a row, whatever that says of the capture."""
        table = place / "row.csv"
        pages = [f"--report={place}/pages"] if self.pages else []
        ended = subprocess.run(
            [*self.command, f"--table={table}", f"--summary={place}", *pages, "--",
             os.path.join(self.folder, name)],
            env={**os.environ, "TMPDIR": str(place.absolute())}, stdin=subprocess.DEVNULL, check=False)
        if ended.returncode not in (0, 1, 2) or not table.exists():
            return False
        rows = read_table(table)
        if len(rows) < 2:
            return False
        page = rows[0].index("page")
        if rows[1][page]:
            # Its place in the folder of all pages.
            rows[1][page] = f"{name}.html"
            write_table(table, rows)
        return True


def main(job):
    wanted = json.loads(pathlib.Path(job.input[0]).read_text())
    names = [name for name, *_ in wanted["captures"]]
    pathlib.Path("scratch").mkdir(exist_ok=True)
    taken = batch(wanted, job.params.program, job.params.tshark_directory)
    with concurrent.futures.ThreadPoolExecutor(job.threads) as threads:
        tables = list(threads.map(taken.take, names))
    missing = [name for name, table in zip(names, tables) if not table]
    if missing:
        sys.exit("no row of " + ", ".join(missing))
    with tempfile.NamedTemporaryFile(dir="scratch", delete=False) as table:
        pass
    write_table(table.name, [tables[0][0], *(rows[1] for rows in tables)])
    os.replace(table.name, job.output[0])


main(snakemake)
