#compdef qal mkik ikcheck
# Completes the command lines of qal, mkik and ikcheck in zsh: the tool itself tells what may follow.

local tool=${(Q)words[1]} line word about
local -a given found
given=("${(@Q)words[2,CURRENT-1]}" "${(Q)PREFIX}")
compset -P '--*='
for line in "${(@f)$(${~tool} --complete-words "${given[@]}" 2>/dev/null)}"; do
  word=${line%%$'\t'*} about=${line#*$'\t'}
  if [[ $word == files: ]]; then
    # "*.csv *.json" is *.(csv|json|) here, in which a "|" keeps *.(so) from being a qualifier. Folders
    # and, for want of both, any file come by themselves.
    _files -g "*.(${${about//\*./}// /|}|)"
  elif [[ -n $word ]]; then
    found+=("${word//:/\\:}${about:+:$about}")
  fi
done
(( $#found )) && _describe -V value found
