#!/usr/bin/env bash
# Makes inputs for the fuzz targets from the examples, so that fuzz/corpus needs no copy of them:
#   fuzz/seed.sh DIRECTORY
set -euo pipefail

mkdir -p "$1"/{run,layout}
output=$(cd "$1" && pwd)
cd "$(dirname "${BASH_SOURCE[0]}")/../examples" 2>/dev/null || exit 0
shopt -s nullglob

# pack FILE...: their names and texts, without comments that fill a line. The empty lines count: they end macros.
pack() {
  local file
  for file in "$@"; do
    echo "@@$file"
    sed 's/^;.*//' "$file" | cat -s
  done
}

# packExample SOURCE: its command line, and the files that this names.
packExample() {
  local words word files=()
  read -ra words < <(sed -n 's/^; Assemble: kiln-as //p' "$1")
  for word in "${words[@]}"; do
    echo "$word"
    if [[ -f $word ]]; then
      files+=("$word")
    elif [[ -d $word ]]; then
      files+=("$word"/*)
    fi
  done
  pack "${files[@]}"
}

for source in *.asm; do
  packExample "$source" >"$output/run/$source"
done
for layout in *.lnk; do
  cp "$layout" "$output/layout/"
done
