# SPDX-License-Identifier: Apache-2.0
# shellcheck shell=dash
# Asks about drives without a medium, and about a disk before and after its
# medium is taken out.
#
# Brought back in out/:
#   full.json, .err, .status    diskscout list --classic --format 1 --json with all media
#   empty.json, .err, .status   the same once the medium is out
#   partitions                  the kernel's table at that moment: nobody has
#                               looked at the disk since
#   NAME.err, .out, .status     an answer of the command line

# shellcheck source=../../guest-lib.sh
. ./guest-lib.sh

list() {
	./diskscout list --classic --format 1 --json > "$seen/$1.json" 2> "$seen/$1.err"
	echo $? > "$seen/$1.status"
}

begin
list full
ask hdsize.full hdsize /dev/sdb
./vm-eject /dev/sdb || fail "the medium stays"
cp /proc/partitions $seen/partitions
list empty
for node in hdc sr0 sdb; do
	for command in hdsize hdgeo idlun scsisn mbr part; do ask $command.$node $command /dev/$node; done
done
finish
