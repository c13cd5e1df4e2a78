# SPDX-License-Identifier: Apache-2.0
# shellcheck shell=bash
# Functions for making small disk images; a scenario's disks.sh is written in
# them. Everything is made in plain files: no root rights, no loop devices.
#
#   new_disk a.img 64                   MiB
#   partition a.img <<P                 a line per partition, in sectors
#   1 start=63, size=20480, type=83, bootable
#   P
#   ext_fs a.img 63 20480 ext2 label

export LC_ALL=C TZ=UTC
export PATH=$PATH:/usr/sbin:/sbin
export SOURCE_DATE_EPOCH=1700000000

new_disk() {            # new_disk FILE MIB
	rm -f "$1"
	truncate -s "$2M" "$1"
}

# partition FILE, with lines "NUMBER start=..., size=..., type=..." on stdin;
# numbers from 5 are logical drives
partition() {
	{
		echo "label: dos"
		echo "unit: sectors"
		sed 's/^ *\([0-9][0-9]*\) /p\1 : /'
	} | sfdisk --quiet --no-reread --no-tell-kernel "$1" > /dev/null
}

# put FILE START PART: copy the image PART to sector START of FILE
put() {
	dd if="$3" of="$1" bs=512 seek="$2" conv=notrunc,sparse status=none
	rm -f "$3"
}

# ext_fs FILE START SECTORS TYPE LABEL: an ext2, ext3 or ext4 file system
ext_fs() {
	truncate -s $(($3 * 512)) "$1.fs"
	mke2fs -q -F -t "$4" -b 1024 -m 0 -L "$5" -E root_owner=0:0,lazy_itable_init=0,nodiscard \
		"$1.fs" $(($3 / 2)) > /dev/null
	put "$1" "$2" "$1.fs"
}

# fat_fs FILE START SECTORS LABEL
fat_fs() {
	truncate -s $(($3 * 512)) "$1.fs"
	mkfs.vfat --invariant -F 16 -n "$4" "$1.fs" > /dev/null
	put "$1" "$2" "$1.fs"
}

# iso_image FILE LABEL KIB: a medium with one file
iso_image() {
	mkdir -p "$1.tree"
	head -c "$3K" /dev/zero > "$1.tree/filler"
	if command -v xorriso > /dev/null; then
		xorriso -as mkisofs -quiet -V "$2" -J -R -o "$1" "$1.tree" 2> /dev/null
	else
		genisoimage -quiet -V "$2" -J -R -o "$1" "$1.tree"
	fi
	rm -r "$1.tree"
}

# usable SECTORS: sectors of a mirror's member that hold data (what lies before
# the superblock)
usable() { echo $((($1 & ~127) - 128)); }

# mirror_member FILE START SECTORS SLOT MAJOR:MINOR MAJOR:MINOR
# Writes the superblock of format 0.90 of a clean two-disk mirror, md0, into the
# member that lies at sector START of FILE and has the role SLOT; the device
# numbers are those of both members.
mirror_member() {
	local file=$1 start=$2 sectors=$3 slot=$4 size i w sum=0 hex=''
	local members=("$5" "$6")
	local -a s
	size=$(usable "$sectors")
	for ((i = 0; i < 1024; i++)); do s[i]=0; done
	# magic, version, four words of identity, level, KiB of a member, disks
	s[0]=$((0xa92b4efc)) s[2]=90
	s[5]=$((0x0a0b0c0d)) s[13]=$((0x11223344)) s[14]=$((0x55667788)) s[15]=$((0x1eaabbcc))
	s[6]=$SOURCE_DATE_EPOCH s[7]=1 s[8]=$((size / 2)) s[9]=2 s[10]=2
	# clean, with two active disks that agree
	s[32]=$SOURCE_DATE_EPOCH s[33]=1 s[34]=2 s[35]=2 s[39]=20 s[41]=20 s[43]=$((0xffffffff))
	for i in 0 1; do
		w=$((128 + 32 * i))
		s[w]=$i s[w + 1]=${members[i]%:*} s[w + 2]=${members[i]#*:} s[w + 3]=$i
		s[w + 4]=6              # active, in sync
	done
	for ((i = 0; i < 5; i++)); do s[992 + i]=${s[128 + 32 * slot + i]}; done
	for ((i = 0; i < 1024; i++)); do sum=$((sum + s[i])); done
	s[38]=$(((sum & 0xffffffff) + (sum >> 32)))
	for ((i = 0; i < 1024; i++)); do
		w=${s[i]}
		printf -v w '\\x%02x\\x%02x\\x%02x\\x%02x' $((w & 255)) $((w >> 8 & 255)) \
			$((w >> 16 & 255)) $((w >> 24 & 255))
		hex+=$w
	done
	printf '%b' "$hex" | dd of="$file" bs=512 seek=$((start + size)) conv=notrunc status=none
}

# file_system FILE START SECTORS COMMAND...: what the command makes in an image of that size
file_system() {
	local file=$1 start=$2
	truncate -s $(($3 * 512)) "$file.fs"
	shift 3
	"$@" "$file.fs" > /dev/null
	put "$file" "$start" "$file.fs"
}

# gpt FILE: a table of the lines on stdin, sfdisk's own header lines among them
gpt() { sfdisk --quiet --no-reread --no-tell-kernel "$1" > /dev/null; }
