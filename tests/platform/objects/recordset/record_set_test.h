#pragma once

#include <gmock/gmock.h>

#include "platform/interfaces/call.h"
#include "platform/objects/recordset/record_set.h"
#include "platform/values/values.h"
#include "tests/support/raised.h"

namespace orvo {

template <class Body>
void expect_failure(std::int32_t number, TextView source, TextView description, Body&& body) {
    expect_failure(raised_by(body), number, source, to_utf8(description));
}

template <class Body>
std::int32_t number_raised(Body&& body) {
    return raised_by(body).number;
}

inline constexpr std::int32_t field_failed = error_number(0x80040E21);

// A record set with the columns "number" (32-bit integer, may be Null), "name" (text of at most 20
// characters) and "mail" (the same, may be Null).
class RecordSetTest : public testing::Test {
protected:
    RecordSetTest() {
        append(u"number", adInteger, 0, adFldIsNullable);
        append(u"name", adVarWChar, 20);
        append(u"mail", adVarWChar, 20, adFldIsNullable);
    }

    Ref<Fields> fields() { return call<&RecordSet::Fields>(rs); }
    Ref<Field> field(const Variant& index) { return call<&Fields::Item>(fields(), index); }
    void append(const Text& name, std::int32_t type, std::int64_t size = 0,
                std::int32_t attributes = adFldUnspecified) {
        call<&Fields::Append>(fields(), name, type, size, attributes, missing);
    }
    void open(std::int32_t lock_type = adLockUnspecified) {
        call<&RecordSet::Open>(rs, missing, missing, adOpenUnspecified, lock_type, -1);
    }
    void add(const Variant& number, const Text& name, const Variant& mail = Variant::null()) {
        call<&RecordSet::AddNew>(rs, Values{u"number", u"name", u"mail"},
                                 Values{number, name, mail});
    }
    // Opens with these names, numbered from 1, and stands on the first.
    void open_with(std::initializer_list<const char16_t*> names,
                   std::int32_t lock_type = adLockUnspecified) {
        open(lock_type);
        for (std::int32_t number = 1; const char16_t* name : names) add(number++, name);
        if (names.size() > 0) call<&RecordSet::MoveFirst>(rs);
    }

    bool bof() { return call<&RecordSet::IsBof>(rs); }
    bool eof() { return call<&RecordSet::IsEof>(rs); }
    std::int64_t count() { return call<&RecordSet::RecordCount>(rs); }
    std::int64_t position() { return call<&RecordSet::AbsolutePosition>(rs); }
    std::int32_t edit_mode() { return call<&RecordSet::EditMode>(rs); }
    void first() { call<&RecordSet::MoveFirst>(rs); }
    void last() { call<&RecordSet::MoveLast>(rs); }
    void next() { call<&RecordSet::MoveNext>(rs); }
    void previous() { call<&RecordSet::MovePrevious>(rs); }
    void move(std::int64_t rows, const Variant& start = Variant::missing()) {
        call<&RecordSet::Move>(rs, rows, start);
    }
    void add_new() { call<&RecordSet::AddNew>(rs, missing, missing); }
    void update() { call<&RecordSet::Update>(rs, missing, missing); }
    void erase(std::int32_t affected = adAffectCurrent) { call<&RecordSet::Delete>(rs, affected); }
    Variant get(const Variant& index) { return call<&RecordSet::Collect>(rs, index); }
    void put(const Variant& index, const Variant& value) {
        call<&RecordSet::SetCollect>(rs, index, value);
    }
    void sort(const Text& order) { call<&RecordSet::SetSort>(rs, order); }
    void filter(const Variant& criteria) { call<&RecordSet::SetFilter>(rs, criteria); }
    void find(const Text& criteria, std::int64_t skip = 0, std::int32_t direction = adSearchForward,
              const Variant& start = Variant::missing()) {
        call<&RecordSet::Find>(rs, criteria, skip, direction, start);
    }

    // The name in the current row; where there is none, what the place is.
    std::string here() { return here_in(rs); }
    static std::string here_in(const Ref<RecordSet>& set) {
        const bool is_bof = call<&RecordSet::IsBof>(set);
        const bool is_eof = call<&RecordSet::IsEof>(set);
        if (is_bof || is_eof) return is_bof && is_eof ? "empty" : is_bof ? "BOF" : "EOF";
        try {
            return to_utf8(call<&RecordSet::Collect>(set, Variant(u"name")).to<Text>());
        } catch (const Failure& failure) {
            return failure.number == 3021 ? "gap" : failure.what();
        }
    }
    // All names, in their order; stands at the end afterwards.
    std::vector<std::string> names() { return names_in(rs); }
    static std::vector<std::string> names_in(const Ref<RecordSet>& set) {
        std::vector<std::string> all;
        if (call<&RecordSet::RecordCount>(set) == 0) return all;
        for (call<&RecordSet::MoveFirst>(set); !call<&RecordSet::IsEof>(set);
             call<&RecordSet::MoveNext>(set))
            all.push_back(here_in(set));
        return all;
    }

    const Variant missing = Variant::missing();
    Ref<RecordSet> rs = make<RecordSetObject>();
};

}  // namespace orvo
