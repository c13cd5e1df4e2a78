# SPDX-License-Identifier: Apache-2.0
# shellcheck shell=dash
# An array of every level, and one in every state.

# shellcheck disable=SC2034 # for the collector
DISKS=38

uuid() { echo "c0000000:00004000:80000000:000000$1"; }

# array NODE LAST-DIGITS-OF-UUID WORD...: made, and started
array() {
	node=$1 digits=$2
	shift 2
	must real mdadm --create "$node" --run --uuid="$(uuid "$digits")" "$@"
}

members() {     # members NUMBER...: the nodes of these disks
	for number; do node "d$number"; done
}

# shellcheck disable=SC2046 # words
prepare() {
	for number in $(seq 0 37); do role "d$number" "*/target*:0:$number/*"; done
	# what is under way stays so: KiB a second
	echo 1 > /proc/sys/dev/raid/speed_limit_min
	echo 4 > /proc/sys/dev/raid/speed_limit_max
	now='--metadata=1.2 --assume-clean'
	# shellcheck disable=SC2086 # words
	{
		array /dev/md0 00 --metadata=1.2 -l0 -n2 -c64 $(members 0 1)
		array /dev/md1 01 $now -l1 -n2 -x1 $(members 2 3 4)
		array /dev/md5 05 $now -l5 -n3 -x1 -c64 $(members 5 6 7 8)
		array /dev/md6 06 $now -l6 -n4 -c64 $(members 9 10 11) missing
		array /dev/md10 10 $now -l10 -n4 -c64 $(members 13 14 15 16)
		array /dev/md20 20 --metadata=1.2 -llinear -n2 $(members 17 18)
		array /dev/md9 09 --metadata=0.90 -l1 -n2 $(members 19 20)
		array /dev/md/archive 27 $now -l1 -n2 -b internal $(members 21) --write-mostly $(members 22)
		array /dev/md30 30 $now -l1 -n2 $(members 23 24)
		array /dev/md40 40 $now -l1 -n2 $(members 25 26)
		array /dev/md50 50 $now -l1 -n2 "$(part d27 1)" "$(part d28 1)"
		array /dev/md60 60 $now -l5 -n3 -c64 --consistency-policy=ppl $(members 29 30 31)
		array /dev/md70 70 --metadata=1.2 -l5 -n3 -c64 $(members 32 33 34) --write-journal "$(node d35)"
	}
	called archive "$(readlink -f /dev/md/archive)"
	real sfdisk -q /dev/md40 <<-P
		label: gpt
		label-id: d0000000-0000-4000-8000-000000000040
		start=2048, size=32768, uuid=d0000000-0000-4000-8000-000000000041, name="on md"
		start=34816, size=20480, uuid=d0000000-0000-4000-8000-000000000042
	P
	settle
	must real mke2fs -q -t ext4 -L striped -U d0000000-0000-4000-8000-000000000000 /dev/md0
	must real mke2fs -q -t ext4 -L archive -U d0000000-0000-4000-8000-000000000127 /dev/md127
	must real mke2fs -q -t ext4 -L 'part of md' -U d0000000-0000-4000-8000-000000000140 /dev/md40p1

	# the states
	must real mdadm /dev/md5 --fail "$(node d5)"            # d8 takes its place
	must real mdadm /dev/md50 --fail "$(part d28 1)"
	echo check > /sys/block/md10/md/sync_action
	must real mdadm --readonly /dev/md20
	must real mdadm --stop /dev/md30
	settle
	real mdadm --incremental "$(node d23)" >> /dev/null 2>&1        # not enough to start
	until_says recover cat /sys/block/md5/md/sync_action
	until_says check cat /sys/block/md10/md/sync_action
	until_says resync cat /sys/block/md9/md/sync_action
	until_says inactive cat /sys/block/md30/md/array_state
}

mounts() {
	at /dev/md0 /data -t ext4
	at /dev/md/archive /archive -t ext4 -o ro
	at /dev/md40p1 /srv -t ext4
}

# one array of each kind and state, with what it stands on
worth_keeping() {
	for array in md5 md9 md20 md30 md40 md50 md70 md127; do
		echo $array
		ls /sys/block/$array/slaves
	done
	echo md40p1 md40p2
	for role in d27 d28 d36; do basename "$(node $role)"; done
}
