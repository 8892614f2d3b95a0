#pragma once

#include <QObject>
#include <QStringList>

class QWidget;

namespace kadrona::core {
class TData;
}

namespace kadrona::app {

/// Photos that could not be filed because the archive's server was gone: looks from time to time
/// whether it is there again, and offers to file them. So it does for those of an earlier start.
class WaitingPhotos : public QObject {
    Q_OBJECT

 public:
    /// Both outlive the object.
    WaitingPhotos(core::TData& data, QWidget& window);

    /// Looks now, unless something is asked over the window.
    void Look();

 private:
    void FileAll(const QStringList& names);

    core::TData& data_;
    QWidget& window_;
    /// Those that the user did not want to file yet, or that could not be, are not asked about
    /// again in this start.
    QStringList declined_;
    /// Why the queue could not be read at the last look; said once.
    QString unreadable_;
};

}  // namespace kadrona::app
