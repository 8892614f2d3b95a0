#include "app/archive/WaitingPhotos.h"

#include <QApplication>
#include <QDateTime>
#include <QScopeGuard>
#include <QTimer>
#include <QWidget>
#include <chrono>
#include <utility>

#include "controls/messages/ActionGuard.h"
#include "controls/messages/MessageBoxes.h"
#include "controls/messages/ProgressBox.h"
#include "core/Data.h"
#include "store/StoreError.h"

using namespace Qt::StringLiterals;

namespace kadrona::app {

namespace {

constexpr std::chrono::seconds AfterStart(3);
constexpr std::chrono::seconds BetweenLooks(30);
/// The window stands still for as long.
constexpr std::chrono::milliseconds LookPatience(300);

}  // namespace

WaitingPhotos::WaitingPhotos(core::TData& data, QWidget& window)
    : QObject(&window), data_(data), window_(window) {
    const auto look = [this] { controls::Guarded(&window_, [this] { Look(); }); };
    QTimer::singleShot(AfterStart, this, [this, look] {
        try {
            data_.Archiving().Queue().RemoveOrphans(QDateTime::currentDateTime().addDays(-1));
        } catch (const platform::FileError&) {  // the look says so
        }
        look();
    });
    auto* timer = new QTimer(this);
    connect(timer, &QTimer::timeout, this, look);
    timer->start(BetweenLooks);
}

void WaitingPhotos::Look() {
    QStringList names;
    try {
        names = data_.Archiving().Queue().Waiting();
        unreadable_.clear();
    } catch (const platform::FileError& error) {
        if (std::exchange(unreadable_, error.Text()) == error.Text()) {
            return;  // said already
        }
        throw;
    }
    if (names.isEmpty() || names == declined_ || QApplication::activeModalWidget() != nullptr ||
        !data_.Archiving().IsBack(LookPatience)) {
        return;
    }
    const QString text =
        names.size() == 1
            ? u"Ein Foto wartet darauf, archiviert zu werden, und das Bildarchiv ist wieder "
              u"erreichbar. Soll es jetzt archiviert werden?"_s
            : u"%1 Fotos warten darauf, archiviert zu werden, und das Bildarchiv ist wieder "
              u"erreichbar. Sollen sie jetzt archiviert werden?"_s.arg(names.size());
    const bool wanted = controls::AskYesNo(&window_, text);
    const auto askNoMore = qScopeGuard([this] { declined_ = data_.Archiving().Queue().Waiting(); });
    if (wanted) {
        FileAll(names);
    }
}

/// One that has nowhere to go does not hold up the others.
void WaitingPhotos::FileAll(const QStringList& names) {
    controls::ProgressBox box(&window_, u"Wartende Fotos archivieren"_s);
    const platform::Progress progress = box.Reporter();
    QString failure;
    qint64 done = 0;
    for (const QString& name : names) {
        try {
            progress(u"Die Fotos werden archiviert …"_s, done++, names.size());
            if (data_.Archiving().FileWaiting(name) != core::Filing::Done) {
                failure = u"Das Bildarchiv oder sein Ordner ist nicht zugänglich."_s;
            }
        } catch (const platform::Cancelled&) {
            return;  // the others wait on
        } catch (const store::ConnectionLost&) {
            throw;
        } catch (const platform::Error& error) {
            failure = error.Text();
        }
    }
    if (!failure.isEmpty()) {
        throw platform::Error(
            u"Nicht alle wartenden Fotos konnten archiviert werden; diese warten weiter. "_s +
            failure);
    }
}

}  // namespace kadrona::app
