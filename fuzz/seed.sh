#!/usr/bin/env bash
# Makes seed inputs for the fuzz targets from the examples:
#   fuzz/seed.sh DIRECTORY
set -euo pipefail

mkdir -p "$1"/{run,layout}
output=$(cd "$1" && pwd)
cd "$(dirname "${BASH_SOURCE[0]}")/../examples" 2>/dev/null || exit 0
shopt -s nullglob

# packFile FILE: its name and text, without comment lines. Empty lines are kept, because they end macros.
packFile() {
  echo "@@$1"
  sed 's/^;.*//' "$1" | cat -s
}

# packExample SOURCE: its command line, and the files and folders named there or included.
packExample() {
  local words word file
  read -ra words < <(sed -n 's/^; Assemble: kiln-as //p' "$1")
  printf '%s\n' "${words[@]}"
  mapfile -t -O "${#words[@]}" words < <(sed -n 's/^ *\.include "\(.*\)"/\1/p' "$1")
  for word in "${words[@]}"; do
    for file in "$word" "$word"/*; do
      if [[ -f $file ]]; then packFile "$file"; fi
    done
  done
}

for source in *.asm; do
  packExample "$source" >"$output/run/$source"
done
for layout in *.lnk; do
  cp "$layout" "$output/layout/"
done
