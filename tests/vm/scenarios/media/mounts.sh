# SPDX-License-Identifier: Apache-2.0
# shellcheck shell=dash
true
