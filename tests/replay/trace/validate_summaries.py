#!/usr/bin/python3 -B
"""Holds summaries of kivra-replay to their schema. Debian's Python, for its jsonschema.

    validate_summaries.py SCHEMA SUMMARY...

Prints a line for each place that does not fit, and ends with 1 if there is one.
"""
import json
import pathlib
import sys

import jsonschema


def main():
    schema = json.loads(pathlib.Path(sys.argv[1]).read_text())
    jsonschema.Draft202012Validator.check_schema(schema)
    validator = jsonschema.Draft202012Validator(schema)
    complaints = [f"{summary}: {error.json_path}: {error.message}" for summary in sys.argv[2:]
                  for error in validator.iter_errors(json.loads(pathlib.Path(summary).read_text()))]
    print("".join(line + "\n" for line in complaints), end="")
    sys.exit(1 if complaints else 0)


if __name__ == "__main__":
    main()
