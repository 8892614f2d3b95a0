#include "dialogs/ManualWindow.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QShortcut>
#include <QTextBlock>
#include <QTextBrowser>
#include <QVBoxLayout>

#include "controls/fields/ClearButton.h"
#include "dialogs/base/Markdown.h"
#include "dialogs/base/WindowPlacement.h"
#include "platform/AtomicFile.h"
#include "platform/Paths.h"
#include "platform/WebPage.h"

using namespace Qt::StringLiterals;

namespace kadrona::dialogs {

namespace {

constexpr QSize ManualSize(900, 680);
constexpr int ChaptersWidth = 290;
constexpr qint64 MostManualBytes = qint64{1024} * 1024;
constexpr int ChapterIndent = 3;  // spaces a level

}  // namespace

ManualWindow::ManualWindow(QWidget* parent)
    : QDialog(parent),
      search_(new QLineEdit),
      hits_(new QLabel),
      chapters_(new QListWidget),
      text_(new QTextBrowser) {
    setObjectName(u"ManualWindow"_s);
    setWindowTitle(u"Handbuch"_s);
    setWindowFlag(Qt::WindowMaximizeButtonHint);
    NameControls();
    ArrangeControls();
    resize(WithinScreen(*this, ManualSize));
    connect(search_, &QLineEdit::textChanged, this, &ManualWindow::MarkHits);
    connect(chapters_, &QListWidget::currentRowChanged, this, &ManualWindow::ShowChapter);
    connect(text_, &QTextBrowser::anchorClicked, this,
            [](const QUrl& address) { platform::OpenWebPage(address); });
    auto* find = new QShortcut(QKeySequence::Find, this);
    connect(find, &QShortcut::activated, search_, qOverload<>(&QWidget::setFocus));
}

void ManualWindow::NameControls() {
    search_->setObjectName(u"ManualSearch"_s);
    search_->setPlaceholderText(u"Im Handbuch suchen …"_s);
    search_->setAccessibleName(u"Im Handbuch suchen"_s);
    controls::AddClearButton(*search_);
    chapters_->setObjectName(u"ManualChapters"_s);
    chapters_->setAccessibleName(u"Kapitel"_s);
    chapters_->setFixedWidth(ChaptersWidth);
    chapters_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    text_->setObjectName(u"ManualText"_s);
    text_->setAccessibleName(u"Text des Handbuchs"_s);
    text_->setOpenLinks(false);
}

void ManualWindow::ArrangeControls() {
    auto* top = new QHBoxLayout;
    top->addWidget(search_, 1);
    top->addWidget(hits_);
    auto* row = new QHBoxLayout;
    row->addWidget(chapters_);
    row->addWidget(text_, 1);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(top);
    layout->addLayout(row, 1);
}

void ManualWindow::ShowChapter(int row) {
    if (const QListWidgetItem* item = chapters_->item(row)) {
        const int position = item->data(Qt::UserRole).toInt();
        QTextCursor end(text_->document());
        end.movePosition(QTextCursor::End);
        text_->setTextCursor(end);  // so that the chapter comes to the top, not the bottom
        QTextCursor cursor(text_->document());
        cursor.setPosition(position);
        text_->setTextCursor(cursor);
    }
}

void ManualWindow::Load(const QString& folder) {
    const QByteArray source =
        platform::ReadWholeFile(platform::JoinPath(folder, u"Handbuch.md"), MostManualBytes);
    text_->setSearchPaths({folder});
    text_->document()->setBaseUrl(QUrl::fromLocalFile(folder + u'/'));
    ShowMarkdown(*text_, QString::fromUtf8(source));
    ListChapters();
    search_->setFocus();
}

/// Return goes to the next hit, with Shift to the one before.
void ManualWindow::keyPressEvent(QKeyEvent* event) {
    if (search_->hasFocus() && (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)) {
        GoToNextHit(event->modifiers().testFlag(Qt::ShiftModifier));
        return;
    }
    QDialog::keyPressEvent(event);
}

void ManualWindow::ListChapters() {
    chapters_->clear();
    for (QTextBlock block = text_->document()->begin(); block.isValid(); block = block.next()) {
        const int level = block.blockFormat().headingLevel();
        if (level > 0) {
            auto* item = new QListWidgetItem(QString(qsizetype{ChapterIndent} * (level - 1), u' ') +
                                             block.text());
            item->setData(Qt::UserRole, block.position());
            chapters_->addItem(item);
        }
    }
}

void ManualWindow::MarkHits() {
    QList<QTextEdit::ExtraSelection> marks;
    const QString wanted = search_->text();
    QTextCursor cursor(text_->document());
    while (!wanted.isEmpty() && !(cursor = text_->document()->find(wanted, cursor)).isNull()) {
        QTextEdit::ExtraSelection mark;
        mark.cursor = cursor;
        mark.format.setBackground(QColor(255, 236, 153));
        mark.format.setForeground(Qt::black);
        marks.append(mark);
    }
    text_->setExtraSelections(marks);
    hits_->setText(wanted.isEmpty()    ? QString()
                   : marks.size() == 1 ? u"1 Treffer"_s
                                       : u"%1 Treffer"_s.arg(marks.size()));
    text_->moveCursor(QTextCursor::Start);
    GoToNextHit(false);
}

/// Goes on at the other end where there is none left.
void ManualWindow::GoToNextHit(bool backward) {
    const QString wanted = search_->text();
    if (wanted.isEmpty()) {
        return;
    }
    const auto direction = backward ? QTextDocument::FindFlags(QTextDocument::FindBackward)
                                    : QTextDocument::FindFlags();
    if (!text_->find(wanted, direction)) {
        text_->moveCursor(backward ? QTextCursor::End : QTextCursor::Start);
        text_->find(wanted, direction);
    }
}

}  // namespace kadrona::dialogs
