#pragma once

// A record set's fields, as callers see them; threads and ownership are the record set's.

#include "platform/interfaces/interface.h"
#include "platform/objects/recordset/constants.h"
#include "platform/objects/recordset/long_ptr.h"
#include "platform/values/variant.h"

namespace orvo {

// The dynamic properties of a record set or a field: none, in an unconnected one.
class Properties {
public:
    virtual std::int32_t Count() = 0;
    virtual Object NewEnum() = 0;
    virtual void Refresh() = 0;
    // Raises 3265.
    virtual Object Item(const Variant& index) = 0;

protected:
    ~Properties() = default;
};

// clang-format off
template <>
inline constexpr auto table_of<Properties> = describe<Properties>(
    "Properties", "00000504-0000-0010-8000-00aa006d2ea4",
    get<&Properties::Count>("Count").id(0x60020000),
    get<&Properties::NewEnum>("_NewEnum").id(abi::DISPID_NEWENUM),
    method<&Properties::Refresh>("Refresh").id(0x60020002),
    get<&Properties::Item>("Item", "Index").as_default());
// clang-format on

// One column, with its value in the current record.
//
// A value has the type of its column: numbers exactly theirs, texts text, no value Null. Writing
// begins an edit and converts: what is of no fitting type raises 3421, what does not fit (a text
// longer than the defined size, a number out of range, Null where it is not allowed) 80040E21.
// Without a current record a value raises 3021, in a closed record set 3704.
class Field {
public:
    virtual Ref<orvo::Properties> Properties() = 0;
    // Of a text its characters (of the wide types their bytes), of bytes their count, of other
    // values the type's size; of Null 0.
    virtual LongPtr ActualSize() = 0;
    virtual std::int32_t Attributes() = 0;
    virtual LongPtr DefinedSize() = 0;
    virtual Text Name() = 0;
    virtual std::int32_t Type() = 0;
    virtual Variant Value() = 0;
    virtual void SetValue(const Variant& value) = 0;
    virtual std::uint8_t Precision() = 0;
    virtual std::uint8_t NumericScale() = 0;
    // For columns of unlimited length (adFldLong); others raise 3219. The first piece replaces the
    // value, each further one is added to it; reading begins at the value's beginning and goes on
    // where it ended. Both begin anew when the row changes or another field's value (its present
    // one, that is) is read or written in between. Reading answers Null where nothing is left.
    virtual void AppendChunk(const Variant& data) = 0;
    virtual Variant GetChunk(std::int32_t length) = 0;
    // The value before the edit in progress, or before the batch's first change.
    virtual Variant OriginalValue() = 0;
    virtual Variant UnderlyingValue() = 0;
    // The following are for a closed record set; an open one raises 3705.
    virtual void SetPrecision(std::uint8_t precision) = 0;
    virtual void SetNumericScale(std::uint8_t scale) = 0;
    virtual void SetType(std::int32_t type) = 0;
    virtual void SetDefinedSize(LongPtr size) = 0;
    virtual void SetAttributes(std::int32_t attributes) = 0;
    virtual std::int32_t Status() = 0;

protected:
    ~Field() = default;
};

// clang-format off
template <>
inline constexpr auto table_of<Field> = describe<Field>(
    "Field", "00000569-0000-0010-8000-00aa006d2ea4",
    get<&Field::Properties>("Properties").id(500),
    get<&Field::ActualSize>("ActualSize").id(1109),
    get<&Field::Attributes>("Attributes").id(1036),
    get<&Field::DefinedSize>("DefinedSize").id(1103),
    get<&Field::Name>("Name").id(1100),
    get<&Field::Type>("Type").id(1102),
    get<&Field::Value>("Value").as_default(),
    put<&Field::SetValue>("Value", "value").as_default(),
    get<&Field::Precision>("Precision").id(0x60030007),
    get<&Field::NumericScale>("NumericScale").id(0x60030008),
    method<&Field::AppendChunk>("AppendChunk", "Data").id(1107),
    method<&Field::GetChunk>("GetChunk", "Length").id(1108),
    get<&Field::OriginalValue>("OriginalValue").id(1104),
    get<&Field::UnderlyingValue>("UnderlyingValue").id(1105),
    reserved(15, 16),  // DataFormat
    put<&Field::SetPrecision>("Precision", "precision").id(0x60030007),
    put<&Field::SetNumericScale>("NumericScale", "scale").id(0x60030008),
    put<&Field::SetType>("Type", "type").id(1102),
    put<&Field::SetDefinedSize>("DefinedSize", "size").id(1103),
    put<&Field::SetAttributes>("Attributes", "attributes").id(1036),
    get<&Field::Status>("Status").id(1116));
// clang-format on

// The columns, in the order in which they were appended.
class Fields {
public:
    virtual std::int32_t Count() = 0;
    virtual Object NewEnum() = 0;
    virtual void Refresh() = 0;
    // By name, without regard to case, or by place from 0. Raises 3265.
    virtual Ref<Field> Item(const Variant& index) = 0;
    // While the record set is closed (3705). Raises 3367 for a name that is there already, 3001 for
    // a type that no column can have and for a text or binary column without a size.
    virtual void Append(const Text& name, std::int32_t type, LongPtr size, std::int32_t attributes,
                        const Variant& value) = 0;
    virtual void Delete(const Variant& index) = 0;
    // There is no source to tell or to ask: these do nothing.
    virtual void Update() = 0;
    virtual void CancelUpdate() = 0;

protected:
    ~Fields() = default;
};

// clang-format off
template <>
inline constexpr auto table_of<Fields> = describe<Fields>(
    "Fields", "00000564-0000-0010-8000-00aa006d2ea4",
    get<&Fields::Count>("Count").id(0x60020000),
    get<&Fields::NewEnum>("_NewEnum").id(abi::DISPID_NEWENUM),
    method<&Fields::Refresh>("Refresh").id(0x60020002),
    get<&Fields::Item>("Item", "Index").as_default(),
    reserved(5),  // _Append
    method<&Fields::Delete>("Delete", "Index").id(0x60030002),
    method<&Fields::Append>("Append", "Name", "Type", optional("DefinedSize"),
                            optional("Attrib", adFldUnspecified), optional("FieldValue"))
        .id(0x60040001),
    method<&Fields::Update>("Update").id(0x60040002),
    reserved(9),  // Resync
    method<&Fields::CancelUpdate>("CancelUpdate").id(0x60040004));
// clang-format on

}  // namespace orvo
