#include "controls/fields/PathShortening.h"

#include <QStringView>
#include <algorithm>

using namespace Qt::StringLiterals;

namespace kadrona::controls {
namespace {

bool IsSeparator(QChar c) {
    return c == u'/' || c == u'\\';
}

// Where the file name starts.
qsizetype NameStart(QStringView path) {
    const auto separator = std::find_if(path.rbegin(), path.rend(), IsSeparator);
    return path.rend() - separator;
}

// Length of the first part with its separators: "/home/", "C:\", "\\server\"; 0 if there is none.
qsizetype RootLength(QStringView path) {
    const auto* position = std::find_if_not(path.begin(), path.end(), IsSeparator);
    position = std::find_if(position, path.end(), IsSeparator);
    return position == path.end() ? 0 : position - path.begin() + 1;
}

// `lead`, an ellipsis, and the longest run of last parts that fits; null if not even the name does.
QString WithLongestTail(const QString& path, const QString& lead, int width,
                        const TextMeasure& measure) {
    const qsizetype name = NameStart(path);
    for (qsizetype start = lead.size(); start < name; ++start) {
        // A tail starts with a separator, and skips at least one part.
        if (!IsSeparator(path[start]) || start == 0) {
            continue;
        }
        QString candidate = lead + u'…' + path.mid(start);
        if (measure(candidate) <= width) {
            return candidate;
        }
    }
    return {};
}

// The ends of a text around an ellipsis, as much of them as fits, no character cut in halves.
QString WithoutMiddle(const QString& text, int width, const TextMeasure& measure) {
    for (qsizetype kept = text.size() - 1; kept > 0; --kept) {
        qsizetype front = (kept + 1) / 2;
        qsizetype back = text.size() - kept / 2;
        front -= text[front - 1].isHighSurrogate() ? 1 : 0;
        back += back < text.size() && text[back].isLowSurrogate() ? 1 : 0;
        QString candidate = text.left(front) + u'…' + text.mid(back);
        if (measure(candidate) <= width) {
            return candidate;
        }
    }
    const QString ellipsis(u'…');
    return measure(ellipsis) <= width ? ellipsis : QString();
}

}  // namespace

QString ShortenPath(const QString& path, int width, const TextMeasure& measure) {
    if (measure(path) <= width) {
        return path;
    }
    const qsizetype name = NameStart(path);
    for (const QString& lead : {path.left(RootLength(path)), QString()}) {
        QString candidate = WithLongestTail(path, lead, width, measure);
        if (!candidate.isEmpty()) {
            return candidate;
        }
    }
    QString fileName = path.mid(name);
    if (measure(fileName) <= width && !fileName.isEmpty()) {
        return fileName;
    }
    return WithoutMiddle(fileName.isEmpty() ? path : fileName, width, measure);
}

}  // namespace kadrona::controls
