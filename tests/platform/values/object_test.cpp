#include "platform/values/object.h"

#include <gtest/gtest.h>

#include <utility>

#include "counted_object.h"

namespace orvo {
namespace {

TEST(Object, CountsOneReferenceForEachCopy) {
    CountedObject counted;
    {
        Object first = Object::share(counted.unknown());
        EXPECT_EQ(counted.references(), 1);
        Object second = first;
        EXPECT_EQ(counted.references(), 2);
        Object third = std::move(first);
        EXPECT_EQ(counted.references(), 2);
        EXPECT_FALSE(first);
        third = nullptr;
        EXPECT_EQ(counted.references(), 1);
        second = *&second;
        EXPECT_EQ(counted.references(), 1);
        EXPECT_TRUE(second);
    }
    EXPECT_EQ(counted.references(), 0);
}

TEST(Object, AttachTakesAReferenceOverAndDetachGivesItAway) {
    CountedObject counted;
    abi::add_ref(counted.unknown());
    Object object = Object::attach(counted.unknown());
    EXPECT_EQ(counted.references(), 1);
    EXPECT_EQ(object.get(), counted.unknown());
    EXPECT_EQ(object.detach(), counted.unknown());
    EXPECT_FALSE(object);
    EXPECT_EQ(counted.references(), 1);
}

TEST(Object, PutReleasesWhatWasHeldAndReceives) {
    CountedObject before;
    CountedObject after;
    Object object = Object::share(before.unknown());
    abi::IUnknown** slot = object.put();
    EXPECT_EQ(before.references(), 0);
    EXPECT_EQ(*slot, nullptr);
    abi::add_ref(after.unknown());
    *slot = after.unknown();
    object = nullptr;
    EXPECT_EQ(after.references(), 0);
}

TEST(Object, IsTheSameThroughEachOfItsInterfaces) {
    CountedObject counted;
    CountedObject other;
    EXPECT_EQ(Object::share(counted.unknown()), Object::share(counted.dispatch()));
    EXPECT_FALSE(Object::share(counted.unknown()) == Object::share(other.unknown()));
    EXPECT_FALSE(Object::share(counted.unknown()) == Object());
    EXPECT_FALSE(Object() == Object::share(counted.unknown()));
    EXPECT_EQ(Object(), Object(nullptr));
    EXPECT_EQ(counted.references(), 0);
}

}  // namespace
}  // namespace orvo
