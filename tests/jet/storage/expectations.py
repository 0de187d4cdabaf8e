#!/usr/bin/env python3
"""Prints the expected contents of a database file, as another program noted them, one fact a line.

Usage: expectations.py FILE.json [MEMBER]; MEMBER picks one database of a file that describes several.
Fields are separated by TABs:
  table   NAME ROWS DIGEST
  column  TABLE NAME TYPE DIGEST          (empty where nothing is noted)
  index   TABLE NAME FLAGS COLUMNS ENTRIES FIRSTKEY LASTKEY DIGEST
  system  TABLE ROWS ENTRIES,ENTRIES,...  (system tables: number of rows, entries of each index)
  textkey UTF8HEX ASCENDING DESCENDING
"""
import json
import sys

data = json.load(open(sys.argv[1], encoding="utf-8"))
if len(sys.argv) > 2:
    data = data[sys.argv[2]]


def emit(*fields):
    print("\t".join(str(f) for f in fields))


for name, table in data["tables"].items():
    emit("table", name, table["rows"], table["rows_sha256"])
    for column in table["columns"]:
        if isinstance(column, str):
            emit("column", name, column, "", "")
        else:
            emit("column", name, column["name"], column["type"], table["columns_sha256"][column["name"]])
    for index in table["indexes"]:
        emit("index", name, index.get("name") or index["names"][0], ",".join(index.get("flags", [])),
             ",".join(index["columns"]), index["entries"], index.get("first_key", ""), index.get("last_key", ""),
             index["keys_sha256"])
for name, table in data.get("system_tables", {}).items():
    emit("system", name, table["rows"], ",".join(str(i["entries"]) for i in table["indexes"]))
for text, ascending, descending in data.get("text_keys", {}).get("keys", []):
    emit("textkey", text.encode("utf-16-le", "surrogatepass").decode("utf-16-le", "replace").encode().hex(),
         ascending, descending)
