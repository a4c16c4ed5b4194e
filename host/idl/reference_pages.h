#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace orvo {

struct ReferencePage {
    std::string file;  // its name
    std::string text;  // Markdown
};

// The reference of the component's and the suite's classes, made from their tables: a page for
// each, one of the interfaces that others implement, and README.md in front of them. The texts are
// committed in docs/reference.
//
// `examples` has a script and what it prints for each class that programs create: User.js and
// User.expected. Raises std::runtime_error where one is not there.
std::vector<ReferencePage> reference_pages(const std::filesystem::path& examples);

}  // namespace orvo
