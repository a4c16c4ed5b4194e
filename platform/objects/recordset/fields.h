#pragma once

// The fields of a record set; what they promise stands in fields_contract.h.

#include "platform/interfaces/hosted.h"
#include "platform/objects/recordset/cursor.h"
#include "platform/objects/recordset/fields_contract.h"

namespace orvo::recordset {

class EmptyProperties : public Properties {
public:
    std::int32_t Count() override { return 0; }
    Object NewEnum() override;
    void Refresh() override {}
    Object Item(const Variant& index) override;
};

// A field outlives the record set that it was taken from, and then stands for the column still; a
// column that is gone raises 3265.
class FieldObject : public Field {
public:
    FieldObject(std::shared_ptr<Cursor> cursor, std::size_t column)
        : cursor_(std::move(cursor)), index_(column), generation_(cursor_->generation()) {}

    Ref<orvo::Properties> Properties() override;
    LongPtr ActualSize() override;
    std::int32_t Attributes() override { return column().attributes; }
    LongPtr DefinedSize() override { return column().size; }
    Text Name() override { return column().name; }
    std::int32_t Type() override { return column().type; }
    Variant Value() override { return cursor_->value(index()); }
    void SetValue(const Variant& value) override { cursor_->set_value(index(), value); }
    std::uint8_t Precision() override { return column().precision; }
    std::uint8_t NumericScale() override { return column().scale; }
    void AppendChunk(const Variant& data) override { cursor_->append_chunk(index(), data); }
    Variant GetChunk(std::int32_t length) override { return cursor_->get_chunk(index(), length); }
    Variant OriginalValue() override { return cursor_->original(index()); }
    Variant UnderlyingValue() override { return cursor_->original(index()); }
    void SetPrecision(std::uint8_t precision) override { closed().precision = precision; }
    void SetNumericScale(std::uint8_t scale) override { closed().scale = scale; }
    void SetType(std::int32_t type) override;
    void SetDefinedSize(LongPtr size) override;
    void SetAttributes(std::int32_t attributes) override { closed().attributes = attributes; }
    std::int32_t Status() override { return 0; }

private:
    std::size_t index() const;
    const Column& column() const { return cursor_->columns()[index()]; }
    Column& closed() { return cursor_->closed_columns()[index()]; }

    std::shared_ptr<Cursor> cursor_;
    std::size_t index_;
    unsigned generation_;
};

// Hands out one object for each column, however often it is asked for.
class FieldsObject : public Fields {
public:
    explicit FieldsObject(std::shared_ptr<Cursor> cursor) : cursor_(std::move(cursor)) {}

    std::int32_t Count() override { return static_cast<std::int32_t>(cursor_->columns().size()); }
    Object NewEnum() override;
    void Refresh() override {}
    Ref<Field> Item(const Variant& index) override;
    void Append(const Text& name, std::int32_t type, LongPtr size, std::int32_t attributes,
                const Variant& value) override;
    void Delete(const Variant& index) override;
    void Update() override {}
    void CancelUpdate() override {}

private:
    const Ref<Field>& field(std::size_t column);

    std::shared_ptr<Cursor> cursor_;
    std::vector<Ref<Field>>
        fields_;  // of the columns of `generation_`; empty where not yet asked for
    unsigned generation_ = 0;
};

}  // namespace orvo::recordset

namespace orvo {

extern template struct detail::callee<Properties>;
extern template struct detail::callee<Field>;
extern template struct detail::callee<Fields>;

template <>
inline constexpr auto class_of<recordset::EmptyProperties> =
    describe_class<Properties>("ADODB.Properties");
template <>
inline constexpr auto class_of<recordset::FieldObject> = describe_class<Field>("ADODB.Field");
template <>
inline constexpr auto class_of<recordset::FieldsObject> = describe_class<Fields>("ADODB.Fields");

}  // namespace orvo
