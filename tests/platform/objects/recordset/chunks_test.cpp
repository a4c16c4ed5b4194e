#include "tests/platform/objects/recordset/record_set_test.h"

namespace orvo {
namespace {

// With a long text, "note", and long bytes, "picture", beside the usual columns.
class Chunks : public RecordSetTest {
protected:
    Chunks() {
        append(u"note", adLongVarWChar, 0, adFldLong | adFldIsNullable);
        append(u"picture", adLongVarBinary, 0, adFldLong | adFldIsNullable);
    }

    void append_to(const Variant& column, const Variant& data) {
        call<&Field::AppendChunk>(field(column), data);
    }
    Variant piece_of(const Variant& column, std::int32_t length) {
        return call<&Field::GetChunk>(field(column), length);
    }
};

TEST_F(Chunks, OfATextAreAddedToOneAnother) {
    open_with({u"Ann"});
    put(u"note", u"old");
    append_to(u"note", u"one, ");
    append_to(u"note", u"two");
    EXPECT_EQ(get(u"note"), Variant(u"one, two")) << "the first one replaced what was there";
    EXPECT_EQ(edit_mode(), adEditInProgress);
    append_to(u"note", u", three");
    update();
    EXPECT_EQ(get(u"note"), Variant(u"one, two, three"));
}

TEST_F(Chunks, BeginAnewWhenAnotherFieldWasUsedOrTheRowLeft) {
    open_with({u"Ann", u"Bob"});
    append_to(u"note", u"one");
    get(u"name");
    append_to(u"note", u"two");
    EXPECT_EQ(get(u"note"), Variant(u"two"));
    put(u"number", 7);
    append_to(u"note", u"three");
    EXPECT_EQ(get(u"note"), Variant(u"three"));
    update();
    append_to(u"note", u"four");
    EXPECT_EQ(get(u"note"), Variant(u"four"));
    next();
    previous();
    append_to(u"note", u"five");
    EXPECT_EQ(get(u"note"), Variant(u"five"));
}

TEST_F(Chunks, AreReadOneAfterTheOther) {
    open_with({u"Ann"});
    put(u"note", u"abcdefg");
    EXPECT_EQ(piece_of(u"note", 3), Variant(u"abc"));
    EXPECT_EQ(call<&Field::OriginalValue>(field(u"name")), Variant(u"Ann"));
    EXPECT_EQ(piece_of(u"note", 3), Variant(u"def")) << "an original value is not the value";
    EXPECT_EQ(piece_of(u"note", 3), Variant(u"g"));
    EXPECT_EQ(piece_of(u"note", 3), Variant::null()) << "nothing is left";
    get(u"name");
    EXPECT_EQ(piece_of(u"note", 2), Variant(u"ab")) << "from the beginning again";
    EXPECT_EQ(piece_of(u"picture", 2), Variant::null()) << "no value";
    EXPECT_EQ(piece_of(u"note", 2), Variant(u"ab"));
    first();
    EXPECT_EQ(piece_of(u"note", 99), Variant(u"abcdefg"));
}

TEST_F(Chunks, OfBytesAreBytes) {
    open_with({u"Ann"});
    append_to(u"picture", Variant::bytes(std::string_view("a\0b", 3)));
    append_to(u"picture", Variant::bytes("cd"));
    EXPECT_EQ(get(u"picture"), Variant::bytes(std::string_view("a\0bcd", 5)));
    EXPECT_EQ(piece_of(u"picture", 2), Variant::bytes(std::string_view("a\0", 2)));
    EXPECT_EQ(piece_of(u"picture", 9), Variant::bytes("bcd"));
    EXPECT_EQ(number_raised([&] { append_to(u"picture", 5); }), 3421);
}

TEST_F(Chunks, AreOfLongFieldsAlone) {
    open_with({u"Ann"});
    EXPECT_EQ(number_raised([&] { append_to(u"name", u"x"); }), 3219);
    EXPECT_EQ(number_raised([&] { piece_of(u"name", 1); }), 3219);
    EXPECT_EQ(number_raised([&] { piece_of(u"note", -1); }), 3001);
    const auto clone = call<&RecordSet::Clone>(rs, adLockReadOnly);
    const auto note = call<&Fields::Item>(call<&RecordSet::Fields>(clone), u"note");
    EXPECT_EQ(number_raised([&] { call<&Field::AppendChunk>(note, u"x"); }), 3251);
    next();
    EXPECT_EQ(number_raised([&] { append_to(u"note", u"x"); }), 3021);
    EXPECT_EQ(number_raised([&] { piece_of(u"note", 1); }), 3021);
}

}  // namespace
}  // namespace orvo
