# SPDX-License-Identifier: Apache-2.0
# shellcheck shell=bash
# 38 disks; two of them have a partition for an array, the others are empty: the arrays are made in the machine.
for number in $(seq 0 37); do new_disk "d$number.img" 32; done
for number in 27 28; do
	gpt "d$number.img" <<P
label: gpt
label-id: b0000000-0000-4000-8000-0000000000$number
1 : start=2048, size=61440, type=R, uuid=b0000000-0000-4000-8000-0000000001$number
P
done
identity='vendor=ACME,product=ARRAY DISK,ver=A1'
for number in $(seq 0 37); do
	echo "drive d$number.img,id=d$number"
	echo "device scsi-hd,drive=d$number,bus=scsi.0,scsi-id=$number,lun=0,$identity,serial=MEMBER$number"
done >> vm.conf
