#!/bin/bash
# One item from its keys to its stapled copy, on a machine without a display, a session or anybody in front of it. What
# this job makes on the way, keychain and settings, goes with it.
#
# usage: job.sh ITEM [RESULTS]
#
# RESULTS   a folder (results) for what is worth keeping: findings.json, .xml (JUnit) and .sarif, log.txt, issues.json and the
#           run's folder
# NOTARY    apple, or local: practise with the service of this machine, which needs no keys and which nobody believes
# KEYS      a folder with the keys; where systemd starts the job, that of its credentials. In it:
#             identity.p12, p12-passphrase   the Developer ID certificate with its key
#             AuthKey_KEYID.p8, issuer       a key of App Store Connect, and the issuer's UUID
# LIMIT     how long to wait for the verdict, in seconds (7200)
#
# Exit status: 0 done; 1 an error of a tool or of the application, or the item was refused; 2 wrong use; 3 no answer in
# time; 4 the item could not be looked at.
set -euo pipefail

item=$(realpath "${1:?usage: job.sh ITEM [RESULTS]}")
results=$(mkdir -p "${2:-results}" && realpath "${2:-results}")
keys=${KEYS:-${CREDENTIALS_DIRECTORY-}}
tools=${SEALWRIGHT_TOOLS:-/usr/libexec/sealwright/toolchain/usr/bin}

# On a bus of our own, which ends with us: its end is the application's too.
if [[ -z ${JOB_HAS_BUS-} ]]; then
    home=$(mktemp -d)
    trap 'rm -rf "$home"' EXIT
    mkdir -m 700 "$home/runtime"
    export JOB_HAS_BUS=1 QT_QPA_PLATFORM=offscreen SEALWRIGHT_TOOLCHAIN_STATE=$home/keychain
    export XDG_RUNTIME_DIR=$home/runtime XDG_CONFIG_HOME=$home/config XDG_STATE_HOME=$home/state
    status=0
    dbus-run-session -- "$BASH" "$0" "$item" "$results" || status=$?
    exit "$status"
fi

if [[ ${NOTARY:-apple} == local ]]; then
    sealwright-keychain make-identity --name "Practice (A1B2C3D4E5)"
    sealwright-keychain make-api-key notary
else
    "$tools/security" import "$keys/identity.p12" --passphrase-file "$keys/p12-passphrase"
    sealwright-keychain add-api-key notary --issuer "$(cat "$keys/issuer")" "$keys"/AuthKey_*.p8
    sealwright-keychain use-notary "${NOTARY:-apple}"
fi >&2

# The account's name only stands in the log: the key tells the service who asks.
document=$(sealwrightctl new AppleID=release@example.com AppPassword=notary)

# What would be refused is told in a second, before anything is uploaded.
status=0
sealwrightctl examine "$item" --document "$document" --json >"$results/findings.json" || status=$?
sealwrightctl examine "$item" --document "$document" --junit >"$results/findings.xml" || true
sealwrightctl examine "$item" --document "$document" --sarif >"$results/findings.sarif" || true
[[ $status == 0 ]] || { echo "job: see $results/findings.json" >&2; exit "$status"; }

sealwrightctl submit "$item" --document "$document" --follow --timeout "${LIMIT:-7200}" \
    2> >(tee "$results/log.txt" >&2) || status=$?
sealwrightctl issues "$document" --json >"$results/issues.json" || true
name=$(basename "${item%.*}")
for end in Notarized Failed Submitted; do
    [[ ! -d $(dirname "$item")/$name\ -\ $end ]] || cp -a "$(dirname "$item")/$name - $end" "$results/"
done
sealwrightctl quit || true
exit "$status"
