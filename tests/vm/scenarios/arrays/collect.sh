# SPDX-License-Identifier: Apache-2.0
# shellcheck shell=dash
# Makes software-RAID arrays in all the states that the kernel has words for,
# and asks the command line about them.
#
# Brought back in out/:
#   NAME.err, .out, .status   an answer: ask's first word is NAME
#   limits                    ANSWER MIN MAX: the speed limits after an answer
#   STATE/mdstat, mdstat.after    the kernel's table before and after mdstat.STATE
#   STATE/arrays              ARRAY<tab>ATTRIBUTE<tab>VALUE, of sysfs
#   STATE/members             ARRAY MEMBER MAJOR:MINOR SLOT KIB FLAGS, of sysfs
#   STATE/numbers             ARRAY NUMBER MAJOR:MINOR RAID-DISK FLAGS, asked of
#                             the arrays themselves
#   super/MEMBER              the superblock, as dd reads it
#   scratch.before, .after    a whole disk, before and after mdsb clear

# shellcheck source=../../guest-lib.sh
. ./guest-lib.sh

arrays() {
	for dir in /sys/block/md*; do
		show "${dir##*/}" size "$dir/size"
		for attribute in level raid_disks array_state degraded sync_action sync_completed \
			component_size chunk_size metadata_version; do
			show "${dir##*/}" $attribute "$dir/md/$attribute"
		done
	done
}

members() {
	for dir in /sys/block/md*/md/dev-*; do
		[ -d "$dir" ] || continue
		array=${dir#/sys/block/}
		echo "${array%%/*} ${dir##*/dev-} $(cat "$dir/block/dev" "$dir/slot" "$dir/size" "$dir/state" |
			tr '\n' ' ')"
	done
}

numbers() {     # the kernel tells them only of arrays that were started
	for dir in /sys/block/md*; do
		name=${dir##*/}
		./vm-md info "${name#md}" 2> /dev/null | sed "1d; s/^/$name /"
	done
}

# array_state STATE: what the command line and the kernel say at this moment
array_state() {
	mkdir "$seen/$1"
	cat /proc/mdstat > "$seen/$1/mdstat"
	ask "mdstat.$1" mdstat
	cat /proc/mdstat > "$seen/$1/mdstat.after"
	arrays > "$seen/$1/arrays"
	members > "$seen/$1/members"
	numbers > "$seen/$1/numbers"
}

limits() {      # limits NAME WORD...: mdspeed, and what it set
	answer=mdspeed.$1
	shift
	ask "$answer" mdspeed "$@"
	echo "$answer $(cat /proc/sys/dev/raid/speed_limit_min /proc/sys/dev/raid/speed_limit_max | tr '\n' ' ')" \
		>> $seen/limits
}

fresh() {       # the kernel writes superblocks past its cache of the device
	sync
	echo 3 > /proc/sys/vm/drop_caches
}

superblock() {  # superblock MEMBER, which is that of the last 64 to 128 KiB
	fresh
	dd if="/dev/$1" bs=512 skip=$(($(cat "/sys/class/block/$1/size") / 128 * 128 - 128)) count=8 2> /dev/null
}

# a word for each array
actions() { for array; do cat "/sys/block/md$array/md/sync_action"; done | xargs; }
reached() { for array; do sed 's/ .*//' "/sys/block/md$array/md/sync_completed"; done | xargs; }
missing() { cat /sys/block/md[0-9]/md/degraded | sort -u; }

begin
array_state none

# --- speed limits ---
limits start
limits default default
limits max max
limits both 250 4000
limits crossed 5000 1000
limits upper 0 7000
limits lower 300 0
limits one 10
limits word 10 fast
limits wide 200 9999999999
limits slow 1 25        # a few KiB in the time that all of this takes

# --- arrays ---
md() { ./vm-md "$@" || fail "vm-md $*"; }
md create 0 1 0 clean /dev/hda1 /dev/sda1
md create 1 5 64 clean /dev/sda2 /dev/sdb2 /dev/sdc2
md create 2 0 32 clean /dev/sda3 /dev/sdb3
md create 3 linear 32 clean /dev/sdc3 /dev/sdd3
md create 4 1 0 clean missing /dev/sda5
md create 5 5 64 clean /dev/sda6 /dev/sdb6 /dev/sdc6
md fail 5 /dev/sdb6
md create 8 1 0 clean /dev/sda7 /dev/sdb7
md stop 8
md assemble 8 /dev/sdb7 /dev/sda7
md create 9 1 0 clean /dev/sdc8 /dev/sdd8
md add 9 /dev/sdd7
# Both halt where they are told to: without that they could not be asked twice at the same place. It can be
# told only while nothing runs.
md create 6 1 0 dirty /dev/sda9 /dev/sdb9
echo frozen > /sys/block/md6/md/sync_action
until_says frozen actions 6
echo 5120 > /sys/block/md6/md/sync_max
echo idle > /sys/block/md6/md/sync_action
md create 7 1 0 clean /dev/sdc9 missing
echo 7168 > /sys/block/md7/md/sync_max
md add 7 /dev/sdd9
until_says "resync recover" actions 6 7
# its disks are busy with md6
md create 127 1 0 dirty /dev/sda8 /dev/sdb8
until_says "resync recover resync" actions 6 7 127
until_says delayed reached 127
array_state slow

reached 6 7 > $seen/reached
limits fast max
until_says "5120 7168" reached 6 7
array_state halted
mkdir $seen/super
for member in $(awk '{ print $2 }' $seen/halted/members) sdb1 sde1; do
	superblock "$member" > "$seen/super/$member"
	ask "mdsb.$member" mdsb "/dev/$member"
	superblock "$member" | cmp - "$seen/super/$member" >> $seen/super/changed
done
ask mdsb.small mdsb /dev/sde2
ask mdsb.none mdsb /dev/none
ask procblk procblk
ask procblk.md0 procblk md0
cp /proc/partitions $seen/partitions
for array in 0 1 2; do
	for command in hdgeo hdsize; do ask $command.md$array $command /dev/md$array; done
	echo "md$array $(cat /sys/block/md$array/size) $(./vm-geometry /dev/md$array)" >> $seen/geometry
done

# A resync that was stopped waits for somebody to let it go on; its disks are free for the next.
echo frozen > /sys/block/md6/md/sync_action
until_says "frozen idle" actions 6 127
array_state pending

# --- everything is repaired ---
# at once: of a busy disk the kernel takes no more than the lower limit
echo 100000 > /proc/sys/dev/raid/speed_limit_min
echo idle > /sys/block/md6/md/sync_action
echo max > /sys/block/md6/md/sync_max
echo max > /sys/block/md7/md/sync_max
md remove 5 /dev/sdb6
md add 5 /dev/sdb6
md add 4 /dev/sdc5
md run 8
until_says 0 missing
until_says "idle idle idle idle" actions 4 5 6 7
array_state repaired

# --- what has no place in the list ---
md create 20 6 64 clean /dev/sdb5 /dev/sdd5 missing missing
md create 21 10 64 clean /dev/sdc1 /dev/sdd1
truncate -s 4M /run/loop
losetup /dev/loop0 /run/loop || fail "no loop device"
md create 22 1 0 clean /dev/loop0 missing
md create 23 1 0 clean /dev/sdb1 missing missing missing missing missing missing missing /dev/sdd6
echo readonly > /sys/block/md9/md/array_state
array_state unusual

# --- a superblock is erased ---
fresh
dd if=/dev/sde of=$seen/scratch.before bs=64k 2> /dev/null
ask mdsb.clear mdsb clear /dev/sde1
fresh
dd if=/dev/sde of=$seen/scratch.after bs=64k 2> /dev/null
ask mdsb.cleared mdsb /dev/sde1
ask mdsb.clear.small mdsb clear /dev/sde2
ask mdsb.clear.none mdsb clear /dev/none
ask mdsb.clear.few mdsb clear
fresh
dd if=/dev/sde bs=64k 2> /dev/null | cmp - $seen/scratch.after > $seen/scratch.changed 2>&1

finish
