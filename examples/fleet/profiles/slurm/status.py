#!/usr/bin/env python3
"""Tells Snakemake how a job of Slurm fares: success, failed or running.

    status.py JOB
"""
import re
import subprocess
import sys

# Those from which a job gets on.
UNFINISHED = {"PENDING", "CONFIGURING", "RUNNING", "COMPLETING", "SUSPENDED", "STOPPED", "RESIZING",
              "SIGNALING", "STAGE_OUT", "REQUEUED", "REQUEUE_FED", "REQUEUE_HOLD", "RESV_DEL_HOLD",
              "SPECIAL_EXIT", "REVOKED"}


def printed(*command):
    try:
        return subprocess.run(command, text=True, capture_output=True, check=False)
    except FileNotFoundError as error:
        return subprocess.CompletedProcess(command, 127, "", str(error))


def state_of(job):
    """As squeue names it. "" when nothing is known of the job, nothing when Slurm does not answer."""
    shown = printed("scontrol", "--oneliner", "show", "job", job)
    state = re.search(r"\bJobState=(\w+)", shown.stdout)
    if state:
        return state[1]
    if "Invalid job id" not in shown.stderr:
        return None
    # Slurm forgets a job some minutes after its end, but for accounting, which not every site has.
    recorded = printed("sacct", "--noheader", "--parsable2", "--allocations", "--format=State",
                       f"--jobs={job}")
    return recorded.stdout.partition("\n")[0].partition(" ")[0]


# With several clusters sbatch says "JOB;CLUSTER".
state = state_of(sys.argv[1].partition(";")[0])
if state is None or state in UNFINISHED:
    print("running")
else:
    print("success" if state == "COMPLETED" else "failed")
