# SPDX-License-Identifier: Apache-2.0
# shellcheck shell=dash
# What stands on what: root and swap on LVM on LUKS on md on partitions, and the device mapper's other uses.

# shellcheck disable=SC2034 # for the collector
DISKS=8

# secret NAME DEVICE UUID WORD...: a LUKS device with a key that is quick to make, open as NAME
secret() {
	name=$1 device=$2
	must real cryptsetup luksFormat -q --uuid "$3" --pbkdf pbkdf2 --pbkdf-force-iterations 1000 \
		--key-file /run/key "$device" --label "$name" --type "$4"
	must real cryptsetup open --key-file /run/key "$device" "$name"
}

lvm() { must real lvm "$@"; }

# volume DIGIT DEVICE: a physical volume
volume() { lvm pvcreate --norestorefile --uuid "00000$1-0000-0000-0000-0000-0000-000000" "$2"; }

# mapped NAME UUID TABLE: a device of the mapper; no UUID when that is empty
mapped() { must real dmsetup create "$1" ${2:+--uuid "$2"} --table "$3"; }

prepare() {
	role sys1 '*/ata1/*'
	role sys2 '*/ata2/*'
	role pv1 '*/0000:00:04.0/*'
	role pv2 '*/0000:00:05.0/*'
	role old '*/0000:00:06.0/*/target*:0:1/*'
	role pieces '*/0000:00:06.0/*/target*:0:2/*'
	role path1 '*/0000:00:06.0/*/target*:0:7/*'
	role path2 '*/0000:00:07.0/*/target*:0:7/*'
	head -c 32 /dev/zero > /run/key
	mkdir -p /etc/lvm /run/lock/lvm

	now='--create --run --assume-clean -l1 -n2'
	# shellcheck disable=SC2086 # words
	{
		must real mdadm $now --metadata=1.0 --uuid=c0000000:00004000:80000000:00000000 /dev/md0 \
			"$(part sys1 1)" "$(part sys2 1)"
		must real mdadm $now --metadata=1.2 --uuid=c0000000:00004000:80000000:00000001 /dev/md1 \
			"$(part sys1 2)" "$(part sys2 2)"
	}
	must real mke2fs -q -t ext4 -L boot -U e0000000-0000-4000-8000-000000000061 /dev/md0
	secret system /dev/md1 e0000000-0000-4000-8000-000000000062 luks2
	volume 0 /dev/mapper/system
	lvm vgcreate sys-vg /dev/mapper/system
	lvm lvcreate -y -L 320M -n root sys-vg
	lvm lvcreate -y -L 32M -n swap sys-vg
	must real mke2fs -q -t ext4 -L root -U e0000000-0000-4000-8000-000000000063 /dev/sys-vg/root
	must real mkswap -q -L swap -U e0000000-0000-4000-8000-000000000064 /dev/sys-vg/swap
	must swapon /dev/sys-vg/swap
	step root

	volume 1 "$(node pv1)"
	volume 2 "$(node pv2)"
	lvm vgcreate data "$(node pv1)" "$(node pv2)"
	lvm lvcreate -y -i 2 -I 64k -L 32M -n striped data
	lvm lvcreate -y -l 30 -n long data              # beyond the first volume
	lvm lvcreate -y -s -L 8M -n before data/striped
	must real mke2fs -q -t ext4 -L long -U e0000000-0000-4000-8000-000000000065 /dev/data/long
	step lvm

	secret 'old secret' "$(node old)" e0000000-0000-4000-8000-000000000066 luks1
	paths="2 1 $(number path1) 1 $(number path2) 1"
	mapped mpatha mpath-36000c500e0000007 "0 131072 multipath 0 0 1 1 round-robin 0 $paths"
	mapped mpatha-part1 part1-mpath-36000c500e0000007 '0 65536 linear /dev/mapper/mpatha 2048'
	mapped nameless '' "0 8192 linear $(number pieces) 0"
	mapped ours ACME-0001 "0 8192 linear $(number pieces) 8192"
	mapped frozen '' "0 8192 linear $(number pieces) 16384"
	mapped joined '' "0 8192 linear $(number pieces) 24576
8192 8192 striped 2 128 $(number pieces) 32768 $(number pieces) 40960"
	must real cryptsetup open --type plain --key-file /run/key --cipher aes-cbc-essiv:sha256 --key-size 256 \
		/dev/mapper/ours scratch
	mkdir /newroot
	mount -t ext4 /dev/sys-vg/root /newroot || fail "no root"
}

number() { cat "/sys/class/block/$(basename "$(node "$1")")/dev"; }

mounts() {
	at /dev/md0 /boot -t ext4
	at /dev/data/long /data -t ext4
	at /dev/mapper/mpatha-part1 /paths -t ext4 -o ro
}

hang() {
	must real dmsetup suspend --noflush --nolockfs frozen
	head -c 512 /dev/mapper/frozen > /dev/null &
}

unhang() {
	# another one, which nobody else holds open: not even a kill ends who reads it
	must real dmsetup suspend --noflush --nolockfs nameless
	leave_behind hung-root /dev/mapper/nameless
	must real dmsetup resume nameless
	until_says '' left_behind hung-root
	must real dmsetup resume frozen
}
