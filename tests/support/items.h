#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

/// Builds what people submit, in a folder of a test.
namespace items {

enum class Processor { x86_64, arm64, i386 };

/// The least that the file tool takes for an executable of that processor.
[[nodiscard]] QByteArray machO(Processor processor = Processor::x86_64);
/// A universal file of such executables.
[[nodiscard]] QByteArray universalMachO(const QList<Processor> &processors);

void makeFile(const QString &path, const QByteArray &bytes, bool isExecutable = false);
void makeFolder(const QString &path);
void makeLink(const QString &path, const QString &target);

/// A bundle folder with an information dictionary and a main executable of its name. A null identifier leaves
/// the key out.
void makeBundle(const QString &path, const QString &identifier = QStringLiteral("com.example.foo"));
/// An information dictionary that names an executable, without the executable.
void makeInfo(const QString &folder, const QString &executable, const QString &identifier);
/// A framework with Versions/A, its executable and links.
void makeFramework(const QString &path);

/// Everything about the item below a path that a user could notice: names, kinds, modes, bytes, targets of
/// links.
[[nodiscard]] QByteArray fingerprint(const QString &path);

} // namespace items
