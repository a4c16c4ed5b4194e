// LDIF, read from and written for the programs of a real directory server.

#include <gmock/gmock.h>

#include <algorithm>
#include <sstream>

#include <string>
#include <vector>

#include "suite/directory/ldif/ldif_reader.h"
#include "suite/directory/ldif/ldif_writer.h"
#include "tests/support/child_process.h"
#include "tests/support/temp_folder.h"

namespace orvo::directory {
namespace {

using testing::SizeIs;

// A server's folder, in which none runs.
class Prepared {
public:
    explicit Prepared(const std::string& shop = ORVO_SOURCE_DIR "/examples/directory/shop.ldif") {
        output_of(
            {ORVO_SOURCE_DIR "/scripts/private-slapd", "prepare", folder_.path(), "--shop", shop});
    }
    std::vector<EntryData> entries() const {
        std::istringstream dump(
            output_of({"/usr/sbin/slapcat", "-f", folder_.path() / "slapd.conf", "-b", "o=Shop"}));
        LdifReader reader(dump);
        std::vector<EntryData> entries;
        while (std::optional<LdifRecord> record = reader.next())
            entries.push_back(std::move(record->entry));
        return entries;
    }

private:
    TempFolder folder_;
};

std::string text_of(std::vector<EntryData> entries) {
    for (EntryData& entry : entries)
        for (Attribute& attribute : entry.attributes) std::ranges::sort(attribute.values);
    for (EntryData& entry : entries) std::ranges::sort(entry.attributes, {}, &Attribute::name);
    std::string text;
    for (const EntryData& entry : entries) append_ldif(text, entry);
    return text;
}

TEST(AServersDump, ComesBackFromTheServerAsItWasWritten) {
    const Prepared original;
    const std::vector<EntryData> entries = original.entries();
    ASSERT_THAT(entries, SizeIs(testing::Gt(200u)));
    std::string text;
    for (const EntryData& entry : entries) append_ldif(text, entry);
    TempFolder folder;
    const Prepared copy(folder.write("copy.ldif", text));
    EXPECT_EQ(text_of(copy.entries()), text_of(entries));
}

}  // namespace
}  // namespace orvo::directory
