#include "imaging/reading/cameras/RawStream.h"

namespace kadrona::imaging {

int RawStream::read(void* target, size_t size, size_t count) {
    Count();
    return LibRaw_buffer_datastream::read(target, size, count);
}

int RawStream::seek(INT64 offset, int whence) {
    Count();
    return LibRaw_buffer_datastream::seek(offset, whence);
}

char* RawStream::gets(char* text, int size) {
    Count();
    return LibRaw_buffer_datastream::gets(text, size);
}

int RawStream::scanf_one(const char* format, void* value) {
    Count();
    return LibRaw_buffer_datastream::scanf_one(format, value);
}

int RawStream::get_char() {
    Count();
    return LibRaw_buffer_datastream::get_char();
}

}  // namespace kadrona::imaging
