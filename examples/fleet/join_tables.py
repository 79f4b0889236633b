"""Joins the batches' tables to that of all captures, and writes the page that shows it."""
import pathlib
import shutil
import subprocess
import sys


def rows_size(file):
    """How many bytes stand behind the line with the names of the columns."""
    with open(file, "rb") as table:
        table.readline()
        return file.stat().st_size - table.tell()


def main(job):
    table, page = (pathlib.Path(file) for file in job.output)
    batches = [pathlib.Path(file) for file in job.input]
    ended = subprocess.run([job.params.program, "--each", "--from-tables", "--quiet", f"--table={table}",
                            f"--report={page.parent}", "--", *batches],
                           stdin=subprocess.DEVNULL, check=False)
    # It says 2 where it could not go on, and where no capture could be read.
    if ended.returncode not in (0, 1) and not (
            ended.returncode == 2 and table.exists() and page.exists() and
            rows_size(table) == sum(map(rows_size, batches))):
        sys.exit("the batches' tables could not be joined")
    # What stands for captures as they were, and what jobs left that were killed.
    in_use = {batch.stem for batch in batches}
    for file in pathlib.Path("batches").iterdir():
        if file.stem not in in_use:
            file.unlink()
    shutil.rmtree("scratch", ignore_errors=True)


main(snakemake)
