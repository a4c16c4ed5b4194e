#pragma once

#include <deque>
#include <optional>

#include "component/provider/directory_contract.h"
#include "platform/module/local_class.h"
#include "tests/support/clear_text.h"
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
    Boolean is_ready = true;   // what the initialisation of pool and cache answers

    std::vector<Text> passwords;  // all that it was given, unit by unit

    Variant written;  // what was last given to SetValues, with its types
    // Every argument is changed, as a provider may do with what it gets by reference: a text gets
    // a "!" at its end, a variant becomes the text "changed".
    bool changes_arguments = false;

    // How many of the provider's objects are in use.
    int modules = 0;
    int entries = 0;
    int searches = 0;
    int validators = 0;
    // How many entries, searches and validators were released after the module that made them.
    int orphans = 0;

    Journal& journal() { return journal_; }

    void change(auto&... arguments) {
        if (changes_arguments) (change_one(arguments), ...);
    }

private:
    static void change_one(Text& argument) { argument += u'!'; }
    static void change_one(Secret& argument) { argument = Secret(clear_text(argument) + u'!'); }
    static void change_one(Variant& argument) { argument = u"changed"; }

    Journal& journal_;
    std::map<std::pair<Text, Text>, Variant> answers_;  // by entry and attribute, both lower case
    std::optional<LocalClass> class_;
};

}  // namespace orvo
