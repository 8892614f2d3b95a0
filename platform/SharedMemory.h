#pragma once

#include <QtGlobal>
#include <memory>

namespace kadrona::platform {

/// Memory without a name that another process can be given. Both change the same bytes.
class SharedMemory {
 public:
    /// The bytes as this process sees them, which stay as long as the object, also where the memory
    /// itself is let go.
    class View {
     public:
        View(void* bytes, qint64 size) : bytes_(bytes), size_(size) {}
        ~View();
        View(const View&) = delete;
        View& operator=(const View&) = delete;
        uchar* Bytes() const { return static_cast<uchar*>(bytes_); }
        qint64 Size() const { return size_; }

     private:
        void* bytes_;
        qint64 size_;
    };

    /// Empty. Throws platform::Error, whose text is the system's reason alone, where there is none.
    SharedMemory();
    /// What another process has given to this one, by its number there.
    explicit SharedMemory(int handle) : handle_(handle) {}
    ~SharedMemory();
    SharedMemory(const SharedMemory&) = delete;
    SharedMemory& operator=(const SharedMemory&) = delete;

    int Handle() const { return handle_; }

    /// Makes it that large, new bytes are 0. Null where memory is short, or the size is fixed.
    std::unique_ptr<View> Resize(qint64 size) const;

    /// Makes it that large, and nobody who has it can make it larger any more: what is written to
    /// it counts as no process's memory. False where memory is short.
    bool Bound(qint64 most) const;

    /// Makes sure that nobody who has it can change its size any more, and that it is `size`: a
    /// process that is not trusted could else take bytes away from under whoever reads them. Null
    /// where it is of another size, or where memory is short, with ENOMEM in `errno`.
    std::unique_ptr<View> Fixed(qint64 size) const;

 private:
    int handle_ = -1;
};

}  // namespace kadrona::platform
