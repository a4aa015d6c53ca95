#!/bin/sh
# Runs a Windows program: run-in-wine.sh FOLDER PROGRAM [ARGUMENT...]
# FOLDER is made when there is none: the disk C: of a Windows machine, some hundred megabytes.
export WINEPREFIX="$1" WINEDEBUG=-all WINEDLLOVERRIDES=mscoree,mshtml=
shift
PATH=$PATH:/usr/lib/wine
# The services of wine would keep our output open longer than the program does.
wine64 wineboot </dev/null >/dev/null 2>&1
exec wine64 "$@"
