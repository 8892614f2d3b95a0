#pragma once

#include <QByteArray>
#include <QObject>
#include <QSet>
#include <QString>
#include <functional>

class QSocketNotifier;

namespace kadrona::platform {

/// Lets the first of a user's running programs get what later starts were asked to do. Later starts
/// reach it by a socket in the user's runtime folder ($XDG_RUNTIME_DIR), which other users may not
/// enter; who connects is checked all the same.
class RunningProgram : public QObject {
    Q_OBJECT

 public:
    enum class Role {
        First,       ///< later starts come here
        HandedOver,  ///< the first one has taken the request: end
        Alone,       ///< nothing to hand over, no runtime folder, or the first one does not answer
    };

    static constexpr qsizetype LongestRequest = 16384;

    explicit RunningProgram(QObject* parent = nullptr) : QObject(parent) {}
    ~RunningProgram() override;

    /// Becomes the first program of that identity, or hands `request` (at most LongestRequest
    /// bytes) to it, for which it waits a few seconds at most; an empty one is never handed over.
    /// Needs no event loop. Call it once.
    Role Start(const QString& identity, const QByteArray& request);

    using IsRequest = std::function<bool(const QByteArray& request)>;

    /// From now on the event loop emits Requested for what later starts hand over. What `isRequest`
    /// refuses is not taken: that start does it itself.
    void Listen(IsRequest isRequest);

 Q_SIGNALS:
    /// A later start's request, which that start leaves to this program.
    void Requested(const QByteArray& request);

 private:
    void Accept(QSocketNotifier& newcomers);
    void Receive(int client);

    int lock_ = -1;
    int server_ = -1;
    QByteArray socketPath_;
    QSet<int> clients_;
    IsRequest isRequest_;
};

}  // namespace kadrona::platform
