#include "printing/cups/service/ChosenPrinters.h"

#include <algorithm>

#include "platform/Error.h"
#include "platform/UserRegistry.h"

using namespace Qt::StringLiterals;

namespace kadrona::printing::cups {

namespace {

const QString ChosenValue = u"NetworkPrinters"_s;
constexpr qsizetype MostKept = 50;

/// Such an address has no blanks.
QByteArrayList Kept() {
    return platform::ReadRegistryText(ChosenValue).toLatin1().split(' ');
}

}  // namespace

bool ChosenPrinters::Holds(const QByteArray& uri) const {
    if (ofThisRun_.contains(uri)) {
        return true;
    }
    try {
        return Kept().contains(uri);
    } catch (const platform::Error&) {
        return false;  // the user is asked once more
    }
}

void ChosenPrinters::Add(const QByteArray& uri) {
    if (Holds(uri)) {
        return;
    }
    ofThisRun_.append(uri);
    try {
        QByteArrayList kept = Kept();
        kept.removeAll({});
        kept.prepend(uri);
        kept.resize(std::min(kept.size(), MostKept));
        platform::WriteRegistryText(ChosenValue, QString::fromLatin1(kept.join(' ')));
    } catch (const platform::Error&) {
        return;
    }
}

}  // namespace kadrona::printing::cups
