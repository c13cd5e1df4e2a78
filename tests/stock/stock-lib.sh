# SPDX-License-Identifier: Apache-2.0
# shellcheck shell=dash
# What the collector and the scenarios share in the machine; busybox runs them.

seen=/run/seen
programs=/payload/bin
export PATH="$programs:$PATH" LC_ALL=C
export SYSTEMD_IGNORE_CHROOT=1  # else udevadm does nothing in a root that is not the first process's
user=1000

# real PROGRAM WORD...: the distribution's. This busybox prefers its own losetup, mke2fs and more to what the path has.
real() {
	program=$programs/$1
	shift
	"$program" "$@"
}

# what a scenario may say in words of its own
mounts() { :; }
hang() { return 1; }    # makes a device that never answers, where the scenario has one
unhang() { :; }
worth_keeping() { :; }  # names of the devices that a captured host shows; none: all of them

finish() {      # bring everything back
	cp -a $seen/. /payload/out/
}

fail() {
	echo "guest: $*" >&2
	finish
	exit 90
}

# must COMMAND...: or the machine ends here; what it says is kept
must() { "$@" < /dev/null >> $seen/made.log 2>&1 || fail "$*: $(tail -n 3 $seen/made.log)"; }

uptime_now() { cut -d ' ' -f 1 /proc/uptime; }

step() { echo "$(uptime_now) $*" >> $seen/times; }

# until_says WANTED COMMAND...: the kernel does some things in its own time
until_says() {
	wanted=$1
	shift
	for _ in $(seq 600); do
		[ "$("$@")" != "$wanted" ] || return 0
		sleep 0.1
	done
	fail "$* says $("$@") and not $wanted"
}

# --- the system ------------------------------------------------------------------

begin() {
	mount -t tmpfs -o mode=0755 tmpfs /run || fail "no tmpfs"
	mkdir $seen
	step booted
	cp -a /payload/etc/. /etc/
	mkdir -p /usr/lib /mnt
	ln -s /payload/udev /usr/lib/udev
	ln -s /payload/udev /lib/udev           # where it looks for its helpers, and its rules in /sbin
	for program in mdadm dmsetup lvm; do ln -s $programs/$program /sbin/; done
	echo "agent:x:$user:$user::/:/bin/sh" >> /etc/passwd
	for group in tty:5 disk:6 lp:7 kmem:15 dialout:20 cdrom:24 tape:26 audio:29 video:44 input:101 render:102 \
		sgx:103 kvm:104; do
		echo "${group%:*}:x:${group#*:}:"
	done >> /etc/group
	until_says "$DISKS" disks
	step found
	ln -s $programs/udevadm /run/systemd-udevd
	/run/systemd-udevd --daemon --resolve-names=early 2>> $seen/udevd.log || fail "no udevd"
	real udevadm trigger --action=add --subsystem-match=block
	settle
	step triggered
}

# Whole disks, drives and paths that are not made here; the scenario says how many there are.
disks() {
	for link in /sys/block/*; do
		case $(readlink "$link") in
		*/virtual/block/*) ;;
		*) echo ;;
		esac
	done | wc -l
}

settle() { real udevadm settle --timeout=60; }

# What is written to a device comes to udev's database in its own time, and superblocks not at all.
refresh() {
	real udevadm trigger --action=change --subsystem-match=block
	settle
}

# As on a host that never had it: no database, no links of its making. Nodes keep owner and mode.
stop_udevd() {
	real udevadm control --exit --timeout=30 || fail "udevd does not end"
	rm -rf /run/udev /dev/disk /dev/block
	step stopped
}

# furnish ROOT: all that the collector needs there. What it leaves in /run is seen on both sides.
furnish() {
	for dir in proc sys dev run tmp mnt; do mkdir -p "$1/$dir"; done
	cp -a /bin /sbin /lib /lib64 /usr /etc /payload "$1/"
	mount -t proc proc "$1/proc"
	mount -t sysfs sysfs "$1/sys"
	mount -t devtmpfs devtmpfs "$1/dev"
	mount -o bind /run "$1/run"
	step furnished
}

called() { echo "$1 ${2##*/}" >> $seen/names; }         # called ROLE DEVICE

# role NAME PATTERN: the block device whose folder of /sys matches has this role
role() {
	for link in /sys/class/block/*; do
		where=$(readlink -f "$link")
		# shellcheck disable=SC2254 # a pattern
		case $where in
		$2)
			called "$1" "$link"
			return ;;
		esac
	done
	fail "no device for $1 ($2)"
}

name_made() {           # what is made here has its role from its own name
	for dir in /sys/block/md* /sys/block/dm-*; do
		case $dir in
		*\*) ;;
		*/md*) called "${dir##*/}" "$dir" ;;
		*) called "$(cat "$dir/dm/name")" "$dir" ;;
		esac
	done
}

node() { sed -n "s|^$1 |/dev/|p" $seen/names; }         # node NAME: its device
part() {                                                # part NAME NUMBER: a partition of it
	case $(node "$1") in
	*[0-9]) echo "$(node "$1")p$2" ;;
	*) echo "$(node "$1")$2" ;;
	esac
}

# at DEVICE POINT [OPTION...]: mounted there
at() {
	device=$1 point=$2
	shift 2
	mkdir -p "$point"
	mount "$@" "$device" "$point" || fail "$device is not mounted on $point"
}

# --- what is asked ---------------------------------------------------------------

# ask STAGE NAME COMMAND...: what never ends is ended with the machine, by run-vm
ask() {
	into=$seen/$1/$2
	shift 2
	"$@" > "$into.out" 2> "$into.err"
	echo $? > "$into.status"
}

# leave_behind STAGE DEVICE: by a program of ours that reads what does not answer; how long it took, and what there is
leave_behind() {
	uptime_now > "$seen/$1/left.times"
	ask "$1" left ./stcli --timeout 1 part "$2"
	uptime_now >> "$seen/$1/left.times"
	left_behind "$1" > "$seen/$1/left.state"
}

# left_behind STAGE: the state of the process that is named there; nothing when it is gone
left_behind() {
	pid=$(sed -n 's/.* process \([0-9]*\) cannot be ended.*/\1/p' "$seen/$1/left.err")
	sed 's/.*) //; s/ .*//' "/proc/$pid/stat" 2> /dev/null
}

# stage NAME: as root and as an ordinary user who cannot open a device
stage() {
	for who in root user; do
		as=
		[ $who = root ] || as="$programs/setpriv --reuid $user --regid $user --clear-groups"
		mkdir "$seen/$1-$who"
		while read -r name command; do
			# shellcheck disable=SC2086 # words
			ask "$1-$who" "$name" $as $command
		done < "queries/$1-$who"
	done
	step "$1"
}

blocks() { for link in /sys/class/block/*; do echo "/dev/${link##*/}"; done; }

# Peers whose answer is read from the devices themselves, and the kernel's own tables.
facts() {
	mkdir $seen/facts
	for table in mounts mountinfo; do cat /proc/self/$table > $seen/facts/$table; done
	for table in partitions swaps mdstat; do
		[ ! -e /proc/$table ] || cat /proc/$table > $seen/facts/$table
	done
	find /dev -type l -exec stat -c %N {} + > $seen/facts/links
	ask facts findmnt findmnt -A -J -b -o ID,PARENT,TARGET,SOURCE,FSTYPE,MAJ:MIN,FSROOT,OPTIONS,SIZE,AVAIL,USED
	for device in $(blocks); do
		name=${device#/dev/}
		if [ ! -b "$device" ] || ! head -c 1 "$device" > /dev/null 2>&1; then continue; fi
		ask facts "blkid-$name" blkid -p -o export "$device"
		if [ -d "/sys/block/$name" ] && grep -q ^PTTYPE= "$seen/facts/blkid-$name.out"; then
			ask facts "sfdisk-$name" sfdisk --json "$device"
		fi
		[ ! -d "/sys/block/$name/md" ] || ask facts "mdadm-$name" mdadm --detail --export "$device"
		[ ! -d "/sys/block/$name/dm" ] || ask facts "table-$name" dmsetup table "$device"
	done
	step facts
}
