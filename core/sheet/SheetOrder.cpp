#include "core/sheet/SheetOrder.h"

#include <QStringList>

#include "core/sheet/PaperLayout.h"

using namespace Qt::StringLiterals;

namespace kadrona::core {

namespace {

/// What is wrong with a line; empty where `line` holds it.
QString ReadLine(const QString& text, OrderLine& line) {
    const QStringList parts = text.split(u';');
    if (parts.size() != 4) {
        return u"erwartet werden Foto; Schablone; auto oder LINKS,OBEN,BREITE; Anzahl"_s;
    }
    line.photo = parts[0].trimmed();
    line.templateName = parts[1].trimmed();
    if (line.photo.isEmpty() || line.templateName.isEmpty()) {
        return u"Foto oder Schablone fehlt"_s;
    }
    const QString place = parts[2].trimmed();
    line.place = ParsePlace(place);
    if (!line.place && place != u"auto"_s) {
        return u"die Lage „%1“ ist weder auto noch LINKS,OBEN,BREITE"_s.arg(place);
    }
    bool valid = false;
    line.count = parts[3].trimmed().toInt(&valid);
    if (!valid || line.count < 1 || line.count > MostCopies) {
        return u"die Anzahl „%1“ ist keine Zahl von 1 bis %2"_s.arg(parts[3].trimmed())
            .arg(MostCopies);
    }
    return {};
}

}  // namespace

Order ParseOrder(const QString& text) {
    Order order;
    int number = 0;
    for (const QStringView view : QStringView(text).split(u'\n')) {
        const QString content = view.toString().trimmed();
        ++number;
        if (content.isEmpty() || content.startsWith(u'#')) {
            continue;
        }
        if (static_cast<int>(order.lines.size()) >= MostOrderLines) {
            order.errors.push_back({number, u"mehr als %1 Zeilen"_s.arg(MostOrderLines)});
            break;
        }
        OrderLine line{number, {}, {}, {}, 0};
        const QString error = ReadLine(content, line);
        if (error.isEmpty()) {
            order.lines.push_back(std::move(line));
        } else {
            order.errors.push_back({number, error});
        }
    }
    return order;
}

}  // namespace kadrona::core
