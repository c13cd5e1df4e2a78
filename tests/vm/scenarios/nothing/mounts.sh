# shellcheck shell=dash
:
