#!/usr/bin/env bash
# What the resident program costs while nothing happens, and whether many notices make it grow.
#
#   bench/ruhe.sh [BUILD-FOLDER [NOTICES]]        default: build, 40 notices
#
# Runs the real program hidden (/m), over a copy of tvdaten-gross.mdb, in a private desktop with a tray. Prints
# each value with its bar and ends with 1 when one is missed. Takes two minutes and 3 s for each notice; the
# machine should be idle otherwise.
#
# The toolkit's unchanged pages count as private for a program that is alone with them and as shared as soon as a
# second one maps them, which on a desktop is the rule. The bar on private memory holds for the second case: a
# bare tray program (leer/) runs beside ours and is measured, too, as the baseline of the same run.
set -eu
. "$(dirname "$0")/desktop.sh" "${1:-}"
notices=${2:-40}
desktop $((200 + 6 * notices)) --tray xembed -- /usr/bin/python3 "$here/ruhe.py" "$notices"
