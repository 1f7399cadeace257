# Completion of varimesh's command line for bash.
# shellcheck disable=SC2034  # _init_completion sets them all

_varimesh() {
  local cur prev words cword
  _init_completion 2>/dev/null || {
    cur=${COMP_WORDS[COMP_CWORD]}
    prev=${COMP_WORDS[COMP_CWORD - 1]}
  }

  case $prev in
    -o | --output)
      compopt -o filenames 2>/dev/null
      mapfile -t COMPREPLY < <(compgen -f -- "$cur")
      return
      ;;
    -v | --verbose)
      local sections="all default triangulator coord material normal texcoord face line join tree"
      local before=
      [[ $cur != *+* ]] || before=${cur%+*}+
      mapfile -t COMPREPLY < <(compgen -P "$before" -W "$sections" -- "${cur##*+}")
      compopt -o nospace 2>/dev/null
      return
      ;;
    -1 | --errorarea | -2 | --errorvolume | -3 | --weightedmean | -c | --cameraheightangle | \
      -e | --errorrange | -m | --mindiff | -x | --extract | -s | --quadsplitangle | \
      -I | --indent | -T | --tab | -D | --decimalcountperline | -F | --floatcountperline)
      COMPREPLY=() # a number
      return
      ;;
  esac

  if [[ $cur == -* ]]; then
    mapfile -t COMPREPLY < <(compgen -W "
      -o --output -j --join -n --nolods -C --copyright -v --verbose
      -1 --errorarea -2 --errorvolume -3 --weightedmean -c --cameraheightangle -e --errorrange
      -m --mindiff -x --extract -l --nolines -q --noquads -s --quadsplitangle
      -I --indent -T --tab -N --noindent -D --decimalcountperline -F --floatcountperline
      " -- "$cur")
  else
    compopt -o filenames 2>/dev/null
    mapfile -t COMPREPLY < <(compgen -d -- "$cur"; compgen -f -X '!*.[wW][rR][lL]' -- "$cur")
  fi
}

complete -F _varimesh varimesh
