# Shared by the scripts of this folder: where things are, and how they speak. Sourced, never run.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
deps=$root/build/deps
jobs=${JOBS:-$(nproc)}

say() { printf '== %s\n' "$*"; }
fail() { printf '%s: %s\n' "$(basename "$0")" "$*" >&2; exit 1; }

# configure_and_build PRESET [TARGET...]: brings a preset's build folder up to date.
configure_and_build() {
    local preset=$1
    shift
    [ -f "$root/build/$preset/build.ninja" ] || (cd "$root" && cmake --preset "$preset" >/dev/null)
    cmake --build "$root/build/$preset" --parallel "$jobs" ${1:+--target "$@"}
}
