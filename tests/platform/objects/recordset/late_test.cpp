#include "platform/interfaces/enumerator.h"
#include "platform/interfaces/late_call.h"
#include "tests/platform/objects/recordset/record_set_test.h"

namespace orvo {
namespace {

// Calls as scripts make them.
class LateRecordSet : public testing::Test {
protected:
    LateRecordSet() {
        const Object fields = late::get(rs, u"Fields").to<Object>();
        late::call(fields, u"Append", {u"n", 3, Variant::missing(), 0x20});
        late::call(fields, u"Append", {u"cn", std::int16_t(202), 20});
        late::call(rs, u"Open");
    }

    // Invoke on the object itself, as `rs("cn")` and `rs("cn") = 3` do.
    static Variant invoke_default(const Object& object, std::uint16_t flags,
                                  std::vector<Variant> arguments) {
        static constexpr abi::IID none{};
        abi::DISPID value_name = abi::DISPID_PROPERTYPUT;
        std::vector<abi::VARIANT> raw;
        for (auto it = arguments.rbegin(); it != arguments.rend(); ++it) raw.push_back(*it->get());
        abi::DISPPARAMS params{raw.data(), nullptr, static_cast<std::uint32_t>(raw.size()), 0};
        const bool is_put = flags & (abi::DISPATCH_PROPERTYPUT | abi::DISPATCH_PROPERTYPUTREF);
        if (is_put) {
            params.rgdispidNamedArgs = &value_name;
            params.cNamedArgs = 1;
        }
        abi::VARIANT result{};
        abi::EXCEPINFO failure{};
        const abi::HRESULT code =
            abi::call_slot<abi::HRESULT, abi::DISPID, const abi::IID*, abi::LCID, std::uint16_t,
                           abi::DISPPARAMS*, abi::VARIANT*, abi::EXCEPINFO*, std::uint32_t*>(
                object.get(), abi::slot_invoke, abi::DISPID_VALUE, &none, 0x409, flags, &params,
                is_put ? nullptr : &result, &failure, nullptr);
        if (abi::failed(code)) detail::raise_late_failure(code, failure);
        return Variant::attach(result);
    }
    Variant value(const Variant& index) {
        return late::value_of(invoke_default(rs, 3, {index}).to<Object>());
    }

    const Object rs = make<RecordSetObject>().object();
};

TEST_F(LateRecordSet, TakesFieldsAsItsDefaultMember) {
    late::call(rs, u"AddNew");
    invoke_default(rs, abi::DISPATCH_PROPERTYPUT, {u"cn", u"Ann"});
    invoke_default(rs, abi::DISPATCH_PROPERTYPUT, {u"n", u"3"});
    late::call(rs, u"Update");
    EXPECT_EQ(value(u"CN"), Variant(u"Ann"));
    EXPECT_EQ(value(0), Variant(3));
}

TEST_F(LateRecordSet, ForwardsAnIndexedPutToTheField) {
    late::call(rs, u"AddNew", {u"cn", u"Ann"});
    late::put(rs, u"Fields", u"Bob", {u"cn"});
    EXPECT_EQ(late::get(rs, u"Collect", {u"cn"}), Variant(u"Bob"));
    const Object fields = late::get(rs, u"Fields").to<Object>();
    late::put(fields, u"Item", u"Cid", {u"cn"});
    EXPECT_EQ(value(u"cn"), Variant(u"Cid"));
    late::put(late::get(fields, u"Item", {u"cn"}).to<Object>(), u"Value", u"Dee");
    EXPECT_EQ(value(u"cn"), Variant(u"Dee"));
    late::put(rs, u"Collect", u"Eve", {u"cn"});
    EXPECT_EQ(value(u"cn"), Variant(u"Eve"));
}

TEST_F(LateRecordSet, GivesCountsAndPositionsAs32BitIntegers) {
    EXPECT_EQ(late::get(rs, u"RecordCount"), Variant(0));
    EXPECT_EQ(late::get(rs, u"AbsolutePosition"), Variant(-1));
    EXPECT_EQ(late::get(rs, u"PageCount"), Variant(0));
    late::call(rs, u"AddNew", {u"cn", u"Ann"});
    late::put(rs, u"AbsolutePosition", u"1");
    EXPECT_EQ(late::get(rs, u"AbsolutePosition"), Variant(1));
    const Object field = invoke_default(rs, 3, {u"cn"}).to<Object>();
    EXPECT_EQ(late::get(field, u"DefinedSize"), Variant(20));
    EXPECT_EQ(late::get(field, u"Precision").get()->vt, abi::VT_UI1);
}

TEST_F(LateRecordSet, LetsArgumentsBeLeftOut) {
    late::call(rs, u"AddNew", {u"cn", u"Ann"});
    late::call(rs, u"AddNew", {u"cn", u"Bob"});
    late::call(rs, u"MoveFirst");
    late::call(rs, u"Find", {u"cn = 'bob'"});
    EXPECT_EQ(value(u"cn"), Variant(u"Bob"));
    late::call(rs, u"Move", {-1});
    EXPECT_EQ(late::call(rs, u"GetString", {2, -1, u","}), Variant(u",Ann\r,Bob\r"));
    late::call(rs, u"MoveLast");
    late::call(rs, u"Delete");
    EXPECT_EQ(late::get(rs, u"RecordCount"), Variant(1));
    const Object clone = late::call(rs, u"Clone").to<Object>();
    EXPECT_EQ(late::get(clone, u"LockType"), Variant(3));
    EXPECT_TRUE(late::call(clone, u"GetRows").is_array());
    EXPECT_EQ(late::get(clone, u"EOF"), Variant(true));
}

TEST_F(LateRecordSet, WalksItsFieldsForEach) {
    late::call(rs, u"AddNew", {u"cn", u"Ann"});
    std::string seen;
    for (const Variant& field : late::items_of(late::get(rs, u"Fields").to<Object>()))
        seen += to_utf8(late::get(field.to<Object>(), u"Name").to<Text>()) + " ";
    EXPECT_EQ(seen, "n cn ");
    expect_failure(451, u"", u"Object not a collection", [&] { late::items_of(rs); });
}

TEST_F(LateRecordSet, BringsItsErrorsAcrossWhole) {
    expect_failure(3021, u"ADODB.Recordset",
                   u"Either BOF or EOF is True, or the current record has been deleted. Requested "
                   u"operation requires a current record.",
                   [&] { late::call(rs, u"MoveNext"); });
    expect_failure(
        3265, u"ADODB.Fields",
        u"Item cannot be found in the collection corresponding to the requested name or ordinal.",
        [&] { value(u"none"); });
    late::call(rs, u"AddNew");
    expect_failure(3421, u"ADODB.Field",
                   u"Application uses a value of the wrong type for the current operation.", [&] {
                       invoke_default(rs, abi::DISPATCH_PROPERTYPUT, {u"n", u"abc"});
                   });
    expect_failure(field_failed, u"ADODB.Recordset",
                   u"Multiple-step operation generated errors. Check each status value.",
                   [&] { late::call(rs, u"Update"); });
}

TEST_F(LateRecordSet, CanBeDisconnected) {
    late::put(rs, u"ActiveConnection", Variant(Object()));
    EXPECT_TRUE(late::get(rs, u"ActiveConnection").is_object());
}

TEST_F(LateRecordSet, CountsAreWholeWordsBySlot) {
    std::int64_t count = -1;
    const Object held = rs;
    const auto get = reinterpret_cast<abi::HRESULT (*)(abi::IUnknown*, std::int64_t*)>(
        held.get()->slots[slot_of<&RecordSet::RecordCount>]);
    EXPECT_EQ(get(held.get(), &count), abi::s_ok);
    EXPECT_EQ(count, 0);
}

}  // namespace
}  // namespace orvo
