#pragma once

// How providers make record sets. A builder is used by one thread at a time; the record set belongs
// to the thread that opens it.

#include <memory>

#include "platform/objects/recordset/record_set_contract.h"

namespace orvo {

namespace recordset {
class RecordStore;
}

// Fills a record set with rows, without the cost of adding them one by one.
//
//   RecordSetBuilder builder({u"cn", u"mail"});
//   builder.add({u"jsmith", Values{u"a@x", u"b@x"}});
//   return builder.open().object();
//
// Columns are of variants: no value is Empty, one is itself, several are an array. Two columns may
// have one name, which then means the first.
class RecordSetBuilder {
public:
    enum class Access { read_only, updatable };

    explicit RecordSetBuilder(const std::vector<Text>& columns);
    ~RecordSetBuilder();
    RecordSetBuilder(RecordSetBuilder&&) noexcept;
    RecordSetBuilder& operator=(RecordSetBuilder&&) noexcept;

    void reserve(std::size_t rows);
    // As many values as there are columns, in their order; raises 3001 for any other number. A row
    // that is moved in is not copied.
    void add(std::vector<Variant> values);

    // The record set, open and at its first row; the builder is used up.
    Ref<RecordSet> open(Access access = Access::read_only);

private:
    std::shared_ptr<recordset::RecordStore> store_;
};

}  // namespace orvo
