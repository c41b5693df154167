# Completion of kiln-check in bash. It has all options of kiln-as, too.

_kiln_check() {
  local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
  local options='-h -v --version --list-checks --json --sarif --labels= --depfile= --listing= --map= -Wall -Wextra -Wno-
    -Werror= -W -V -b --split-bank --data-window -L -f -s -o -l -I -D -e -split-bank -code-window -data-window -code-reg
    -data-reg'
  COMPREPLY=()
  case $previous in
    -L) _kiln_check_files lnk ;;
    -f) mapfile -t COMPREPLY < <(compgen -W 'xex prg' -- "$current") ;;
    -s) _kiln_check_files sym ;;
    -o | -l) mapfile -t COMPREPLY < <(compgen -f -- "$current") ;;
    -I) mapfile -t COMPREPLY < <(compgen -d -- "$current") ;;
    -D | -e | --data-window | -code-window | -data-window | -code-reg | -data-reg) ;;
    *) _kiln_check_word "$options" "$current" ;;
  esac
}

# _kiln_check_word OPTIONS WORD: an option, or a file. After "-W" the names of the checks come from the program.
_kiln_check_word() {
  local prefix names
  case $2 in
    -Wno-* | -Werror=* | -W?*)
      prefix=$(sed -E 's/^(-Wno-|-Werror=|-W).*/\1/' <<<"$2")
      names=$(kiln-check --list-checks 2>/dev/null | sed 's/ .*//')
      mapfile -t COMPREPLY < <(compgen -P "$prefix" -W "$names" -- "${2#"$prefix"}")
      mapfile -t -O "${#COMPREPLY[@]}" COMPREPLY < <(compgen -W "$1" -- "$2")
      ;;
    -*)
      mapfile -t COMPREPLY < <(compgen -W "$1" -- "$2")
      ;;
    *) _kiln_check_files asm s a65 ;;
  esac
  [[ ${COMPREPLY[0]:-} != *[=-] ]] || compopt -o nospace
}

# _kiln_check_files ENDING...: files with one of these endings, and directories that may lead to them.
_kiln_check_files() {
  local path
  while IFS= read -r path; do
    if [[ -d $path || ($path == *.* && " $* " == *" ${path##*.} "*) ]]; then
      COMPREPLY+=("$path")
    fi
  done < <(compgen -f -- "${COMP_WORDS[COMP_CWORD]}")
}

complete -o filenames -F _kiln_check kiln-check
