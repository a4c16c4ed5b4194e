#pragma once

// Requests as both client libraries take them: their structures have the same fields, with other
// kinds of characters. Private to the sources of this folder.
//
// `Library` names the structures: Modification, Control, Value (bytes, as `{length, pointer}`) and
// Name, which is made from UTF-8 and whose get() is a pointer to the library's characters. Nothing
// is copied that need not be: the texts have to outlive these objects, and are not changed.

#include <array>
#include <memory>
#include <string>
#include <vector>

#include "suite/directory/ldap/wire/paged_results.h"
#include "suite/directory/ldap/wire/session.h"

namespace orvo::directory::ldap::detail {

template <class Library>
typename Library::Value value_of(std::string_view bytes) {
    typename Library::Value value{};
    value.bv_len = static_cast<decltype(value.bv_len)>(bytes.size());
    value.bv_val = const_cast<char*>(bytes.data());
    return value;
}

// What is done with an attribute's values.
template <class Library>
struct OwnedChange {
    OwnedChange(int operation, const std::string& attribute, const std::vector<std::string>& texts)
        : name(attribute) {
        for (const std::string& text : texts) values.push_back(value_of<Library>(text));
        for (typename Library::Value& value : values) pointers.push_back(&value);
        pointers.push_back(nullptr);
        modification.mod_op =
            static_cast<decltype(modification.mod_op)>(operation | LDAP_MOD_BVALUES);
        modification.mod_type = name.get();
        modification.mod_vals.modv_bvals = pointers.data();
    }
    OwnedChange(const OwnedChange&) = delete;

    typename Library::Name name;
    std::vector<typename Library::Value> values;
    std::vector<typename Library::Value*> pointers;
    typename Library::Modification modification{};
};

template <class Library>
class ChangeList {
public:
    explicit ChangeList(std::span<const Attribute> added) {
        for (const Attribute& attribute : added)
            append(LDAP_MOD_ADD, attribute.name, attribute.values);
    }
    explicit ChangeList(std::span<const Replacement> replaced) {
        for (const Replacement& replacement : replaced)
            append(static_cast<int>(replacement.kind), replacement.attribute, replacement.values);
    }
    typename Library::Modification** get() {
        pointers_.clear();
        for (const auto& change : changes_) pointers_.push_back(&change->modification);
        pointers_.push_back(nullptr);
        return pointers_.data();
    }

private:
    void append(int operation, const std::string& attribute,
                const std::vector<std::string>& values) {
        changes_.push_back(std::make_unique<OwnedChange<Library>>(operation, attribute, values));
    }

    std::vector<std::unique_ptr<OwnedChange<Library>>> changes_;
    std::vector<typename Library::Modification*> pointers_;
};

// A list of names; none for an empty one.
template <class Library>
class NameList {
public:
    explicit NameList(const std::vector<std::string>& names) : names_(names.begin(), names.end()) {
        for (auto& name : names_) pointers_.push_back(name.get());
        if (!names_.empty()) pointers_.push_back(nullptr);
    }
    auto get() { return pointers_.empty() ? nullptr : pointers_.data(); }

private:
    std::vector<typename Library::Name> names_;
    std::vector<decltype(std::declval<typename Library::Name&>().get())> pointers_;
};

// A list of at most one control; it is never critical, so that a server that does not know it
// answers all the same.
template <class Library>
class OneControl {
public:
    OneControl(bool is_wanted, std::string oid, std::string value)
        : is_wanted_(is_wanted), oid_(std::move(oid)), value_(std::move(value)), name_(oid_) {
        control_.ldctl_oid = name_.get();
        if (!value_.empty()) control_.ldctl_value = value_of<Library>(value_);
    }
    OneControl(const OneControl&) = delete;
    typename Library::Control** get() { return is_wanted_ ? list_.data() : nullptr; }

private:
    bool is_wanted_;
    std::string oid_;
    std::string value_;
    typename Library::Name name_;
    typename Library::Control control_{};
    std::array<typename Library::Control*, 2> list_ = {&control_, nullptr};
};

// The request for a page, where one is wanted.
template <class Library>
OneControl<Library> page_control(const SearchRequest& search) {
    return {search.page_size != 0, std::string(paged_results_oid),
            paged_results_value(search.page_size, search.page)};
}

// The request for the password policy, where it is asked.
template <class Library>
OneControl<Library> policy_question(Policy policy) {
    return {policy == Policy::asked, policy_control, {}};
}

// Both libraries number the scopes alike.
inline int scope_of(Scope scope) {
    switch (scope) {
        case Scope::base:
            return LDAP_SCOPE_BASE;
        case Scope::one_level:
            return LDAP_SCOPE_ONELEVEL;
        case Scope::subtree:
            return LDAP_SCOPE_SUBTREE;
    }
    return LDAP_SCOPE_BASE;
}

}  // namespace orvo::directory::ldap::detail
