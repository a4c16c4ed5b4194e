#pragma once

#include "platform/module/local_class.h"
#include "platform/objects/context/context_contract.h"
#include "tests/support/recording/journal.h"

namespace orvo {

// An application-server object for this process and, while one of these lives, an object context
// for the thread that made it. The context's calls stand in the journal ("CreateInstance", "Item")
// and can be refused there.
class RecordingContext {
public:
    explicit RecordingContext(Journal& journal);
    ~RecordingContext();
    RecordingContext(const RecordingContext&) = delete;
    RecordingContext& operator=(const RecordingContext&) = delete;

    // The named items; a name that is not here is answered as Empty.
    std::map<Text, Variant> items;
    // What CreateInstance answers for a ProgID, in place of a new object.
    std::map<Text, Variant> instances;

    Journal& journal() { return journal_; }

private:
    Journal& journal_;
    LocalClass app_server_;
    Ref<ContextHost> host_;
};

}  // namespace orvo
