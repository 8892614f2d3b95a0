#include "store/postgres/AnswerWatch.h"

#include <malloc.h>
#include <sys/ioctl.h>

namespace kadrona::store {

using namespace Qt::StringLiterals;

namespace {

/// So many bytes make up for all of the patience; a server hands its rows on in packets of 8 kB.
constexpr qint64 BytesOfPatience = 8192;
/// An answer takes at most so many times the patience, and so much memory: the list of 100,000
/// photos needs 30 MB.
constexpr int LongestAnswer = 10;
constexpr qint64 LargestAnswer = qint64{256} << 20;
/// Rows stay in the memory, notices and parameters do not: of what is read a packet at a time, the
/// smallest of which has about 500 bytes, so much may be none.
constexpr qint64 SmallestPacket = 500;
constexpr qint64 MostIdleReads = 2000;
/// Looking takes a moment where much is in use, and most answers are there before the first look.
constexpr std::chrono::milliseconds BetweenLooks(50);

/// In bytes; nobody but the library takes any while an answer is waited for.
qint64 MemoryInUse() {
    const struct mallinfo2 use = mallinfo2();
    return static_cast<qint64>(use.uordblks) + static_cast<qint64>(use.hblkhd);
}

}  // namespace

AnswerWatch::AnswerWatch(int socket, std::chrono::milliseconds patience, bool isSeen)
    : socket_(socket),
      patience_(patience),
      isSeen_(isSeen),
      silence_(patience),
      end_(isSeen ? QDeadlineTimer(QDeadlineTimer::Forever)
                  : QDeadlineTimer(patience * LongestAnswer)),
      nextLook_(BetweenLooks) {}

void AnswerWatch::NoteArrival() {
    ++reads_;
    int bytes = 0;
    ioctl(socket_, FIONREAD, &bytes);
    const qint64 gained = patience_.count() * bytes / BytesOfPatience;
    silence_.setRemainingTime(qMin(silence_.remainingTime() + gained, qint64(patience_.count())));
}

QString AnswerWatch::Excess() {
    if (end_.hasExpired()) {
        return u"Der Server findet mit seiner Antwort kein Ende"_s;
    }
    if (!nextLook_.hasExpired()) {
        return {};
    }
    nextLook_.setRemainingTime(BetweenLooks);
    const qint64 inUse = MemoryInUse();
    memoryBefore_ = memoryBefore_.value_or(inUse);
    const qint64 kept = inUse - *memoryBefore_;
    if (!isSeen_ && reads_ > MostIdleReads + kept / SmallestPacket) {
        return u"Der Server schickt viel und beantwortet nichts"_s;
    }
    return kept > LargestAnswer
               ? u"Die Antwort des Servers ist größer als alles, was ein Archiv hat"_s
               : QString();
}

}  // namespace kadrona::store
