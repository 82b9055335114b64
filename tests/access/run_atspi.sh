#!/bin/sh
# SPDX-License-Identifier: GPL-3.0-or-later
# Runs atspi_reader.py as assistive technology meets the viewer: a private
# X display, a session bus and the accessibility bus on it. Exits 77 (a
# skip) when any of them cannot be had.
# Usage: run_atspi.sh KELVIEWER KEL DOCUMENT
set -u
here=$(dirname "$0")
for tool in Xvfb dbus-run-session dbus-send xdotool /usr/bin/python3; do
    if ! command -v "$tool" >/dev/null 2>&1; then
        echo "SKIP: $tool is not installed"
        exit 77
    fi
done
launcher=""
for candidate in /usr/libexec/at-spi-bus-launcher /usr/lib/at-spi2-core/at-spi-bus-launcher; do
    [ -x "$candidate" ] && launcher=$candidate
done
if [ -z "$launcher" ]; then
    echo "SKIP: at-spi2-core is not installed"
    exit 77
fi
# A display nobody holds.
display=""
for n in 71 72 73 74 75 76 77 78 79; do
    if [ ! -e "/tmp/.X$n-lock" ] && [ ! -e "/tmp/.X11-unix/X$n" ]; then
        display=$n
        break
    fi
done
if [ -z "$display" ]; then
    echo "SKIP: no free X display"
    exit 77
fi
exec dbus-run-session -- sh -c '
    Xvfb ":$0" -screen 0 1280x1000x24 >/dev/null 2>&1 &
    xvfb=$!
    tries=0
    while [ ! -e "/tmp/.X11-unix/X$0" ]; do
        tries=$((tries + 1))
        if [ $tries -gt 100 ]; then
            echo "SKIP: Xvfb did not start"
            kill $xvfb 2>/dev/null
            exit 77
        fi
        sleep 0.2
    done
    DISPLAY=":$0"; export DISPLAY
    "$1" --launch-immediately >/dev/null 2>&1 &
    bus=$!
    # A viewer started before the accessibility bus answers never joins it,
    # and a loaded machine can take seconds to get there.
    tries=0
    until dbus-send --session --dest=org.a11y.Bus --print-reply /org/a11y/bus org.a11y.Bus.GetAddress \
            >/dev/null 2>&1; do
        tries=$((tries + 1))
        if [ $tries -gt 100 ]; then
            echo "SKIP: the accessibility bus did not start"
            kill $bus $xvfb 2>/dev/null
            exit 77
        fi
        sleep 0.2
    done
    /usr/bin/python3 "$2" "$3" "$4" "$5"
    status=$?
    kill $bus $xvfb 2>/dev/null
    exit $status
' "$display" "$launcher" "$here/atspi_reader.py" "$1" "$2" "$3"
