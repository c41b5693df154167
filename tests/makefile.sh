#!/usr/bin/env bash
# The makefile of docs/recipes.md: after a change make assembles the programs that depend on it, and no other.
#   tests/makefile.sh FOLDER   FOLDER has the programs
set -euo pipefail
PATH="$(realpath "$1"):$PATH"
page="$(dirname "$0")/../docs/recipes.md"
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

# The text of the page's first block that begins with this line.
block() { awk -v head="\`\`\`$1" '$0 == head { inside = 1; next } inside && /^```$/ { exit } inside' "$page"; }
block make > "$folder/Makefile"
block 'file words.inc' > "$folder/words.inc"
cd "$folder"
printf '        .include "words.inc"\n        .org $2000\nstart:  SETWORD $0680,1\n        RTS\n' > game.asm
printf '        .org $2000\nstart:  RTS\n' > title.asm

# Makes everything after these files have changed, and compares the programs that are assembled.
expectAssembled() {
  local expected=$1 assembled
  shift
  touch -d '1 minute ago' ./*
  touch "$@"
  assembled=$(make 2>&1 | sed -n "s/^kiln-as: assembled '\([a-z]*\)\.asm'.*/\1/p" | paste -sd ' ')
  [[ $assembled == "$expected" ]] || { echo "makefile: '$assembled' was assembled instead of '$expected'"; exit 1; }
}
expectAssembled 'game title' Makefile
expectAssembled '' Makefile
expectAssembled game words.inc
expectAssembled title title.asm
# An include that is gone does not stop make.
rm words.inc
printf '        .org $2000\nstart:  INC $80\n        RTS\n' > game.asm
expectAssembled game game.asm
