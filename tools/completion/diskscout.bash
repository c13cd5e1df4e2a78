# SPDX-License-Identifier: Apache-2.0
# What bash completes of the command lines of diskscout and stcli: whatever they say themselves. To be sourced, or
# installed as bash-completion/completions/diskscout and stcli.
# shellcheck shell=bash

_diskscout() {
	local rest=$COMP_LINE marks="[\\\\\"']" piece=' ' blanks i words=() at head='' asking=complete answer
	# bash takes words apart, at "=" for one: what stands without blanks between is one word of the line.
	for i in "${!COMP_WORDS[@]}"; do
		blanks=${rest%%[![:blank:]]*}
		[[ $i != 0 && -z $blanks && -n $piece ]] || words+=('')
		piece=${COMP_WORDS[i]}
		rest=${rest#"$blanks$piece"}
		if [[ $i == "$COMP_CWORD" ]]; then
			# $2 is what bash replaces, up to the cursor.
			at=$((${#words[@]} - 1))
			[[ $piece != [=:] ]] || words[at]+=$piece
			head=${words[at]}
			words[at]+=${2//$marks/}
		else
			words[-1]+=${piece//$marks/}
		fi
	done
	[[ ${words[0]} != *stcli ]] || asking=--complete
	mapfile -t answer < <("${words[0]/#\~/$HOME}" "$asking" --at="$at" "${words[@]:1}" 2>/dev/null)
	COMPREPLY=()
	case ${answer[0]-} in
	:files) mapfile -t COMPREPLY < <(compgen -f -- "$2") && compopt -o filenames -o default ;;
	:directories) mapfile -t COMPREPLY < <(compgen -d -- "$2") && compopt -o filenames -o dirnames ;;
	:words | :list)
		COMPREPLY=("${answer[@]:1}")
		COMPREPLY=("${COMPREPLY[@]%%$'\t'*}")
		COMPREPLY=("${COMPREPLY[@]#"$head"}")
		[[ ${answer[0]} == :words ]] || compopt -o nospace
		;;
	esac 2>/dev/null
}

complete -F _diskscout diskscout stcli
