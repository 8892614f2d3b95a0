#pragma once

#include <QDateTime>
#include <QString>
#include <functional>

namespace kadrona::core {

/// What names are made of beside the settings; the defaults are the real ones.
struct NameSources {
    /// Local time.
    std::function<QDateTime()> now;
    /// A number from 0 up to and without its argument, each equally likely.
    std::function<int(int)> randomBelow;
    /// A fresh GUID as text, with braces and hyphens.
    std::function<QString()> guid;

    NameSources();
};

/// The path without one trailing path separator; unchanged if it does not end in one or is empty.
QString DelLastBackslash(const QString& path);

/// The file name of a path without folder and without extension, with `suffix` appended.
QString GetNameWithSuffix(const QString& path, const QString& suffix);

/// `count` characters, each drawn independently from the letters a to z and A to Z and the digits.
QString GetRandomStr(int count, const NameSources& sources = {});

/// Year and month, "2026\03": always with a backslash, for this is the text that is stored. Whoever
/// uses it as a path puts the platform's separator in its place.
QString GetMonthDir(const NameSources& sources = {});

/// Year, month and a number of at least five digits: "2026_03_00042".
QString GetArchivFileName(qint64 number, const NameSources& sources = {});

/// Today: "2026-03-07".
QString GetDatePrefix(const NameSources& sources = {});

/// Name of a quickly saved photo: the prefix, what FileVarCombo's index `nameVariable` adds and the
/// extension of FileTypCombo's index `fileType`, nothing between them. An index beyond the choices
/// adds nothing.
QString GetFileName(const QString& prefix, int nameVariable, int fileType,
                    const NameSources& sources = {});

}  // namespace kadrona::core
