# Sourced by the measurements of the real program: builds the bare tray program (leer/) and names what is measured.
#
#   . desktop.sh BUILD-FOLDER
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
root=$(dirname "$here")
build=$(cd "${1:-$root/build}" && pwd)
[ -x "$build/bin/wendel" ] || { echo "$(basename "$0"): $build/bin/wendel is not built" >&2; exit 2; }
cmake -S "$here/leer" -B "$build/bench-leer" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build "$build/bench-leer" >/dev/null
export WENDEL_LEER=$build/bench-leer/leer
export WENDEL_PROGRAMM=$build/bin/wendel WENDEL_DATEN=${WENDEL_DATEN:-$root/../shared/data} PYTHONDONTWRITEBYTECODE=1
# desktop LIMIT-IN-SECONDS [OPTIONS] -- COMMAND
desktop() {
  local limit=$1; shift
  exec "$root/tests/tools/headless-desktop" --timeout "$limit" "$@"
}
