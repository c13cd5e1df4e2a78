# SPDX-License-Identifier: Apache-2.0
# shellcheck shell=bash
# two IDE disks, /boot on the second
for disk in a b; do
	new_disk ide-$disk.img 32
	partition ide-$disk.img <<P
1 start=63, size=40960, type=83
P
	ext_fs ide-$disk.img 63 40960 ext2 disk-$disk
done
iso_image cd.iso TESTCD 700
