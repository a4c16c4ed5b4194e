#include "suite/directory/embedded/store/entry_form.h"

#include <cstdint>
#include <utility>

#include "suite/directory/policy/failures.h"

namespace orvo::directory::embedded {
namespace {

void append_number(std::string& octets, std::uint64_t number) {
    for (; number >= 0x80; number >>= 7) octets += static_cast<char>(number | 0x80);
    octets += static_cast<char>(number);
}

class Reader {
public:
    explicit Reader(std::string_view octets) : rest_(octets) {}

    bool at_end() const { return rest_.empty(); }

    std::uint64_t number() {
        std::uint64_t number = 0;
        for (int shift = 0; shift < 64 && !rest_.empty(); shift += 7) {
            const auto octet = static_cast<unsigned char>(rest_.front());
            rest_.remove_prefix(1);
            number |= std::uint64_t(octet & 0x7F) << shift;
            if (octet < 0x80) return number;
        }
        raise_damaged();
    }

    std::string_view octets() {
        const std::uint64_t size = number();
        if (size > rest_.size()) raise_damaged();
        const std::string_view octets = rest_.substr(0, size);
        rest_.remove_prefix(size);
        return octets;
    }

private:
    [[noreturn]] static void raise_damaged() {
        raise_code(result_code::other, "The attributes of an entry are damaged.");
    }

    std::string_view rest_;
};

}  // namespace

std::string encode(const std::vector<Attribute>& attributes, AttributeNames& names) {
    std::string octets;
    std::string values;
    for (const Attribute& attribute : attributes) {
        if (attribute.values.empty()) continue;
        values.clear();
        for (const std::string& value : attribute.values) {
            append_number(values, value.size());
            values += value;
        }
        append_number(octets, static_cast<std::uint64_t>(names.number_of(attribute.name)));
        append_number(octets, values.size());
        octets += values;
    }
    return octets;
}

std::vector<Attribute> decode(std::string_view octets, const AttributeNames& names,
                              const Wanted& wanted) {
    std::vector<Attribute> attributes;
    attributes.reserve(wanted ? wanted->size() : names.size());
    for (Reader reader(octets); !reader.at_end();) {
        const auto number = static_cast<AttributeNumber>(reader.number());
        const std::string_view content = reader.octets();
        if (wanted && !wanted->holds(number)) continue;
        Attribute& attribute = attributes.emplace_back();
        attribute.name = names[number].name;
        for (Reader values(content); !values.at_end();)
            attribute.values.emplace_back(values.octets());
    }
    return attributes;
}

}  // namespace orvo::directory::embedded
