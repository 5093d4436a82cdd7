#!/bin/sh
# Runs the app's program in a terminal.
exec "$(dirname "$0")/../MacOS/Seal Sample"
