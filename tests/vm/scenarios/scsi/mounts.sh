# SPDX-License-Identifier: Apache-2.0
# shellcheck shell=dash
# /boot is on the array, which belongs to no one disk
mkdir -p /boot /data
mount -t ext3 /dev/md0 /boot
mount -t ext2 /dev/sdf1 /data
