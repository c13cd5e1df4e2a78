# SPDX-License-Identifier: Apache-2.0
# shellcheck shell=dash
put() {
	mkdir -p "$2"
	mount -t ext2 "/dev/$1" "$2"
}
sixty=/mnt/$(printf '%055d' 0)

put hdb4 /mnt/a                 # the same volume twice
put hdb4 /mnt/b
put sda5 /srv                   # one volume beneath another
put sda6 /srv/local
put hda5 /mnt/hidden            # one volume hidden by another
put sda7 /mnt/hidden
put sda8 /mnt/c                 # a part of a volume, shown elsewhere
mkdir -p /mnt/c/part /mnt/d
mount --bind /mnt/c/part /mnt/d
put sda9 /mnt/e                 # alike in name, but not beneath each other
put sda10 /mnt/e2
put sda11 '/mnt/with space'
put sda12 "${sixty}abc"         # 63 characters
put sda13 "${sixty}abcd"        # 64 characters
