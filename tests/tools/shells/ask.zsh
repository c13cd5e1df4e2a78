# SPDX-License-Identifier: Apache-2.0
# What zsh offers for each line of the file $LINES_ASKED, into the file $ANSWERS: a file for `zsh -f -i`, at whose
# prompt Ctrl-X asks for all of them. Completion works in its editor alone, and that at a terminal alone.
fpath=($COMPLETIONS $fpath)
autoload -U compinit
compinit -u -D

# The last step of whatever completes: the words that fit are written down. With -O, -A or -D it is no answer.
compadd() {
	local -a fitting
	local folder= at=$argv[(I)-p]
	if ((! $argv[(I)-[OAD]])); then
		((at == 0)) || folder=$argv[at+1]
		builtin compadd -A fitting "$@"
		[[ $#fitting = 0 ]] || print -rl -- $IPREFIX$folder$^fitting >>$ANSWERS
	fi
	builtin compadd "$@"
}

answer() {
	_main_complete
}
zle -C answer list-choices answer

# A "|" is the cursor.
ask() {
	local line
	for line in "${(@f)$(<$LINES_ASKED)}"; do
		BUFFER=${line/'|'/}
		CURSOR=${#line%%'|'*}
		zle answer
		print -r -- '--' >>$ANSWERS
	done
	exit
}
zle -N ask
bindkey '^X' ask
PS1='asked> '
