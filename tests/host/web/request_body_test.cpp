#include "host/web/messages/request_body.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>

#include "host/web/messages/http_message.h"
#include "tests/support/temp_folder.h"

namespace orvo::web {
namespace {

// Bytes that tell where they stand.
std::string pattern(std::size_t size) {
    std::string text(size, '\0');
    for (std::size_t i = 0; i < size; ++i) text[i] = static_cast<char>(i * 7 + i / 251);
    return text;
}

std::string part(const RequestBody& body, std::uint64_t offset, std::size_t size) {
    std::string bytes(size, '?');
    bytes.resize(body.read(offset, bytes));
    return bytes;
}

std::size_t files_in_temporary_folder() {
    const std::filesystem::directory_iterator files(std::filesystem::temp_directory_path());
    return static_cast<std::size_t>(std::distance(begin(files), end(files)));
}

TEST(RequestBody, IsEmptyWhereNothingCame) {
    const RequestBody body;
    EXPECT_EQ(body.size(), 0u);
    EXPECT_EQ(body.text(), "");
    EXPECT_EQ(part(body, 0, 5), "");
}

TEST(RequestBody, IsTheSameInMemoryAndOnDisk) {
    const TempFolder folder;
    setenv("TMPDIR", folder.path().c_str(), 1);
    for (const std::size_t size : {std::size_t{1}, RequestBodyWriter::most_in_memory,
                                   RequestBodyWriter::most_in_memory + 1, std::size_t{300'000}}) {
        const std::string sent = pattern(size);
        RequestBodyWriter writer;
        for (std::size_t i = 0; i < size; i += 1000)
            writer.append(std::string_view(sent).substr(i, 1000));
        EXPECT_EQ(writer.size(), size);
        const RequestBody body = writer.take();
        EXPECT_EQ(writer.size(), 0u);
        EXPECT_EQ(body.size(), size);
        EXPECT_EQ(body.text(), sent);
        const RequestBody copy = body;
        EXPECT_EQ(part(copy, size / 2, 10), sent.substr(size / 2, 10));
        EXPECT_EQ(part(copy, size - 1, 10), sent.substr(size - 1));
        EXPECT_EQ(part(copy, size + 1, 10), "");
        EXPECT_EQ(files_in_temporary_folder(), 0u) << "what is on disk has no name";
    }
    unsetenv("TMPDIR");
}

TEST(RequestBody, IsRefusedWhereItCannotBeKept) {
    setenv("TMPDIR", "/dev/null", 1);
    RequestBodyWriter writer;
    writer.append(std::string(RequestBodyWriter::most_in_memory, 'x'));
    try {
        writer.append("y");
        ADD_FAILURE() << "nothing was refused";
    } catch (const Refusal& refusal) {
        EXPECT_EQ(refusal.status, 507);
    }
    unsetenv("TMPDIR");
}

}  // namespace
}  // namespace orvo::web
