# SPDX-License-Identifier: Apache-2.0
# shellcheck shell=dash
# Asks the command line about devices and tables, lets it change things, and
# writes down what the kernel says about the same.
#
# Brought back in out/:
#   NAME.err, .out, .status   an answer: ask's first word is NAME
#   blocks, ide, nodes        DEVICE<tab>ATTRIBUTE<tab>VALUE, of sysfs and
#                             /proc/ide; of all block devices with partitions
#   partitions, mtab, space, seconds   the kernel's tables; stat -f
#   before/, after/           what the reading commands must not change
#   made/                     directories and nodes after the writing commands
#   scsi.STATE                the SCSI devices in sysfs, one a line:
#                             ADDRESS|VENDOR|MODEL|REVISION|TYPE|DISK|SERIAL
#                             (the unit serial number page in hexadecimal)

# shellcheck source=../../guest-lib.sh
. ./guest-lib.sh

nodes() {
	for dir in /sys/class/block/*; do
		name=${dir##*/}
		for attribute in size dev start; do show "$name" $attribute "$dir/$attribute"; done
		printf '%s\tgeometry\t%s\n' "$name" "$(./vm-geometry "/dev/$name")"
	done
}

paths='/ /home /data /mnt/cd /mnt/exchange /proc'
space_of_paths() {
	# shellcheck disable=SC2086 # a list
	stat -f -c '%n %b %f %s' $paths
}

text_of() { [ ! -r "$1" ] || cat "$1"; }

scsi() {
	for dir in /sys/bus/scsi/devices/*:*:*:*; do
		[ -d "$dir" ] || continue
		printf '%s|%s|%s|%s|%s|%s|%s\n' "${dir##*/}" "$(cat "$dir/vendor")" "$(cat "$dir/model")" \
			"$(cat "$dir/rev")" "$(cat "$dir/type")" "$(ls "$dir/block")" \
			"$(text_of "$dir/vpd_pg80" | od -A n -v -t x1 | tr -d ' \n')"
	done
}

# SCSI disks and drives come back after the command has ended
devices() { find /dev -name 's[dr][a-z0-9]' | wc -l; }

# the devices in sysfs and in the reader's view, at this moment
scsi_state() {
	scsi > "$seen/scsi.$1"
	cp /proc/partitions "$seen/partitions.$1"
	ask "procscsi.$1" procscsi
}

begin
blocks > $seen/blocks
ide > $seen/ide
nodes > $seen/nodes
cp /proc/partitions $seen/partitions
cat /etc/mtab > $seen/mtab
state $seen/before

for node in hda hda1 hda3 hda4 hda5 hda6 hda7 hdc sda sda1 sdb sdc sdd sde sde2 sr0 none; do
	for command in hdgeo hdsize idlun; do ask $command.$node $command /dev/$node; done
done
for node in sda sda1 sdb sdc sdd sde sr0 hda none; do ask scsisn.$node scsisn /dev/$node; done
for node in hda sda sdb sdc sdd none; do
	ask mbr.$node mbr /dev/$node
	ask part.$node part /dev/$node
done
while read -r node sector; do
	ask "parttab.$node.$sector" parttab "/dev/$node" "$sector"
	ask "sector.$node.$sector" sector "/dev/$node" "$sector"
done << S
hda 0
hda 32768
hda 131071
hda 131072
hda -1
hda 18446744073709551616
sdb 3221225471
sdb 3221225472
sdc 0
sdc 2054
sdc 2055
S
space_of_paths > $seen/space
for path in $paths /none; do ask "volspace$(echo "$path" | tr / .)" volspace "$path"; done
space_of_paths > $seen/space.after

ask mtab mtab
ask mtab.dev mtab dev x
ask mtab.mnt mtab mnt x
ask procblk procblk
for disk in hda sda /dev/sde sr0; do ask "procblk.${disk##*/}" procblk $disk; done
ask procide procide
ask procscsihost procscsihost
cat /proc/uptime > $seen/seconds
ask uptime uptime
cat /proc/uptime >> $seen/seconds
state $seen/after

# --- directories, nodes, commands ---
mkdir /made
cd /made || fail "no /made"
umask 022
ask mkdir mkdir /made/a/b/c
ask mkdir.again mkdir /made/a/b/c
ask mkdir.here mkdir here/below
ask mkdir.slash mkdir /made/d/
echo kept > file
ask mkdir.file mkdir /made/file
ask mkdir.below mkdir /made/file/below
(
	umask 0
	ask mkdir.open mkdir /made/open/wide
	ask mkdev.open mkdev /made/node-open 08:01
)
cp file over
ask mkdev.hex mkdev /made/node-hex 08:01
ask mkdev.over mkdev /made/over 5a:Ff
ask mkdev.decimal mkdev /made/node-decimal 8 1
ask mkdev.masked mkdev /made/node-masked 264 257
ask mkdev.short mkdev /made/file 8:1
ask mkdev.word mkdev /made/file 8 one
ask mkdev.nowhere mkdev /made/none/node 8 1
ask hdsize.made hdsize /made/node-hex
ask exec exec 'cp file executed'
ask exec.silent exec 'echo loud'
ask exec.false exec 'exit 3'
ask exec.killed exec 'kill -9 $$'
mkdir $seen/made
find . -exec stat -c '%n|%F|%a|%t|%T' {} + | sort > $seen/made/list
cat file executed > $seen/made/texts
for node in /dev/sda1 node-hex node-decimal; do
	dd if=$node bs=64k count=8 2> /dev/null | md5sum
done > $seen/made/sums
mknod reference b 8 1
stat -c '%F|%a|%t|%T' reference > $seen/made/reference
cd "$here" || fail "no way back"

# --- SCSI devices go and come ---
umount /data
scsi_state start
ask scsiremove scsiremove 1 0 2 0
scsi_state removed
ask scsiremove.again scsiremove 1 0 2 0
ask scsiadd scsiadd 1 0 2 0
until_says 6 devices
scsi_state added
ask scsiremove.unit scsiremove 2 0 0 2
scsi_state unit-removed
ask scsiadd.unit scsiadd 2 0 0 2
until_says 6 devices
ask scsiadd.nothing scsiadd 1 0 6 0     # an address that nothing answers at
ask scsiadd.host scsiadd 9 0 0 0        # no such adapter
ask scsiremove.wide scsiremove 1 0 258 0
ask scsiremove.word scsiremove 1 0 2 x
ask scsiremove.few scsiremove 1 0 2
scsi_state wrong
for round in 1 2 3; do
	ask shuffle.$round scsishuffle
	until_says 6 devices
	scsi_state shuffled.$round
	sleep 1         # the generator is seeded with the time
done

# --- more adapters than the list of them holds ---
echo 2 > /sys/bus/pseudo/drivers/scsi_debug/add_host
until_says 8 devices
for dir in /sys/class/scsi_host/host*; do
	printf '%s\tdriver\t%s\n' "${dir##*/host}" "$(cat "$dir/proc_name")"
done > $seen/adapters
ask procscsihost.full procscsihost
scsi_state full

finish
