# SPDX-License-Identifier: Apache-2.0
# shellcheck shell=bash
# hda: nothing but one logical drive
new_disk one.img 32
partition one.img <<P
2 start=2048, size=40960, type=85
5 start=4096, size=20480, type=83
P
ext_fs one.img 4096 20480 ext2 one

# hdb: three logical drives between primary partitions; the first partition is
# as small as the kernel lists an extended one
new_disk three.img 64
partition three.img <<P
1 start=2048, size=2, type=83
2 start=4096, size=4096, type=42
3 start=8192, size=81920, type=f
4 start=92160, size=20480, type=83, bootable
5 start=10240, size=20480, type=83
6 start=32768, size=20480, type=fd
7 start=55296, size=20480, type=b
P
ext_fs three.img 92160 20480 ext2 twice

# logical_drives FILE COUNT: an extended partition with so many, a MiB apart
logical_drives() {
	local i
	{
		echo "1 start=2048, size=$((2048 * (2 * $2 + 1))), type=5"
		for ((i = 0; i < $2; i++)); do
			echo "$((i + 5)) start=$((4096 * (i + 1))), size=2048, type=83"
		done
	} | partition "$1"
}
new_disk many.img 64
logical_drives many.img 22
for ((i = 0; i < 10; i++)); do
	ext_fs many.img $((4096 * (i + 1))) 2048 ext2 "volume-$i"
done
# sdb: more than a partition list holds
new_disk overflow.img 96
logical_drives overflow.img 40
