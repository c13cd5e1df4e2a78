# SPDX-License-Identifier: Apache-2.0
# shellcheck shell=dash
# the drive is mounted by the name that people use; /dev/cdrom links to hdc
mkdir -p /mnt/cd /boot
mount -t iso9660 -o ro /dev/cdrom /mnt/cd
mount -t ext2 /dev/hdb1 /boot
mkdir -p /boot/efi
mount -t ext2 /dev/hda1 /boot/efi
