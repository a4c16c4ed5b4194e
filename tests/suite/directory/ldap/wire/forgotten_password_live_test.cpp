// That the password of a check is nowhere in this process's memory afterwards.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <string>
#include <vector>

#include "suite/directory/ldap/provider/LdapValidator.h"
#include "tests/support/slapd.h"

namespace orvo::directory::ldap {
namespace {

// A password that is written nowhere as it is: each character is one less than it has to be.
constexpr std::string_view mask = "o`rrvnqc,sg`s,hr,vqnmf,enq,ntq,trdq";
constexpr char unmasked(char c) { return static_cast<char>(c + 1); }

template <class String>
void unmask(String& text) {
    for (auto& c : text) c = static_cast<typename String::value_type>(c + 1);
}

// Whether the password stands here, with this many bytes for each character.
bool stands_at(const unsigned char* bytes, std::size_t width) {
    for (std::size_t i = 0; i < mask.size(); ++i) {
        if (bytes[i * width] != static_cast<unsigned char>(unmasked(mask[i]))) return false;
        if (width == 2 && bytes[i * width + 1] != 0) return false;
    }
    return true;
}

// Reads this process's writable memory through one buffer, which is overwritten after each use.
class MemorySearch {
public:
    MemorySearch() : memory_(::open("/proc/self/mem", O_RDONLY | O_CLOEXEC)), buffer_(1 << 20) {}
    ~MemorySearch() { ::close(memory_); }
    MemorySearch(const MemorySearch&) = delete;

    int places() {
        int found = 0;
        std::ifstream maps("/proc/self/maps");
        for (std::string line; std::getline(maps, line);) {
            unsigned long begin = 0, end = 0;
            char rights[5] = {};
            if (std::sscanf(line.c_str(), "%lx-%lx %4s", &begin, &end, rights) == 3 &&
                rights[0] == 'r' && rights[1] == 'w' && end - begin < reserved_by_sanitizer)
                found += places_between(begin, end);
        }
        return found;
    }

private:
    static constexpr std::size_t longest = mask.size() * 2;
    // Larger ones are what a sanitizer notes about each byte, no memory of the program.
    static constexpr unsigned long largest = 1ul << 30;
    // The address sanitizer maps terabytes for itself, in which there are no texts.
    static constexpr unsigned long reserved_by_sanitizer = 1UL << 30;

    int places_between(unsigned long begin, unsigned long end) {
        int found = 0;
        while (begin < end) {
            const ssize_t size =
                ::pread(memory_, buffer_.data(), std::min<std::size_t>(buffer_.size(), end - begin),
                        static_cast<off_t>(begin));
            if (size <= 0) break;  // memory that is set aside and not there
            found += places_in(static_cast<std::size_t>(size), begin);
            ::explicit_bzero(buffer_.data(), static_cast<std::size_t>(size));
            if (static_cast<std::size_t>(size) <= longest) break;
            // A password across the border is in the next part as a whole.
            begin += static_cast<std::size_t>(size) -
                     (begin + static_cast<std::size_t>(size) < end ? longest : 0);
        }
        return found;
    }

    int places_in(std::size_t size, unsigned long begin) {
        const auto own = reinterpret_cast<unsigned long>(buffer_.data());
        int found = 0;
        const unsigned char* const all = buffer_.data();
        const unsigned char* next = all;
        const auto first = [&] {
            return static_cast<const unsigned char*>(
                std::memchr(next, unmasked(mask[0]), static_cast<std::size_t>(all + size - next)));
        };
        while (next < all + size && (next = first()) != nullptr) {
            const auto at = static_cast<std::size_t>(next++ - all);
            if (begin + at >= own && begin + at < own + buffer_.size()) continue;
            if (at + mask.size() <= size && stands_at(all + at, 1)) ++found;
            if (at + longest <= size && stands_at(all + at, 2)) ++found;
        }
        return found;
    }

    int memory_;
    std::vector<unsigned char> buffer_;
};

class ForgottenPassword : public testing::TestWithParam<bool> {
protected:
    static PrivateSlapd& shop() {
        static PrivateSlapd server({.tls = true});
        return server;
    }
    static Text server() {
        return from_utf8(GetParam() ? shop().tls_url() + "/?cafile=" + shop().ca_file().string()
                                    : shop().server());
    }
    // The caller's variable, as a script has it.
    static Variant password() {
        Text text(mask.size() + 1, u'\u00E8');  // one that takes two bytes at its end
        std::copy(mask.begin(), mask.end(), text.begin());
        unmask(text);
        Variant value = TextView(text);
        overwrite(text.data(), text.size() * sizeof text[0]);
        return value;
    }
    static void forget(Variant& value) {
        const TextView text = value.text_view();
        overwrite(const_cast<char16_t*>(text.data()), text.size() * sizeof text[0]);
    }
};

TEST_P(ForgottenPassword, IsFoundByThisSearchWhileItIsThere) {
    MemorySearch search;
    Variant value = password();
    EXPECT_EQ(search.places(), 1);
    std::string bytes(mask);
    unmask(bytes);
    EXPECT_EQ(search.places(), 2);
    overwrite(bytes.data(), bytes.size());
    forget(value);
    EXPECT_EQ(search.places(), 0);
}

TEST_P(ForgottenPassword, IsNowhereAfterACheck) {
    MemorySearch search;
    LdapValidator validator;
    Text address = server(), container = u"ou=Users,o=Shop";
    validator.Open(address, container);
    Variant value = password();
    Variant path = u"cn=djansen,ou=Users,o=Shop";
    EXPECT_EQ(validator.Validate(path, value), -1);
    forget(value);
    EXPECT_EQ(search.places(), 0);
}

INSTANTIATE_TEST_SUITE_P(Connection, ForgottenPassword, testing::Bool(),
                         [](const auto& info) { return info.param ? "Encrypted" : "Plain"; });

}  // namespace
}  // namespace orvo::directory::ldap
