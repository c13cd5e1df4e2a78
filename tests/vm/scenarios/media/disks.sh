# SPDX-License-Identifier: Apache-2.0
# shellcheck shell=bash
# two disks alike; the medium of the second is taken out in the machine
for disk in kept gone; do
	new_disk $disk.img 8
	partition $disk.img <<P
1 start=2048, size=8192, type=83
P
done
