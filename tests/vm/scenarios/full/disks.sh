# SPDX-License-Identifier: Apache-2.0
# shellcheck shell=bash
# the disks are the kernel's own, in its memory
:
