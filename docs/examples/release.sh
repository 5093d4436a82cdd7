#!/bin/bash
# Notarizes a release: signs, submits, waits and staples one item after the other, and puts the results into a
# folder. Ends at the first item that fails, with the log of its document beside the results.
#
# usage: release.sh FOLDER ITEM ...
#
# IDENTITY   the signing identity, as `sealwrightctl get DeveloperIdentities` prints it; without it, the one
#            that new documents start with
# The Apple ID and the password item are those that new documents start with, too: set them once by
# `sealwrightctl set AppleID ...` and `sealwrightctl set AppPassword ...`.
# LIMIT      how long to wait for one item, in seconds (7200)
set -euo pipefail

folder=${1:?usage: release.sh FOLDER ITEM ...}
shift
limit=${LIMIT:-7200}
document=
result=$(mktemp)

# A run that is interrupted is cancelled first: a busy document asks a person before it closes.
closeDocument()
{
    [[ -z $document ]] || sealwrightctl cancel "$document" || true
    [[ -z $document ]] || sealwrightctl close "$document" || true
    document=
}
trap 'closeDocument; rm -f "$result"' EXIT
trap 'exit 130' INT
trap 'exit 143' TERM

# A document of our own: what a person has open stays as it is.
openDocument()
{
    document=$(sealwrightctl new LogClearing=false)
    [[ -z ${IDENTITY:-} ]] || sealwrightctl set --document "$document" ActiveIdentity "$IDENTITY"
}

# Writes the path of the finished item into the file. The client runs beside the shell, which obeys a signal only
# between two commands and while it waits.
notarize() # ITEM FILE
{
    local status=0
    sealwrightctl submit --document "$document" --timeout "$limit" "$1" > "$2" &
    wait $! || status=$?
    if ((status == 3)) && sealwrightctl get AppStatus > "$2" 2>&1; then
        echo "release: no verdict on $1 within $limit seconds" >&2
        sealwrightctl cancel "$document" || true
    elif ((status == 3)); then
        echo "release: Sealwright has gone while it worked on $1" >&2
        document=
    fi
    return "$status"
}

# Release machines keep what a tool prints, so the log comes when there is something to read in it.
keepLog()
{
    local log
    [[ -n $document ]] || return 0
    log=$folder/$(basename "$1").log
    sealwrightctl log "$document" > "$log" || return 0
    echo "release: $1 failed; the log is in $log" >&2
}

mkdir -p "$folder"
for item in "$@"; do
    openDocument
    status=0
    notarize "$item" "$result" || status=$?
    if ((status != 0)); then
        keepLog "$item"
        exit "$status"
    fi
    cp -a "$(cat "$result")" "$folder/"
    closeDocument
done
