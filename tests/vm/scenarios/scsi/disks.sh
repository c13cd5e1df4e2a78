# SPDX-License-Identifier: Apache-2.0
# shellcheck shell=bash
# the mirror's halves are sda1 and sdb1, on the same adapter
for slot in 0 1; do
	new_disk mirror-$slot.img 32
	partition mirror-$slot.img <<P
1 start=2048, size=24576, type=fd
P
	ext_fs mirror-$slot.img 2048 "$(usable 24576)" ext3 mirror
	mirror_member mirror-$slot.img 2048 24576 $slot 8:1 8:17
done
for disk in c d e f; do
	new_disk disk-$disk.img 24
	partition disk-$disk.img <<P
1 start=2048, size=20480, type=83
P
	ext_fs disk-$disk.img 2048 20480 ext2 disk-$disk
done
iso_image cd.iso TESTCD 700
