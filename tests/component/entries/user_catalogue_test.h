#pragma once

#include "tests/component/entries/expected_catalogue.h"
#include "tests/component/entries/user_test.h"

namespace orvo {

// Runs `body` once for each row; the row is its template argument.
template <std::size_t... row>
void for_each_row(auto&& body, std::index_sequence<row...>) {
    (body.template operator()<row>(), ...);
}
inline void for_each_property(auto&& body) {
    for_each_row(body, std::make_index_sequence<std::size(user_catalogue)>());
}

inline Variant i2(int number) { return static_cast<std::int16_t>(number); }
inline Variant i4(int number) { return std::int32_t{number}; }
inline Variant money(std::int64_t whole) { return Currency{whole * 10000}; }
inline Variant day(double days) { return Date{days}; }

// The typed properties of jsmith.
class UserCatalogue : public UserTest {
protected:
    // jsmith through all doors; bound when made.
    struct Users {
        User direct;
        Ref<User> made = make<User>();
        Users() {
            bind(direct);
            bind(made);
        }
        template <std::size_t row>
        Variant get(Door door) {
            switch (door) {
                case Door::direct:
                    return Variant(direct.get_property<row>());
                case Door::slots:
                    return Variant(call<&User::get_property<row>>(made));
                default:
                    return late::get(made.object(), from_utf8(catalogue[row].property));
            }
        }
        template <std::size_t row>
        void put(Door door, const Variant& given) {
            if (door == Door::names)
                return late::put(made.object(), from_utf8(catalogue[row].property), given);
            auto value = natural<row>(given);
            if (door == Door::direct)
                direct.put_property<row>(value);
            else
                call<&User::put_property<row>>(made, value);
            EXPECT_EQ(Variant(value), given) << "the caller's variable stays as it is";
        }

    private:
        template <std::size_t row>
        static auto natural(const Variant& value) {
            if constexpr (std::is_same_v<detail::property_t<row>, Variant>)
                return value;
            else
                return value.to<detail::property_t<row>>();
        }
    };

    void store(const char* attribute, const Variant& values) {
        directory_.answer_of(jsmith, from_utf8(attribute), values);
    }
    template <std::size_t row>
    static std::string source() {
        return std::string("OrvoMembership.User.") + catalogue[row].property;
    }
};

}  // namespace orvo
