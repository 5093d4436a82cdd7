#!/bin/sh
# Only has to be startable: the tools that belong to this application work without it.
echo "TransporterApp: a stand-in without a window, part of Sealwright's toolchain; the tools beside it do the work."
