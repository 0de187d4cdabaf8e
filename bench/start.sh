#!/usr/bin/env bash
# From the start of the process to the icon in the tray, beside the bare tray program (leer/) in the same run.
#
#   bench/start.sh [BUILD-FOLDER [RUNS [PROGRAM...]]]        default: build, 15 runs
#
# Starts the real program (/m) over a database without data and over a copy of tvdaten-gross.mdb, by turns with the
# bare program and any others that are named, say the program before a change. Ends with 1 when the bar is missed.
# On a busy machine trust the processor time.
set -eu
. "$(dirname "$0")/desktop.sh" "${1:-}"
runs=${2:-15}
shift $(($# < 2 ? $# : 2))
desktop $((60 + 30 * runs)) -- /usr/bin/python3 "$here/start.py" "$runs" "$@"
