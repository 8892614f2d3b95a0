// What is dropped on a window, and what a settings page stores.

#include <QDir>
#include <QFile>
#include <QImage>
#include <QMimeData>
#include <QPushButton>
#include <QRadioButton>
#include <QTemporaryDir>
#include <QTest>
#include <QUrl>
#include <QVBoxLayout>

#include "controls/fields/FileDropTarget.h"
#include "controls/fields/MissingFolder.h"
#include "controls/fields/PathEdit.h"
#include "controls/fields/PropertyStore.h"
#include "platform/AtomicFile.h"
#include "platform/PropertyFile.h"
#include "tests/support/Windows.h"

using namespace Qt::StringLiterals;

namespace kadrona::controls {
namespace {

using testing::Child;
using testing::Items;

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
Answer Drag(QWidget& widget, const QMimeData& data, Qt::DropActions possible,
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
        const Answer move = Drag<QDragMoveEvent>(widget_, files_, possible, Qt::MoveAction);
        EXPECT_TRUE(move.accepted);
        EXPECT_EQ(move.action, dragged);
        dropped_.clear();
        const Answer answer = Drag<QDropEvent>(widget_, files_, proposed, proposed);
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
    // Offered together with what the toolkit's plug-ins would make of it.
    QMimeData drawing;
    drawing.setData(u"image/svg"_s, "<svg/>");
    drawing.setImageData(QImage(2, 2, QImage::Format_RGB32));
    QMimeData page;
    page.setHtml(
        u"<p>src=</p><a href=\"data:image/png;base64,YQ==\"><img src=\"https://x.de/c.jpg\">"_s);
    for (const QMimeData* data : {&text, &web, &drawing, &page}) {
        EXPECT_FALSE(
            Drag<QDragEnterEvent>(widget_, *data, Qt::CopyAction, Qt::CopyAction).accepted);
        EXPECT_FALSE(Drag<QDropEvent>(widget_, *data, Qt::CopyAction, Qt::CopyAction).accepted);
        EXPECT_FALSE(Framed());
    }
    QCoreApplication::processEvents();
    EXPECT_TRUE(dropped_.isEmpty());
}

TEST_F(DropTest, APictureOfABrowserIsTakenAsTheBytesOfItsFile) {
    QByteArray taken;
    QObject::connect(&target_, &FileDropTarget::PictureDropped,
                     [&taken](const QByteArray& file) { taken = file; });
    QMimeData picture;
    picture.setUrls({QUrl(u"https://x.de/c.jpg"_s)});
    picture.setData(u"image/png"_s, "a png");
    picture.setData(u"image/jpeg"_s, "a jpeg");
    EXPECT_TRUE(Drag<QDropEvent>(widget_, picture, Qt::CopyAction, Qt::CopyAction).accepted);
    QCoreApplication::processEvents();
    EXPECT_EQ(taken, "a jpeg") << "as the camera wrote it";

    QMimeData mail;
    mail.setHtml(u"<p>Guten Tag</p><img alt='x' SRC='data:image/jpeg;base64,YSBq\ncGVn'> -- "_s);
    QMimeData address;
    address.setData(u"text/uri-list"_s, "data:image/jpeg;base64,YSBqcGVn\r\n");
    for (const QMimeData* data : {&mail, &address}) {
        taken.clear();
        EXPECT_TRUE(Drag<QDropEvent>(widget_, *data, Qt::CopyAction, Qt::CopyAction).accepted);
        QCoreApplication::processEvents();
        EXPECT_EQ(taken, "a jpeg") << "in the text";
    }
    EXPECT_TRUE(dropped_.isEmpty());
}

TEST_F(DropTest, WhoeverDragsIsAskedOnceAndMayNameAThousandFiles) {
    struct Counted : QMimeData {
        QVariant retrieveData(const QString& format, QMetaType type) const override {
            asked += format == u"text/uri-list"_s ? 1 : 0;
            return QMimeData::retrieveData(format, type);
        }
        mutable int asked = 0;
    } many;
    many.setData(u"text/uri-list"_s, QByteArray("file:///a.jpg\r\n").repeated(1500));
    Drag<QDragMoveEvent>(widget_, many, Qt::CopyAction, Qt::CopyAction);
    QDropEvent drop({5, 5}, Qt::CopyAction, &many, Qt::LeftButton, Qt::NoModifier);
    EXPECT_TRUE(Send(widget_, drop).accepted);
    QCoreApplication::processEvents();
    EXPECT_EQ(dropped_.size(), MostOfferedFiles);
    EXPECT_EQ(many.asked, 1) << "he may take seconds each time";
}

TEST_F(DropTest, TheFrameIsThereOnlyDuringTheDrag) {
    EXPECT_FALSE(Framed());
    Drag<QDragEnterEvent>(widget_, files_, Qt::CopyAction, Qt::CopyAction);
    EXPECT_TRUE(Framed());
    QDragLeaveEvent leave;
    QCoreApplication::sendEvent(&widget_, &leave);
    EXPECT_FALSE(Framed());
    Drag<QDragEnterEvent>(widget_, files_, Qt::CopyAction, Qt::CopyAction);
    Drag<QDropEvent>(widget_, files_, Qt::CopyAction, Qt::CopyAction);
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
    EXPECT_FALSE(Drag<QDragEnterEvent>(edit, data, Qt::CopyAction, Qt::CopyAction).accepted);
    Drag<QDropEvent>(edit, data, Qt::CopyAction, Qt::CopyAction);
    EXPECT_EQ(edit.text(), u"vorher"_s);

    data.setUrls({QUrl::fromLocalFile(filePath), QUrl::fromLocalFile(folder.path())});
    EXPECT_TRUE(Drag<QDragEnterEvent>(edit, data, Qt::CopyAction, Qt::CopyAction).accepted);
    const Answer answer = Drag<QDropEvent>(edit, data, Qt::MoveAction, Qt::MoveAction);
    EXPECT_EQ(answer.action, Qt::IgnoreAction);
    EXPECT_EQ(edit.text(), folder.path());
}

// A little settings page with one control of every kind.
struct Page {
    QWidget window;
    QCheckBox check{&window};
    QRadioButton left{&window};
    QRadioButton right{&window};
    QLineEdit edit{&window};
    QComboBox fixed{&window};
    QComboBox list{&window};
    PropertyStore store;

    Page() {
        check.setObjectName(u"Check"_s);
        left.setObjectName(u"Left"_s);
        right.setObjectName(u"Right"_s);
        edit.setObjectName(u"Edit"_s);
        fixed.setObjectName(u"Fixed"_s);
        list.setObjectName(u"List"_s);
        fixed.addItems({u"JPG"_s, u"JP2"_s});
        list.addItems({u"design"_s});
        store.AddChecked(check);
        store.AddChecked(left);
        store.AddChecked(right);
        store.AddText(edit);
        store.AddItemIndex(fixed);
        store.AddList(list);
        left.setChecked(true);
        edit.setText(u"design"_s);
    }

    void ExpectDesignValues() const {
        EXPECT_TRUE(left.isChecked() && !check.isChecked());
        EXPECT_EQ(edit.text(), u"design"_s);
        EXPECT_EQ(fixed.currentIndex(), 0);
        EXPECT_EQ(Items(list), u"design"_s);
        EXPECT_EQ(list.currentIndex(), 0);
    }
};

class PropertyStoreTest : public ::testing::Test {
 protected:
    QTemporaryDir folder_;
    QString path_ = folder_.filePath(u"pro1A.tmp"_s);
};

TEST(MissingFolderLine, LooksAgainWhereTheFieldIsShownAndNotBefore) {
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"new"_s);
    QWidget window;
    auto* column = new QVBoxLayout(&window);
    auto* field = new PathEdit;
    auto* line = new MissingFolder(*field);
    column->addWidget(field);
    column->addWidget(line);
    field->setText(path);
    QTest::qWait(600);
    EXPECT_TRUE(line->isHidden()) << "nobody sees it";
    window.show();
    ASSERT_TRUE(QTest::qWaitFor([&] { return line->isVisible(); }));
    EXPECT_EQ(line->findChild<QPushButton*>(), nullptr) << "a share may belong there";
    window.hide();
    ASSERT_TRUE(QDir().mkdir(path));
    window.show();
    EXPECT_TRUE(QTest::qWaitFor([&] { return line->isHidden(); }));
}

TEST_F(PropertyStoreTest, EveryControlComesBackAsItWasStored) {
    Page stored;
    stored.store.Store();  // into no file
    stored.store.Restore();
    EXPECT_FALSE(QFile::exists(stored.store.StorageFile()));
    stored.ExpectDesignValues();
    stored.check.setChecked(true);
    stored.right.setChecked(true);
    stored.edit.setText(u" Bild;name #1 = \"x\" "_s);
    stored.fixed.setCurrentIndex(-1);
    stored.list.clear();
    stored.list.addItems({u"Laser"_s, u""_s, u"Größe"_s});
    stored.list.setCurrentIndex(2);
    stored.store.SetStorageFile(path_);
    stored.store.Store();

    Page restored;
    QSignalSpy listChanges(&restored.list, &QComboBox::currentIndexChanged);
    restored.store.SetStorageFile(path_);
    restored.store.Restore();
    EXPECT_TRUE(restored.check.isChecked() && restored.right.isChecked());
    EXPECT_EQ(restored.edit.text(), stored.edit.text());
    EXPECT_EQ(restored.fixed.currentIndex(), -1);
    EXPECT_EQ(Items(restored.list), u"Laser||Größe"_s);
    EXPECT_EQ(restored.list.currentIndex(), 2);
    EXPECT_EQ(listChanges.count(), 1);
}

TEST_F(PropertyStoreTest, WhatAFileDoesNotHoldLeavesTheControls) {
    Page page;
    page.store.SetStorageFile(path_);
    page.store.Restore();  // no file
    page.ExpectDesignValues();
    for (const QByteArray& content :
         {QByteArray(), QByteArray("[Check\nChecked=1"),
          QByteArray("[Check]\nChecked=vielleicht\n"),
          QByteArray("\xff\xfe\x00\x01[[[]]]===\n=\n", 16), QByteArray(5000, '\0'),
          QByteArray("[Fixed]\nItemIndex=2\n[List]\nProperties.Items=-3\n"),
          QByteArray("[Fixed]\nItemIndex=eins\n[List]\nItemIndex=-99999999999999\n")}) {
        platform::WriteFileAtomically(path_, content);
        EXPECT_NO_THROW(page.store.Restore());
        page.ExpectDesignValues();
    }
    platform::PropertyFile partial(path_);
    partial.WriteBoolean(u"Check"_s, u"Checked"_s, true);
    partial.WriteInteger(u"List"_s, u"ItemIndex"_s, 7);
    partial.Save();
    page.store.Restore();
    EXPECT_TRUE(page.check.isChecked());
    EXPECT_EQ(page.list.currentIndex(), -1) << "an index beyond the items";
}

TEST_F(PropertyStoreTest, AChoiceIsItsText) {
    Page page;
    page.store.SetStorageFile(path_);
    page.store.Store();
    platform::PropertyFile file(path_);
    for (const auto& [text, index] : {std::pair(u"B"_s, 1), std::pair(u"gone"_s, -1)}) {
        file.WriteList(u"List"_s, u"Properties.Items"_s, {u"A"_s, u"B"_s});
        file.WriteInteger(u"List"_s, u"ItemIndex"_s, 0);
        file.WriteText(u"List"_s, u"Text"_s, text);
        file.Save();
        page.store.Restore();
        EXPECT_EQ(page.list.currentIndex(), index) << text.toStdString();
    }
}

}  // namespace
}  // namespace kadrona::controls
