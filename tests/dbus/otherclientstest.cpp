// The programs by which people reach a bus: each writes and reads a property, meets a failure and submits.

#include "dbus/hostonbus.h"

#include <QProcess>

using namespace Qt::StringLiterals;

namespace {

struct ClientRow {
    const char *name;
    QStringList command;
    QString program; ///< finds its material in the environment
    QStringList says; ///< in this order
};

const QString busctlProgram = uR"(
busctl --user set-property $SERVICE $DOCUMENT org.sealwright.Document AllowJITCode b true
busctl --user get-property $SERVICE $DOCUMENT org.sealwright.Document AllowJITCode
busctl --user get-property $SERVICE $APPLICATION org.sealwright.Application RememberAppleID
busctl --user call $SERVICE $DOCUMENT org.sealwright.Document SubmitForNotarizing 'a{sv}' 2 \
    at s "$ITEM" skippingStapling b true
)"_s;

const QString gdbusProgram = uR"(
on() { gdbus call --session --dest $SERVICE --object-path "$@"; }
on $DOCUMENT --method org.freedesktop.DBus.Properties.Set org.sealwright.Document AllowJITCode '<true>'
on $DOCUMENT --method org.freedesktop.DBus.Properties.Get org.sealwright.Document AllowJITCode
on $APPLICATION --method org.freedesktop.DBus.Properties.Get org.sealwright.Application RememberAppleID
on $DOCUMENT --method org.sealwright.Document.SubmitForNotarizing \
    "{'at': <'$ITEM'>, 'skippingStapling': <true>}"
)"_s;

const QString pythonProgram = uR"(
import dbus, os
bus = dbus.SessionBus()
document = bus.get_object(os.environ["SERVICE"], os.environ["DOCUMENT"])
application = bus.get_object(os.environ["SERVICE"], os.environ["APPLICATION"])
properties = dbus.Interface(document, dbus.PROPERTIES_IFACE)
properties.Set("org.sealwright.Document", "AllowJITCode", True)
print("AllowJITCode:", bool(properties.Get("org.sealwright.Document", "AllowJITCode")), flush=True)
try:
    application.Get("org.sealwright.Application", "RememberAppleID", dbus_interface=dbus.PROPERTIES_IFACE)
except dbus.DBusException as error:
    print(error.get_dbus_name(), error.get_dbus_message(), flush=True)
print(document.SubmitForNotarizing({"at": os.environ["ITEM"], "skippingStapling": True},
                                   dbus_interface="org.sealwright.Document"))
)"_s;

const QString withdrawn = u"No longer supported."_s;
const QString number = u"org.sealwright.Error.N1204"_s;
const QString result = u"/Foo - Submitted/Foo.app"_s;

} // namespace

class OtherClients : public HostOnBus, public testing::WithParamInterface<ClientRow> {
protected:
    /// What the program says until its end, in both streams.
    QString output(const QStringList &command, const QString &program)
    {
        QProcess process;
        auto environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"SERVICE"_s, bus::service);
        environment.insert(u"APPLICATION"_s, bus::applicationPath);
        environment.insert(u"DOCUMENT"_s, documentPath());
        environment.insert(u"ITEM"_s, appURL());
        process.setProcessEnvironment(environment);
        process.setProcessChannelMode(QProcess::MergedChannels);
        process.start(command.first(), command.mid(1) + QStringList{program});
        host.runUntil([&process] { return process.state() == QProcess::NotRunning; });
        return QUrl::fromPercentEncoding(process.readAll());
    }
};

TEST_P(OtherClients, writeReadFailAndSubmit)
{
    const QString said = output(GetParam().command, GetParam().program);
    qsizetype place = 0;
    for (const QString &text : GetParam().says) {
        place = said.indexOf(text, place);
        ASSERT_GE(place, 0) << text.toStdString() << " is not in: " << said.toStdString();
    }
    EXPECT_TRUE(host.document().allowJITCheckbox.isOn());
    EXPECT_TRUE(host.listing().contains(u"Foo - Submitted"_s));
    host.settle();
}

INSTANTIATE_TEST_SUITE_P(
    Programs, OtherClients,
    testing::Values(
        ClientRow{"busctl", {u"bash"_s, u"-c"_s}, busctlProgram, {u"b true"_s, withdrawn, result}},
        ClientRow{"gdbus", {u"bash"_s, u"-c"_s}, gdbusProgram, {u"(<true>,)"_s, number, withdrawn, result}},
        ClientRow{"python",
                  {u"/usr/bin/python3"_s, u"-c"_s},
                  pythonProgram,
                  {u"AllowJITCode: True"_s, number, withdrawn, result}}),
    [](const auto &row) { return std::string(row.param.name); });
