// The program orvo, and the programs of a directory server.

#include <gmock/gmock.h>

#include <algorithm>
#include <map>
#include <sstream>

#include "suite/directory/ldif/ldif_reader.h"
#include "suite/directory/ldif/ldif_writer.h"
#include "tests/host/admin/orvo_program.h"

namespace orvo {
namespace {

using namespace directory;

class OrvoBesideAServer : public OrvoProgram {
protected:
    // The folder of a server with these entries.
    std::string server(const std::string& name, const std::string& entries) {
        output_of({ORVO_SOURCE_DIR "/scripts/private-slapd", "prepare", path(name), "--ppolicy",
                   "--shop", entries});
        return path(name);
    }
    std::string dump_of(const std::string& server) {
        return output_of({"/usr/sbin/slapcat", "-f", server + "/slapd.conf", "-b", "o=Shop"});
    }
};

// Entries by their names, without what a server keeps for itself.
std::map<std::string, std::string> entries_in(const std::string& ldif) {
    std::istringstream in(ldif);
    LdifReader reader(in);
    std::map<std::string, std::string> entries;
    while (std::optional<LdifRecord> record = reader.next()) {
        EntryData& entry = record->entry;
        std::erase_if(entry.attributes, [](const Attribute& one) {
            return one.name == "entryCSN" || one.name == "contextCSN";
        });
        for (Attribute& attribute : entry.attributes) std::ranges::sort(attribute.values);
        std::ranges::sort(entry.attributes, {}, &Attribute::name);
        append_ldif(entries[entry.name], entry);
    }
    return entries;
}

void expect_equal(const std::string& one, const std::string& other) {
    const std::map<std::string, std::string> entries = entries_in(one);
    std::map<std::string, std::string> others = entries_in(other);
    EXPECT_GT(entries.size(), 200u);
    EXPECT_EQ(entries.size(), others.size());
    for (const auto& [name, text] : entries) EXPECT_EQ(text, others[name]);
}

TEST_F(OrvoBesideAServer, MovesADirectoryHereAndBack) {
    const std::string dump = dump_of(server("one", sample));
    directory({"create", path("shop.db"), "--base", "o=Shop"});
    EXPECT_THAT(directory({"import", path("shop.db"), folder.write("one.ldif", dump)}),
                testing::HasSubstr("228 entries loaded"));
    directory({"export", path("shop.db"), path("here.ldif")});
    EXPECT_EQ(code, 0);
    expect_equal(content_of(path("here.ldif")), dump);
    // The script loads the policies by itself.
    std::string there = content_of(path("here.ldif"));
    there.resize(there.find("dn: ou=Policies,o=Shop"));
    const std::string back = dump_of(server("two", folder.write("there.ldif", there)));
    expect_equal(back.substr(0, back.find("dn: ou=Policies")), there);
}

}  // namespace
}  // namespace orvo
