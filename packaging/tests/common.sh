# shellcheck shell=sh
# SPDX-License-Identifier: Apache-2.0
# For the tests of installed packages, which source this: what is asked, and what its answer must hold. Each test works
# in a folder of its own and needs the packages named in its first lines, nothing of the tree.
export LC_ALL=C.UTF-8 TERM=dumb
export hosts=/usr/share/diskscout/hosts
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
trap 'exit 1' HUP INT TERM
cd "$folder" || exit

# asks WORD...: runs the words, which must end well and say nothing on standard error; what they print is kept.
asks() {
	asked=$*
	if ! "$@" >"$folder/answer" 2>"$folder/errors" </dev/null; then
		fails "it fails"
	fi
	[ ! -s "$folder/errors" ] || fails "it has something to say of it"
}

# holds PATTERN...: the last answer has a line for each.
holds() {
	for pattern in "$@"; do
		grep -Eq -e "$pattern" "$folder/answer" || fails "no line is like this: $pattern"
	done
}

fails() {
	echo "$(basename "$0"): $asked: $1" >&2
	head -n 40 "$folder/answer" "$folder/errors" >&2
	exit 1
}

# A site whose controller tool is the simulated one.
simulated_site() {
	printf '%s\n' 'Cli Path:/usr/bin' 'Cli Name:raidsim' 'Filter Script:/usr/libexec/diskscout/diskscout-filter' >raid.cfg
	export RAIDSIM_STATE="$folder/controllers.txt"
}
