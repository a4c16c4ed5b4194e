#include "platform/objects/recordset/builder.h"

#include "platform/objects/recordset/errors.h"
#include "platform/objects/recordset/record_set.h"

namespace orvo {

using namespace recordset;

RecordSetBuilder::RecordSetBuilder(const std::vector<Text>& columns)
    : store_(std::make_shared<RecordStore>()) {
    for (const Text& name : columns)
        store_->columns.push_back(described(name, adVariant, 0, adFldUnspecified));
}

RecordSetBuilder::~RecordSetBuilder() = default;
RecordSetBuilder::RecordSetBuilder(RecordSetBuilder&&) noexcept = default;
RecordSetBuilder& RecordSetBuilder::operator=(RecordSetBuilder&&) noexcept = default;

void RecordSetBuilder::reserve(std::size_t rows) { store_->reserve(rows); }

void RecordSetBuilder::add(std::vector<Variant> values) {
    if (values.size() != store_->columns.size()) raise_runtime_error(wrong_arguments);
    store_->add(std::move(values));
}

Ref<RecordSet> RecordSetBuilder::open(Access access) {
    return make<RecordSetObject>(
        std::make_shared<Cursor>(std::move(store_), access == Access::updatable, Keeping::at_once));
}

}  // namespace orvo
