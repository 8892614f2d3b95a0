#include "dialogs/About.h"

#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QTextDocumentFragment>
#include <QVBoxLayout>

#include "core/base/Product.h"
#include "dialogs/ApplicationIcon.h"

using namespace Qt::StringLiterals;

namespace kadrona::dialogs {

TfmAbout::TfmAbout(QWidget* parent) : QDialog(parent) {
    setObjectName(u"fmAbout"_s);
    setWindowTitle(u"Über"_s);
    auto* symbol = new QLabel;
    symbol->setPixmap(ApplicationIcon().pixmap(QSize(72, 72), devicePixelRatioF()));
    auto* text = new QLabel(
        u"<h2>%1</h2><p>%2</p><p>Macht aus einem Porträt biometrische Pass- und "
        u"Ausweisfotos<br>in genau der richtigen Größe.</p><p>%3 · <a href=\"%4\">%4</a></p>"
        u"<p>Freie Software unter der GNU General Public License,<br>Fassung 3 oder später, "
        u"ohne jede Gewährleistung.<br>Gebaut mit Qt %5.</p>"_s.arg(
            core::WindowCaption, core::ApplicationTitle, core::MakerLine, core::MakerHomePage,
            QLatin1StringView(qVersion())));
    text->setTextFormat(Qt::RichText);
    text->setAccessibleName(QTextDocumentFragment::fromHtml(text->text()).toPlainText());
    text->setOpenExternalLinks(true);
    text->setTextInteractionFlags(Qt::TextBrowserInteraction);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok);
    buttons->button(QDialogButtonBox::Ok)->setObjectName(u"btnOk"_s);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);

    auto* row = new QHBoxLayout;
    row->setSpacing(20);
    row->addWidget(symbol, 0, Qt::AlignTop);
    row->addWidget(text);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(20, 20, 20, 16);
    layout->addLayout(row);
    layout->addWidget(buttons);
    layout->setSizeConstraint(QLayout::SetFixedSize);
}

}  // namespace kadrona::dialogs
