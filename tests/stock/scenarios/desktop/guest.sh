# SPDX-License-Identifier: Apache-2.0
# shellcheck shell=dash
# The disks are ready: only what stands on no disk is made here.

# shellcheck disable=SC2034 # for the collector
DISKS=17

prepare() {
	role sys '*/ata1/*'
	role data '*/ata2/*'
	role dvd '*/ata3/*'
	role big '*/ata4/*'
	role empty '*/ata5/*'
	role plain '*/ata6/*'
	role v1 '*/0000:00:04.0/*'
	role v2 '*/0000:00:05.0/*'
	role v3 '*/0000:00:06.0/*'
	role left '*/0000:00:07.0/*'
	role right '*/0000:00:08.0/*'
	role shared '*/virtual/nvme-subsystem/*'
	role alone '*/0000:00:09.0/*'
	role stick '*/usb*/[0-9]-1/*'
	role uas '*/usb*/[0-9]-2/*'
	role fourk '*/target*:0:4/*:0:4:0/*'
	role lun '*/target*:0:4/*:0:4:3/*'
	role zram '*/zram0'
	role loop '*/loop0'
	role readonly '*/loop1'
	role unused '*/loop2'

	echo 32M > /sys/block/zram0/disksize
	must real mkswap -q -L zram -U 90000000-0000-4000-8000-000000000020 /dev/zram0
	swapon /dev/zram0
	swapon "$(part sys 3)"
	swapon "$(node uas)"
	mkdir /newroot
	mount -t ext4 "$(part sys 7)" /newroot || fail "no root"
}

mounts() {
	at "$(part sys 2)" /boot -t ext4
	at "$(part sys 1)" /boot/efi -t vfat -o umask=077
	at "$(part data 1)" /data -t ext4
	at "$(part data 5)" /private/srv -t ext4 -o noatime,nodev
	chmod 700 /private      # an ordinary user does not come there
	at "$(node dvd)" /media/cdrom -t iso9660 -o ro
	at "$(node plain)" '/mnt/two words' -t xfs
	at "$(node v1)" /home -t btrfs
	must real btrfs -q subvolume create '/home/sub volume'
	at "$(node v1)" /var/lib/sub -t btrfs -o 'subvol=sub volume'
	at "$(part shared 1)" "$(printf '/mnt/new\nline')" -t ext4
	at "$(part stick 1)" "$(printf '/media/byte\377')" -t vfat
	at "$(part fourk 1)" '/mnt/back\slash' -t ext4

	# the same twice, and one that another hides
	mkdir -p /data/part /export
	mount -o bind /data/part /export
	at "$(part data 6)" /mnt/hidden -t vfat
	at tmpfs /mnt/hidden -t tmpfs -o size=1m

	truncate -s 16M '/data/image file'
	real sfdisk -q '/data/image file' <<-P
		label: gpt
		label-id: a0000000-0000-4000-8000-000000000001
		start=2048, uuid=a0000000-0000-4000-8000-000000000011
	P
	must real losetup -P /dev/loop0 '/data/image file'
	settle
	must real mke2fs -q -t ext4 -L image -U a0000000-0000-4000-8000-000000000021 /dev/loop0p1
	# what it wrote in its own time would change the space of /data between two answers
	at /dev/loop0p1 /mnt/image -t ext4 -o noinit_itable
	truncate -s 1M /data/nothing
	must real losetup -r /dev/loop1 /data/nothing
	settle
}
