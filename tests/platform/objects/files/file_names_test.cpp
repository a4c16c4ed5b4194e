#include "platform/objects/files/file_names.h"

#include <gtest/gtest.h>

namespace orvo::file_names {
namespace {

struct Parts {
    Text path, parent, name, base, extension;
};

TEST(FileNames, HaveTheirParts) {
    const Parts all[] = {
        {u"/a/b.tar.gz", u"/a", u"b.tar.gz", u"b.tar", u"gz"},
        {u"a\\b.txt", u"a", u"b.txt", u"b", u"txt"},
        {u"/a/b/", u"/a", u"b", u"b", u""},
        {u"/a", u"/", u"a", u"a", u""},
        {u"/", u"", u"", u"", u""},
        {u"", u"", u"", u"", u""},
        {u"a", u"", u"a", u"a", u""},
        {u".profile", u"", u".profile", u"", u"profile"},
        {u"a.", u"", u"a.", u"a", u""},
    };
    for (const Parts& parts : all) {
        EXPECT_EQ(parent_of(parts.path), parts.parent) << to_utf8(parts.path);
        EXPECT_EQ(name_of(parts.path), parts.name) << to_utf8(parts.path);
        EXPECT_EQ(base_of(parts.path), parts.base) << to_utf8(parts.path);
        EXPECT_EQ(extension_of(parts.path), parts.extension) << to_utf8(parts.path);
    }
}

TEST(FileNames, AreBuiltWithOneSeparator) {
    EXPECT_EQ(build_path(u"/a", u"b"), u"/a/b");
    EXPECT_EQ(build_path(u"/a/", u"b"), u"/a/b");
    EXPECT_EQ(build_path(u"a\\", u"b"), u"a\\b");
    EXPECT_EQ(build_path(u"", u"b"), u"b");
}

TEST(FileNames, AgreeWithPatterns) {
    for (const TextView pattern :
         {u"a.txt", u"*", u"*.txt", u"a*", u"?.txt", u"*a*.*t*", u"a.t?t", u"**.txt"})
        EXPECT_TRUE(agrees(u"a.txt", pattern)) << to_utf8(pattern);
    for (const TextView pattern : {u"", u"a", u"*.tx", u"?a.txt", u"a.txt?", u"b*"})
        EXPECT_FALSE(agrees(u"a.txt", pattern)) << to_utf8(pattern);
    EXPECT_TRUE(agrees(u"", u"*"));
}

}  // namespace
}  // namespace orvo::file_names
