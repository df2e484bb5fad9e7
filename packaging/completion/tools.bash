# Completes the command lines of qal, mkik and ikcheck in bash: the tool itself tells what may follow.

# _qal_tools_files BEGUN PATTERN...: files that are called so, folders, and where there are neither,
# any file.
_qal_tools_files() {
  local begun=$1 file pattern found=()
  shift
  compopt -o filenames 2>/dev/null
  while IFS= read -r file; do
    [[ -d ${file/#\~/$HOME} ]] && found+=("$file") && continue
    for pattern in "$@"; do
      [[ $file == $pattern ]] && found+=("$file") && break
    done
  done < <(compgen -f -- "$begun")
  [[ ${#found[@]} -gt 0 ]] || mapfile -t found < <(compgen -f -- "$begun")
  COMPREPLY+=("${found[@]}")
}

_qal_tools() {
  local tool=${1/#\~/$HOME} i word about words=() patterns=()
  # Bash takes "--to=csv" for three words.
  for ((i = 1; i <= COMP_CWORD; ++i)); do
    word=${COMP_WORDS[i]}
    if [[ $i -gt 1 && ($word == = || ${COMP_WORDS[i - 1]} == =) ]]; then
      words[${#words[@]} - 1]+=$word
    else
      words+=("$word")
    fi
  done
  local begun=${words[${#words[@]} - 1]} before=""
  if [[ $begun == --*=* ]]; then
    before=${begun%%=*}=
    begun=${begun#*=}
  fi
  COMPREPLY=()
  while IFS=$'\t' read -r word about; do
    if [[ $word == files: ]]; then
      read -ra patterns <<<"$about"
      _qal_tools_files "$begun" "${patterns[@]}"
    else
      COMPREPLY+=("$word")
    fi
  done < <("$tool" --complete-words "${words[@]}" 2>/dev/null)
  # What is in front of a "=" stays, unless the user's bash doesn't part words there.
  [[ $COMP_WORDBREAKS == *=* ]] || COMPREPLY=("${COMPREPLY[@]/#/$before}")
}

complete -F _qal_tools qal mkik ikcheck
