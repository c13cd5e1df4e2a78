# shellcheck shell=bash
# SPDX-License-Identifier: Apache-2.0
# What packages have to stand, for scripts/package, which sources this.
# It works in the systems of packaging/systems.bash.
: "${work:?}"

# Once, for the tree may change meanwhile: nothing that was built, and no work of before.
lay_tree() { # DIRECTORY
	mkdir -p "$1"
	if git rev-parse --git-dir >/dev/null 2>&1; then
		git ls-files -z --cached --others --exclude-standard | while IFS= read -rd '' file; do
			[[ ! -e $file && ! -L $file ]] || printf '%s\0' "$file"
		done | tar -c --no-recursion --null -T -
	else
		tar -c --exclude=./build --exclude=__pycache__ --exclude=.git .
	fi | tar -x -C "$1"
}

copy_tree() { # DIRECTORY
	mkdir -p "$work/builder/build/$1"
	cp -a "$work/tree/." "$work/builder/build/$1"
}

make_bare() {
	lay_tree "$work/tree"
	find_mirrors
	make_system bare "$(dpkg --print-architecture)"
}

make_builder() {
	copy_system bare builder
	open_system builder
	copy_tree first/diskscout
	inside builder sh -c 'cd /build/first/diskscout && apt-get build-dep -y -qq --no-install-recommends ./'
}

# As it comes, from files of another time.
build_first() {
	find "$work/builder/build/first" -exec touch --no-dereference --date=2001-02-03 '{}' +
	inside builder sh -c 'cd /build/first/diskscout && umask 022 && dpkg-buildpackage -us -uc'
}

# In another place, by another user, with other settings and in the strangest locale there is.
build_again() {
	install_into builder locales
	inside builder localedef -i tr_TR -f UTF-8 tr_TR.UTF-8
	copy_tree somewhere/else/tree
	chmod -R go= "$work/builder/build/somewhere/else/tree"
	inside builder chown -R 1000:1000 /build/somewhere
	inside builder LC_ALL=tr_TR.UTF-8 TZ=Pacific/Chatham DEB_BUILD_OPTIONS=parallel=3 \
		setpriv --reuid=1000 --regid=1000 --clear-groups \
		sh -c 'cd /build/somewhere/else/tree && umask 077 && dpkg-buildpackage -us -uc -b'
}

same_packages() {
	local package other different=
	for package in "$work"/builder/build/first/*.deb; do
		other="$work/builder/build/somewhere/else/${package##*/}"
		cmp "$package" "$other" || different+=" $package"
	done
	for package in $different; do
		rm -rf "$work/one" "$work/other"
		dpkg-deb -R "$package" "$work/one"
		dpkg-deb -R "$work/builder/build/somewhere/else/${package##*/}" "$work/other"
		diff -r "$work/one" "$work/other" | head -n 20
		diff <(packaging/listing "$work/one") <(packaging/listing "$work/other") | head -n 20
	done
	[[ -z $different ]]
}

# Whatever it has to say is an error here.
complain() { # CHANGES...
	[[ -e $work/checker ]] || copy_system bare checker
	mountpoint -q "$work/checker/proc" || open_system checker
	install_into checker lintian >/dev/null
	rm -rf "$work/checker/packages"
	mkdir "$work/checker/packages"
	cp "$@" "$work/checker/packages"
	local status=0
	inside checker sh -c 'cd /packages && lintian --allow-root --tag-display-limit 0 --fail-on error,warning *.changes' \
		>"$work/complaints" || status=$?
	cat "$work/complaints"
	[[ $status == 0 && ! -s $work/complaints ]]
}

installed() { # SYSTEM
	inside "$1" sh -c 'apt-get install -y -qq --no-install-recommends /run/packages/*.deb'
}

tested() { # SYSTEM TEST...
	local system=$1 test
	shift
	for test in "$@"; do
		echo "in $system: packaging/tests/$test"
		inside "$system" "/run/tests/$test"
	done
}

# without_a_trace SYSTEM LISTING: once the packages are gone, and what came with them, all is as it was.
without_a_trace() {
	inside "$1" apt-get purge -y -qq --auto-remove diskscout diskscout-dev diskscout-sim python3-diskscout
	packaging/listing "$work/$1" | diff "$2" - || {
		echo "this is what removing the packages leaves ('>') or lacks ('<')"
		return 1
	}
}

# enter_packages FROM SYSTEM PACKAGE...
enter_packages() {
	local system=$2
	copy_system "$1" "$system"
	shift 2
	open_system "$system"
	mkdir -p "$work/$system/run/packages"
	cp "$@" "$work/$system/run/packages"
	cp -r packaging/tests "$work/$system/run/tests"
}

# As the first thing that a bare system gets, which tells what the packages need.
prove_bare() { # SYSTEM
	packaging/listing "$work/$1" >"$work/before"
	installed "$1"
	tested "$1" programs simulated python
	without_a_trace "$1" "$work/before"
}

# Where manual pages are read and agents are written.
prove_all() { # SYSTEM
	install_into "$1" bash-completion cmake g++ make man-db pkg-config
	packaging/listing "$work/$1" >"$work/before"
	installed "$1"
	tested "$1" programs simulated python manuals completion development
	without_a_trace "$1" "$work/before"
}

# The compiler's work of the first build is not done again: where things are installed is all that is another's.
build_rpm() {
	install_into builder rpm
	inside builder sh -c 'cd /build/first/diskscout && cmake -S . -B obj-* -DCMAKE_INSTALL_LIBDIR=lib64 \
		-DDISKSCOUT_EXAMPLES_DIR=share/doc/diskscout/examples -DDISKSCOUT_ZSH_DIR=site-functions \
		-DDISKSCOUT_PYTHON_DIR=lib/python3.9/site-packages &&
		cmake --build obj-* && cd obj-* && cpack -G RPM -B /build/rpm'
}

same_contents() {
	cp packaging/rpm-contents "$work/builder/run"
	inside builder sh -c 'cd /build/rpm && /run/rpm-contents *.rpm' | diff packaging/rpm-contents.txt - || {
		echo "packaging/rpm-contents.txt is not what the packages hold ('>')"
		return 1
	}
}

build_arm64() {
	inside builder dpkg --add-architecture arm64
	inside builder apt-get update -qq
	install_into builder crossbuild-essential-arm64
	copy_tree cross/diskscout
	inside builder sh -c 'cd /build/cross/diskscout &&
		apt-get build-dep -y -qq --no-install-recommends --host-architecture arm64 -P cross,nocheck ./ &&
		DEB_BUILD_OPTIONS=nocheck dpkg-buildpackage -us -uc -B -aarm64 -Pcross,nocheck'
}
