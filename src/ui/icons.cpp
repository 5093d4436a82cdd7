#include "ui/icons.h"

#include <QApplication>
#include <QHash>
#include <QIconEngine>
#include <QPainter>
#include <QPainterPath>
#include <QPalette>
#include <QStringList>

using namespace Qt::StringLiterals;

namespace sealwright {

namespace {

constexpr qreal side = 16; // of the square that the pictures are drawn in
constexpr qreal stroke = 1.4; // its units
constexpr qreal scaleOfLarge = 2; // from which on lines are thinner
constexpr qreal strokeOfLarge = 0.8;
constexpr int smallest = 16; // pixels of a picture that nobody asked a size for

struct Picture {
    QString name; ///< in a theme
    /// Ours: M and L to a point, Z back, O a circle, A an arc (start and span in degrees).
    QByteArray strokes;
};

Picture pictureOf(icons::Command command)
{
    using icons::Command;
    static const QHash<Command, Picture> pictures{
        {Command::about, {u"help-about"_s, "O8 8 6 M8 7.5 L8 11.5 M8 4.6 L8 5"}},
        {Command::cancel, {u"process-stop"_s, "O8 8 6 M5.7 5.7 L10.3 10.3 M10.3 5.7 L5.7 10.3"}},
        {Command::clear,
         {u"edit-clear"_s, "M3 9.5 L9.5 3 L13.5 7 L7.5 13 L5 13 L3 11 Z M6.2 6.2 L10.4 10.2"}},
        {Command::close, {u"window-close"_s, "M4 4 L12 12 M12 4 L4 12"}},
        {Command::copy,
         {u"edit-copy"_s, "M6 6 L13.5 6 L13.5 13.5 L6 13.5 Z M10 6 L10 2.5 L2.5 2.5 L2.5 10 L6 10"}},
        {Command::cut, {u"edit-cut"_s, "O4.5 12 1.8 O11.5 12 1.8 M5.5 10.4 L10.5 2 M10.5 10.4 L5.5 2"}},
        {Command::drop,
         {u"document-import"_s,
          "M8 2 L8 9.5 M5.2 6.8 L8 9.6 L10.8 6.8 M4.5 7.5 L2.5 7.5 L2.5 13.5 L13.5 13.5 L13.5 7.5 L11.5 "
          "7.5"}},
        {Command::find, {u"edit-find"_s, "O7 7 4.5 M10.3 10.3 L14 14"}},
        {Command::findNext, {u"go-down"_s, "M4 6 L8 10.5 L12 6"}},
        {Command::findPrevious, {u"go-up"_s, "M4 10 L8 5.5 L12 10"}},
        {Command::forum, {u"system-users"_s, "M2.5 3 L13.5 3 L13.5 11 L8 11 L5 13.8 L5 11 L2.5 11 Z"}},
        {Command::goOnWaiting, {u"appointment-soon"_s, "M4 2.5 L12 2.5 L4 13.5 L12 13.5 Z"}},
        {Command::help,
         {u"help-contents"_s, "O8 8 6 A8 6.8 1.9 190 -235 M8 9.2 L8 9.2 M8 8.8 L8 9.3 M8 11.2 L8 11.5"}},
        {Command::history, {u"document-open-recent"_s, "O8 8 6 M8 4.5 L8 8 L10.5 9.5"}},
        {Command::info,
         {u"dialog-information"_s, "M2 2.5 L14 2.5 L14 13.5 L2 13.5 Z M8 7.5 L8 11 M8 5 L8 5.2"}},
        {Command::keychain, {u"dialog-password"_s, "O5 8 2.8 M7.8 8 L14 8 L14 11 M11.2 8 L11.2 10"}},
        {Command::mail, {u"mail-message-new"_s, "M2 4 L14 4 L14 12.5 L2 12.5 Z M2 4.2 L8 9 L14 4.2"}},
        {Command::newDocument,
         {u"document-new"_s, "M4 2 L9.5 2 L12.5 5 L12.5 14 L4 14 Z M8.2 7 L8.2 11.4 M6 9.2 L10.4 9.2"}},
        {Command::newTab, {u"tab-new"_s, "M2 13 L2 6 L4 6 L4 3 L11 3 L11 6 L14 6 L14 13 Z"}},
        {Command::newWindow, {u"window-new"_s, "M2 3 L14 3 L14 13 L2 13 Z M2 6 L14 6"}},
        {Command::pageSetup, {u"document-page-setup"_s, "M4 2 L12 2 L12 14 L4 14 Z M6 5 L10 5 M6 8 L10 8"}},
        {Command::paste,
         {u"edit-paste"_s, "M5.5 3.5 L3 3.5 L3 14 L13 14 L13 3.5 L10.5 3.5 M5.5 2 L10.5 2 L10.5 5 L5.5 5 Z"}},
        {Command::print,
         {u"document-print"_s,
          "M5 6 L5 2 L11 2 L11 6 M5 11 L2 11 L2 6 L14 6 L14 11 L11 11 M5 9 L11 9 L11 14 L5 14 Z"}},
        {Command::profile, {u"document-properties"_s, "O8 5.2 2.6 A8 13.8 5 10 160 M3 13 L13 13"}},
        {Command::quit, {u"application-exit"_s, "M8 2 L8 7.5 A8 8.5 5.5 60 -300"}},
        {Command::repeat, {u"view-refresh"_s, "A8 8 5.5 70 280 M6.2 1.2 L9.6 2.6 L7.8 5.8"}},
        {Command::save,
         {u"document-save-as"_s,
          "M3 3 L11 3 L13 5 L13 13 L3 13 Z M5.5 3 L5.5 6 L10 6 L10 3 M5 13 L5 9 L11 9 L11 13"}},
        {Command::selectAll,
         {u"edit-select-all"_s,
          "M2.5 2.5 L13.5 2.5 L13.5 13.5 L2.5 13.5 Z M5 5.5 L11 5.5 M5 8 L11 8 M5 10.5 L9 10.5"}},
        {Command::setUp,
         {u"system-run"_s,
          "M2.5 13.5 L9 7 M11.2 1.8 L11.2 5.4 M9.4 3.6 L13 3.6 M13.4 8 L13.4 10.4 M12.2 9.2 L14.6 9.2"}},
        {Command::settings,
         {u"preferences-system"_s, "M2 4 L14 4 M2 8 L14 8 M2 12 L14 12 O5 4 1.4 O11 8 1.4 O6.5 12 1.4"}},
        {Command::showInFolder, {u"folder-open"_s, "M2 4 L6 4 L7.5 6 L14 6 L14 13 L2 13 Z"}},
        {Command::sign, {u"accessories-text-editor"_s, "M3 13 L4 9.8 L11 2.8 L13.2 5 L6.2 12 Z"}},
        {Command::staple,
         {u"mail-attachment"_s, "M3 13 L3 7 A8 7 5 180 -180 M13 7 L13 13 M6 13 L6 8 M10 13 L10 8"}},
        {Command::submit,
         {u"document-send"_s, "M8 10.5 L8 2.5 M4.8 5.6 L8 2.5 L11.2 5.6 M3 10.5 L3 13.5 L13 13.5 L13 10.5"}},
        {Command::website,
         {u"applications-internet"_s, "O8 8 6 M2 8 L14 8 M8 2 L5.4 5 L5.4 11 L8 14 L10.6 11 L10.6 5 Z"}},
    };
    return pictures.value(command);
}

void addStroke(QPainterPath &path, const QString &word, const QList<qreal> &numbers)
{
    const QPointF point(numbers.value(0), numbers.value(1));
    const qreal radius = numbers.value(2);
    const QRectF around(point - QPointF(radius, radius), QSizeF(2 * radius, 2 * radius));
    switch (word.front().unicode()) {
    case u'M':
        return path.moveTo(point);
    case u'L':
        return path.lineTo(point);
    case u'O':
        return path.addEllipse(around);
    case u'A':
        path.arcMoveTo(around, numbers.value(3));
        return path.arcTo(around, numbers.value(3), numbers.value(4));
    default:
        return path.closeSubpath();
    }
}

bool isLetter(const QString &word)
{
    return word.front().isLetter();
}

QPainterPath pathOf(const QByteArray &strokes)
{
    QPainterPath path;
    const QStringList words = QString::fromLatin1(strokes).split(u' ');
    for (qsizetype first = 0; first < words.size();) {
        QList<qreal> numbers;
        qsizetype next = first;
        do {
            const QString &word = words.at(next);
            numbers.append((isLetter(word) ? word.sliced(1) : word).toDouble());
        } while (++next < words.size() && !isLetter(words.at(next)));
        addStroke(path, words.at(first), numbers);
        first = next;
    }
    return path;
}

/// Draws one of ours.
class OwnPicture : public QIconEngine {
public:
    explicit OwnPicture(const QPainterPath &path)
        : m_path(path)
    {
    }

    void paint(QPainter *painter, const QRect &rect, QIcon::Mode mode, QIcon::State) override
    {
        const auto group = mode == QIcon::Disabled ? QPalette::Disabled : QPalette::Active;
        const auto role = mode == QIcon::Selected ? QPalette::HighlightedText : QPalette::WindowText;
        const qreal scale = qMin(rect.width(), rect.height()) / side;
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        painter->translate(QRectF(rect).center() - QPointF(side, side) * scale / 2);
        painter->scale(scale, scale);
        const qreal width = scale < scaleOfLarge ? stroke : strokeOfLarge;
        painter->setPen(QPen(QApplication::palette().color(group, role), width, Qt::SolidLine, Qt::RoundCap,
                             Qt::RoundJoin));
        painter->drawPath(m_path);
        painter->restore();
    }

    QPixmap pixmap(const QSize &size, QIcon::Mode mode, QIcon::State state) override
    {
        QPixmap picture(size.isEmpty() ? QSize(smallest, smallest) : size);
        picture.fill(Qt::transparent);
        QPainter painter(&picture);
        paint(&painter, picture.rect(), mode, state);
        return picture;
    }

    QIconEngine *clone() const override { return new OwnPicture(m_path); }

private:
    const QPainterPath m_path;
};

} // namespace

QIcon icons::of(Command command)
{
    const Picture picture = pictureOf(command);
    return QIcon::hasThemeIcon(picture.name) ? QIcon::fromTheme(picture.name)
                                             : QIcon(new OwnPicture(pathOf(picture.strokes)));
}

} // namespace sealwright
