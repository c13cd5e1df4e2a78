# SPDX-License-Identifier: Apache-2.0
# What fish offers for each line of the file $LINES_ASKED, into the file $ANSWERS.
source $COMPLETIONS/diskscout.fish
while read -l line
	complete -C $line | string replace -r '\t.*' ''
	printf '%s\n' --
end <$LINES_ASKED >$ANSWERS
