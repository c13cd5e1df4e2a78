# SPDX-License-Identifier: Apache-2.0
# What bash offers, into the file $ANSWERS: a file for an interactive bash, which asks for the word at the cursor when
# it is sent a tab, as of anybody.
# shellcheck shell=bash disable=SC1091,SC2154
bind 'set bell-style none'
bind 'set enable-bracketed-paste off'
source "$COMPLETIONS/diskscout.bash"

_asked() {
	_diskscout "$@"
	{
		[[ ${#COMPREPLY[@]} = 0 ]] || printf '%s\n' "${COMPREPLY[@]}"
		printf -- '--\n'
	} >>"$ANSWERS"
	# Nothing is to be typed.
	COMPREPLY=()
	compopt +o default +o dirnames
}
complete -F _asked diskscout stcli
PS1="asked> "
