#!/usr/bin/env python3
"""What other programs noted about the example databases.

expectations.py textkeys FILE.json             prints UTF8HEX TAB ASCENDING TAB DESCENDING for each known text key
expectations.py check FILE.json MEMBER DUMP    compares DUMP with the noted tables and indexes, prints the differences
                                               or "as noted"; MEMBER ("" for none) picks one database of a file that
                                               describes several

DUMP has the lines, fields separated by TABs: table NAME ROWS, index TABLE NAME COLUMNS FLAGS (a 0 or 1 for each of
FLAGS), and behind each index line key HEX for each of its entries in order.
"""
import hashlib
import json
import sys

FLAGS = ("pk", "unique", "ignorenulls", "required")
mode, file, *rest = sys.argv[1:]
with open(file, encoding="utf-8") as described:
    data = json.load(described)


def expected():
    for name, table in data["tables"].items():
        yield ("table", name), {"rows": table["rows"]}
        for index in table["indexes"]:
            facts = {"columns": ",".join(index["columns"]), "entries": index["entries"], "keys": index["keys_sha256"]}
            if "flags" in index:
                facts["flags"] = ",".join(index["flags"])
            for end in ("first_key", "last_key"):
                if index.get(end):
                    facts[end] = index[end]
            yield ("index", name, index.get("name") or index["names"][0]), facts
    for name, table in data.get("system_tables", {}).items():
        yield ("table", name), {"rows": table["rows"]}
        for index in table["indexes"]:
            yield ("index", name, index["names"][0]), {"entries": index["entries"]}


def dumped(path):
    facts = {}
    keys = []
    with open(path, encoding="utf-8") as lines:
        for kind, *fields in (line.rstrip("\n").split("\t") for line in lines):
            if kind == "table":
                facts["table", fields[0]] = {"rows": int(fields[1])}
            elif kind == "index":
                keys = []
                flags = ",".join(flag for flag, bit in zip(FLAGS, fields[3]) if bit == "1")
                facts["index", fields[0], fields[1]] = {"columns": fields[2], "flags": flags, "list": keys}
            else:
                keys.append(fields[0])
    for fact in facts.values():
        if "list" in fact:
            keys = fact.pop("list")
            digest = hashlib.sha256("".join(key + "\n" for key in keys).encode()).hexdigest()
            fact.update(entries=len(keys), keys=digest, first_key=keys[0] if keys else "", last_key=keys[-1] if keys else "")
    return facts


if mode == "textkeys":
    for text, ascending, descending in data["text_keys"]["keys"]:
        utf8 = text.encode("utf-16-le", "surrogatepass").decode("utf-16-le", "replace").encode()
        print(utf8.hex(), ascending, descending, sep="\t")
else:
    if rest[0]:
        data = data[rest[0]]
    read = dumped(rest[1])
    noted = dict(expected())
    wrong = [f"{what}: expected {facts}, found {found}" for what, facts in noted.items()
             if (found := {key: read.get(what, {}).get(key) for key in facts}) != facts]
    wrong += [f"{what} is not noted" for what in read if what[0] == "table" and what not in noted
              and not what[1].startswith("MSys")]
    print("\n".join(wrong) or "as noted")
