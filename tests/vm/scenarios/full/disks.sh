# shellcheck shell=bash
# the disks are the kernel's own, in its memory
:
