#include "platform/objects/files/standard_streams.h"

#include <unistd.h>

#include <cerrno>
#include <iostream>

#include "platform/objects/files/text_stream.h"

namespace orvo {
namespace {

std::size_t read_input(std::span<char> to) {
    std::cout.flush();  // a question is there before its answer is waited for
    for (;;) {
        const ssize_t count = ::read(STDIN_FILENO, to.data(), to.size());
        if (count >= 0) return static_cast<std::size_t>(count);
        if (errno != EINTR) raise_runtime_error(runtime_error::device_error);
    }
}

}  // namespace

Object standard_stream(StandardStream stream) {
    if (stream == StandardStream::input)
        return make<TextStream>(ReadBytes(read_input), Encoding::utf8).object();
    std::ostream& target = stream == StandardStream::output ? std::cout : std::cerr;
    const auto write = [&target](std::string_view bytes) {
        if (!target.write(bytes.data(), static_cast<std::streamsize>(bytes.size())))
            raise_runtime_error(runtime_error::device_error);
    };
    return make<TextStream>(WriteBytes(write), Encoding::utf8).object();
}

}  // namespace orvo
