# SPDX-License-Identifier: Apache-2.0
# shellcheck shell=dash
mkdir -p /home /data /mnt/exchange /mnt/cd '/mnt/with space'
mount -t ext2 /dev/hda5 /home
mount -t vfat /dev/hda6 /mnt/exchange
mount -t iso9660 -o ro /dev/hdc /mnt/cd
mount -t ext4 /dev/sda1 /data
mount -t tmpfs scratch '/mnt/with space'
