# SPDX-License-Identifier: Apache-2.0
# What fish completes of the command lines of diskscout and stcli: whatever they say themselves.

function __diskscout_complete
	set -l before (commandline -opc)
	set -l typed (commandline -ct)
	set -l word (string unescape -- $typed)
	set -l program (string replace -r '^~' $HOME -- $before[1])
	set -l asking complete
	string match -q '*stcli' -- $program; and set asking --complete
	type -q $program; or return
	set -l answer ($program $asking --at=(count $before) $before[2..-1] "$word" 2>/dev/null)
	switch "$answer[1]"
		case :words :list
			printf '%s\n' $answer[2..-1]
		case :files :directories
			# Paths are what fish offers behind a command that it knows nothing of.
			set -l head (string match -r -- '^--[^=]*=' "$typed")
			set -l value (string replace -r -- '^--[^=]*=' '' "$typed")
			set -l paths (complete -C "__diskscout_complete $value")
			test "$answer[1]" = :files; or set paths (string match -r '.*/$' -- $paths)
			set -q paths[1]; and printf '%s\n' "$head"$paths
	end
end

complete -c diskscout -c stcli -k -f -a '(__diskscout_complete)'
