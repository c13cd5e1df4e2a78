# SPDX-License-Identifier: Apache-2.0
# shellcheck shell=bash
# hda: slots 0 and 2, three logical drives, partitions with an odd count of sectors
new_disk ide-a.img 64
partition ide-a.img <<P
1 start=63, size=20481, type=83, bootable
3 start=20544, size=4096, type=82
4 start=32768, size=98304, type=f
5 start=32831, size=20480, type=83, bootable
6 start=55000, size=34001, type=6
7 start=100000, size=8193, type=83
P
ext_fs ide-a.img 32831 20480 ext2 home
fat_fs ide-a.img 55000 34000 EXCHANGE
iso_image cd.iso TESTCD 700

new_disk data.img 24
partition data.img <<P
1 start=2048, size=40960, type=83
P
ext_fs data.img 2048 40960 ext4 data

# 1.5 TiB: its sectors, but not its KiB, are beyond what a signed 32-bit number holds
new_disk large.img 1572864

# no table; a text to its last, odd sector
seq 200000 | head -c $((2055 * 512)) > text.img

for unit in 0 2; do
	new_disk unit-$unit.img 24
	partition unit-$unit.img <<P
1 start=2048, size=20480, type=83
2 start=30000, size=777, type=da
P
done
