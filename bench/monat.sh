#!/usr/bin/env bash
# Whether the resident program grows over a month: one process, whose clocks are moved through it.
#
#   bench/monat.sh [BUILD-FOLDER [DAYS]]        default: build, 30 days
#
# Prints the memory at the end of each day, and ends with 1 when it has grown since the second. A day takes a
# quarter of a minute. Needs the targets wendel, quillon, jetsql, tvstandin and wochenuhr.
set -eu
. "$(dirname "$0")/desktop.sh" "${1:-}"
days=${2:-30}
export WENDEL_WOCHENUHR=$build/tests/woche/libwochenuhr.so
[ -e "$WENDEL_WOCHENUHR" ] || { echo "monat: $WENDEL_WOCHENUHR is not built" >&2; exit 2; }
desktop $((120 + 120 * days)) --tray xembed -- /usr/bin/python3 "$here/monat.py" "$days"
