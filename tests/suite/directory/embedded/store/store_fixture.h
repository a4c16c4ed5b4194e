#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "suite/directory/embedded/store/store.h"
#include "tests/suite/directory/expect_failure.h"
#include "tests/support/temp_folder.h"

namespace orvo::directory {

inline bool operator==(const Attribute& one, const Attribute& other) {
    return one.name == other.name && one.values == other.values;
}

inline void PrintTo(const Attribute& attribute, std::ostream* out) {
    *out << attribute.name << ':';
    for (const std::string& value : attribute.values) *out << " '" << value << "'";
}

namespace embedded {

// A few attributes of each kind.
inline Schema sample_schema() {
    const std::string text =
        " EQUALITY caseIgnoreMatch SUBSTR caseIgnoreSubstringsMatch "
        "SYNTAX 1.3.6.1.4.1.1466.115.121.1.15 )";
    const std::string ordered_text =
        " EQUALITY caseIgnoreMatch ORDERING caseIgnoreOrderingMatch SUBSTR "
        "caseIgnoreSubstringsMatch SYNTAX 1.3.6.1.4.1.1466.115.121.1.15 )";
    const std::string number =
        " EQUALITY integerMatch ORDERING integerOrderingMatch "
        "SYNTAX 1.3.6.1.4.1.1466.115.121.1.27 )";
    return Schema::from_descriptions(
        {"( 2.5.4.0 NAME 'objectClass' EQUALITY objectIdentifierMatch "
         "SYNTAX 1.3.6.1.4.1.1466.115.121.1.38 )",
         "( 2.5.4.3 NAME ( 'cn' 'commonName' )" + text, "( 2.5.4.10 NAME 'o'" + text,
         "( 2.5.4.11 NAME 'ou'" + text, "( 2.5.4.4 NAME ( 'sn' 'surname' )" + text,
         "( 1.1.1 NAME 'ProfileCN'" + ordered_text, "( 1.1.2 NAME 'OrvoRole'" + number,
         "( 1.1.3 NAME 'OrvoGUID' EQUALITY caseIgnoreMatch "
         "SYNTAX 1.3.6.1.4.1.1466.115.121.1.15 SINGLE-VALUE )",
         "( 2.5.4.35 NAME 'userPassword' EQUALITY octetStringMatch "
         "SYNTAX 1.3.6.1.4.1.1466.115.121.1.40 )",
         "( 2.5.4.23 NAME 'facsimileTelephoneNumber' SYNTAX 1.3.6.1.4.1.1466.115.121.1.22 )",
         "( 2.5.18.1 NAME 'createTimestamp' EQUALITY generalizedTimeMatch ORDERING "
         "generalizedTimeOrderingMatch SYNTAX 1.3.6.1.4.1.1466.115.121.1.24 SINGLE-VALUE "
         "NO-USER-MODIFICATION USAGE directoryOperation )"},
        {"( 2.5.6.0 NAME 'top' ABSTRACT MUST objectClass )",
         "( 1.2.1 NAME 'orvoPerson' SUP top STRUCTURAL MUST cn )"});
}

inline DistinguishedName dn(const std::string& name) {
    return DistinguishedName::try_parse(from_utf8(name)).value();
}

// A store with o=Shop and ou=Users below it.
class AStore : public testing::Test {
protected:
    AStore() {
        Store::create(path, sample_schema());
        store = Store::open(path);
        Writing writing = store->write(Durability::process);
        writing.add({"o=Shop", {{"objectClass", {"top"}}, {"o", {"Shop"}}}});
        writing.add({"ou=Users,o=Shop", {{"objectClass", {"top"}}, {"ou", {"Users"}}}});
        writing.commit();
    }

    void add(const EntryData& entry) {
        Writing writing = store->write(Durability::process);
        writing.add(entry);
        writing.commit();
    }
    std::optional<EntryData> find(const std::string& name) { return store->read().find(dn(name)); }

    TempFolder folder;
    std::filesystem::path path = folder.path() / "shop.directory";
    std::shared_ptr<Store> store;
};

}  // namespace embedded
}  // namespace orvo::directory
