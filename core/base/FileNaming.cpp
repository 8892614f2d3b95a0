#include "core/base/FileNaming.h"

#include <QFileInfo>
#include <QRandomGenerator>
#include <QUuid>

#include "platform/Paths.h"

using namespace Qt::StringLiterals;

namespace kadrona::core {

namespace {

constexpr QLatin1StringView RandomAlphabet(
    "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789");

QString Padded(qint64 number, int digits) {
    return u"%1"_s.arg(number, digits, 10, QLatin1Char('0'));
}

/// Year, month and day with `separator` between them.
QString DateText(QDate date, QChar separator) {
    return QString::number(date.year()) + separator + Padded(date.month(), 2) + separator +
           Padded(date.day(), 2);
}

/// A letter comes out twice as often as a digit, for both of its cases become one.
QString LowerCaseRandom(int count, const NameSources& sources) {
    return GetRandomStr(count, sources).toLower();
}

/// The part that the choice in FileVarCombo adds to a file's name.
QString NamePart(int nameVariable, const NameSources& sources) {
    switch (nameVariable) {
        case 1:
            return DateText(sources.now().date(), u'_');
        case 2:
            return sources.guid();
        case 3:
            return LowerCaseRandom(8, sources);
        case 4:
            return LowerCaseRandom(6, sources);
        case 5:
            return LowerCaseRandom(4, sources);
        default:
            return {};
    }
}

/// The extension of the choice in FileTypCombo.
QString Extension(int fileType) {
    switch (fileType) {
        case 0:
            return u".jpg"_s;
        case 1:
            return u".jp2"_s;
        default:
            return {};
    }
}

}  // namespace

NameSources::NameSources()
    : now([] { return QDateTime::currentDateTime(); }),
      randomBelow([](int bound) { return QRandomGenerator::global()->bounded(bound); }),
      guid([] { return QUuid::createUuid().toString(QUuid::WithBraces).toUpper(); }) {}

QString DelLastBackslash(const QString& path) {
    return platform::WithoutTrailingSeparator(path);
}

QString GetNameWithSuffix(const QString& path, const QString& suffix) {
    return QFileInfo(path).completeBaseName() + suffix;
}

QString GetRandomStr(int count, const NameSources& sources) {
    QString text;
    for (int i = 0; i < count; ++i) {
        text += RandomAlphabet.at(sources.randomBelow(static_cast<int>(RandomAlphabet.size())));
    }
    return text;
}

QString GetMonthDir(const NameSources& sources) {
    const QDate today = sources.now().date();
    return QString::number(today.year()) + u'\\' + Padded(today.month(), 2);
}

QString GetArchivFileName(qint64 number, const NameSources& sources) {
    const QDate today = sources.now().date();
    return QString::number(today.year()) + u'_' + Padded(today.month(), 2) + u'_' +
           Padded(number, 5);
}

QString GetDatePrefix(const NameSources& sources) {
    return DateText(sources.now().date(), u'-');
}

QString GetFileName(const QString& prefix, int nameVariable, int fileType,
                    const NameSources& sources) {
    return prefix + NamePart(nameVariable, sources) + Extension(fileType);
}

}  // namespace kadrona::core
