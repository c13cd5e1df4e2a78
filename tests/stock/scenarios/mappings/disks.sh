# SPDX-License-Identifier: Apache-2.0
# shellcheck shell=bash
# Two mirrored system disks; the others are empty or are filled in the machine, where there is a device mapper.
for number in 1 2; do
	new_disk "sys$number.img" 512
	gpt "sys$number.img" <<P
label: gpt
label-id: e0000000-0000-4000-8000-00000000000$number
1 : start=2048, size=131072, type=R, uuid=e0000000-0000-4000-8000-00000000001$number, name="boot $number"
2 : start=133120, size=901120, type=R, uuid=e0000000-0000-4000-8000-00000000002$number, name="system $number"
P
done
for name in pv1 pv2; do new_disk $name.img 96; done
new_disk old.img 32
new_disk paths.img 64
gpt paths.img <<P
label: gpt
label-id: e0000000-0000-4000-8000-000000000005
1 : start=2048, size=65536, uuid=e0000000-0000-4000-8000-000000000051, name="over two paths"
P
file_system paths.img 2048 65536 mke2fs -q -F -t ext4 -L paths -U e0000000-0000-4000-8000-000000000052
new_disk pieces.img 64
