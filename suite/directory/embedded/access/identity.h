#pragma once

#include <optional>
#include <utility>

#include "suite/directory/entries/entry_data.h"
#include "suite/directory/names/distinguished_name.h"

namespace orvo::directory::embedded {

// Who asks a directory for something. A value.
class Identity {
public:
    // Who has not logged in.
    static Identity nobody() { return Identity(Kind::nobody, {}, {}); }
    // Whose entry it is, with all its attributes and its name as the directory writes it.
    static Identity of(DistinguishedName name, EntryData entry) {
        return Identity(Kind::user, std::move(name), std::move(entry));
    }
    // Who manages the directory, and is held back by no rule.
    static Identity manager() { return Identity(Kind::manager, {}, {}); }

    bool is_nobody() const { return kind_ == Kind::nobody; }
    bool is_user() const { return kind_ == Kind::user; }
    bool is_manager() const { return kind_ == Kind::manager; }

    // Of a user.
    const DistinguishedName& name() const { return name_; }
    const EntryData& entry() const { return entry_; }

private:
    enum class Kind { nobody, user, manager };
    Identity(Kind kind, DistinguishedName name, EntryData entry)
        : kind_(kind), name_(std::move(name)), entry_(std::move(entry)) {}

    Kind kind_;
    DistinguishedName name_;
    EntryData entry_;
};

}  // namespace orvo::directory::embedded
