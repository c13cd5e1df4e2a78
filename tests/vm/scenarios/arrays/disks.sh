# SPDX-License-Identifier: Apache-2.0
# shellcheck shell=bash
# No arrays yet: the machine makes them. Members of an array lie on different
# disks, and the two arrays that are resynchronised at once share none.
new_disk ide-a.img 16
partition ide-a.img <<P
1 start=63, size=4096, type=da
P
for disk in a b c d; do
	new_disk scsi-$disk.img 32
	partition scsi-$disk.img <<P
1 start=2048, size=4096, type=da
2 start=6144, size=4096, type=da
3 start=10240, size=4096, type=da
4 start=14336, size=51200, type=5
5 start=16384, size=4096, type=da
6 start=22528, size=4096, type=da
7 start=28672, size=4096, type=da
8 start=34816, size=4096, type=da
9 start=40960, size=12288, type=da
P
done

# sde1: a member of an array that is not there, with text all around its superblock
seq 600000 | head -c 3M > scratch.img
partition scratch.img <<P
1 start=2048, size=3065, type=da
2 start=5200, size=100, type=da
P
mirror_member scratch.img 2048 3065 0 8:65 8:81
