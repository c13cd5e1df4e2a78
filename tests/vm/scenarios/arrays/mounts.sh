# shellcheck shell=dash
true
