#!/usr/bin/env bash
# Whether a thousand notices leave somebody in peace who types into another program.
#
#   bench/tippen.sh [BUILD-FOLDER [NOTICES]]      default: build, 1000 notices
#
# The window test of the same name, at length: text, space and Return, a key every 50 ms, a notice every 3 s, each
# closed by its close box once it has been seen. Reports how many came, how many were answered by the typing, how
# many keys were typed and how many arrived; ends with 1 when a notice was answered or a key lost. Takes 3 s for
# each notice (50 minutes in all); the machine should be idle otherwise.
set -eu
here=$(cd "$(dirname "$0")" && pwd)
root=$(dirname "$here")
build=$(cd "${1:-$root/build}" && pwd)
notices=${2:-1000}
[ -x "$build/bin/wendel" ] || { echo "tippen: $build/bin/wendel is not built" >&2; exit 2; }
export WENDEL_PROGRAMM=$build/bin/wendel WENDEL_DATEN=${WENDEL_DATEN:-$root/../shared/data} PYTHONDONTWRITEBYTECODE=1
exec "$root/tests/tools/headless-desktop" --timeout $((120 + 4 * notices)) -- \
  /usr/bin/python3 "$root/tests/desktop/tippen.py" "$notices"
