# SPDX-License-Identifier: Apache-2.0
# shellcheck shell=dash
mkdir -p /boot /home /mnt/exchange /mnt/cd /data /srv
mount -t ext2 /dev/hda3 /boot
mount -t ext2 /dev/hda5 /home
mount -t vfat /dev/hda6 /mnt/exchange
mount -t ext4 /dev/sda1 /data
mount -t iso9660 -o ro /dev/hdc /mnt/cd
mount -t ext3 /dev/md0 /srv
echo hello > /home/greeting
head -c 100000 /dev/zero > /mnt/exchange/zeros
