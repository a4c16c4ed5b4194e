#include "suite/store/reply_reader.h"

#include <gtest/gtest.h>

#include "suite/store/lost.h"
#include "suite/store/store_error.h"
#include "tests/support/raised.h"

namespace orvo::store {
namespace {

using namespace std::string_literals;
using namespace std::string_view_literals;

Reply text(const std::string& value) { return Reply(value); }
Reply number(std::int64_t value) { return Reply(value); }
Reply list(Reply::List values) { return Reply(std::move(values)); }

std::vector<Reply> read(std::string_view bytes, std::size_t at_once) {
    ReplyReader reader;
    std::vector<Reply> replies;
    for (; !bytes.empty(); bytes.remove_prefix(std::min(at_once, bytes.size()))) {
        reader.feed(bytes.substr(0, at_once));
        while (auto reply = reader.next()) replies.push_back(std::move(*reply));
    }
    return replies;
}

TEST(ReplyReader, ReadsRepliesInWhateverPiecesTheyCome) {
    const std::vector<Reply> expected = {
        text("OK"),
        number(-9223372036854775807),
        text("a\r\n\0b"s),
        text(""),
        Reply(),
        Reply(),
        Reply(Reply::Error{"ERR no"}),
        list({}),
        list({number(1), list({text("x"), list({Reply()})}), Reply(Reply::Error{"E"})}),
    };
    const std::string bytes =
        "+OK\r\n:-9223372036854775807\r\n$5\r\na\r\n\0b\r\n$0\r\n\r\n$-1\r\n*-1\r\n-ERR no\r\n"
        "*0\r\n*3\r\n:1\r\n*2\r\n+x\r\n*1\r\n$-1\r\n-E\r\n"s;
    for (const std::size_t at_once : {1, 2, 3, 7, 1000}) EXPECT_EQ(read(bytes, at_once), expected);
}

TEST(ReplyReader, RefusesWhatIsNoReply) {
    const std::string deep = "*1\r\n*1\r\n*1\r\n*1\r\n*1\r\n*1\r\n*1\r\n*1\r\n*1\r\n";
    for (const std::string& bytes :
         {"HTTP/1.1 400 Bad Request\r\n"s, ":x\r\n"s, "$x\r\n"s, "$-2\r\n"s, "*-2\r\n"s,
          "*4294967296\r\n:1\r\n"s, "*2147483648\r\n:1\r\n"s, "*9223372036854775808\r\n"s, deep})
        EXPECT_THROW(read(bytes, 1000), Lost) << bytes;
}

TEST(ReplyReader, AnAnnouncedListTakesNoMemoryBeforeItComes) {
    ReplyReader reader;
    for (int depth = 0; depth < 5; ++depth) reader.feed("*2000000000\r\n");
    EXPECT_EQ(reader.next(), std::nullopt);
}

TEST(ReplyReader, EndsAReplyThatIsTooLarge) {
    ReplyReader reader;
    reader.feed("$1000000000\r\n");
    const std::string piece(8 * 1024 * 1024, 'x');
    EXPECT_THROW(
        {
            for (int i = 0; i < 5; ++i) {
                reader.feed(piece);
                EXPECT_EQ(reader.next(), std::nullopt);
            }
        },
        Lost);
}

TEST(Reply, WhatIsNotThereIsNotAnswered) {
    const Failure failure = raised_by([] { Reply(std::int64_t{1}).text(); });
    expect_failure(failure, store_refused, u"OrvoSuite.Store",
                   "The store does not answer with a text: somebody else has written to its keys");
    EXPECT_THROW(Reply().integer(), Failure);
    EXPECT_THROW(Reply("a").list(), Failure);
    EXPECT_EQ(Reply("a").text(), "a");
    EXPECT_EQ(number(7).integer(), 7);
}

TEST(Reply, ARefusalShowsNoArguments) {
    EXPECT_EQ(Reply::Error{"ERR unknown command 'HELLO', with args beginning with: '2' 'AUTH' "
                           "'default' 'secret'"}
                  .reason(),
              "ERR unknown command 'HELLO'");
    EXPECT_EQ(Reply::Error{"ERR a\nb"}.reason(), "ERR a");
    EXPECT_EQ(Reply::Error{"OOM no room. script: 1f, on @user_script:3."}.reason(), "OOM no room.");
}

TEST(WireForm, CountsAndMeasuresTheWords) {
    const std::string_view words[] = {"SET", "a\0b"sv, ""};
    EXPECT_EQ(wire_form(words), "*3\r\n$3\r\nSET\r\n$3\r\na\0b\r\n$0\r\n\r\n"s);
}

}  // namespace
}  // namespace orvo::store
