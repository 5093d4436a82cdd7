#include "examine/session.h"

#include <QProcess>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace session {

namespace {

const QByteArray preparation = R"SCRIPT(set -eu
export XDG_RUNTIME_DIR=$W/run XDG_CONFIG_HOME=$W/config XDG_DATA_HOME=$W/data XDG_STATE_HOME=$W/state
export QT_QPA_PLATFORM=offscreen SEALWRIGHT_TOOLCHAIN_STATE=$W/toolchain
mkdir -p "$XDG_CONFIG_HOME/Sealwright"; mkdir -m 700 "$XDG_RUNTIME_DIR"
cp -a "$TOOLCHAIN" "$W/root"
cat > "$W/root/usr/bin/codesign" <<END
#!/bin/sh
for last; do :; done
printf '%s\n' "\$last" >> "$W/signed"
END
cat > "$W/root/usr/bin/security" <<'END'
#!/bin/sh
echo '  1) 0123456789012345678901234567890123456789 "Developer ID Application: Example Corp (A1B2C3D4E5)"'
END
chmod +x "$W/root/usr/bin/codesign" "$W/root/usr/bin/security"
printf '[General]\ntoolRoot=%s\ntoolPause=0\n' "$W/root" > "$XDG_CONFIG_HOME/Sealwright/Sealwright.conf"
"$BIN/sealwright" > "$W/log" 2>&1 & application=$!
trap 'kill $application' EXIT
for try in $(seq 300); do "$BIN/sealwrightctl" documents > "$W/documents" 2> "$W/error" && [ -s "$W/documents" ] && break; sleep 0.1; done
ctl() { "$BIN/sealwrightctl" "$@"; }
status() { local was=0; "$@" > "$W/output" 2> "$W/error" || was=$?; echo "$was"; }
document=$(cut -f 1 "$W/documents" | head -n 1)
)SCRIPT";

} // namespace

Ended run(const QString &folder, const QByteArray &commands)
{
    auto environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"W"_s, folder);
    environment.insert(u"BIN"_s, QString::fromUtf8(PROGRAMS));
    environment.insert(u"TOOLCHAIN"_s, QString::fromUtf8(TOOLCHAIN_ROOT));
    QProcess process;
    process.setProcessEnvironment(environment);
    process.start(u"dbus-run-session"_s,
                  {u"--"_s, u"bash"_s, u"-c"_s, QString::fromUtf8(preparation + commands)});
    constexpr int patience = 200'000; // milliseconds
    EXPECT_TRUE(process.waitForFinished(patience));
    return {process.exitCode(), process.readAllStandardOutput(), process.readAllStandardError()};
}

} // namespace session
