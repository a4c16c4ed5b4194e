#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace orvo::directory {
class AttributeTypes;
}

namespace orvo::admin {

// Values as a site's directory keeps them, which need not be as they were written.
class KeptValues {
public:
    // Asks the directory for its schema. Raises std::exception where that cannot be had.
    explicit KeptValues(const std::filesystem::path& site);
    ~KeptValues();

    // Whether these are the same values of an attribute, in whatever order. Numbers, times, yes and
    // no, and distinguished names count by what they say. Texts are kept as they are written, so
    // they count by each letter.
    bool are_same(const std::string& attribute, const std::vector<std::string>& one,
                  const std::vector<std::string>& other) const;

private:
    std::vector<std::string> kept(const std::string& attribute,
                                  const std::vector<std::string>& values) const;

    const std::unique_ptr<const directory::AttributeTypes> types_;
};

}  // namespace orvo::admin
