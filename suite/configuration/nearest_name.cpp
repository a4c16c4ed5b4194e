#include "suite/configuration/nearest_name.h"

#include <algorithm>
#include <vector>

namespace orvo {
namespace {

std::size_t distance(const Text& a, const Text& b) {
    // Rows of the table of distances between beginnings: the last two, and the one being made.
    std::vector<std::size_t> second_last, last(b.size() + 1), row(b.size() + 1);
    for (std::size_t j = 0; j <= b.size(); ++j) last[j] = j;
    for (std::size_t i = 1; i <= a.size(); ++i) {
        row[0] = i;
        for (std::size_t j = 1; j <= b.size(); ++j) {
            row[j] = std::min({last[j] + 1, row[j - 1] + 1,
                               last[j - 1] + static_cast<std::size_t>(a[i - 1] != b[j - 1])});
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
                row[j] = std::min(row[j], second_last[j - 2] + 1);
        }
        second_last = last;
        last = row;
    }
    return last[b.size()];
}

}  // namespace

TextView nearest_name(TextView given, std::span<const TextView> known) {
    constexpr std::size_t longest = 100;
    if (given.size() > longest) return {};
    TextView nearest;
    std::size_t least = given.size() / 2 + 1;
    for (const TextView name : known) {
        const std::size_t changes = distance(lower(given), lower(name));
        if (changes >= least) continue;
        least = changes;
        nearest = name;
    }
    return nearest;
}

}  // namespace orvo
