# SPDX-License-Identifier: Apache-2.0
# shellcheck shell=bash
# A desktop of today. Everything on the images is said here, so that the expected text can be written by hand.

ext4() { mke2fs -q -F -t ext4 -E lazy_itable_init=1,nodiscard "$@"; }

# the system disk: a hole in the numbers, a name that is no ASCII, flags
new_disk sys.img 512
gpt sys.img <<P
label: gpt
label-id: 10000000-0000-4000-8000-000000000001
1 : start=2048, size=81920, type=U, uuid=10000000-0000-4000-8000-000000000011, name="EFI System Partition"
2 : start=83968, size=131072, uuid=10000000-0000-4000-8000-000000000012, name="boot", attrs="LegacyBIOSBootable"
3 : start=215040, size=65536, type=S, uuid=10000000-0000-4000-8000-000000000013
7 : start=280576, size=763904, uuid=10000000-0000-4000-8000-000000000017, name="racine été", attrs="RequiredPartition GUID:60"
P
file_system sys.img 2048 81920 mkfs.vfat -F 32 -n EFI -i 1000e001
file_system sys.img 83968 131072 ext4 -L boot -U 10000000-0000-4000-8000-000000000022
file_system sys.img 215040 65536 mkswap -q -L swap -U 10000000-0000-4000-8000-000000000023
file_system sys.img 280576 763904 ext4 -L 'root fs' -U 10000000-0000-4000-8000-000000000027

# a DOS table with logical drives
new_disk data.img 256
partition data.img <<P
label-id: 0x20000001
1 start=2048, size=100000, type=83, bootable
2 start=120000, size=300000, type=f
5 start=122048, size=80000, type=83
6 start=210000, size=60000, type=c
P
file_system data.img 2048 100000 ext4 -L data -U 20000000-0000-4000-8000-000000000021
file_system data.img 122048 80000 ext4 -L srv -U 20000000-0000-4000-8000-000000000025
file_system data.img 210000 60000 mkfs.vfat -F 16 -n 'TWO WORDS' -i 2000e006

iso_image disc.iso DISC 300

# 3 TiB, more than 32 bits of sectors; nothing on its partitions
new_disk big.img 3145728
gpt big.img <<P
label: gpt
label-id: 30000000-0000-4000-8000-000000000001
1 : start=2048, size=5368709120, uuid=30000000-0000-4000-8000-000000000011, name="huge"
2 : start=5368711168, size=1000000000, type=R, uuid=30000000-0000-4000-8000-000000000012
P

# a file system without a table
new_disk plain.img 320
file_system plain.img 0 655360 mkfs.xfs -q -f -L plainxfs -m uuid=40000000-0000-4000-8000-000000000020

# one btrfs over a whole disk and a partition
new_disk v1.img 128
new_disk v2.img 160
gpt v2.img <<P
label: gpt
label-id: 50000000-0000-4000-8000-000000000002
1 : start=2048, size=262144, uuid=50000000-0000-4000-8000-000000000012, name="pool"
P
truncate -s 128M v2.part
mkfs.btrfs -q -f -d single -m raid1 -L pool -U 50000000-0000-4000-8000-000000000020 v1.img v2.part > /dev/null
put v2.img 2048 v2.part
new_disk v3.img 8

# two controllers share the one name space; another has one of its own
new_disk n1.img 64
gpt n1.img <<P
label: gpt
label-id: 60000000-0000-4000-8000-000000000001
1 : start=2048, size=122880, uuid=60000000-0000-4000-8000-000000000011, name="fast"
P
file_system n1.img 2048 122880 ext4 -L fast -U 60000000-0000-4000-8000-000000000021
new_disk n2.img 16

# sticks: a DOS table; a swap area on a disk that has no table
new_disk stick.img 64
partition stick.img <<P
label-id: 0x70000001
1 start=2048, size=120000, type=c
P
file_system stick.img 2048 120000 mkfs.vfat -F 16 -n STICK -i 7000e001
new_disk uas.img 64
file_system uas.img 0 131072 mkswap -q -L 'spare swap' -U 70000000-0000-4000-8000-000000000020

# sectors of 4 KiB, in which the table counts
new_disk fourk.img 128
{
	printf '%s\n' o n p 1 256 13055 n e 2 13312 32311 n l 13568 19967 x i 0x80000001 r w
} | fdisk -b 4096 fourk.img > /dev/null
file_system fourk.img 2048 102400 ext4 -b 4096 -L fourk -U 80000000-0000-4000-8000-000000000021
new_disk lun.img 16
