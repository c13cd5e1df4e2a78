# SPDX-License-Identifier: Apache-2.0
# shellcheck shell=bash
# hda: primary partitions in slots 0 and 2, three logical drives; slot 1 is empty
new_disk ide-a.img 256
partition ide-a.img <<P
1 start=63, size=262017, type=83, bootable
3 start=262080, size=32768, type=83
4 start=294848, size=229440, type=5
5 start=294911, size=65536, type=83
6 start=360510, size=40960, type=6
7 start=401533, size=65536, type=82
P
ext_fs ide-a.img 63 262016 ext3 root
ext_fs ide-a.img 262080 32768 ext2 boot
ext_fs ide-a.img 294911 65536 ext2 home
fat_fs ide-a.img 360510 40960 EXCHANGE

# hdb: no partition table
new_disk ide-b.img 20
iso_image cd.iso TESTCD 700

new_disk scsi-0.img 64
partition scsi-0.img <<P
1 start=2048, size=65536, type=83, bootable
2 start=67584, size=40960, type=6
P
ext_fs scsi-0.img 2048 65536 ext4 data
fat_fs scsi-0.img 67584 40960 TRANSFER

# sdb1 and sdc1: the halves of the mirror md0
for slot in 0 1; do
	new_disk scsi-$((slot + 1)).img 32
	partition scsi-$((slot + 1)).img <<P
1 start=2048, size=24576, type=fd
P
	ext_fs scsi-$((slot + 1)).img 2048 "$(usable 24576)" ext3 mirror
	mirror_member scsi-$((slot + 1)).img 2048 24576 $slot 8:17 8:33
done
