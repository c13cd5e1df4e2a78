# SPDX-License-Identifier: Apache-2.0
# shellcheck shell=dash
# What the collectors in the machine share; busybox runs them. Answers and the
# kernel's own facts go to a tmpfs first, so that writing them changes no disk.

seen=/run/seen
here=$PWD

finish() {      # bring everything back
	cp -r $seen/. /payload/out/
}

fail() {
	echo "guest: $*" >&2
	finish
	exit 90
}

begin() {
	mkdir -p /run
	mount -t tmpfs tmpfs /run || fail "no tmpfs"
	mkdir $seen
	sh -e ./mounts.sh || fail "a mount failed"
	sync
}

# ask NAME WORD...: what the command line answers to the words, on a stack as
# small as that of an agent's thread may be
ask() {
	name=$1
	shift
	(
		ulimit -s 2048 || exit
		"$here/stcli" "$@" > "$seen/$name.out" 2> "$seen/$name.err"
	)
	echo $? > "$seen/$name.status"
}

# until_says WANTED COMMAND...: the kernel does some things in its own time
until_says() {
	wanted=$1
	shift
	for _ in $(seq 900); do
		[ "$("$@")" != "$wanted" ] || return 0
		sleep 0.1
	done
	fail "$* says $("$@") and not $wanted"
}

show() {        # show DEVICE ATTRIBUTE FILE: nothing where the file is missing
	[ ! -r "$3" ] || printf '%s\t%s\t%s\n' "$1" "$2" "$(cat "$3")"
}

blocks() {
	for dir in /sys/block/*; do
		name=${dir##*/}
		for attribute in size device/media device/vendor device/model device/rev \
			device/serial device/firmware; do
			show "$name" "${attribute##*/}" "$dir/$attribute"
		done
		# 3:0:1:0 for a SCSI device
		printf '%s\taddress\t%s\n' "$name" "$(basename "$(readlink -f "$dir/device")")"
		printf '%s\tgeometry\t%s\n' "$name" "$(./vm-geometry "/dev/$name")"
	done
}

ide() {
	for dir in /proc/ide/hd*; do
		for file in media model; do show "${dir##*/}" $file "$dir/$file"; done
	done
}

space() {       # blocks, free blocks, block size, mount point
	while read -r _ point _; do
		point=$(printf '%b' "$point")
		stat -f -c '%b %f %s %n' "$point"
	done < /etc/mtab
}

# Sectors written since the start, of each disk that nothing else writes to:
# mounted file systems and arrays keep books of their own.
written() {
	for dir in /sys/block/[hs]d*; do
		[ -d "$dir" ] || continue
		name=${dir##*/}
		grep -q "^/dev/$name" /etc/mtab || grep -q "$name" /proc/mdstat ||
			awk -v "name=$name" '{ print name, $7 }' "$dir/stat"
	done
}

state() {       # what a query must leave as it is
	mkdir "$1"
	space > "$1/space"
	written > "$1/written"
	find / \( -path /proc -o -path /sys -o -path /dev -o -path /run \) -prune -o -print |
		sort > "$1/files"
	find /dev -exec stat -c '%n %F %a %u %g %t %T' {} + | sort > "$1/nodes"
	# the moments at which a disk's node was changed
	find /dev -type b -exec stat -c '%n %Y %Z' {} + | sort > "$1/node-times"
	cat /etc/mtab > "$1/mounts"
}
