# shellcheck shell=bash
# SPDX-License-Identifier: Apache-2.0
# Systems in folders, for scripts/package, which sources this: all of them below $work, which ends with the script. What
# the machine's kernel lends them, mounts and an emulator, is given back before.
work=$PWD/build/package
codename=$(sed -n 's/^VERSION_CODENAME=//p' /etc/os-release)
interpreters=/proc/sys/fs/binfmt_misc
# Of this tree alone: another one may be at it, too.
emulator=diskscout-package-$(stat -c %d-%i .)

# The kernel tells blanks in names as \040; there are none in names of ours but the tree's own.
mounted_below_work() {
	local _ at
	while read -r _ at _; do
		printf -v at '%b' "${at//\\/\\0}"
		[[ $at != "$work"/* ]] || echo "$at"
	done </proc/self/mounts | tac
}

detach_all() {
	local at
	mounted_below_work | while read -r at; do
		umount "$at" 2>/dev/null || umount --lazy "$at" || true
	done
}

# Whoever is left in one of the systems.
end_inside() {
	local process
	for process in /proc/[0-9]*; do
		[[ $(readlink "$process/root") != "$work"/* ]] || kill -KILL "${process#/proc/}" 2>/dev/null || true
	done
}

# What is mounted there yet must not be emptied with it.
remove_work() {
	end_inside
	detach_all
	[[ ! -e $interpreters/$emulator ]] || echo -1 >"$interpreters/$emulator"
	[[ ! -e $work/interpreters-mounted ]] || umount "$interpreters" || true
	if [[ -n $(mounted_below_work) ]]; then
		echo "package: something is mounted below $work yet, which therefore stays" >&2
	else
		rm -rf --one-file-system "$work"
	fi
}

# The distribution's own places, as this machine's apt knows them.
mirrors() {
	# shellcheck disable=SC2016 # apt's names
	apt-get indextargets --format '$(ORIGIN) $(CODENAME) deb $(REPO_URI) $(RELEASE) $(COMPONENT)' \
		'Created-By: Packages' | sed -n "s/^Debian ${codename}[^ ]* //p" |
		grep -E " $codename(-updates|-security)? " | sort -u
}

find_mirrors() {
	mirrors >"$work/mirrors" || apt-get update -qq
	mirrors >"$work/mirrors" && return
	echo "apt knows no place of Debian $codename on this machine"
	return 1
}

# The way out as this machine has it, and what a first start would lay.
connect() { # SYSTEM
	local system=$work/$1
	apt-config dump | grep -E '^Acquire::https?::' | grep -v Auto-Detect >"$system/etc/apt/apt.conf.d/90machine" ||
		rm "$system/etc/apt/apt.conf.d/90machine"
	cp /etc/resolv.conf /etc/hosts "$system/etc/"
	ln -s ../proc/self/mounts "$system/etc/mtab"
}

# A bare system: what is essential and apt, whose lists stay, so that its copies need not ask for them.
make_system() { # SYSTEM ARCHITECTURE
	mmdebstrap --mode=root --variant=minbase --architectures="$2" --skip=cleanup/apt/lists \
		"$codename" "$work/$1" - <"$work/mirrors"
	connect "$1"
}

# Before the copy is entered, so that nothing of the kernel's is copied.
copy_system() { # FROM TO
	cp -a --reflink=auto "$work/$1" "$work/$2"
}

open_system() { # SYSTEM
	mount -t proc proc "$work/$1/proc"
	mount -t sysfs -o ro sysfs "$work/$1/sys"
}

close_system() { # SYSTEM
	end_inside
	detach_all
	rm -rf --one-file-system "${work:?}/$1"
}

# inside SYSTEM [NAME=VALUE]... COMMAND...
inside() {
	local system=$1
	shift
	chroot "$work/$system" /usr/bin/env -i HOME=/root TERM=dumb LC_ALL=C.UTF-8 DEBIAN_FRONTEND=noninteractive \
		PATH=/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin \
		${http_proxy:+"http_proxy=$http_proxy"} ${https_proxy:+"https_proxy=$https_proxy"} "$@"
}

install_into() { # SYSTEM PACKAGE...
	local system=$1
	shift
	inside "$system" apt-get install -y -qq --no-install-recommends "$@"
}

# Programs of aarch64 run like ours from here on. Nothing less will do: an emulator that is only asked for the programs
# we name does not see those that they start.
emulate_arm64() {
	local magic='\x7fELF\x02\x01\x01\x00\x00\x00\x00\x00\x00\x00\x00\x00\x02\x00\xb7\x00'
	local mask='\xff\xff\xff\xff\xff\xff\xff\x00\xff\xff\xff\xff\xff\xff\xff\xff\xfe\xff\xff\xff'
	if [[ ! -e $interpreters/register ]]; then
		mount -t binfmt_misc binfmt_misc "$interpreters"
		touch "$work/interpreters-mounted"
	fi
	# With F the kernel opens the emulator here and now: it need not be in the system.
	echo ":$emulator:M::$magic:$mask:/usr/bin/qemu-aarch64-static:F" >"$interpreters/register"
}
