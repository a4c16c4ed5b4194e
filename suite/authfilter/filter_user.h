#pragma once

#include "component/auth/filter_contract.h"
#include "platform/interfaces/hosted.h"
#include "suite/authfilter/filter_store.h"

namespace orvo::authfilter {

// A record, as it was stored when the object was made. What is put stays in the object until Save,
// which stores the whole record, also where the filter has forgotten it meanwhile. For the thread
// that asked for it.
class FilterUserObject final : public FilterUser {
public:
    FilterUserObject(Store& store, Text guid, Record record)
        : store_(store), guid_(std::move(guid)), record_(std::move(record)) {}

    Text GUID() override { return guid_; }
    Text UserName() override { return record_.user_name; }
    void put_UserName(const Text& name) override { record_.user_name = name; }
    Text AccountPath() override { return record_.account_path; }
    void put_AccountPath(const Text& path) override { record_.account_path = path; }
    Secret Password() override { return record_.password.clone(); }
    void put_Password(const Secret& password) override { record_.password = password.clone(); }
    Text NTUser() override { return record_.nt_user; }
    void put_NTUser(const Text& user) override { record_.nt_user = user; }
    Secret NTPassword() override { return record_.nt_password.clone(); }
    void put_NTPassword(const Secret& password) override { record_.nt_password = password.clone(); }
    void Save() override { store_.save(guid_, record_); }

private:
    Store& store_;
    const Text guid_;
    Record record_;
};

}  // namespace orvo::authfilter

namespace orvo {

template <>
inline constexpr auto class_of<authfilter::FilterUserObject> =
    describe_class<FilterUser>("TavikAuthFilter.User");

}  // namespace orvo
