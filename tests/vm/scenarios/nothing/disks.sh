# shellcheck shell=bash
:
