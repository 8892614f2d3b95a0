#include "core/sheet/PaperSize.h"

#include <QRegularExpression>
#include <QStringList>

using namespace Qt::StringLiterals;

namespace kadrona::core {

std::optional<int> MicrometresOf(const QString& millimetres) {
    static const QRegularExpression form(u"^\\s*([0-9]{1,5})(?:[.,]([0-9]{1,3}))?\\s*$"_s);
    const auto match = form.match(millimetres);
    if (!match.hasMatch()) {
        return std::nullopt;
    }
    return match.captured(1).toInt() * MicrometresPerMillimetre +
           match.captured(2).leftJustified(3, u'0').toInt();
}

std::optional<QSize> PaperSizeOf(const QString& text) {
    const QString key = QString(text).remove(u' ');
    for (const NamedPaper& paper : NamedPapers) {
        if (key.compare(paper.key, Qt::CaseInsensitive) == 0) {
            return paper.size;
        }
    }
    const QStringList sides = key.split(u'x', Qt::KeepEmptyParts, Qt::CaseInsensitive);
    const auto width = MicrometresOf(sides.first());
    const auto height = MicrometresOf(sides.last());
    return sides.size() == 2 && width && height ? std::optional(QSize(*width, *height))
                                                : std::nullopt;
}

QString PaperKeys() {
    QStringList keys;
    for (const NamedPaper& paper : NamedPapers) {
        keys.append(paper.key);
    }
    return keys.join(u", "_s);
}

QString MillimetresText(int micrometres) {
    return QString::number(static_cast<double>(micrometres) / MicrometresPerMillimetre, 'g', 8)
        .replace(u'.', u',');
}

QString SizeText(QSize micrometres) {
    return u"%1 x %2 mm"_s.arg(MillimetresText(micrometres.width()),
                               MillimetresText(micrometres.height()));
}

int PixelsOf(int micrometres, int dotsPerInch) {
    const qint64 product = qint64{micrometres} * dotsPerInch;
    // Rounded half up below 0 as well.
    constexpr qint64 Half = MicrometresPerInch / 2;
    const qint64 shifted = product + Half;
    return static_cast<int>(shifted >= 0
                                ? shifted / MicrometresPerInch
                                : -((-shifted + MicrometresPerInch - 1) / MicrometresPerInch));
}

}  // namespace kadrona::core
