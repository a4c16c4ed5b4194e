#pragma once

#include <map>
#include <optional>

#include "component/config/configuration_contract.h"
#include "platform/module/local_class.h"
#include "tests/support/recording/journal.h"

namespace orvo {

// The suite's configuration component, which answers from tables. Its calls stand in the journal
// under the names of its operations, the making of an object as "new Quendra.Configuration"; each
// can be refused there. It outlives the objects it makes.
class RecordingConfiguration {
public:
    using Section = std::map<Text, Variant>;

    explicit RecordingConfiguration(Journal& journal);

    // What every object answers from the beginning, whatever it loads.
    std::map<Text, Section> sections;
    // What a file adds when it is loaded; a file without an entry here adds nothing.
    std::map<Text, std::map<Text, Section>> files;
    Text folder = u"C:\\Site";
    // Section and key are changed when a value was read, as a component may do with what it gets by
    // reference.
    bool changes_arguments = false;

    // A new object, for operations that take one.
    Ref<Configuration> make_one();
    // There is no such component at all.
    void remove() { class_.reset(); }

    int alive = 0;  // how many objects are in use

    Journal& journal() { return journal_; }

private:
    Journal& journal_;
    std::optional<LocalClass> class_;
};

}  // namespace orvo
