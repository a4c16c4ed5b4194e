#pragma once

#include <chrono>

namespace orvo::directory {

// How long a connection to a server waits.
struct Limits {
    // For a connection: finding the host's addresses, trying them one after another and agreeing on
    // encryption take no longer than this and no longer than `answer`, all together.
    std::chrono::milliseconds connect{5000};
    // For the complete answer to a bind, a reading of one entry or a change; a search has
    // `operation`.
    std::chrono::milliseconds answer{3000};
    // For the complete answer to a search (of one with pages: for each page).
    std::chrono::milliseconds operation{15000};
};

}  // namespace orvo::directory
