#pragma once

#include <deque>
#include <optional>

#include "component/provider/directory_contract.h"
#include "platform/module/local_class.h"
#include "tests/support/recording/journal.h"

namespace orvo {

// A directory provider under a ProgID of its own, which notes what is called and answers what it
// was told to. Its calls stand in the journal under the names of the contract's operations, the
// making of its module as "new Test.Directory", the attributes of a new entry as "name=value"; each
// can be refused there. It outlives the objects
// it makes.
class RecordingDirectory {
public:
    explicit RecordingDirectory(Journal& journal, const Text& progid = u"Test.Directory");

    // What GetValues answers for an attribute: of one bound entry ("cn=jsmith,ou=Users,o=Shop"), or
    // of every entry that has no answer of its own. It may be anything, also what no provider
    // should answer. An attribute without an answer has one empty value.
    void answer(const Text& attribute, const Variant& values);
    void answer_of(const Text& entry, const Text& attribute, const Variant& values);
    Variant values_of(const Text& entry, const Text& attribute) const;

    Object found;              // what every search finds
    std::deque<Object> finds;  // what the next searches find, before it comes to that
    std::int32_t verdict = 0;  // what every check of credentials answers
    bool is_ready = true;      // what the initialisation of pool and cache answers

    std::vector<Text> passwords;  // all that it was given, unit by unit

    int modules = 0;  // how many of the provider's module objects are in use
    int entries = 0;  // how many of its entry objects are

    Journal& journal() { return journal_; }

private:
    Journal& journal_;
    std::map<std::pair<Text, Text>, Variant> answers_;  // by entry and attribute, both lower case
    std::optional<LocalClass> class_;
};

}  // namespace orvo
