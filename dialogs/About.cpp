#include "dialogs/About.h"

#include <QDialogButtonBox>
#include <QFile>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QTextBrowser>
#include <QTextDocumentFragment>
#include <QUrl>
#include <QVBoxLayout>

#include "controls/messages/MessageBoxes.h"
#include "core/base/Product.h"
#include "dialogs/base/ApplicationIcon.h"
#include "dialogs/base/Markdown.h"
#include "dialogs/base/WindowPlacement.h"
#include "platform/WebPage.h"

using namespace Qt::StringLiterals;

namespace kadrona::dialogs {

namespace {

constexpr QSize LibrariesSize(760, 520);

QString ProductText() {
    const QString page = core::MakerHasHomePage() ? u"<a href=\"%1\">%1</a>"_s : u"%1"_s;
    return u"<h2>%1</h2><p>%2<br>%3 · %4</p><p>Macht aus einem Porträt biometrische Pass- und "
           u"Ausweisfotos<br>in genau der richtigen Größe.</p><p>Freie Software unter der GNU "
           u"General Public License,<br>Fassung 3 oder später, "
           u"ohne jede Gewährleistung.<br>Gebaut mit Qt %5.</p>"_s.arg(
               core::WindowCaption, core::ApplicationTitle, core::MakerLine,
               page.arg(core::MakerHomePage), QLatin1StringView(qVersion()));
}

}  // namespace

TfmAbout::TfmAbout(QWidget* parent) : QDialog(parent), text_(new QLabel), folders_(new QLabel) {
    setObjectName(u"fmAbout"_s);
    setWindowTitle(u"Über"_s);
    auto* symbol = new QLabel;
    symbol->setPixmap(ApplicationIcon().pixmap(QSize(72, 72), devicePixelRatioF()));
    const QString text = ProductText();
    text_->setTextFormat(Qt::RichText);
    text_->setText(text);
    text_->setAccessibleName(QTextDocumentFragment::fromHtml(text).toPlainText());
    text_->setOpenExternalLinks(true);
    text_->setTextInteractionFlags(Qt::TextBrowserInteraction);

    folders_->setObjectName(u"Folders"_s);
    folders_->setTextFormat(Qt::RichText);
    folders_->setTextInteractionFlags(Qt::TextBrowserInteraction);
    connect(folders_, &QLabel::linkActivated, this, [this](const QString& link) {
        const QString path = QUrl(link).toLocalFile();
        if (!platform::OpenFolder(path)) {
            controls::ShowError(this, u"Der Ordner „%1“ konnte nicht geöffnet werden."_s.arg(path));
        }
    });

    auto* row = new QHBoxLayout;
    row->setSpacing(20);
    row->addWidget(symbol, 0, Qt::AlignTop);
    auto* texts = new QVBoxLayout;
    texts->addWidget(text_);
    texts->addWidget(folders_);
    row->addLayout(texts);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(20, 16, 20, 14);
    layout->addLayout(row);
    layout->addSpacing(8);
    layout->addWidget(BuildButtons());
    layout->setSizeConstraint(QLayout::SetFixedSize);
}

QWidget* TfmAbout::BuildButtons() {
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok);
    QPushButton* libraries =
        buttons->addButton(u"&Bibliotheken und Lizenzen"_s, QDialogButtonBox::HelpRole);
    libraries->setObjectName(u"btnLibraries"_s);
    connect(libraries, &QPushButton::clicked, this, &TfmAbout::ShowLibraries);
    buttons->button(QDialogButtonBox::Ok)->setObjectName(u"btnOk"_s);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    return buttons;
}

/// A text keeps the colour that links had when it was set.
void TfmAbout::showEvent(QShowEvent* event) {
    const QString text = text_->text();
    text_->clear();
    text_->setText(text);
    QDialog::showEvent(event);
}

void TfmAbout::SetFolders(const QList<Folder>& folders) {
    QString rows;
    QString spoken;
    for (const auto& [meaning, path] : folders) {
        rows += u"<tr><td>%1:&nbsp;&nbsp;</td><td><a href=\"%2\">%3</a></td></tr>"_s.arg(
            meaning, QString::fromLatin1(QUrl::fromLocalFile(path).toEncoded()),
            path.toHtmlEscaped());
        spoken += u"%1: %2. "_s.arg(meaning, path);
    }
    folders_->setText(u"<table>%1</table>"_s.arg(rows));
    folders_->setAccessibleName(spoken.trimmed());
}

void TfmAbout::ShowLibraries() {
    QDialog dialog(this);
    dialog.setObjectName(u"LibrariesDialog"_s);
    dialog.setWindowTitle(u"Bibliotheken und Lizenzen"_s);
    QFile file(u":/third-party.md"_s);
    file.open(QIODevice::ReadOnly);
    auto* text = new QTextBrowser;
    text->setAccessibleName(dialog.windowTitle());
    ShowMarkdown(*text, QString::fromUtf8(file.readAll()));
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close);
    connect(buttons, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);
    auto* layout = new QVBoxLayout(&dialog);
    layout->addWidget(text);
    layout->addWidget(buttons);
    dialog.resize(WithinScreen(dialog, LibrariesSize));
    dialog.exec();
}

}  // namespace kadrona::dialogs
