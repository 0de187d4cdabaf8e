#!/usr/bin/env python3
"""Reads every table of the example databases through jetsql and compares the rows with the digests that another
reader of the format made of them (FILE.json beside FILE.mdb). Exit code 77: the example files are not there."""
import hashlib
import json
import os
import subprocess
import sys


def rows_of(jetsql, database, table):
    run = subprocess.run([jetsql, database, f"Select * from [{table}]"], capture_output=True, check=True)
    lines = run.stdout.split(b"\n")
    assert lines[-1] == b"", "the output ends with a line end"
    return lines[0].decode().split("\t"), [line.split(b"\t") for line in lines[1:-1]]


def as_digested(cell, column):
    """The digests hold yes/no as 1/0, jetsql prints the dialect's -1/0. The real files' descriptions name no types,
    and their reader did not know the byte of the pound sign."""
    if column.get("type", "BOOLEAN") == "BOOLEAN" and cell == b"-1":
        return b"1"
    return "\ufffd".encode() if "type" not in column and cell == "£".encode() else cell


def digest(lines):
    return hashlib.sha256(b"".join(line + b"\n" for line in sorted(lines))).hexdigest()


def failures(jetsql, folder, name, expected):
    for table, content in expected["tables"].items():
        header, rows = rows_of(jetsql, os.path.join(folder, name), table)
        columns = [column if isinstance(column, dict) else {"name": column} for column in content["columns"]]
        if header != [column["name"] for column in columns]:
            yield f"{name}, {table}: header {header}"
        cells = [[as_digested(c, column) for c, column in zip(row, columns)] for row in rows]
        if len(rows) != content["rows"]:
            yield f"{name}, {table}: {len(rows)} rows instead of {content['rows']}"
        if digest([b"\t".join(row) for row in cells]) != content["rows_sha256"]:
            known = content.get("columns_sha256", {})
            wrong = [
                column["name"]
                for i, column in enumerate(columns)
                if digest([row[i] for row in cells]) != known.get(column["name"])
            ]
            yield f"{name}, {table}: rows differ, columns {wrong}"


def described(folder, name):
    with open(os.path.join(folder, name), encoding="utf-8") as file:
        return json.load(file)


def main():
    jetsql, folder = sys.argv[1:]
    if not os.path.isdir(folder):
        print(f"skipped: no example files in {folder}")
        return 77
    files = [(f"{name}.mdb", described(folder, f"{name}.json")) for name in ("tvdaten-klein", "tvdaten-gross", "typen")]
    real = described(folder, os.path.join("echte", "real-files.json"))
    files += [(os.path.join("echte", name), facts) for name, facts in real.items()]
    found = [failure for name, facts in files for failure in failures(jetsql, folder, name, facts)]
    print("\n".join(found) or "all tables as expected")
    return 1 if found else 0


sys.exit(main())
