#!/usr/bin/env bash
# Assembles every example with the command line in its comment:
#   demo.sh KILN_AS OUTPUT_DIRECTORY
# For each it prints its title and what the assembler says.
set -euo pipefail

if (($# != 2)); then
  echo "usage: ${0##*/} KILN_AS OUTPUT_DIRECTORY" >&2
  exit 1
fi
program=$1
output=$2
examples=$(dirname "${BASH_SOURCE[0]}")
mkdir -p "$output"

# commandOf SOURCE: the arguments in the comment, one a line. What names something in the gallery is taken from there,
# and what follows -o or -l goes to the output directory.
commandOf() {
  local word words previous=
  read -ra words < <(sed -n 's/^; Assemble: kiln-as //p' "$1")
  for word in "${words[@]}"; do
    case $previous in
      -o | -l) echo "$output/$word" ;;
      *) if [[ -e $examples/$word ]]; then echo "$examples/$word"; else echo "$word"; fi ;;
    esac
    previous=$word
  done
}

failures=0
for source in "$examples"/*.asm; do
  mapfile -t arguments < <(commandOf "$source")
  summary=$("$program" "${arguments[@]}" 2>&1) || failures=$((failures + 1))
  sed -n '1s/^; //p' "$source"
  echo "  ${summary//$'\n'/$'\n'  }"
done
((failures == 0)) || echo "${0##*/}: $failures failed" >&2
exit $((failures > 0))
