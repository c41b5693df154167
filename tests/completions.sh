#!/usr/bin/env bash
# Lists that stand outside the program must be complete: the options in the shells' completions, and the directives
# and instructions in the editors' syntax files. What there is, is read from the tables in the sources.
#   tests/completions.sh               checks the project
#   tests/completions.sh --self-test   checks that this script notices what is taken away
set -euo pipefail
export LC_ALL=C

# The rows: {"-o", OptionValue::Next, ...}, KindRow{Kind::Org, ".org ", ...}, {Mnemonic::ADC, imm, 0x69}.
listOptions() { grep -oP '^ *\{"\K-[^"]+(?=", OptionValue::)' "$1/src/driver/options.cpp"; }
listDirectives() { grep -oP '^ *KindRow\{Kind::\w+, *"\.\K[a-z_]+(?= ?",)' "$1/src/source/kinds.h"; }
listMnemonics() { grep -oP '\{Mnemonic::\K[A-Z]{3}(?=, )' "$1/src/isa/opcodes.cpp" | sort -u; }

# offered FILE: the part of a file in which a word counts: options without descriptions, syntax without comments.
offered() {
  case $1 in
    *.bash) grep -zoP "options='\K[^']*" "$1" | tr '\0' '\n' ;;
    *.fish) sed 's/ -d .*//' "$1" ;;
    *_kiln-as) sed 's/\[.*//' "$1" ;;
    *.vim) grep '^syntax' "$1" ;;
    *.json) grep '"match"' "$1" ;;
  esac
}

# stands WORD TEXT: the word, with nothing that could be a part of it on either side.
stands() { [[ $2 =~ (^|[^A-Za-z0-9_-])$1([^A-Za-z0-9_-]|$) ]]; }

# In fish an option with two hyphens is named behind -l, one with a single hyphen behind -o.
fishSpelling() {
  case $1 in
    --*) echo "-l ${1#--}" ;;
    *) echo "-o ${1#-}" ;;
  esac
}

# checkTree FOLDER: prints what is missing, and fails when anything is.
checkTree() {
  local root=$1 word file text missing=0 options directives mnemonics
  mapfile -t options < <(listOptions "$root")
  mapfile -t directives < <(listDirectives "$root"; printf 'include\nmacro\n')
  mapfile -t mnemonics < <(listMnemonics "$root")
  if ((${#options[@]} < 20 || ${#directives[@]} < 15 || ${#mnemonics[@]} < 64)); then
    echo "completions: cannot read the tables: ${#options[@]} options, ${#directives[@]} directives," \
      "${#mnemonics[@]} instructions"
    return 1
  fi
  # lacks WORD: says that it is not in the file.
  lacks() {
    echo "completions: $1 is not in $file"
    missing=$((missing + 1))
  }
  for file in completions/{kiln-as.bash,_kiln-as,kiln-as.fish}; do
    text=$(offered "$root/$file")
    for word in "${options[@]}"; do
      [[ $file != *.fish ]] || word=$(fishSpelling "$word")
      stands "$word" "$text" || lacks "$word"
    done
  done
  for file in editors/{vim/syntax/kiln.vim,textmate/kiln.tmLanguage.json}; do
    text=$(offered "$root/$file")
    for word in "${directives[@]}" "${mnemonics[@]}"; do
      stands "$word" "$text" || lacks "$word"
    done
  done
  ((missing == 0)) || return 1
  echo "completions: ${#options[@]} options, ${#directives[@]} directives, ${#mnemonics[@]} instructions, none missing"
}

# expectMissing WORD FILE: the check has to fail, and name both, once the word is taken out of the file.
expectMissing() {
  local tree report
  tree=$(mktemp -d -p "$scratch")
  cp -r --parents src/{driver/options.cpp,source/kinds.h,isa/opcodes.cpp} completions editors "$tree"
  sed -i -E "s/(^|[^A-Za-z0-9_-])$1([^A-Za-z0-9_-]|$)/\1\2/g" "$tree/$2"
  if report=$(checkTree "$tree") || [[ $report != *" is not in $2"* ]]; then
    printf 'completions self-test: "%s" is gone from %s, and what was said is:\n%s\n' "$1" "$2" "$report"
    return 1
  fi
}

selfTest() {
  scratch=$(mktemp -d)
  trap 'rm -rf "$scratch"' EXIT
  expectMissing -data-window completions/kiln-as.bash
  expectMissing --data-window completions/kiln-as.bash
  expectMissing -v completions/_kiln-as
  expectMissing '-o b' completions/kiln-as.fish
  expectMissing '-o split-bank' completions/kiln-as.fish
  expectMissing spill_point editors/vim/syntax/kiln.vim
  expectMissing cloaked_segment editors/textmate/kiln.tmLanguage.json
  expectMissing PLL editors/textmate/kiln.tmLanguage.json
  echo "completions: the self-test passes"
}

cd "$(dirname "${BASH_SOURCE[0]}")/.."
case ${1:-} in
  '') checkTree . ;;
  --self-test) selfTest ;;
  *)
    echo "usage: tests/completions.sh [--self-test]" >&2
    exit 2
    ;;
esac
