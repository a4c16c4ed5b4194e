#pragma once

#include "tests/component/entries/entry_test.h"

namespace orvo {

// Profiles among recording neighbours.
class ProfileTest : public EntryTest<Profile> {
protected:
    // A profile that is bound to sales, with nothing noted yet.
    Ref<Profile> bound() {
        load_settings();
        const auto profile = make<Profile>();
        bind(profile);
        forget();
        return profile;
    }
};

}  // namespace orvo
