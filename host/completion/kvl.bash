# Completion of kvl for bash. The options are listed here; texts are completed by kvl itself.

_kvl_options='-h --help --version -c --json --color -q --quiet -v --verbose --modules --no-modules'

# What the text begun in $1, perhaps with a quote before it, may go on with.
_kvl_text() {
  local quote=${1:0:1} text=$1 line
  case $quote in
    \' | \") text=${1:1} ;;
    *) quote= ;;
  esac
  while IFS= read -r line; do
    # Without a quote the shell would cut the text up.
    [ -n "$quote" ] || line=$(printf '%q' "$line")
    COMPREPLY+=("$line")
  done < <(kvl complete "$text" 2>/dev/null)
  # A single one would get its closing quote, though a text is seldom at its end there.
  if [ -n "$quote" ] && [ "${#COMPREPLY[@]}" -eq 1 ] && [ "${COMPREPLY[0]}" != "$text" ]; then
    COMPREPLY+=("${COMPREPLY[0]} ")
  fi
  compopt -o nospace 2>/dev/null
}

_kvl() {
  local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
  COMPREPLY=()
  # The shell takes "--color=never" for three words.
  if [ "$current" = = ]; then
    current=
  elif [ "$previous" = = ]; then
    previous=${COMP_WORDS[COMP_CWORD - 2]}
  fi
  case $previous in
    -c)
      _kvl_text "$current"
      return
      ;;
    --color)
      mapfile -t COMPREPLY < <(compgen -W 'auto always never' -- "$current")
      return
      ;;
    complete)
      if [ "$COMP_CWORD" -eq 2 ]; then
        _kvl_text "$current"
        return
      fi
      ;;
  esac
  case $current in
    -*) mapfile -t COMPREPLY < <(compgen -W "$_kvl_options" -- "$current") ;;
    *)
      compopt -o filenames 2>/dev/null
      mapfile -t COMPREPLY < <(compgen -f -- "$current")
      ;;
  esac
}

complete -F _kvl kvl
