# Completion of kiln-as in bash.

_kiln_as() {
  local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
  local options='-h -v --version -V -b --split-bank --data-window -L -f -s -o -l -I -D -e -split-bank -code-window
    -data-window -code-reg -data-reg'
  COMPREPLY=()
  case $previous in
    -L) _kiln_as_files lnk ;;
    -f) mapfile -t COMPREPLY < <(compgen -W 'xex prg' -- "$current") ;;
    -s) _kiln_as_files sym ;;
    -o | -l) mapfile -t COMPREPLY < <(compgen -f -- "$current") ;;
    -I) mapfile -t COMPREPLY < <(compgen -d -- "$current") ;;
    -D | -e | --data-window | -code-window | -data-window | -code-reg | -data-reg) ;;
    *)
      if [[ $current == -* ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$options" -- "$current")
      else
        _kiln_as_files asm s a65
      fi
      ;;
  esac
}

# _kiln_as_files ENDING...: files with one of these endings, and directories that may lead to them.
_kiln_as_files() {
  local path
  while IFS= read -r path; do
    if [[ -d $path || ($path == *.* && " $* " == *" ${path##*.} "*) ]]; then
      COMPREPLY+=("$path")
    fi
  done < <(compgen -f -- "${COMP_WORDS[COMP_CWORD]}")
}

complete -o filenames -F _kiln_as kiln-as
