#include "platform/StandardError.hpp"

#include <unistd.h>

#include <cerrno>

namespace plakard {

void writeStandardError(std::string_view text) {
    // Straight to the descriptor: nothing is buffered, so the text is out
    // before the process ends however it ends. A failed write has nowhere to
    // be reported and is dropped.
    const char* data = text.data();
    std::size_t count = text.size();
    while (count > 0) {
        ssize_t written = ::write(STDERR_FILENO, data, count);
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return;
        data += written;
        count -= static_cast<std::size_t>(written);
    }
}

}  // namespace plakard
