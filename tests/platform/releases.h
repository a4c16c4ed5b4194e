#pragma once

#include <vector>

#include "platform/values/text.h"

namespace orvo {

// Every string that the thread releases while this lives, as it was then: what is overwritten
// before it is released shows as zeros. One at a time on a thread. A program that links it has its
// strings released through it, by whatever module.
class Releases {
public:
    Releases();
    ~Releases();
    Releases(const Releases&) = delete;
    Releases& operator=(const Releases&) = delete;

    void note(TextView text) { texts_.emplace_back(text); }
    // Those of as many units as `text`.
    std::vector<Text> as_long_as(const Text& text) const;

private:
    std::vector<Text> texts_;
};

// What a text looks like once it was overwritten.
inline Text overwritten(const Text& text) { return Text(text.size(), u'\0'); }

}  // namespace orvo
