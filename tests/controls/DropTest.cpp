#include <QFile>
#include <QMimeData>
#include <QTemporaryDir>
#include <QUrl>

#include "controls/fields/FileDropTarget.h"
#include "controls/fields/PathEdit.h"
#include "tests/support/Windows.h"

using namespace Qt::StringLiterals;

namespace kadrona::controls {
namespace {

using testing::Child;

struct Answer {
    bool accepted;
    Qt::DropAction action;
};

Answer Send(QWidget& widget, QDropEvent& event) {
    event.ignore();
    QCoreApplication::sendEvent(&widget, &event);
    return {event.isAccepted(), event.dropAction()};
}

// A step of a drag as the source offers `possible` and the keys held propose `proposed`. Qt asks
// the widget under the pointer first whether the drag may enter.
template <typename Event>
Answer Offer(QWidget& widget, const QMimeData& data, Qt::DropActions possible,
             Qt::DropAction proposed) {
    QDragEnterEvent enter({5, 5}, possible, &data, Qt::LeftButton, Qt::NoModifier);
    enter.setDropAction(proposed);
    const Answer entered = Send(widget, enter);
    if (std::is_same_v<Event, QDragEnterEvent> || !entered.accepted) {
        return entered;
    }
    Event event({5, 5}, possible, &data, Qt::LeftButton, Qt::NoModifier);
    event.setDropAction(proposed);
    return Send(widget, event);
}

class DropTest : public ::testing::Test {
 protected:
    DropTest() {
        widget_.resize(100, 80);
        widget_.show();
        files_.setUrls({QUrl::fromLocalFile(u"/fotos/b ä.jpg"_s), QUrl(u"https://x.de/c.jpg"_s),
                        QUrl::fromLocalFile(u"/fotos/a.jpg"_s)});
        QObject::connect(&target_, &FileDropTarget::FilesDropped,
                         [this](const QStringList& paths) { dropped_ += paths; });
    }

    bool Framed() { return Child<QWidget>(widget_, "DropFrame").isVisible(); }

    QWidget widget_;
    FileDropTarget& target_ = *new FileDropTarget(&widget_);
    QMimeData files_;
    QStringList dropped_;
};

TEST_F(DropTest, FilesAreTakenAsACopyAndAMoveIsNeverConfirmed) {
    for (const auto& [possible, dragged, proposed, dropped] :
         {std::tuple(Qt::CopyAction | Qt::MoveAction | Qt::LinkAction, Qt::CopyAction,
                     Qt::CopyAction, Qt::CopyAction),
          std::tuple(Qt::MoveAction | Qt::LinkAction, Qt::LinkAction, Qt::LinkAction,
                     Qt::LinkAction),
          std::tuple(Qt::DropActions(Qt::MoveAction), Qt::IgnoreAction, Qt::MoveAction,
                     Qt::IgnoreAction)}) {
        const Answer move = Offer<QDragMoveEvent>(widget_, files_, possible, Qt::MoveAction);
        EXPECT_TRUE(move.accepted);
        EXPECT_EQ(move.action, dragged);
        dropped_.clear();
        const Answer answer = Offer<QDropEvent>(widget_, files_, proposed, proposed);
        EXPECT_TRUE(answer.accepted);
        EXPECT_EQ(answer.action, dropped);
        EXPECT_TRUE(dropped_.isEmpty()) << "the source is answered first";
        QCoreApplication::processEvents();
        EXPECT_EQ(dropped_, (QStringList{u"/fotos/b ä.jpg"_s, u"/fotos/a.jpg"_s}));
    }
}

TEST_F(DropTest, OtherDragsAreRefused) {
    QMimeData text;
    text.setText(u"/fotos/a.jpg"_s);
    QMimeData web;
    web.setUrls({QUrl(u"https://x.de/c.jpg"_s)});
    for (const QMimeData* data : {&text, &web}) {
        EXPECT_FALSE(
            Offer<QDragEnterEvent>(widget_, *data, Qt::CopyAction, Qt::CopyAction).accepted);
        EXPECT_FALSE(Offer<QDropEvent>(widget_, *data, Qt::CopyAction, Qt::CopyAction).accepted);
        EXPECT_FALSE(Framed());
    }
    QCoreApplication::processEvents();
    EXPECT_TRUE(dropped_.isEmpty());
}

TEST_F(DropTest, TheFrameIsThereOnlyDuringTheDrag) {
    EXPECT_FALSE(Framed());
    Offer<QDragEnterEvent>(widget_, files_, Qt::CopyAction, Qt::CopyAction);
    EXPECT_TRUE(Framed());
    QDragLeaveEvent leave;
    QCoreApplication::sendEvent(&widget_, &leave);
    EXPECT_FALSE(Framed());
    Offer<QDragEnterEvent>(widget_, files_, Qt::CopyAction, Qt::CopyAction);
    Offer<QDropEvent>(widget_, files_, Qt::CopyAction, Qt::CopyAction);
    EXPECT_FALSE(Framed());
}

TEST(PathEditDrop, TakesAFolderAndNoFile) {
    const QTemporaryDir folder;
    const QString filePath = folder.filePath(u"a.txt"_s);
    QFile file(filePath);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    PathEdit edit;
    edit.setText(u"vorher"_s);

    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(filePath)});
    EXPECT_FALSE(Offer<QDragEnterEvent>(edit, data, Qt::CopyAction, Qt::CopyAction).accepted);
    Offer<QDropEvent>(edit, data, Qt::CopyAction, Qt::CopyAction);
    EXPECT_EQ(edit.text(), u"vorher"_s);

    data.setUrls({QUrl::fromLocalFile(filePath), QUrl::fromLocalFile(folder.path())});
    EXPECT_TRUE(Offer<QDragEnterEvent>(edit, data, Qt::CopyAction, Qt::CopyAction).accepted);
    const Answer answer = Offer<QDropEvent>(edit, data, Qt::MoveAction, Qt::MoveAction);
    EXPECT_EQ(answer.action, Qt::IgnoreAction);
    EXPECT_EQ(edit.text(), folder.path());
}

}  // namespace
}  // namespace kadrona::controls
